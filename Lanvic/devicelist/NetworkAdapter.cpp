#include "NetworkAdapter.h"

#include "qtbase/formatting.h"

CNetworkAdapter::CNetworkAdapter(const QNetworkInterface& interface)
    : QNetworkInterface(interface),
      m_name(adapterName(interface.name())),
      m_hardwareAddress(hardwareAddress())
{}

QList<CNetworkAdapter> CNetworkAdapter::allNetworkAdapters(QNetworkInterface::InterfaceFlags requiredFlags,
                                                           QNetworkInterface::InterfaceFlags excludedFlags)
{
    QList<CNetworkAdapter> adapters;
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface& interface : interfaces) {
        const QNetworkInterface::InterfaceFlags flags = interface.flags();
        if ((flags & requiredFlags) == requiredFlags && !(flags & excludedFlags) &&
            !interface.addressEntries().isEmpty()) {
            adapters.append(CNetworkAdapter(interface));
        }
    }
    return adapters;
}

const CNetworkAdapter* CNetworkAdapter::findByIpAddress(const QList<CNetworkAdapter>& adapters,
                                                        const QHostAddress& address)
{
    for (const CNetworkAdapter& adapter : adapters) {
        const QList<QNetworkAddressEntry> entries = adapter.addressEntries();
        for (const QNetworkAddressEntry& entry : entries) {
            if (entry.ip() == address) {
                return &adapter;
            }
        }
    }
    return nullptr;
}
