#include "surroundings.h"

#include "addressranges.h"

#include "qtbase/formatting.h"

#include <optional>
#include <utility>

namespace {

std::optional<advice::Camera> listed(const Tessal::COrvikGigEDeviceInfo& record)
{
    const auto mac = net::parseMac(record.GetMacAddress().view());
    if (!mac) {
        return std::nullopt;
    }
    return advice::Camera{.name =
                              displayText(GetUtf8Property(&record, Tessal::Key::UserDefinedName)).trimmed(),
                          .model = displayText(GetUtf8Property(&record, Tessal::Key::ModelName)).trimmed(),
                          .mac = *mac,
                          .address = net::parseIpv4(record.GetIpAddress().view()).value_or(net::Ipv4{})};
}

advice::Adapter withSubnets(const CNetworkAdapter& adapter)
{
    advice::Adapter known{.name = displayText(adapter.m_name), .subnets = {}};
    const QList<QNetworkAddressEntry> entries = ipv4Entries(&adapter);
    for (const QNetworkAddressEntry& entry : entries) {
        known.subnets.push_back({{entry.ip().toIPv4Address()}, {entry.netmask().toIPv4Address()}});
    }
    return known;
}

} // namespace

advice::Surroundings surroundingsOf(const QList<CNetworkAdapter>& adapters,
                                    const Tessal::DeviceInfoList& cameras)
{
    advice::Surroundings known;
    for (const CNetworkAdapter& adapter : adapters) {
        known.adapters.push_back(withSubnets(adapter));
    }
    for (const Tessal::COrvikGigEDeviceInfo& record : cameras) {
        if (auto camera = listed(record)) {
            known.cameras.push_back(*std::move(camera));
        }
    }
    return known;
}
