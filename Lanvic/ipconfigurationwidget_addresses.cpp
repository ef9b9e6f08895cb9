#include "addressranges.h"
#include "editedconfiguration.h"
#include "ipconfigurationwidget.h"

#include "qtbase/formatting.h"

#include <QRegularExpression>

#include <algorithm>
#include <cwctype>

namespace {

constexpr quint32 loopback = 0x7F000001;         // 127.0.0.1
constexpr quint32 linkLocalNetwork = 0xA9FE0000; // 169.254.0.0
constexpr quint32 firstMulticast = 0xE0000000;   // 224.0.0.0; from here up no address is a host's
constexpr quint32 classAMask = 0xFF000000;
constexpr quint32 classBMask = 0xFFFF0000;
constexpr quint32 classCMask = 0xFFFFFF00;
constexpr qsizetype macDigits = 12;

bool isIpv4(const QNetworkAddressEntry& entry)
{
    return entry.ip().protocol() == QAbstractSocket::IPv4Protocol;
}

quint32 networkOf(const QNetworkAddressEntry& entry)
{
    return entry.ip().toIPv4Address() & entry.netmask().toIPv4Address();
}

/// How many leading octets of an address under that mask a user will hardly want to change.
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

QString FormatValidAddressRanges(const QNetworkInterface* adapter)
{
    QString ranges;
    if (adapter == nullptr) {
        return ranges;
    }
    const QList<QNetworkAddressEntry> entries = adapter->addressEntries();
    for (const QNetworkAddressEntry& entry : entries) {
        if (!isIpv4(entry)) {
            continue;
        }
        const quint32 network = networkOf(entry);
        quint32 first = network | 1U;
        quint32 last = network | (~entry.netmask().toIPv4Address() & ~1U);
        if (network == linkLocalNetwork) { // its first and last 256 addresses are reserved
            first = 0xA9FE0100;
            last = 0xA9FEFEFF;
        }
        ranges += QHostAddress(first).toString() + " - " + QHostAddress(last).toString() + "<br>";
    }
    return ranges;
}

QNetworkAddressEntry firstIpv4Entry(const QNetworkInterface* adapter)
{
    if (adapter == nullptr) {
        return {};
    }
    const QList<QNetworkAddressEntry> entries = adapter->addressEntries();
    const auto found = std::find_if(entries.begin(), entries.end(), isIpv4);
    return found != entries.end() ? *found : QNetworkAddressEntry();
}

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
    if (deviceIp == 0 || deviceMask == 0 || adapter == nullptr) {
        return false;
    }
    const QList<QNetworkAddressEntry> entries = adapter->addressEntries();
    return std::any_of(entries.begin(), entries.end(), [=](const QNetworkAddressEntry& entry) {
        return isIpv4(entry) && networkOf(entry) == (deviceIp & deviceMask) &&
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
