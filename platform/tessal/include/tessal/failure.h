#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Tessal {

/// What went wrong between this computer and a camera. An exception's description stays English and
/// technical, for support; the sentence for the user is composed from these values where it is shown, in the
/// user's language.
enum class FailureKind {
    NoAnswer,            // the camera did not answer
    UnusableAnswers,     // the camera sent only packets that do not answer the request
    AskedForMoreTime,    // the camera answered only that it needs more time, until the limit of one request
    Refused,             // the camera refused; `status` says why
    Busy,                // the camera answered every repeat with "busy"
    ControlledElsewhere, // another application controls the camera; `other` is its address, if known
    NotKept,             // the camera acknowledged `wanted` and reports `actual`
    CannotSend, // this computer could not send; `reason` is the operating system's; without a setting, no
                // adapter leads to `address`
    AddressContested,     // two cameras have `address`; `mac` and `other` are their MAC addresses
    AnotherCameraAnswers, // the camera `mac` was expected at `address`, and the camera `other` answers there
    AddressOfAnotherCamera, // the address `wanted` was given to `mac`, but the camera `other` has it too
    AddressNotTaken,        // the address `wanted` was given to `mac`, and the camera has `actual`
    NoAddress,              // the camera has no IP address yet
    FeatureUnusable,        // the camera offers no usable feature or register for `setting`
    InvalidValue,           // `wanted` is not a value for `setting`
};

/// What was to be read or written.
enum class Setting {
    None,
    Control,  // the control channel
    Identity, // the camera's description of itself
    Name,     // the device user ID
    IpConfigMode,
    IpAddress, // of the static configuration, as are the next two
    SubnetMask,
    DefaultGateway,
    TemporaryAddress, // Force IP
    MacAddress,       // an argument of a command
};

/// The values of one failure; those that its kind does not name are empty. Addresses are dotted quads, MAC
/// addresses twelve hexadecimal digits, names UTF-8, IP configuration modes decimal bit sets as in a record.
/// Texts may come from a camera.
struct Failure
{
    FailureKind kind = FailureKind::NoAnswer;
    Setting setting = Setting::None;
    std::string address{}; // of the camera that was asked
    std::string mac{};     // of the camera that was meant
    std::string other{};   // of another camera or computer
    std::string wanted{};  // empty if the setting was to be read
    std::string actual{};
    std::string status{};        // a camera's refusal in words with its code, in English
    std::string reason{};        // the operating system's description, in English
    std::vector<Setting> kept{}; // what the camera stored before the failure, in order
};

/// Implemented by the exceptions of the GenICam family that carry a Failure in addition to their description.
class IFailure
{
public:
    IFailure() = default;
    IFailure(const IFailure&) = default;
    IFailure(IFailure&&) = default;
    IFailure& operator=(const IFailure&) = default;
    IFailure& operator=(IFailure&&) = default;
    virtual ~IFailure() = default;

    [[nodiscard]] virtual const Failure& failure() const noexcept = 0;
};

/// An exception of type E that carries a Failure; handlers that do not need it catch an E.
template <typename E>
class FailureOf : public E, public IFailure
{
public:
    FailureOf(E raised, Failure values) : E(std::move(raised)), m_failure(std::move(values)) {}

    [[nodiscard]] const Failure& failure() const noexcept override { return m_failure; }

private:
    Failure m_failure;
};

} // namespace Tessal
