#include "ipconfigurationwidget.h"

#include "addressranges.h"
#include "editedconfiguration.h"

#include "qtbase/formatting.h"

#include <QRegularExpression>

#include <algorithm>
#include <cwctype>

namespace {

constexpr quint32 loopback = 0x7F000001;       // 127.0.0.1.
constexpr quint32 firstMulticast = 0xE0000000; // 224.0.0.0; no address from here on belongs to a host.
constexpr quint32 classAMask = 0xFF000000;
constexpr quint32 classBMask = 0xFFFF0000;
constexpr quint32 classCMask = 0xFFFFFF00;
constexpr qsizetype macDigits = 12;

/// The number of leading octets that a suggested address has in common with its subnet.
int octetsToKeep(quint32 mask)
{
    if ((mask & ~classCMask) != 0 || mask == classCMask) {
        return 3;
    }
    if ((mask & ~classBMask) != 0 || mask == classBMask) {
        return 2;
    }
    if ((mask & ~classAMask) != 0 || mask == classAMask) {
        return 1;
    }
    return 0;
}

} // namespace

void IpConfigurationWidget::fixupIpAddress(QString& text)
{
    if (text.trimmed().isEmpty()) {
        text = "0.0.0.0";
    }
    static const QRegularExpression leadingZero("[^1-9](0+)(\\d+)");
    for (auto match = leadingZero.match(text); match.hasMatch(); match = leadingZero.match(text)) {
        text.remove(match.capturedStart() + 1, 1);
    }
}

void IpConfigurationWidget::fixupMacAddress(QString& text)
{
    QString digits;
    digits.reserve(macDigits);
    std::copy_if(text.cbegin(), text.cend(), std::back_inserter(digits),
                 [](QChar character) { return std::iswxdigit(character.unicode()) != 0; });
    text = digits;
}

bool IpConfigurationWidget::isIPAddressValidForDevice(const QString& text)
{
    const QHostAddress address = addressFromText(text);
    if (address.protocol() != QAbstractSocket::IPv4Protocol) {
        return false;
    }
    const quint32 value = address.toIPv4Address();
    return value != loopback && value < firstMulticast;
}

QString IpConfigurationWidget::SuggestIPAddress(const QNetworkAddressEntry& entry)
{
    const int octets = octetsToKeep(entry.netmask().toIPv4Address());
    if (octets == 0) {
        return {};
    }
    return entry.ip().toString().section('.', 0, octets - 1) + '.';
}

bool IpConfigurationWidget::hasDeviceValidnetworkPrefixForAdapter(unsigned int deviceIp,
                                                                  unsigned int deviceMask,
                                                                  const QNetworkInterface* adapter)
{
    if (deviceIp == 0 || deviceMask == 0) {
        return false;
    }
    return std::ranges::any_of(ipv4Entries(adapter), [=](const QNetworkAddressEntry& entry) {
        return ipv4NetworkOf(entry) == (deviceIp & deviceMask) &&
               entry.netmask().toIPv4Address() == deviceMask;
    });
}

IpSettings IpConfigurationWidget::fixedUpIpSettings(QString ipAddress, QString subnetMask,
                                                    QString defaultGateway)
{
    fixupIpAddress(ipAddress);
    fixupIpAddress(subnetMask);
    fixupIpAddress(defaultGateway);
    return {ipAddress.toLatin1(), subnetMask.toLatin1(), defaultGateway.toLatin1()};
}
