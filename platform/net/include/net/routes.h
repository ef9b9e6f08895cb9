#pragma once

#include "net/addresses.h"

#include <string>
#include <vector>

namespace net {

/// The adapter through which packets to unknown networks leave: that of the preferred default route in the
/// text of /proc/net/route. Empty when there is no such route.
[[nodiscard]] std::string defaultRouteAdapter(const std::string& routes);

/// The same for this host.
[[nodiscard]] std::string defaultRouteAdapter();

/// A network whose hosts an adapter reaches without a gateway.
struct LinkRoute
{
    int adapterIndex = 0;
    Ipv4 network;
    Ipv4 mask;
};

/// All of them. Throws std::system_error when the kernel refuses.
[[nodiscard]] std::vector<LinkRoute> linkRoutes();

/// Whether packets to the address leave through the adapter without a gateway.
[[nodiscard]] bool isOnLink(const std::vector<LinkRoute>& routes, Ipv4 address, int adapterIndex);

} // namespace net
