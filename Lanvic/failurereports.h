#pragma once

#include <QString>

#include <functional>

/// Runs a user's operation and shows in a message box what it throws. `operation` is its name in the code;
/// `text` is for the user, above what is known of the exception. Returns the result of the operation, false
/// when it threw.
bool showFailure(const char* operation, const std::function<bool()>& step, const QString& text = {});

/// Runs a step of cleaning up, whose failure must not end the operation: the headline and what happened go to
/// the debug output as warnings.
void logFailure(const char* headline, const char* operation, const std::function<void()>& step);
