#pragma once

#include "net/addresses.h"

#include <cstdint>

namespace wire {

/// Sets up adapters in the network namespace of this process. Both throw std::system_error when the kernel
/// refuses.

/// Gives the adapter its hardware address, MTU in bytes and queue length in packets, and switches it on.
void bringUp(int index, const net::MacAddress& mac, std::uint32_t mtu, std::uint32_t queueLength);
void addAddress(int index, net::Ipv4 address, unsigned prefixLength);

} // namespace wire
