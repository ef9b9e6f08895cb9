#pragma once

#include <QString>

#include <functional>

class QLabel;
class QWidget;

// The window has places of fixed size for texts whose size the user's font and language decide. Where a text
// would be cut off, its letters are made smaller instead.

/// Makes the widget's letters smaller, down to 60 % of what they are, until `fits` is content. Whether it is
/// in the end.
bool shrinkFont(QWidget& widget, const std::function<bool()>& fits);

/// Shows a text with wrapped lines so that all of it is seen within the label's greatest height, however wide
/// the label is now or becomes. What is too much even for small letters can be scrolled.
void setFittingText(QLabel& label, const QString& text);
