#include "gige/hostadapters.h"

#include "gige/errors.h"
#include "gige/trace.h"

#include <cerrno>
#include <cstring>
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

bool carriesBroadcast(const ifaddrs& entry)
{
    constexpr unsigned needed = IFF_UP | IFF_RUNNING | IFF_BROADCAST;
    return (entry.ifa_flags & needed) == needed;
}

} // namespace

std::vector<HostAddress> hostAddresses()
{
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0) {
        raise<SocketException>("Cannot list the network adapters of this computer: " + describeErrno(errno));
    }
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> guard(first, &::freeifaddrs);

    std::vector<HostAddress> found;
    for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET ||
            (entry->ifa_flags & IFF_LOOPBACK) != 0) {
            continue;
        }
        HostAddress host;
        host.adapter = entry->ifa_name;
        host.adapter.erase(std::min(host.adapter.find(':'), host.adapter.size())); // a label such as eth0:1
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
