#include "net/links.h"

#include "net/netlink.h"

#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <net/if_arp.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace net {

namespace {

Link linkOf(std::span<const std::uint8_t> body)
{
    Link link;
    const auto info = readValue<ifinfomsg>(body);
    if (!info) {
        return link;
    }
    link.index = info->ifi_index;
    link.type = info->ifi_type;
    link.flags = info->ifi_flags;
    forEachAttribute(body, sizeof(ifinfomsg), [&](std::uint16_t type, std::span<const std::uint8_t> value) {
        if (type == IFLA_IFNAME) {
            link.name = textOf(value);
        } else if (type == IFLA_LINKINFO) {
            forEachAttribute(value, [&](std::uint16_t inner, std::span<const std::uint8_t> kind) {
                if (inner == IFLA_INFO_KIND) {
                    link.kind = textOf(kind);
                }
            });
        }
    });
    return link;
}

bool isIdleTunnel(const Link& link)
{
    static constexpr std::array<std::string_view, 11> kinds{"ipip",   "sit",       "gre",      "gretap",
                                                            "erspan", "vti",       "vti6",     "ip6tnl",
                                                            "ip6gre", "ip6gretap", "ip6erspan"};
    return (link.flags & IFF_UP) == 0 && std::ranges::find(kinds, link.kind) != kinds.end();
}

} // namespace

std::vector<Link> links()
{
    std::vector<Link> found;
    NetlinkSocket().exchange({RTM_GETLINK, NLM_F_DUMP, ifinfomsg{}}, "the adapters cannot be listed",
                             [&](std::span<const std::uint8_t> body) { found.push_back(linkOf(body)); });
    return found;
}

bool mayLeadToRealCamera(const Link& link)
{
    const bool isTap = link.kind == "tun" && link.type == ARPHRD_ETHER;
    return !isTap && link.type != ARPHRD_LOOPBACK && !isIdleTunnel(link);
}

} // namespace net
