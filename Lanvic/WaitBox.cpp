#include "WaitBox.h"

#include <QAccessible>
#include <QApplication>
#include <QCoreApplication>
#include <QCursor>
#include <QEventLoop>
#include <QStyle>
#include <QTimer>
#include <QTreeWidget>

#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr int messageMargin = 12; // Pixels.
constexpr auto repaintTime = 30ms;

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(WaitBox)
};

/// Whole seconds, rounded up to a multiple of five, so that the estimate does not flicker.
qint64 roundedSeconds(std::chrono::milliseconds time)
{
    return (time + 5s - 1ms) / 5s * 5;
}

/// The part of the owner that shows the rows of the tree; all of it if there is no tree.
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
    placeMessage();
    m_label->show();
    QAccessibleEvent announcement(m_label, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
    m_elapsed.start();
    m_label->repaint();
}

void WaitBox::repaintUncovered()
{
    // A dialog that has just closed stays visible until the window system requests a repaint of the area
    // below it, and no request is answered during the sleep that follows.
    QEventLoop loop;
    QTimer::singleShot(repaintTime, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

void WaitBox::showProgress(int done, int total, std::chrono::milliseconds expectedStep)
{
    if (!m_label) {
        return;
    }
    const std::chrono::milliseconds waited(m_elapsed.elapsed());
    const auto step = done > 0 ? waited / done : expectedStep;
    const QString progress =
        Texts::tr("%1 of at most %2 s").arg(waited / 1s).arg(roundedSeconds(step * total));
    m_label->setText(m_text + QLatin1String("\n\n") + progress);
    placeMessage();
    m_label->repaint();
}

void WaitBox::placeMessage()
{
    const QRect area = messageArea(*m_pOwner);
    m_label->setGeometry(QStyle::alignedRect(m_pOwner->layoutDirection(), Qt::AlignCenter,
                                             m_label->sizeHint().boundedTo(area.size()), area));
    m_label->raise();
}
