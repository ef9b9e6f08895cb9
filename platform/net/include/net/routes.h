#pragma once

#include "net/addresses.h"

#include <string>
#include <vector>

namespace net {

/// The adapter of the preferred default route in the text of /proc/net/route; empty if there is no default
/// route.
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

/// All link routes. Throws std::system_error if the kernel refuses.
[[nodiscard]] std::vector<LinkRoute> linkRoutes();

/// The gateways of this host's routes. Throws std::system_error if the kernel refuses.
[[nodiscard]] std::vector<Ipv4> gateways();

/// Whether the adapter reaches the address without a gateway.
[[nodiscard]] bool isOnLink(const std::vector<LinkRoute>& routes, Ipv4 address, int adapterIndex);

} // namespace net
