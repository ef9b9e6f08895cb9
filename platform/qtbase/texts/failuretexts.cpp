#include "qtbase/failuretexts.h"

#include "qtbase/formatting.h"

#include <QCoreApplication>

#include <algorithm>
#include <functional>

using Tessal::Failure;
using Tessal::FailureKind;
using Tessal::Setting;

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Failures)
};

QString valueText(const std::string& value)
{
    return displayText(QString::fromUtf8(value.c_str()));
}

QString macText(const std::string& mac)
{
    return displayText(formatMACAddress(mac.c_str(), ":"));
}

QString cameraName(const Failure& failure)
{
    return failure.address.empty() ? macText(failure.mac) : valueText(failure.address);
}

/// As the object of a verb; in German in the accusative.
QString nameOf(Setting setting)
{
    switch (setting) {
    case Setting::Name:
        return Texts::tr("the new device user ID");
    case Setting::IpConfigMode:
        return Texts::tr("the new IP configuration");
    case Setting::IpAddress:
        return Texts::tr("the new IP address");
    case Setting::SubnetMask:
        return Texts::tr("the new subnet mask");
    case Setting::DefaultGateway:
        return Texts::tr("the new gateway");
    case Setting::TemporaryAddress:
        return Texts::tr("the temporary address");
    default:
        return Texts::tr("the new value");
    }
}

/// Whether a setting was to be written. One that was to be read has no wanted value; a name may be empty.
bool isWritten(const Failure& failure)
{
    return failure.setting == Setting::Name || failure.setting == Setting::TemporaryAddress ||
           (failure.setting >= Setting::IpConfigMode && failure.setting <= Setting::DefaultGateway &&
            !failure.wanted.empty());
}

/// Leaves out Auto IP, which is always on, unless it is the only mode.
QString formatModes(const std::string& value)
{
    using namespace Tessal::IpConfig;
    QStringList modes;
    for (const unsigned int bit : {Persistent, Dhcp}) {
        if ((fromText(value) & bit) != 0) {
            modes += formatIPConfiguration(std::to_string(bit).c_str(), 1);
        }
    }
    return modes.isEmpty() ? formatIPConfiguration(value.c_str(), 1) : modes.join(QLatin1String(", "));
}

/// A value of the setting as the window shows it.
QString formatValue(Setting setting, const std::string& value)
{
    if (setting == Setting::Name) {
        return Texts::tr("“%1”").arg(valueText(value));
    }
    return setting == Setting::IpConfigMode ? formatModes(value) : valueText(value);
}

QString nameWithValue(const Failure& failure)
{
    const QString name = nameOf(failure.setting);
    return failure.wanted.empty() ? name
                                  : name + QLatin1Char(' ') + formatValue(failure.setting, failure.wanted);
}

/// The text with the camera for %1 and further values for %2 and so on.
template <typename... Values>
QString fill(QString text, const Failure& failure, const Values&... values)
{
    const QString camera = cameraName(failure);
    if (camera.isEmpty()) {
        text.replace(QLatin1String(" %1"), QLatin1String("%1"));
    }
    return text.arg(camera, values...);
}

/// The text for what was attempted: to write a setting, which replaces %2, to take control, or anything else.
QString aboutSetting(const Failure& failure, const QString& writing, const QString& controlling,
                     const QString& otherwise)
{
    if (isWritten(failure)) {
        return fill(writing, failure, nameWithValue(failure));
    }
    return fill(failure.setting == Setting::Control ? controlling : otherwise, failure);
}

QString describeNotKept(const Failure& failure)
{
    if (failure.actual.empty()) {
        return fill(Texts::tr("The camera %1 confirmed %2 but did not keep it."), failure,
                    nameWithValue(failure));
    }
    return fill(Texts::tr("The camera %1 confirmed %2 but reports %3."), failure, nameWithValue(failure),
                formatValue(failure.setting, failure.actual));
}

