#pragma once

#include "genicam/exceptions.h"
#include "gige/gvcp.h"
#include "gige/registerport.h"

#include <source_location>
#include <string>

namespace gige {

/// This host could not send or listen: the adapter is down, there is no way to the address, no permission.
class SocketException : public GenICam::RuntimeException
{
public:
    using RuntimeException::RuntimeException;
};

template <typename E>
inline constexpr const char* exceptionName = nullptr;
template <>
inline constexpr const char* exceptionName<GenICam::RuntimeException> = "RuntimeException";
template <>
inline constexpr const char* exceptionName<GenICam::LogicalErrorException> = "LogicalErrorException";
template <>
inline constexpr const char* exceptionName<GenICam::InvalidArgumentException> = "InvalidArgumentException";
template <>
inline constexpr const char* exceptionName<GenICam::AccessException> = "AccessException";
template <>
inline constexpr const char* exceptionName<GenICam::TimeoutException> = "TimeoutException";
template <>
inline constexpr const char* exceptionName<RefusalException> = "RefusalException";
template <>
inline constexpr const char* exceptionName<SocketException> = "SocketException";

/// Throws an E that says where it was thrown.
template <typename E>
[[noreturn]] void raise(const std::string& text, std::source_location where = std::source_location::current())
{
    static_assert(exceptionName<E> != nullptr);
    throw GenICam::ExceptionReporter<E>(where.file_name(), where.line(), exceptionName<E>)
        .Report("%s", text.c_str());
}

/// The operating system's words for an errno value.
[[nodiscard]] std::string describeErrno(int error);

/// What a camera means by the status, with its hexadecimal code: "the register is write protected (8004)".
[[nodiscard]] std::string describeStatus(gvcp::Status status);

/// "0x0A00"
[[nodiscard]] std::string hex(std::uint32_t value);

} // namespace gige
