#include "WaitBox.h"

#include <QApplication>
#include <QCursor>
#include <QStyle>
#include <QTreeWidget>

#include <utility>

namespace {

constexpr int messageMargin = 12; // pixels

/// The part of the owner that the tree's rows take up; all of it when there is no tree.
QRect messageArea(const QWidget& owner)
{
    const auto* tree = owner.findChild<QTreeWidget*>();
    if (tree == nullptr) {
        return owner.rect();
    }
    const QWidget* rows = tree->viewport();
    return {rows->mapTo(&owner, QPoint(0, 0)), rows->size()};
}

} // namespace

WaitCursor::WaitCursor()
{
    QApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
}

WaitCursor::~WaitCursor()
{
    QApplication::restoreOverrideCursor();
}

bool isBusy()
{
    return QApplication::overrideCursor() != nullptr || QApplication::activeModalWidget() != nullptr;
}

WaitBox::WaitBox(QString text, QWidget* owner) : m_text(std::move(text)), m_pOwner(owner) {}

WaitBox::~WaitBox()
{
    while (m_cursorCount > 0) {
        restoreCursor();
    }
    delete m_label.data();
}

void WaitBox::showWaitCursor()
{
    ++m_cursorCount;
    QApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    showMessage();
}

void WaitBox::restoreCursor()
{
    if (m_cursorCount == 0) {
        return;
    }
    QApplication::restoreOverrideCursor();
    --m_cursorCount;
    if (m_cursorCount == 0 && m_label) {
        m_label->hide();
    }
}

void WaitBox::showMessage()
{
    if (m_pOwner == nullptr) {
        return;
    }
    if (!m_label) {
        m_label = new QLabel(m_pOwner);
        m_label->setObjectName("waitMessage");
        m_label->setTextFormat(Qt::PlainText);
        m_label->setText(m_text);
        m_label->setAlignment(Qt::AlignCenter);
        m_label->setMargin(messageMargin);
        m_label->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
        m_label->setBackgroundRole(QPalette::ToolTipBase);
        m_label->setForegroundRole(QPalette::ToolTipText);
        m_label->setAutoFillBackground(true);
    }
    const QRect area = messageArea(*m_pOwner);
    m_label->setGeometry(QStyle::alignedRect(m_pOwner->layoutDirection(), Qt::AlignCenter,
                                             m_label->sizeHint().boundedTo(area.size()), area));
    m_label->raise();
    m_label->show();
    m_label->repaint();
}
