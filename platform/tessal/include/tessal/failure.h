#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Tessal {

/// What went wrong between this computer and a camera. An exception's description stays English and
/// technical, for support; the sentence for the user is made from these values where it is shown, in the
/// user's language.
enum class FailureKind {
    NoAnswer,            // the camera did not answer
    UnusableAnswers,     // what came from the camera was no answer to what it was asked
    AskedForMoreTime,    // the camera answered only that it needs more time, until the limit of one request
    Refused,             // the camera refused; `status` says with what words
    Busy,                // the camera answered every repeat with "busy"
    ControlledElsewhere, // another application controls the camera; `other` is its address, if the camera
                         // tells
    NotKept,             // the camera acknowledged `wanted` and reports `actual`
    CannotSend,       // this computer could not send; `reason` holds the operating system's words; without a
                      // setting it has no way to `address`
    AddressContested, // two cameras have `address`; `mac` and `other` are their MAC addresses
    AnotherCameraAnswers, // the camera `mac` was expected at `address`, and the camera `other` answers there
    AddressOfAnotherCamera, // the address `wanted` was given to `mac`, but the camera `other` has it too
    AddressNotTaken,        // the address `wanted` was given to `mac`, and the camera has `actual`
    NoAddress,              // the camera has no IP address yet
    FeatureUnusable,        // the camera offers no usable feature or register for `setting`
    InvalidValue,           // `wanted` is no value for `setting`
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
    std::string status{};        // a camera's refusal in words with its code, English
    std::string reason{};        // the operating system's, English
    std::vector<Setting> kept{}; // what the camera took before the failure, in the order of writing
};

/// What an exception of the GenICam family offers beside its description if it has a Failure.
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

/// An exception of type E that says what kind of failure it is: caught as an E by those who do not ask.
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
