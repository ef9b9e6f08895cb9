#include "fittext.h"

#include <QEvent>
#include <QFontInfo>
#include <QLabel>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTextOption>

namespace {

constexpr qreal minScale = 0.6;
constexpr qreal scaleStep = 0.95;

/// Whether the whole text fits within that width and the maximum height of the label, with no word broken.
bool isFullyVisible(const QLabel& label, int width)
{
    return label.minimumSizeHint().width() <= width && label.heightForWidth(width) <= label.maximumHeight();
}

/// Fits the text of a label again whenever its width changes. Owned by the label.
class TextFitter : public QObject
{
    Q_OBJECT

public:
    explicit TextFitter(QLabel& label) : QObject(&label), m_label(label) { label.installEventFilter(this); }

    void fit()
    {
        m_label.setFont(QFont()); // The parent's font again.
        m_width = m_label.width();
        const bool fits = shrinkFont(m_label, [this] { return isFullyVisible(m_label, m_width); });
        if (!fits) {
            m_label.setFont(QFont());
            showScrollView();
        } else if (m_scrollView != nullptr) {
            m_scrollView->hide();
            m_label.setFocusProxy(nullptr);
        }
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Resize) {
            if (m_scrollView != nullptr) {
                m_scrollView->setGeometry(m_label.rect());
            }
            if (m_label.width() != m_width) {
                fit();
            }
        }
        return false;
    }

private:
    /// Covers the label with a scrolling view of the same text.
    void showScrollView()
    {
        if (m_scrollView == nullptr) {
            m_scrollView = new QTextBrowser(&m_label);
            m_scrollView->setAccessibleName(m_label.accessibleName());
            m_scrollView->setAccessibleDescription(m_label.accessibleDescription());
            m_scrollView->setFrameShape(QFrame::NoFrame);
            m_scrollView->viewport()->setBackgroundRole(QPalette::Window);
            m_scrollView->setOpenLinks(false);
            m_scrollView->setWordWrapMode(QTextOption::WordWrap);
            m_scrollView->document()->setDocumentMargin(0);
            m_scrollView->setGeometry(m_label.rect());
            QWidget::setTabOrder(&m_label, m_scrollView);
        }
        m_scrollView->setHtml(m_label.text());
        m_scrollView->show();
        m_label.setFocusProxy(m_scrollView);
    }

    QLabel& m_label;
    QTextBrowser* m_scrollView = nullptr; // Created when first needed; owned by the label.
    int m_width = 0;
};

} // namespace

bool shrinkFont(QWidget& widget, const std::function<bool()>& fits)
{
    QFont font = widget.font();
    qreal size = QFontInfo(font).pointSizeF();
    const qreal minSize = size * minScale;
    while (!fits()) {
        size *= scaleStep;
        if (size < minSize) {
            return false;
        }
        font.setPointSizeF(size);
        widget.setFont(font);
    }
    return true;
}

void setFittingText(QLabel& label, const QString& text)
{
    label.setText(text);
    auto* fitter = label.findChild<TextFitter*>(QString(), Qt::FindDirectChildrenOnly);
    if (fitter == nullptr) {
        fitter = new TextFitter(label);
    }
    fitter->fit();
}

#include "fittext.moc"
