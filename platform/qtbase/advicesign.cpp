#include "qtbase/advicesign.h"

#include <QLineEdit>
#include <QStyle>

namespace {

constexpr int signSize = 16; // pixels, before scaling

} // namespace

AdviceSign::AdviceSign(QLineEdit* field, QWidget* parent) : QLabel(parent), m_field(field)
{
    setObjectName(field->objectName() + QLatin1String("Advice"));
    setFixedSize(signSize, signSize);
}

bool AdviceSign::setAdvice(const std::optional<advice::Advice>& advice)
{
    const QString text = advice ? sentence(*advice) : QString();
    if (text == m_field->accessibleDescription()) {
        return false;
    }
    setExplanation(*m_field, text);
    setToolTip(m_field->toolTip());
    setAccessibleName(text);
    clear();
    if (advice) {
        const auto picture =
            isWarning(*advice) ? QStyle::SP_MessageBoxWarning : QStyle::SP_MessageBoxInformation;
        setPixmap(style()->standardIcon(picture, nullptr, this).pixmap(size(), devicePixelRatio()));
    }
    return true;
}

QString toolTipText(const QString& text)
{
    return text.isEmpty() ? QString() : QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped());
}

void setExplanation(QWidget& widget, const QString& text)
{
    widget.setToolTip(toolTipText(text));
    widget.setWhatsThis(widget.toolTip());
    widget.setAccessibleDescription(text);
}
