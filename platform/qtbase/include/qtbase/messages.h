#pragma once

#include <QString>

#include <exception>

class QWidget;

/// Modal boxes for failures. Every text is shown as plain text, because it may come from a camera.
/// `operationName` is the name of the operation that failed, as the code names it; it goes into the details
/// together with the exception's what(). Without a parent the box belongs to the active window.

/// Shows in the user's language what is known about the exception and those nested in it (sentencesOf), or
/// that the operation failed.
void showException(const QString& operationName, const std::exception& exception, QWidget* parent);
/// The same with a text for the user above the exception's own.
void showException(const QString& operationName, const std::exception& exception, const QString& text,
                   QWidget* parent);
/// For anything thrown that is not a std::exception.
void showUnexpectedException(const QString& operationName, const QString& text, QWidget* parent);
/// A warning with a title, an optional heading and a text.
void showWarningMessage(const QString& title, const QString& heading, const QString& text, QWidget* parent);
