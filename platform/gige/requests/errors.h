#pragma once

#include "genicam/exceptions.h"
#include "gvcp/gvcp.h"
#include "tessal/failure.h"

#include <string>
#include <string_view>

namespace gige {

/// This host cannot send or receive: the adapter is down, the address is out of reach, or permission is
/// denied.
class SocketException : public GenICam::RuntimeException
{
public:
    using RuntimeException::RuntimeException;
};

/// The camera refused a request for another reason than a missing privilege.
class RefusalException : public GenICam::RuntimeException
{
public:
    using RuntimeException::RuntimeException;
};

/// The type name that an exception carries; null for types that raise() does not support.
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

/// Throws an E that says where it was thrown. Does not use std::source_location, which clang 14 lacks.
template <typename E>
[[noreturn]] void raise(const std::string& text, const char* file = __builtin_FILE(),
                        unsigned int line = __builtin_LINE())
{
    static_assert(exceptionName<E> != nullptr);
    throw GenICam::ExceptionReporter<E>(file, line, exceptionName<E>).Report("%s", text.c_str());
}

/// The same with the values from which the user's sentence is made; `text` is the technical description.
template <typename E>
[[noreturn]] void raise(Tessal::Failure failure, const std::string& text, const char* file = __builtin_FILE(),
                        unsigned int line = __builtin_LINE())
{
    static_assert(exceptionName<E> != nullptr);
    throw Tessal::FailureOf<E>(
        GenICam::ExceptionReporter<E>(file, line, exceptionName<E>).Report("%s", text.c_str()),
        std::move(failure));
}

/// The failure that an exception carries; null if it carries none.
[[nodiscard]] const Tessal::Failure* failureOf(const std::exception& exception);
/// Whether the camera refused the request for another reason than being busy.
[[nodiscard]] bool isRefusal(const std::exception& exception);

/// What the status means, with its hexadecimal code: "the register is write protected (8004)".
[[nodiscard]] std::string describeStatus(gvcp::Status status);

/// The beginning of a text from a camera, at most 64 bytes in quotation marks, for a message.
[[nodiscard]] std::string excerpt(std::string_view text);

/// The value in hexadecimal: "0x0A00".
[[nodiscard]] std::string hex(std::uint32_t value);

} // namespace gige
