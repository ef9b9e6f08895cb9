#pragma once

#include "genicam/gcstring.h"
#include "net/addresses.h"
#include "tessal/failure.h"

/// What callers hand over as text. All throw InvalidArgumentException, naming the text, when it is none such.
namespace gige {

/// Twelve hexadecimal digits.
[[nodiscard]] net::MacAddress macArgument(const GenICam::gcstring& text);
/// A dotted quad; `setting` says what it is for.
[[nodiscard]] net::Ipv4 addressArgument(const GenICam::gcstring& text, Tessal::Setting setting);
/// As addressArgument() for an address of the static mode that will be in force. For one that is only kept
/// for later an editor may hold half a text, which counts as 0.0.0.0.
[[nodiscard]] net::Ipv4 storedAddressArgument(const GenICam::gcstring& text, Tessal::Setting setting,
                                              bool isInForce);
/// At most 16 bytes.
[[nodiscard]] std::string_view nameArgument(const GenICam::gcstring& text);

} // namespace gige
