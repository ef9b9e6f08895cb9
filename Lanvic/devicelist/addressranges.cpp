#include "addressranges.h"

namespace {

constexpr quint32 linkLocalNetwork = 0xA9FE0000; // 169.254.0.0.
constexpr quint32 firstLinkLocal = 0xA9FE0100;   // 169.254.1.0; 256 addresses at either end are reserved.
constexpr quint32 lastLinkLocal = 0xA9FEFEFF;    // 169.254.254.255.

} // namespace

QList<QNetworkAddressEntry> ipv4Entries(const QNetworkInterface* adapter)
{
    QList<QNetworkAddressEntry> entries;
    if (adapter != nullptr) {
        entries = adapter->addressEntries();
    }
    entries.removeIf([](const QNetworkAddressEntry& entry) {
        return entry.ip().protocol() != QAbstractSocket::IPv4Protocol;
    });
    return entries;
}

QNetworkAddressEntry firstIpv4Entry(const QNetworkInterface* adapter)
{
    return ipv4Entries(adapter).value(0);
}

quint32 ipv4NetworkOf(const QNetworkAddressEntry& entry)
{
    return entry.ip().toIPv4Address() & entry.netmask().toIPv4Address();
}

QString FormatValidAddressRanges(const QNetworkInterface* adapter)
{
    QString ranges;
    const QList<QNetworkAddressEntry> entries = ipv4Entries(adapter);
    for (const QNetworkAddressEntry& entry : entries) {
        const quint32 network = ipv4NetworkOf(entry);
        quint32 first = network | 1U;
        quint32 last = network | (~entry.netmask().toIPv4Address() & ~1U);
        if (network == linkLocalNetwork) {
            first = firstLinkLocal;
            last = lastLinkLocal;
        }
        ranges += QHostAddress(first).toString() + " - " + QHostAddress(last).toString() + "<br>";
    }
    return ranges;
}
