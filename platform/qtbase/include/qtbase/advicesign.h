#pragma once

#include "advice/advice.h"

#include <QLabel>

#include <optional>

class QLineEdit;

/// A small sign beside a field that tells what there is to say of the field's text: the sentence is the tool
/// tip of both, what a screen reader says of the field, and what Shift+F1 shows.
class AdviceSign : public QLabel
{
public:
    /// Shows nothing yet. The field must outlive the sign.
    AdviceSign(QLineEdit* field, QWidget* parent);

    /// Takes back what was told when there is no advice. Returns whether this is news.
    bool tell(const std::optional<advice::Advice>& advice);

    [[nodiscard]] QLineEdit& field() const { return *m_field; }

private:
    QLineEdit* m_field;
};

/// A plain text as a tool tip, which is wrapped and would else be taken for markup where it looks so.
[[nodiscard]] QString toolTipText(const QString& text);

/// Tells of a widget what its tool tip says to those who use no mouse as well.
void setExplanation(QWidget& widget, const QString& text);
