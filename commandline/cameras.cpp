#include "cameras.h"

#include "DeviceLister.h"
#include "recorddisplay.h"
#include "surroundings.h"

#include "net/routes.h"
#include "qtbase/formatting.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string>
#include <system_error>
#include <tuple>

namespace cli {

namespace {

Mode modeOf(const Tessal::COrvikGigEDeviceInfo& record)
{
    if (record.IsPersistentIpActive()) {
        return Mode::Static;
    }
    if (record.IsDhcpActive()) {
        return Mode::Dhcp;
    }
    return record.IsAutoIpActive() ? Mode::AutoIp : Mode::Unknown;
}

net::Ipv4 addressIn(const GenICam::gcstring& property)
{
    return net::parseIpv4(property.view()).value_or(net::Ipv4{});
}

/// None if the kernel does not tell: they are only kept from being given to cameras for a moment.
std::vector<net::Ipv4> ownGateways()
{
    try {
        return net::gateways();
    } catch (const std::system_error& error) {
        qWarning("%s", error.what());
        return {};
    }
}

QString textOf(const Tessal::COrvikGigEDeviceInfo& record, const char* key)
{
    return GetUtf8Property(&record, key).trimmed();
}

} // namespace

Camera cameraOf(const Tessal::COrvikGigEDeviceInfo& record)
{
    using namespace Tessal::Key;
    GenICam::gcstring adapter;
    record.GetPropertyValue(ListerKey::InterfaceName, adapter);
    GenICam::gcstring name;
    record.GetPropertyValue(UserDefinedName, name);
    return {.mac = net::parseMac(record.GetMacAddress().view()).value_or(net::MacAddress{}),
            .serial = textOf(record, SerialNumber),
            .name = textOf(record, UserDefinedName),
            .storedName = name.c_str(),
            .vendor = textOf(record, VendorName),
            .model = textOf(record, ModelName),
            .adapter = displayText(adapterName(QString::fromLocal8Bit(adapter.c_str()))),
            .mode = modeOf(record),
            .address = addressIn(record.GetIpAddress()),
            .mask = addressIn(record.GetSubnetMask()),
            .gateway = addressIn(record.GetDefaultGateway()),
            .accessibility = GetDeviceAccessibility(&record),
            .isMacShared = record.GetPropertyAvailable(SameMacIp),
            .controlledBy = textOf(record, ControlledBy)};
}

Network searchNetwork(DeviceLister& lister)
{
    const QList<CNetworkAdapter> adapters =
        CNetworkAdapter::allNetworkAdapters(LiveAdapter, QNetworkInterface::IsLoopBack);
    if (!adapters.isEmpty()) {
        lister.discoverAllDevices();
    }
    Network network{
        .cameras = {}, .surroundings = surroundingsOf(adapters, lister.m_devices), .gateways = ownGateways()};
    for (const Tessal::COrvikGigEDeviceInfo& record : lister.m_devices) {
        network.cameras.push_back(cameraOf(record));
    }
    std::ranges::stable_sort(network.cameras, {}, [](const Camera& camera) {
        return std::tie(camera.adapter, camera.model, camera.mac);
    });
    return network;
}

std::vector<Camera> camerasMeantBy(const QString& text, const std::vector<Camera>& cameras)
{
    const auto mac = net::parseMac(text.toStdString());
    const auto address = net::parseIpv4(text.toStdString());
    std::vector<Camera> meant;
    for (const Camera& camera : cameras) {
        const bool isMeant =
            camera.mac == mac || camera.address == address || camera.serial == text || camera.name == text;
        if (isMeant && std::ranges::find(meant, camera.mac, &Camera::mac) == meant.end()) {
            meant.push_back(camera);
        }
    }
    return meant;
}

bool isLinkLocal(net::Ipv4 address)
{
    return address.value >> 16 == 0xA9FE;
}

QString text(Mode mode)
{
    switch (mode) {
    case Mode::Static:
        return QStringLiteral("static");
    case Mode::Dhcp:
        return QStringLiteral("dhcp");
    case Mode::AutoIp:
        return QStringLiteral("auto-ip");
    case Mode::Temporary:
        return QStringLiteral("temporary");
    default:
        return QStringLiteral("unknown");
    }
}

QString text(net::Ipv4 address)
{
    return QString::fromStdString(net::formatIpv4(address));
}

QString text(net::Ipv4 address, net::Ipv4 mask)
{
    return text(address) + QLatin1Char('/') +
           (net::isContiguousMask(mask) ? QString::number(std::popcount(mask.value)) : text(mask));
}

QString text(const net::MacAddress& mac)
{
    return formatMACAddress(net::formatMac(mac).c_str(), ":");
}

QString text(const Camera& camera)
{
    const QString name = displayText(camera.name.isEmpty() ? camera.model : camera.name);
    return name.isEmpty() ? text(camera.mac) : QStringLiteral("%1 (%2)").arg(text(camera.mac), name);
}

} // namespace cli
