#pragma once

#include "genicam/exceptions.h"
#include "gvcp/gvcp.h"
#include "tessal/failure.h"

#include <string>
#include <string_view>

namespace gige {

/// This host could not send or listen: the adapter is down, there is no way to the address, no permission.
class SocketException : public GenICam::RuntimeException
{
public:
    using RuntimeException::RuntimeException;
};

/// The camera answered, and said no for another reason than privilege.
class RefusalException : public GenICam::RuntimeException
{
public:
    using RuntimeException::RuntimeException;
};

/// The type name that an exception carries; null for a type that raise() is not made for.
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

/// Throws an E that says where it was thrown. Not by std::source_location, which clang 14 does not know.
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

/// What an exception tells of its failure; null for one that tells nothing.
[[nodiscard]] const Tessal::Failure* failureOf(const std::exception& exception);
/// Whether the camera refused what was asked, for another reason than that it was busy.
[[nodiscard]] bool isRefusal(const std::exception& exception);

/// What a camera means by the status, with its hexadecimal code: "the register is write protected (8004)".
[[nodiscard]] std::string describeStatus(gvcp::Status status);

/// The beginning of a text that came from a camera, at most 64 bytes in quotation marks, for a message.
[[nodiscard]] std::string excerpt(std::string_view text);

/// "0x0A00"
[[nodiscard]] std::string hex(std::uint32_t value);

} // namespace gige
