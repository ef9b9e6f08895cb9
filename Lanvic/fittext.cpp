#include "fittext.h"

#include <QEvent>
#include <QFontInfo>
#include <QLabel>

namespace {

constexpr qreal smallest = 0.6;
constexpr qreal step = 0.95;

/// Fits the text of a label, which owns it, again with each new width.
class TextFitter : public QObject
{
    Q_OBJECT

public:
    explicit TextFitter(QLabel& label) : QObject(&label), m_label(label) { label.installEventFilter(this); }

    void fit()
    {
        m_label.setFont(QFont()); // the parent's again
        m_width = m_label.width();
        const bool fits = shrinkFont(
            m_label, [this] { return m_label.heightForWidth(m_width) <= m_label.maximumHeight(); });
        m_label.setToolTip(fits ? QString() : m_label.text());
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Resize && m_label.width() != m_width) {
            fit();
        }
        return false;
    }

private:
    QLabel& m_label;
    int m_width = 0;
};

} // namespace

bool shrinkFont(QWidget& widget, const std::function<bool()>& fits)
{
    QFont font = widget.font();
    qreal size = QFontInfo(font).pointSizeF();
    const qreal least = size * smallest;
    while (!fits()) {
        size *= step;
        if (size < least) {
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
