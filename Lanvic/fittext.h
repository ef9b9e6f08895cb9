#pragma once

#include <QString>

#include <functional>

class QLabel;
class QWidget;

// The window has areas of fixed size for texts whose size depends on the user's font and language. A text
// that would be cut off gets a smaller font instead.

/// Reduces the font of the widget, down to 60 % of its size, until `fits` returns true. Returns whether it
/// did.
bool shrinkFont(QWidget& widget, const std::function<bool()>& fits);

/// Shows a text with wrapped lines so that all of it fits within the maximum height of the label, at its
/// present width and any later one. A text that is too long even for the smallest font can be scrolled.
void setFittingText(QLabel& label, const QString& text);
