#include "wire/hostadapter.h"

#include "gvcp/bytes.h"
#include "net/netlink.h"

#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>

#include <array>

namespace wire {

void bringUp(int index, const net::MacAddress& mac, std::uint32_t mtu, std::uint32_t queueLength)
{
    net::NetlinkSocket kernel;
    ifinfomsg info{};
    info.ifi_index = index;
    net::NetlinkMessage settings(RTM_NEWLINK, NLM_F_ACK, info);
    settings.addAttribute(IFLA_ADDRESS, mac.bytes.data(), mac.bytes.size());
    settings.addAttribute(IFLA_MTU, &mtu, sizeof mtu);
    settings.addAttribute(IFLA_TXQLEN, &queueLength, sizeof queueLength);
    kernel.exchange(settings, "the adapter cannot be set up");
    info.ifi_flags = IFF_UP;
    info.ifi_change = IFF_UP;
    kernel.exchange({RTM_NEWLINK, NLM_F_ACK, info}, "the adapter cannot be brought up");
}

void addAddress(int index, net::Ipv4 address, unsigned prefixLength)
{
    ifaddrmsg info{};
    info.ifa_family = AF_INET;
    info.ifa_prefixlen = static_cast<unsigned char>(prefixLength);
    info.ifa_index = static_cast<unsigned>(index);
    info.ifa_scope = address.value >> 16 == 0xA9FE ? RT_SCOPE_LINK : RT_SCOPE_UNIVERSE;
    const auto hostPart = static_cast<std::uint32_t>((1ULL << (32 - prefixLength)) - 1);
    std::array<std::uint8_t, sizeof address.value> local{};
    std::array<std::uint8_t, sizeof address.value> broadcast{};
    bytes::put32(local, 0, address.value);
    bytes::put32(broadcast, 0, address.value | hostPart);
    net::NetlinkMessage request(RTM_NEWADDR, NLM_F_ACK | NLM_F_CREATE | NLM_F_EXCL, info);
    request.addAttribute(IFA_LOCAL, local.data(), local.size());
    request.addAttribute(IFA_ADDRESS, local.data(), local.size());
    if (prefixLength < 31) {
        request.addAttribute(IFA_BROADCAST, broadcast.data(), broadcast.size());
    }
    net::NetlinkSocket().exchange(request, "the address " + net::formatIpv4(address) + " cannot be set");
}

} // namespace wire
