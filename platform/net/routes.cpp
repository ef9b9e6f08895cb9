#include "net/routes.h"

#include <fstream>
#include <ios>
#include <iterator>
#include <limits>
#include <sstream>

#include <linux/route.h>

namespace net {

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

} // namespace net
