#pragma once

#include <QList>
#include <QNetworkInterface>
#include <QString>

/// What an adapter must be for a camera to be heard through it.
inline constexpr QNetworkInterface::InterfaceFlags LiveAdapter =
    QNetworkInterface::IsUp | QNetworkInterface::IsRunning;

/// A host network adapter as it was when it was listed, with its name and hardware address kept beside it.
class CNetworkAdapter : public QNetworkInterface
{
public:
    explicit CNetworkAdapter(const QNetworkInterface& interface);

    /// The adapters that have all of `requiredFlags`, none of `excludedFlags` and at least one address of any
    /// family, in the order of the operating system.
    [[nodiscard]] static QList<CNetworkAdapter>
    allNetworkAdapters(QNetworkInterface::InterfaceFlags requiredFlags,
                       QNetworkInterface::InterfaceFlags excludedFlags);

    /// The first adapter in the list that owns `address`, or null. Holds until the list is changed or
    /// detaches.
    [[nodiscard]] static const CNetworkAdapter* findByIpAddress(const QList<CNetworkAdapter>& adapters,
                                                                const QHostAddress& address);

    QString m_name;            // as the operating system shows it, "eth0"
    QString m_hardwareAddress; // as "02:00:00:00:01:05"
};
