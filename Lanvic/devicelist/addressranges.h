#pragma once

#include <QNetworkInterface>
#include <QString>

/// The adapter's IPv4 addresses with their masks, in its order; none for a null adapter.
[[nodiscard]] QList<QNetworkAddressEntry> ipv4Entries(const QNetworkInterface* adapter);

/// The adapter's first IPv4 address with its mask, or an empty entry when there is none or no adapter.
[[nodiscard]] QNetworkAddressEntry firstIpv4Entry(const QNetworkInterface* adapter);

/// The network part of an IPv4 address.
[[nodiscard]] quint32 ipv4NetworkOf(const QNetworkAddressEntry& entry);

/// One line of HTML for each IPv4 subnet of the adapter, in its order: the first and the last address that a
/// camera can have there. Empty for a null adapter.
[[nodiscard]] QString FormatValidAddressRanges(const QNetworkInterface* adapter);
