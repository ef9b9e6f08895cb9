#pragma once

#include <string>
#include <system_error>

namespace net {

/// The operating system's description of an errno value, always in English because it goes to the trace and
/// to support.
[[nodiscard]] std::string describeErrno(int error);

/// Like std::generic_category(), with these descriptions.
[[nodiscard]] const std::error_category& errnoCategory();

} // namespace net
