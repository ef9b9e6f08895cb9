#include "errors.h"

#include <array>
#include <cstdio>
#include <system_error>

namespace gige {

namespace {

const char* meaning(gvcp::Status status)
{
    switch (status) {
    case gvcp::Status::Success:
        return "done";
    case gvcp::Status::NotImplemented:
        return "the camera does not support this command";
    case gvcp::Status::InvalidParameter:
        return "a value is invalid";
    case gvcp::Status::InvalidAddress:
        return "the camera has no such register";
    case gvcp::Status::WriteProtected:
        return "the register is write protected";
    case gvcp::Status::BadAlignment:
        return "the address or the length is misaligned";
    case gvcp::Status::AccessDenied:
        return "access is denied";
    case gvcp::Status::Busy:
        return "the camera is busy";
    case gvcp::Status::InvalidHeader:
        return "the message is malformed";
    case gvcp::Status::Error:
        break;
    }
    return "the camera reports an error";
}

} // namespace

const Tessal::Failure* failureOf(const std::exception& exception)
{
    const auto* const carrier = dynamic_cast<const Tessal::IFailure*>(&exception);
    return carrier == nullptr ? nullptr : &carrier->failure();
}

bool isRefusal(const std::exception& exception)
{
    const Tessal::Failure* const failure = failureOf(exception);
    return failure != nullptr && failure->kind == Tessal::FailureKind::Refused;
}

std::string describeStatus(gvcp::Status status)
{
    std::array<char, 8> code{};
    std::snprintf(code.data(), code.size(), "%04X", static_cast<unsigned>(status));
    return std::string(meaning(status)) + " (" + code.data() + ")";
}

std::string excerpt(std::string_view text)
{
    constexpr std::size_t longest = 64;
    return "'" + std::string(text.substr(0, longest)) + (text.size() > longest ? "...'" : "'");
}

std::string hex(std::uint32_t value)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%04X", value);
    return text.data();
}

} // namespace gige
