#include "advice/advice.h"

#include <QCoreApplication>
#include <QStringList>

namespace advice {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Advice)
};

QString text(net::Ipv4 address)
{
    return QString::fromStdString(net::formatIpv4(address));
}

QString text(const net::MacAddress& mac)
{
    QString digits = QString::fromStdString(net::formatMac(mac));
    for (qsizetype at = digits.size() - 2; at > 0; at -= 2) {
        digits.insert(at, QLatin1Char(':'));
    }
    return digits;
}

QString incompleteText(Field field)
{
    switch (field) {
    case Field::MacAddress:
        return Texts::tr("The MAC address is incomplete: it has twelve digits, 0 to 9 and A to F.");
    case Field::Mask:
        return Texts::tr("The subnet mask is incomplete: it has four numbers, such as 255.255.255.0, or is a "
                         "length, such as /24, which becomes one when you leave the field.");
    case Field::Gateway:
        return Texts::tr("The gateway is incomplete: it has four numbers from 0 to 255 with dots between "
                         "them, or the field is empty.");
    default:
        return Texts::tr("The IP address is incomplete: it has four numbers from 0 to 255 with dots between "
                         "them.");
    }
}

QString reservedText(const Advice& advice)
{
    return (advice.kind == Kind::NetworkAddress
                ? Texts::tr("%1 stands for a whole network, under the mask %2. No device can have it.")
                : Texts::tr("%1 addresses all devices of a network at once, under the mask %2. No device can "
                            "have it."))
        .arg(text(advice.value), text(advice.other));
}

QString ownerText(const Advice& advice)
{
    if (advice.kind == Kind::OwnAddress) {
        return Texts::tr("%1 is this computer's own address on %2. A camera with it cannot be reached.")
            .arg(text(advice.value), advice.adapter);
    }
    return Texts::tr("%1 is the address of another camera: %2. With the same address, neither can be reached "
                     "reliably.")
        .arg(text(advice.value), describe(advice.camera));
}

QString gatewayText(const Advice& advice)
{
    return (advice.kind == Kind::GatewayOutside
                ? Texts::tr("The gateway %1 is not in the camera's network. Leave the field empty if there "
                            "is no router.")
                : Texts::tr("The gateway %1 is the camera's own address. Leave the field empty if there is "
                            "no router."))
        .arg(text(advice.value));
}

} // namespace

QString sentence(const Advice& advice)
{
    switch (advice.kind) {
    case Kind::Missing:
        return advice.field == Field::Mask ? Texts::tr("The subnet mask is missing.")
                                           : Texts::tr("The IP address is missing.");
    case Kind::Incomplete:
        return incompleteText(advice.field);
    case Kind::RestartsConfiguration:
        return Texts::tr("Without an address, the camera restarts its IP configuration.");
    case Kind::SpecialAddress:
        return Texts::tr("%1 has a special meaning. No camera can have it.").arg(text(advice.value));
    case Kind::NetworkAddress:
    case Kind::BroadcastAddress:
        return reservedText(advice);
    case Kind::OwnAddress:
    case Kind::AddressOfCamera:
        return ownerText(advice);
    case Kind::OutsideAdapter:
        return Texts::tr("%1 is in no network of %2. The camera can then not be reached through %2.")
            .arg(text(advice.value), advice.adapter);
    case Kind::OutsideComputer:
        return Texts::tr("%1 is in no network of this computer. The camera can then not be reached.")
            .arg(text(advice.value));
    case Kind::NoMask:
        return Texts::tr("%1 is not a subnet mask. A valid one is, for example, 255.255.255.0.")
            .arg(text(advice.value));
    case Kind::OtherMask:
        return Texts::tr("%1 has the mask %2 in this network. With another one, applications may not find "
                         "the camera.")
            .arg(advice.adapter, text(advice.other));
    case Kind::GatewayOutside:
    case Kind::GatewayOfCamera:
        return gatewayText(advice);
    case Kind::LeftOverAddress:
        return Texts::tr("The IP address typed before is written as well, and a camera may refuse it. Choose "
                         "Static IP again, then finish the address or empty the field.");
    }
    return {};
}

QString describe(const Camera& camera)
{
    QStringList parts{camera.name, camera.model, Texts::tr("MAC address %1").arg(text(camera.mac))};
    parts.removeAll(QString());
    return parts.join(QLatin1String(", "));
}

} // namespace advice
