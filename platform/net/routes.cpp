#include "net/routes.h"

#include "net/netlink.h"

#include <algorithm>
#include <fstream>
#include <ios>
#include <iterator>
#include <limits>
#include <optional>
#include <sstream>

#include <linux/route.h>
#include <linux/rtnetlink.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace net {

namespace {

constexpr unsigned addressBits = 32;

Ipv4 maskOf(unsigned prefixLength)
{
    return {prefixLength == 0 ? 0 : ~std::uint32_t{0} << (addressBits - prefixLength)};
}

/// The link route in a message; nullopt for a route that uses a gateway, leads to this host itself or is
/// down.
std::optional<LinkRoute> linkRouteOf(std::span<const std::uint8_t> body)
{
    const auto info = readValue<rtmsg>(body);
    if (!info || info->rtm_type != RTN_UNICAST || info->rtm_dst_len > addressBits ||
        (info->rtm_flags & (RTNH_F_DEAD | RTNH_F_LINKDOWN)) != 0) {
        return std::nullopt;
    }
    LinkRoute route;
    route.mask = maskOf(info->rtm_dst_len);
    bool hasGateway = false;
    forEachAttribute(body, sizeof(rtmsg), [&](std::uint16_t type, std::span<const std::uint8_t> value) {
        if (type == RTA_DST) {
            route.network = {ntohl(readValue<std::uint32_t>(value).value_or(0))};
        } else if (type == RTA_OIF) {
            route.adapterIndex = readValue<int>(value).value_or(0);
        } else if (type == RTA_GATEWAY || type == RTA_VIA) {
            hasGateway = true;
        }
    });
    return hasGateway || route.adapterIndex == 0 ? std::nullopt : std::optional(route);
}

/// Hands on each of the host's IPv4 routes, as rtnetlink(7) describes it.
template <typename Visit>
void forEachRoute(Visit visit)
{
    rtmsg ipv4{};
    ipv4.rtm_family = AF_INET;
    NetlinkSocket().exchange({RTM_GETROUTE, NLM_F_DUMP, ipv4}, "the kernel's routes cannot be listed", visit);
}

} // namespace

std::string defaultRouteAdapter(const std::string& routes)
{
    std::istringstream lines(routes);
    std::string line;
    std::getline(lines, line); // the column titles
    std::string preferred;
    auto lowest = std::numeric_limits<unsigned>::max();
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string adapter;
        std::string unused;
        unsigned destination = 0;
        unsigned flags = 0;
        unsigned metric = 0;
        unsigned mask = 0;
        fields >> adapter >> std::hex >> destination >> unused >> flags >> unused >> unused >> std::dec >>
            metric >> std::hex >> mask;
        const bool isUsable = (flags & RTF_UP) != 0 && (flags & RTF_REJECT) == 0;
        if (fields && isUsable && destination == 0 && mask == 0 && (preferred.empty() || metric < lowest)) {
            preferred = adapter;
            lowest = metric;
        }
    }
    return preferred;
}

std::string defaultRouteAdapter()
{
    std::ifstream file("/proc/net/route");
    return defaultRouteAdapter({std::istreambuf_iterator<char>(file), {}});
}

std::vector<LinkRoute> linkRoutes()
{
    std::vector<LinkRoute> routes;
    forEachRoute([&](std::span<const std::uint8_t> body) {
        if (const auto route = linkRouteOf(body)) {
            routes.push_back(*route);
        }
    });
    return routes;
}

std::vector<Ipv4> gateways()
{
    std::vector<Ipv4> gateways;
    forEachRoute([&](std::span<const std::uint8_t> body) {
        forEachAttribute(body, sizeof(rtmsg), [&](std::uint16_t type, std::span<const std::uint8_t> value) {
            if (type == RTA_GATEWAY) {
                gateways.push_back({ntohl(readValue<std::uint32_t>(value).value_or(0))});
            }
        });
    });
    return gateways;
}

bool isOnLink(const std::vector<LinkRoute>& routes, Ipv4 address, int adapterIndex)
{
    return std::ranges::any_of(routes, [&](const LinkRoute& route) {
        return route.adapterIndex == adapterIndex && inSameSubnet(route.network, address, route.mask);
    });
}

} // namespace net
