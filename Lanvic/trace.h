#pragma once

#include "genicam/exceptions.h"

#include <QDebug>

/// The trace category of everything that the program does with cameras, "Lanvic.Base".
[[nodiscard]] unsigned long GetIPConfigBaseCatID();

/// Exceptions in debug output: description and origin of a GenICam exception, what() of any other.
QDebug operator<<(QDebug debug, const GenICam::GenericException& exception);
QDebug operator<<(QDebug debug, const std::exception& exception);

/// Runs a step of cleaning up, whose failure must not end the operation: the headline and what happened go to
/// the debug output as warnings.
template <typename Step>
void warningOfFailure(const char* headline, const char* operation, Step step)
{
    try {
        step();
    } catch (const GenICam::GenericException& exception) {
        qWarning("%s", headline);
        qWarning() << operation << ": " << exception;
    } catch (const std::exception& exception) {
        qWarning("%s", headline);
        qWarning() << operation << ": " << exception;
    } catch (...) {
        qWarning("%s", headline);
        qWarning("%s: Unspecified exception occurred.", operation);
    }
}
