#pragma once

#include <string>

namespace net {

/// The adapter through which packets to unknown networks leave: that of the preferred default route in the
/// text of /proc/net/route. Empty when there is no such route.
[[nodiscard]] std::string defaultRouteAdapter(const std::string& routes);

/// The same for this host.
[[nodiscard]] std::string defaultRouteAdapter();

} // namespace net
