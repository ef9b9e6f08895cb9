#pragma once

#include <string>
#include <system_error>

namespace net {

/// The operating system's words for an errno value, in English whatever the user's language is: they go to
/// the trace and to support.
[[nodiscard]] std::string describeErrno(int error);

/// As std::generic_category(), with these words.
[[nodiscard]] const std::error_category& errnoCategory();

} // namespace net
