#pragma once

#include "genicam/gcstring.h"
#include "net/addresses.h"

/// What callers hand over as text. All throw InvalidArgumentException, naming the text, when it is none such.
namespace gige {

/// Twelve hexadecimal digits.
[[nodiscard]] net::MacAddress macArgument(const GenICam::gcstring& text);
/// A dotted quad; `what` says what it is for, as in "subnet mask".
[[nodiscard]] net::Ipv4 addressArgument(const GenICam::gcstring& text, const char* what);

} // namespace gige
