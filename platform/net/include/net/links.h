#pragma once

#include <string>
#include <vector>

namespace net {

/// A network adapter of this network namespace, as listed by the kernel.
struct Link
{
    int index = 0;
    std::string name;
    std::string kind;   // "tun" for TUN and TAP devices, "" for hardware
    unsigned type = 0;  // ARPHRD_…
    unsigned flags = 0; // IFF_…
};

/// All adapters. Throws std::system_error if the kernel refuses.
[[nodiscard]] std::vector<Link> links();

/// Whether packets sent through the adapter could reach a real camera. Only false for the loopback, for TAP
/// devices, which programs create, and for the tunnel devices that some kernels put into every new namespace,
/// as long as those are down. Simulator, tests and benchmarks refuse to start if it is true of any adapter.
[[nodiscard]] bool mayLeadToRealCamera(const Link& link);

} // namespace net
