#include "gige/reversepath.h"

#include "gige/trace.h"

#include <algorithm>
#include <fstream>
#include <ios>
#include <iterator>
#include <limits>
#include <mutex>
#include <set>
#include <sstream>

#include <linux/route.h>

namespace gige {

namespace {

int readFilter(const std::string& adapter)
{
    int value = 0;
    std::ifstream("/proc/sys/net/ipv4/conf/" + adapter + "/rp_filter") >> value;
    return value;
}

std::string readRoutes()
{
    std::ifstream file("/proc/net/route");
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Whether nothing was said of this adapter before.
bool isNews(const std::string& adapter)
{
    static std::mutex mutex;
    static std::set<std::string> told;
    const std::scoped_lock lock(mutex);
    return told.insert(adapter).second;
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

std::string defaultRouteAdapter(const std::string& routes)
{
    std::istringstream lines(routes);
    std::string line;
    std::getline(lines, line); // the titles
    std::string preferred;
    auto lowest = std::numeric_limits<unsigned>::max();
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string adapter;
        std::string gateway;
        std::string unused;
        unsigned destination = 0;
        unsigned flags = 0;
        unsigned metric = 0;
        unsigned mask = 0;
        fields >> adapter >> std::hex >> destination >> gateway >> flags >> unused >> unused >> std::dec >>
            metric >> std::hex >> mask;
        const bool isUsable = (flags & RTF_UP) != 0 && (flags & RTF_REJECT) == 0;
        if (fields && isUsable && destination == 0 && mask == 0 && (preferred.empty() || metric < lowest)) {
            preferred = adapter;
            lowest = metric;
        }
    }
    return preferred;
}

void warnOfReversePathFilter(const std::string& adapter)
{
    const ReversePath verdict =
        judgeReversePath(readFilter("all"), readFilter(adapter), adapter, defaultRouteAdapter(readRoutes()));
    if (verdict == ReversePath::Open || !isNews(adapter)) {
        return;
    }
    // With slashes sysctl takes names of adapters that hold a dot.
    trace::search(ozlog::LogLevel::Warning,
                  "Cameras with an address of another network are not seen through adapter %hs: the system's "
                  "%hs reverse-path filter drops their answers. To see them: "
                  "sudo sysctl net/ipv4/conf/all/rp_filter=0 net/ipv4/conf/%hs/rp_filter=0",
                  adapter.c_str(),
                  verdict == ReversePath::Strict ? "strict" : "loose (without a default route)",
                  adapter.c_str());
}

} // namespace gige
