#pragma once

#include <string>
#include <vector>

namespace net {

/// A network adapter of this namespace as the kernel lists it.
struct Link
{
    int index = 0;
    std::string name;
    std::string kind;   // "tun" for TUN and TAP devices, "" for hardware
    unsigned type = 0;  // ARPHRD_…
    unsigned flags = 0; // IFF_…
};

/// All of them. Throws std::system_error when the kernel refuses.
[[nodiscard]] std::vector<Link> links();

/// Whether packets through the adapter could reach a real camera: any but the loopback, the TAP devices that
/// programs have made, and the tunnel ends that some kernels put into every new namespace, while those are
/// down. Where this is true of any adapter, simulator, tests and benchmarks do not start.
[[nodiscard]] bool mayLeadToRealCamera(const Link& link);

} // namespace net
