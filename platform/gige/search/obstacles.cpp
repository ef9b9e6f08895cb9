#include "obstacles.h"

#include "log.h"
#include "net/routes.h"

#include <algorithm>
#include <fstream>
#include <set>

namespace gige {

namespace {

using Tessal::Obstacle;

int readFilter(const std::string& adapter)
{
    int value = 0;
    std::ifstream("/proc/sys/net/ipv4/conf/" + adapter + "/rp_filter") >> value;
    return value;
}

/// Of the host addresses that a search sends from, the first of each adapter.
std::vector<HostAddress> firstAddresses(const Broadcaster& asked)
{
    std::vector<HostAddress> first;
    for (std::size_t i = 0; i < asked.channelCount(); ++i) {
        if (std::ranges::find(first, asked.host(i).adapter, &HostAddress::adapter) == first.end()) {
            first.push_back(asked.host(i));
        }
    }
    return first;
}

/// The first other adapter with an address in a network of this one; empty if there is none.
std::string sharesSubnetWith(const Broadcaster& asked, const std::string& adapter)
{
    for (std::size_t i = 0; i < asked.channelCount(); ++i) {
        const HostAddress& own = asked.host(i);
        for (std::size_t j = 0; j < asked.channelCount(); ++j) {
            const HostAddress& other = asked.host(j);
            if (own.adapter == adapter && other.adapter != adapter &&
                (net::inSameSubnet(own.address, other.address, own.mask) ||
                 net::inSameSubnet(own.address, other.address, other.mask))) {
                return other.adapter;
            }
        }
    }
    return {};
}

void logOnce(const Tessal::AdapterObstacle& obstacle)
{
    static std::set<std::string> logged;
    const std::string text = describeObstacle(obstacle);
    if (logged.insert(text).second) {
        logSearch(ozlog::LogLevel::Warning, "%hs", text.c_str());
    }
}

} // namespace

ReversePath judgeReversePath(int all, int own, std::string_view adapter, std::string_view defaultAdapter)
{
    switch (std::max(all, own)) {
    case 0:
        return ReversePath::Open;
    case 1:
        return adapter == defaultAdapter ? ReversePath::Open : ReversePath::Strict;
    default:
        return defaultAdapter.empty() ? ReversePath::NoRoute : ReversePath::Open;
    }
}

std::vector<Tessal::AdapterObstacle> findObstacles(const Broadcaster& asked)
{
    std::vector<Tessal::AdapterObstacle> obstacles;
    for (const std::string& adapter : adaptersWithoutIpv4()) {
        obstacles.push_back({.kind = Obstacle::NoIpv4Address, .adapter = adapter});
    }
    for (const SendFailure& failure : asked.failures()) {
        if (!failure.isTransient) {
            obstacles.push_back(
                {.kind = Obstacle::CannotSend, .adapter = failure.host.adapter, .reason = failure.reason});
        }
    }
    const int all = readFilter("all");
    const std::string defaultAdapter = net::defaultRouteAdapter();
    for (const HostAddress& host : firstAddresses(asked)) {
        const ReversePath verdict =
            judgeReversePath(all, readFilter(host.adapter), host.adapter, defaultAdapter);
        if (verdict != ReversePath::Open) {
            const bool isStrict = verdict == ReversePath::Strict;
            obstacles.push_back(
                {.kind = isStrict ? Obstacle::ReversePathStrict : Obstacle::ReversePathNoRoute,
                 .adapter = host.adapter});
        }
        if (const std::string other = sharesSubnetWith(asked, host.adapter); !other.empty()) {
            obstacles.push_back({.kind = Obstacle::SharedSubnet, .adapter = host.adapter, .other = other});
        }
    }
    std::ranges::for_each(obstacles, logOnce);
    return obstacles;
}

} // namespace gige
