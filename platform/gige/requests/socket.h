#pragma once

#include "codec.h"
#include "net/addresses.h"

#include <array>
#include <chrono>
#include <optional>
#include <span>

#include <poll.h>

namespace gige {

using Clock = std::chrono::steady_clock;

using net::Endpoint;

/// For one datagram, the largest there is. The longest answer that is needed has 524 bytes, but what a camera
/// adds to it may come in several fragments, and one that is cut off contradicts its own length.
using ReceiveBuffer = std::array<std::uint8_t, 65536>;

/// The adapter to leave by and the host address to name as the source.
struct Origin
{
    int adapterIndex = 0;
    net::Ipv4 address;
};

struct Datagram
{
    gvcp::Bytes bytes; // in the caller's buffer
    Endpoint source;
    int adapterIndex = 0; // of the adapter that heard it
};

/// A UDP socket on an ephemeral port of every address of this host, so that it hears broadcast answers too.
/// Never blocks, and never hands a packet to a gateway: cameras are on the link or out of reach.
class UdpSocket
{
public:
    /// Throws SocketException.
    UdpSocket();
    UdpSocket(UdpSocket&& other) noexcept;
    UdpSocket& operator=(UdpSocket&& other) noexcept;
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;
    ~UdpSocket();

    /// Throws SocketException.
    void allowBroadcast() const;
    /// From here on hears only this peer, and only through the adapter of that index unless it is 0. Throws
    /// SocketException when no network of the adapter, or of any, holds it.
    void connect(const Endpoint& peer, int adapterIndex = 0) const;
    /// The host address that a connected peer sees.
    [[nodiscard]] net::Ipv4 localAddress() const;
    [[nodiscard]] int descriptor() const { return m_descriptor; }

    /// Both return 0 or the errno value.
    [[nodiscard]] int send(gvcp::Bytes bytes) const;
    [[nodiscard]] int sendTo(gvcp::Bytes bytes, const Endpoint& to,
                             std::optional<Origin> from = std::nullopt) const;

    /// The next datagram, or nullopt when none waits or the socket reports an error of an earlier packet. One
    /// that is longer than the buffer is cut off.
    [[nodiscard]] std::optional<Datagram> receive(ReceiveBuffer& buffer) const;

private:
    int m_descriptor = -1;
};

/// Waits until one of the sockets can be read or the time has come.
void waitReadable(std::span<pollfd> sockets, Clock::time_point until);

/// Whether the packet found no room for the moment, so that sending it again later may do.
[[nodiscard]] bool isTransientSendError(int error);

} // namespace gige
