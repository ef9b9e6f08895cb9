#pragma once

#include "net/addresses.h"

#include <cstdint>

namespace wire {

/// Set up adapters in the network namespace of this process. Both throw std::system_error if the kernel
/// refuses.

/// Sets the adapter's hardware address, MTU in bytes and queue length in packets, and brings it up.
void bringUp(int index, const net::MacAddress& mac, std::uint32_t mtu, std::uint32_t queueLength);
void addAddress(int index, net::Ipv4 address, unsigned prefixLength);

} // namespace wire
