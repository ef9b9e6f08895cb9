#include "gige/reversepath.h"

#include "gige/trace.h"
#include "net/routes.h"

#include <algorithm>
#include <fstream>
#include <set>

namespace gige {

namespace {

int readFilter(const std::string& adapter)
{
    int value = 0;
    std::ifstream("/proc/sys/net/ipv4/conf/" + adapter + "/rp_filter") >> value;
    return value;
}

/// Whether nothing was said of this adapter before.
bool isNews(const std::string& adapter)
{
    static std::set<std::string> told;
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

void warnOfReversePathFilter(const std::string& adapter)
{
    const ReversePath verdict =
        judgeReversePath(readFilter("all"), readFilter(adapter), adapter, net::defaultRouteAdapter());
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