/// Whether nothing was sent because no adapter leads to the camera's address.
bool isOutOfReach(const Failure& failure)
{
    return failure.kind == FailureKind::CannotSend && failure.setting == Setting::None &&
           !failure.address.empty();
}

QString describeNothingSent(const Failure& failure)
{
    if (isOutOfReach(failure)) {
        return Texts::tr("This computer cannot reach the address %1 through any of its network adapters.")
            .arg(valueText(failure.address));
    }
    if (cameraName(failure).isEmpty()) {
        return Texts::tr("This computer could not use its network.");
    }
    const QString nothing = Texts::tr("This computer could not send anything to the camera %1.");
    return aboutSetting(failure, Texts::tr("This computer could not send the camera %1 %2."), nothing,
                        nothing);
}

QString describeControl(const Failure& failure)
{
    if (failure.other.empty()) {
        return fill(Texts::tr("The camera %1 is controlled by another application."), failure);
    }
    return fill(Texts::tr("The camera %1 is controlled by another application, on the computer %2."), failure,
                valueText(failure.other));
}

QString describeInvalidValue(const Failure& failure)
{
    const QString value = valueText(failure.wanted);
    switch (failure.setting) {
    case Setting::MacAddress:
        return Texts::tr("“%1” is not a MAC address, which has twelve hexadecimal digits.").arg(value);
    case Setting::Name:
        return Texts::tr("The device user ID “%1” is too long for the camera.").arg(value);
    case Setting::SubnetMask:
        return Texts::tr(
                   "“%1” is not a subnet mask. It takes four numbers from 0 to 255 with dots between them.")
            .arg(value);
    default:
        return Texts::tr(
                   "“%1” is not an IP address. It takes four numbers from 0 to 255 with dots between them.")
            .arg(value);
    }
}

/// The sentence for a request that failed.
QString describeRequest(const Failure& failure)
{
    switch (failure.kind) {
    case FailureKind::AskedForMoreTime:
        return aboutSetting(failure,
                            Texts::tr("The camera %1 kept asking for more time and never confirmed %2."),
                            Texts::tr("The camera %1 kept asking for more time and never granted control."),
                            Texts::tr("The camera %1 kept asking for more time and never answered."));
    case FailureKind::Refused:
        return aboutSetting(failure, Texts::tr("The camera %1 refused %2."),
                            Texts::tr("The camera %1 refused to be controlled by this program."),
                            failure.setting == Setting::Identity
                                ? Texts::tr("The camera %1 refused to give information about itself.")
                                : Texts::tr("The camera %1 refused the request."));
    case FailureKind::Busy:
        return aboutSetting(failure, Texts::tr("The camera %1 is busy and did not take %2."),
                            Texts::tr("The camera %1 is busy and cannot be controlled at the moment."),
                            Texts::tr("The camera %1 is busy."));
    case FailureKind::UnusableAnswers:
        return aboutSetting(
            failure, Texts::tr("The camera %1 gave no usable answer when it was given %2."),
            Texts::tr("The camera %1 gave no usable answer when this program asked for control."),
            Texts::tr("The camera %1 gave no usable answer."));
    default:
        return aboutSetting(failure, Texts::tr("The camera %1 did not answer when it was given %2."),
                            Texts::tr("The camera %1 did not answer when this program asked for control."),
                            Texts::tr("The camera %1 did not answer."));
    }
}

