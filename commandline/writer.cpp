#include "writer.h"

#include "DeviceLister.h"

#include "qtbase/failuretexts.h"
#include "tessal/devicechoice.h"

#include <exception>
#include <memory>
#include <utility>

namespace cli {

namespace {

using DevicePointer = std::unique_ptr<Tessal::ITessalGigEDevice, void (*)(Tessal::ITessalDevice*)>;

void destroy(Tessal::ITessalDevice* device)
{
    DeviceLister::s_pTl->DestroyDevice(device); // Closes it as well.
}

/// Returns whether the camera has accepted it. Throws what the camera layer throws.
bool sendBroadcast(const Change& change)
{
    const Camera& camera = change.camera;
    const Wanted& wanted = change.wanted;
    const Mode mode = wanted.mode == Mode::Unknown ? camera.mode : wanted.mode;
    if (mode == Mode::Unknown) {
        return false; // The command always stores a mode, and there is none to keep.
    }
    const bool isGiven =
        wanted.mode == Mode::Static; // Or what the camera has goes along, as it does in the window.
    const QByteArray name = change.writesName ? wanted.name->toUtf8() : camera.storedName;
    return DeviceLister::s_pTl->BroadcastIpConfig(
        net::formatMac(camera.mac), mode == Mode::Static, mode == Mode::Dhcp,
        net::formatIpv4(isGiven ? wanted.address : camera.address),
        net::formatIpv4(isGiven ? wanted.mask : camera.mask),
        net::formatIpv4(isGiven ? wanted.gateway : camera.gateway), name.constData());
}

/// A camera that the command does not get through to can still be opened, which reports its own failures.
bool storeByBroadcast(const Change& change)
{
    try {
        return sendBroadcast(change);
    } catch (const std::exception&) {
        return false;
    }
}

Tessal::FailureOf<GenICam::RuntimeException> failure(const char* text, Tessal::Failure values)
{
    return {GenICam::ExceptionReporter<GenICam::RuntimeException>(__FILE__, __LINE__, "RuntimeException")
                .Report("%s", text),
            std::move(values)};
}

/// Addresses change hands, and cameras behind different adapters may have the same.
void expectCamera(Tessal::IGigETransportLayer& layer, const net::MacAddress& mac)
{
    if (auto* const choice = dynamic_cast<Tessal::IDeviceChoice*>(&layer)) {
        choice->SetExpectedMac(net::formatMac(mac));
    }
}

DevicePointer open(const Camera& camera, net::Ipv4 address)
{
    using enum Tessal::EDeviceAccessMode;
    Tessal::IGigETransportLayer& layer = *DeviceLister::s_pTl;
    expectCamera(layer, camera.mac);
    Tessal::COrvikGigEDeviceInfo info(layer.CreateDeviceInfo());
    info.SetIpAddress(net::formatIpv4(address));
    DevicePointer device(dynamic_cast<Tessal::ITessalGigEDevice*>(layer.CreateDevice(info)), &destroy);
    if (device == nullptr) {
        throw failure("There is no device for the camera", {.address = net::formatIpv4(address)});
    }
    device->Open(Stream | Control | Event);
    const GenICam::gcstring opened = Tessal::COrvikGigEDeviceInfo(device->GetDeviceInfo()).GetMacAddress();
    if (net::parseMac(opened.view()) != camera.mac) {
        throw failure("Another camera answers", {.kind = Tessal::FailureKind::AnotherCameraAnswers,
                                                 .address = net::formatIpv4(address),
                                                 .mac = net::formatMac(camera.mac),
                                                 .other = std::string(opened.view())});
    }
    return device;
}

void storeOpened(const Change& change, net::Ipv4 address)
{
    const DevicePointer device = open(change.camera, address);
    if (change.writesName) {
        const GenApi::CPointer<GenApi::IString, GenApi::IBase> userId(
            device->GetNodeMap()->GetNode("DeviceUserID"));
        if (!userId) {
            throw failure("The camera has no DeviceUserID", {.kind = Tessal::FailureKind::FeatureUnusable,
                                                             .setting = Tessal::Setting::Name,
                                                             .address = net::formatIpv4(address)});
        }
        userId->SetValue(change.wanted.name->toUtf8().constData(), true);
    }
    if (change.writesMode) {
        device->SetIpConfigMode(change.wanted.mode == Mode::Static, change.wanted.mode == Mode::Dhcp);
    }
    if (change.writesAddresses) {
        device->SetPersistentIp(net::formatIpv4(change.wanted.address), net::formatIpv4(change.wanted.mask),
                                net::formatIpv4(change.wanted.gateway));
    }
    device->Close();
}

} // namespace

void writeChange(const Change& change, net::Ipv4 address)
{
    const net::MacAddress& mac = change.camera.mac;
    const Wanted& wanted = change.wanted;
    if (wanted.mode == Mode::Temporary) {
        forceAddress(mac, wanted.address, wanted.mask, wanted.gateway);
        return;
    }
    if (!storeByBroadcast(change)) {
        if (change.temporary && address != change.temporary->address) {
            address = change.temporary->address;
            forceAddress(mac, address, change.temporary->mask, {});
        }
        storeOpened(change, address);
    }
    DeviceLister::s_pTl->RestartIpConfig(net::formatMac(mac));
}

void forceAddress(const net::MacAddress& mac, net::Ipv4 address, net::Ipv4 mask, net::Ipv4 gateway)
{
    DeviceLister::s_pTl->ForceIp(net::formatMac(mac), net::formatIpv4(address), net::formatIpv4(mask),
                                 net::formatIpv4(gateway));
}

QString sentenceOf(const std::exception& exception)
{
    const QStringList sentences = sentencesOf(exception);
    return sentences.isEmpty() ? technicalTextOf(exception).simplified() : sentences.join(QLatin1Char(' '));
}

} // namespace cli
