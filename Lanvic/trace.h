#pragma once

#include "genicam/exceptions.h"

#include <QDebug>

/// The trace category of all operations on cameras, "Lanvic.Base".
[[nodiscard]] unsigned long GetIPConfigBaseCatID();

/// Exceptions in debug output: description and origin of a GenICam exception, what() of any other.
QDebug operator<<(QDebug debug, const GenICam::GenericException& exception);
QDebug operator<<(QDebug debug, const std::exception& exception);
