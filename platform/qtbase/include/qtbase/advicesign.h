#pragma once

#include "advice/advice.h"

#include <QLabel>

#include <optional>

class QLineEdit;

/// A small sign beside a field that shows the advice on its text: the sentence is the tool tip of both, the
/// description that a screen reader gives of the field, and what Shift+F1 shows.
class AdviceSign : public QLabel
{
public:
    /// Shows nothing yet. The field must outlive the sign.
    AdviceSign(QLineEdit* field, QWidget* parent);

    /// Shows the advice, or nothing if there is none. Returns whether that is a change.
    bool setAdvice(const std::optional<advice::Advice>& advice);

    [[nodiscard]] QLineEdit& field() const { return *m_field; }

private:
    QLineEdit* m_field;
};

/// A plain text as a tool tip that is wrapped and never taken for markup.
[[nodiscard]] QString toolTipText(const QString& text);

/// Sets the widget's tool tip, and offers the same text to users without a mouse.
void setExplanation(QWidget& widget, const QString& text);
