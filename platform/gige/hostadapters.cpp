#include "gige/hostadapters.h"

#include "gige/errors.h"
#include "gige/trace.h"

#include <cerrno>
#include <cstring>
#include <map>
#include <memory>

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

/// Without a label such as the ":1" of eth0:1.
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

/// An adapter without an address cannot ask; a lease that did not come is the usual reason.
void traceAdaptersWithoutAddress(const ifaddrs* first)
{
    std::map<std::string, bool> hasAddress;
    for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr != nullptr && (entry->ifa_flags & IFF_LOOPBACK) == 0 &&
            carriesBroadcast(*entry)) {
            hasAddress[adapterName(*entry)] |= entry->ifa_addr->sa_family == AF_INET;
        }
    }
    for (const auto& [name, has] : hasAddress) {
        if (!has) {
            trace::search(ozlog::LogLevel::Info, "Skipping adapter %hs: it has no IPv4 address.",
                          name.c_str());
        }
    }
}

} // namespace

std::vector<HostAddress> hostAddresses()
{
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0) {
        raise<SocketException>("Cannot list the network adapters of this computer: " + describeErrno(errno));
    }
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> guard(first, &::freeifaddrs);

    traceAdaptersWithoutAddress(first);
    std::vector<HostAddress> found;
    for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
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
            trace::search(ozlog::LogLevel::Info, "Skipping adapter %hs: it is down or carries no broadcast.",
                          host.adapter.c_str());
            continue;
        }
        found.push_back(host);
    }
    return found;
}

} // namespace gige
