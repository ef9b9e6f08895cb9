#include "hostadapters.h"

#include "errors.h"
#include "log.h"
#include "net/errors.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

namespace gige {

namespace {

net::Ipv4 addressOf(const sockaddr* generic)
{
    sockaddr_in address{};
    std::memcpy(&address, generic, sizeof address);
    return {ntohl(address.sin_addr.s_addr)};
}

/// The adapter's name without a label such as the ":1" of eth0:1.
std::string adapterName(const ifaddrs& entry)
{
    const std::string name(entry.ifa_name);
    return name.substr(0, name.find(':'));
}

bool carriesBroadcast(const ifaddrs& entry)
{
    constexpr unsigned needed = IFF_UP | IFF_RUNNING | IFF_BROADCAST;
    return (entry.ifa_flags & needed) == needed;
}

using AdapterList = std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)>;

AdapterList listAdapters()
{
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0) {
        raise<SocketException>({.kind = Tessal::FailureKind::CannotSend, .reason = net::describeErrno(errno)},
                               "Cannot list the network adapters of this computer: " +
                                   net::describeErrno(errno));
    }
    return {first, &::freeifaddrs};
}

} // namespace

std::vector<HostAddress> hostAddresses()
{
    const AdapterList adapters = listAdapters();
    std::vector<HostAddress> found;
    for (const ifaddrs* entry = adapters.get(); entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET ||
            (entry->ifa_flags & IFF_LOOPBACK) != 0) {
            continue;
        }
        HostAddress host;
        host.adapter = adapterName(*entry);
        host.adapterIndex = static_cast<int>(::if_nametoindex(host.adapter.c_str()));
        host.address = addressOf(entry->ifa_addr);
        host.mask = entry->ifa_netmask != nullptr ? addressOf(entry->ifa_netmask) : net::limitedBroadcast;
        if (!carriesBroadcast(*entry) || host.adapterIndex == 0) {
            logSearch(ozlog::LogLevel::Info, "Skipping adapter %hs: it is down or carries no broadcast.",
                      host.adapter.c_str());
            continue;
        }
        found.push_back(host);
    }
    return found;
}

std::vector<std::string> adaptersWithoutIpv4()
{
    const AdapterList adapters = listAdapters();
    std::vector<std::pair<std::string, bool>> hasAddress; // in the system's order
    for (const ifaddrs* entry = adapters.get(); entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || (entry->ifa_flags & IFF_LOOPBACK) != 0 ||
            !carriesBroadcast(*entry)) {
            continue;
        }
        const std::string name = adapterName(*entry);
        auto known = std::ranges::find(hasAddress, name, [](const auto& adapter) { return adapter.first; });
        if (known == hasAddress.end()) {
            known = hasAddress.emplace(hasAddress.end(), name, false);
        }
        known->second = known->second || entry->ifa_addr->sa_family == AF_INET;
    }
    std::vector<std::string> without;
    for (const auto& [name, has] : hasAddress) {
        if (!has) {
            without.push_back(name);
        }
    }
    return without;
}

} // namespace gige
