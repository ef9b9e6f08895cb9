#pragma once

#include <QList>
#include <QNetworkInterface>
#include <QString>

/// Flags of an adapter that can receive from cameras.
inline constexpr QNetworkInterface::InterfaceFlags LiveAdapter =
    QNetworkInterface::IsUp | QNetworkInterface::IsRunning;

/// A network adapter of the host in its state when it was listed, with its name and hardware address.
class CNetworkAdapter : public QNetworkInterface
{
public:
    explicit CNetworkAdapter(const QNetworkInterface& interface);

    /// The adapters that have all of `requiredFlags`, none of `excludedFlags` and at least one address of any
    /// family, in the order of the operating system.
    [[nodiscard]] static QList<CNetworkAdapter>
    allNetworkAdapters(QNetworkInterface::InterfaceFlags requiredFlags,
                       QNetworkInterface::InterfaceFlags excludedFlags);

    /// The first adapter in the list that owns `address`, or null. Valid until the list is changed or
    /// detaches.
    [[nodiscard]] static const CNetworkAdapter* findByIpAddress(const QList<CNetworkAdapter>& adapters,
                                                                const QHostAddress& address);

    QString m_name;            // As the operating system shows it, "eth0".
    QString m_hardwareAddress; // As "02:00:00:00:01:05".
};
