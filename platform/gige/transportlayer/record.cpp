#include "record.h"

namespace gige {

namespace {

std::string friendlyName(const gvcp::Identity& camera)
{
    const std::string& name = camera.userDefinedName.empty() ? camera.model : camera.userDefinedName;
    return camera.serialNumber.empty() ? name : name + " (" + camera.serialNumber + ")";
}

/// Only the bits that name a mode; the registers have other bits of the camera's own.
std::string modes(std::uint32_t ipConfig)
{
    using namespace gvcp::IpConfig;
    return std::to_string(ipConfig & (Persistent | Dhcp | LinkLocal));
}

} // namespace

Tessal::CDeviceInfo makeRecord(const gvcp::Identity& camera, net::Ipv4 heardBy)
{
    using namespace Tessal;
    const std::string ip = net::formatIpv4(camera.ip);
    const std::string port = std::to_string(gvcp::Port);
    CDeviceInfo record;
    record.SetPropertyValue(Key::DeviceClass, GigEDeviceClass);
    record.SetPropertyValue(Key::VendorName, camera.manufacturer);
    record.SetPropertyValue(Key::ModelName, camera.model);
    record.SetPropertyValue(Key::DeviceVersion, camera.deviceVersion);
    record.SetPropertyValue(Key::ManufacturerInfo, camera.manufacturerInfo);
    record.SetPropertyValue(Key::SerialNumber, camera.serialNumber);
    record.SetPropertyValue(Key::UserDefinedName, camera.userDefinedName);
    record.SetPropertyValue(Key::FriendlyName, friendlyName(camera));
    record.SetPropertyValue(Key::MacAddress, net::formatMac(camera.mac));
    record.SetPropertyValue(Key::Interface, net::formatIpv4(heardBy));
    record.SetPropertyValue(Key::IpAddress, ip);
    record.SetPropertyValue(Key::SubnetMask, net::formatIpv4(camera.mask));
    record.SetPropertyValue(Key::DefaultGateway, net::formatIpv4(camera.gateway));
    record.SetPropertyValue(Key::IpConfigOptions, modes(camera.ipConfigSupported));
    record.SetPropertyValue(Key::IpConfigCurrent, modes(camera.ipConfigCurrent));
    record.SetPropertyValue(Key::PortNr, port);
    record.SetPropertyValue(Key::Address, ip + ":" + port);
    return record;
}

Tessal::CDeviceInfo makeRecord(const FoundCamera& camera)
{
    using namespace Tessal;
    CDeviceInfo record = makeRecord(camera.identity, camera.heardBy.address);
    if (camera.controlledBy != net::Ipv4{}) {
        record.SetPropertyValue(Key::ControlledBy, net::formatIpv4(camera.controlledBy));
    }
    if (camera.sameAddress) {
        record.SetPropertyValue(Key::SameAddressName, friendlyName(*camera.sameAddress));
        record.SetPropertyValue(Key::SameAddressMac, net::formatMac(camera.sameAddress->mac));
    }
    if (camera.sameMac) {
        record.SetPropertyValue(Key::SameMacName, friendlyName(*camera.sameMac));
        record.SetPropertyValue(Key::SameMacIp, net::formatIpv4(camera.sameMac->ip));
    }
    return record;
}

} // namespace gige
