#pragma once

#include "net/addresses.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace wire {

/// A network adapter of this namespace as the kernel lists it.
struct Link
{
    int index = 0;
    std::string name;
    std::string kind;   // "tun" for TUN and TAP devices, "" for hardware
    unsigned type = 0;  // ARPHRD_…
    unsigned flags = 0; // IFF_…
};

/// The kernel's adapters and their addresses, in the network namespace of this process. Every member throws
/// std::system_error when the kernel refuses.
class RouteSocket
{
public:
    RouteSocket();
    RouteSocket(const RouteSocket&) = delete;
    RouteSocket& operator=(const RouteSocket&) = delete;
    ~RouteSocket();

    [[nodiscard]] std::vector<Link> links();
    /// Gives the adapter its hardware address, MTU in bytes and queue length in packets, and switches it on.
    void bringUp(int index, const net::MacAddress& mac, std::uint32_t mtu, std::uint32_t queueLength);
    void addAddress(int index, net::Ipv4 address, unsigned prefixLength);

private:
    void send(std::span<std::uint8_t> message, const std::string& what);
    void request(std::span<std::uint8_t> message, const std::string& what);

    int m_socket = -1;
    std::uint32_t m_sequence = 0;
};

} // namespace wire
