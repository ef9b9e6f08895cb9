#pragma once

#include <QString>

#include <functional>

/// Runs a step and shows in a message box what it throws. `operation` is the name of the operation in the
/// code; `text` appears above the description of the exception. Returns the result of the step, or false if
/// it threw.
bool showFailure(const char* operation, const std::function<bool()>& step, const QString& text = {});

/// Runs a clean-up step, whose failure must not end the operation: the headline and the exception go to the
/// debug output as warnings.
void logFailure(const char* headline, const char* operation, const std::function<void()>& step);
