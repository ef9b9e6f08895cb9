#pragma once

#include "net/addresses.h"

#include <string>
#include <vector>

namespace gige {

/// One IPv4 address of a network adapter.
struct HostAddress
{
    std::string adapter; // the operating system's name, "eth0"
    int adapterIndex = 0;
    net::Ipv4 address;
    net::Ipv4 mask;

    friend bool operator==(const HostAddress&, const HostAddress&) = default;
};

/// Every IPv4 address of the adapters that can carry a broadcast: up, running, neither loopback nor point to
/// point. An adapter with several addresses comes several times. Throws SocketException when the operating
/// system cannot tell.
[[nodiscard]] std::vector<HostAddress> hostAddresses();

/// The adapters that could carry a broadcast and have no IPv4 address to ask from; a lease that did not come
/// is the usual reason. Throws as hostAddresses().
[[nodiscard]] std::vector<std::string> adaptersWithoutIpv4();

} // namespace gige
