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
/// point. An adapter with several addresses appears several times. Throws SocketException if the operating
/// system cannot list them.
[[nodiscard]] std::vector<HostAddress> hostAddresses();

/// The adapters that could carry a broadcast but have no IPv4 address to send from, usually because no DHCP
/// server answered. Throws like hostAddresses().
[[nodiscard]] std::vector<std::string> adaptersWithoutIpv4();

} // namespace gige
