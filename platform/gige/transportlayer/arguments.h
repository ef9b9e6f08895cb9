#pragma once

#include "genicam/gcstring.h"
#include "net/addresses.h"
#include "tessal/failure.h"

/// Parses arguments that callers pass as text. All functions throw InvalidArgumentException with the text if
/// it is not valid.
namespace gige {

/// Twelve hexadecimal digits.
[[nodiscard]] net::MacAddress macArgument(const GenICam::gcstring& text);
/// A dotted quad; `setting` says what it is for.
[[nodiscard]] net::Ipv4 addressArgument(const GenICam::gcstring& text, Tessal::Setting setting);
/// Like addressArgument() for an address of the static mode that will be in force. If the address is only
/// kept for later, a half-typed text is allowed and counts as 0.0.0.0.
[[nodiscard]] net::Ipv4 storedAddressArgument(const GenICam::gcstring& text, Tessal::Setting setting,
                                              bool isInForce);
/// At most 16 bytes.
[[nodiscard]] std::string_view nameArgument(const GenICam::gcstring& text);

} // namespace gige