QString describeKind(const Failure& failure)
{
    switch (failure.kind) {
    case FailureKind::NotKept:
        return describeNotKept(failure);
    case FailureKind::CannotSend:
        return describeNothingSent(failure);
    case FailureKind::ControlledElsewhere:
        return describeControl(failure);
    case FailureKind::AddressContested:
        return Texts::tr("Two cameras have the address %1, those with the MAC addresses %2 and %3.")
            .arg(valueText(failure.address), macText(failure.mac), macText(failure.other));
    case FailureKind::AnotherCameraAnswers:
        return Texts::tr("The address %1 is that of another camera (MAC address %2).")
            .arg(valueText(failure.address), macText(failure.other));
    case FailureKind::AddressOfAnotherCamera:
        return Texts::tr("The address %1, which was given to the camera %2, is also that of the camera %3.")
            .arg(valueText(failure.wanted), macText(failure.mac), macText(failure.other));
    case FailureKind::AddressNotTaken:
        return Texts::tr("The camera %1 was given the address %2 but has %3.")
            .arg(macText(failure.mac), valueText(failure.wanted), valueText(failure.actual));
    case FailureKind::NoAddress:
        return fill(Texts::tr("The camera %1 has no IP address yet."), failure);
    case FailureKind::FeatureUnusable:
        return fill(Texts::tr("The camera %1 does not let its device user ID be changed."), failure);
    case FailureKind::InvalidValue:
        return describeInvalidValue(failure);
    default:
        return describeRequest(failure);
    }
}

QString describeKept(const Failure& failure)
{
    if (failure.kept.empty()) {
        return {};
    }
    QString names = nameOf(failure.kept.front());
    for (auto setting = failure.kept.begin() + 1; setting != failure.kept.end(); ++setting) {
        const bool isLast = setting + 1 == failure.kept.end();
        names = (isLast ? Texts::tr("%1 and %2") : Texts::tr("%1, %2")).arg(names, nameOf(*setting));
    }
    return Texts::tr("It already has %1.").arg(names);
}

QString adviceFor(const Failure& failure)
{
    switch (failure.kind) {
    case FailureKind::NoAnswer:
        return isWritten(failure) ? Texts::tr("Check whether it is still connected, then try again.")
                                  : QString();
    case FailureKind::AskedForMoreTime:
    case FailureKind::Busy:
        return Texts::tr("Wait a moment, then try again.");
    case FailureKind::CannotSend:
        return isOutOfReach(failure) ? QString() : Texts::tr("Check the network adapter and its cable.");
    case FailureKind::ControlledElsewhere:
        return Texts::tr("Close the connection there, then try again.");
    case FailureKind::AddressContested:
        return Texts::tr("One of them needs another address first.");
    case FailureKind::AnotherCameraAnswers:
        return Texts::tr("Refresh the list, or choose another temporary address.");
    case FailureKind::AddressOfAnotherCamera:
        return Texts::tr("Choose another temporary address.");
    case FailureKind::AddressNotTaken:
        return Texts::tr("Try again, or choose another temporary address.");
    default:
        return {};
    }
}

/// Runs `visit` on the exception and on each that is nested in it, the outermost first.
void visitNested(const std::exception& exception, const std::function<void(const std::exception&)>& visit)
{
    visit(exception);
    try {
        std::rethrow_if_nested(exception);
    } catch (const std::exception& cause) {
        visitNested(cause, visit);
    } catch (...) { // NOLINT(bugprone-empty-catch): nothing is known about it
    }
}

} // namespace

QString describeFailure(const Failure& failure)
{
    QStringList sentences{describeKind(failure), describeKept(failure), adviceFor(failure)};
    sentences.removeAll(QString());
    return sentences.join(QLatin1Char(' '));
}

QStringList sentencesOf(const std::exception& exception)
{
    QStringList sentences;
    visitNested(exception, [&sentences](const std::exception& one) {
        if (const auto* const translated = dynamic_cast<const ITranslated*>(&one)) {
            sentences += translated->sentence();
        } else if (const auto* const failed = dynamic_cast<const Tessal::IFailure*>(&one)) {
            sentences += describeFailure(failed->failure());
        }
    });
    return sentences;
}

QString technicalTextOf(const std::exception& exception)
{
    QStringList lines;
    visitNested(exception, [&lines](const std::exception& one) { lines += valueText(one.what()); });
    return lines.join(QLatin1Char('\n'));
}
