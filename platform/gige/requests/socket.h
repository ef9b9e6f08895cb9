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

/// Holds the largest possible datagram. The longest answer that is needed has 524 bytes, but a camera may add
/// to it, and a truncated datagram contradicts its own length.
using ReceiveBuffer = std::array<std::uint8_t, 65536>;

/// The adapter to send through and the host address to use as the source.
struct Origin
{
    int adapterIndex = 0;
    net::Ipv4 address;
};

struct Datagram
{
    gvcp::Bytes bytes; // in the caller's buffer
    Endpoint source;
    int adapterIndex = 0; // of the adapter that received it
};

/// A UDP socket on an ephemeral port of every address of this host, so that it receives broadcast answers
/// too. Never blocks, and never sends through a gateway: cameras are on the link or out of reach.
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
    /// From then on receives only from this peer, and only through the adapter with that index unless it is
    /// 0. Throws SocketException if the peer is in no network of the adapter, or of any.
    void connect(const Endpoint& peer, int adapterIndex = 0) const;
    /// The host address that a connected peer sees.
    [[nodiscard]] net::Ipv4 localAddress() const;
    [[nodiscard]] int descriptor() const { return m_descriptor; }

    /// Both return 0 or the errno value.
    [[nodiscard]] int send(gvcp::Bytes bytes) const;
    [[nodiscard]] int sendTo(gvcp::Bytes bytes, const Endpoint& to,
                             std::optional<Origin> from = std::nullopt) const;

    /// The next datagram, or nullopt if none is waiting or the socket reports the error of an earlier packet.
    /// A datagram longer than the buffer is truncated.
    [[nodiscard]] std::optional<Datagram> receive(ReceiveBuffer& buffer) const;

private:
    int m_descriptor = -1;
};

/// Waits until one of the sockets can be read, at most until the given time.
void waitReadable(std::span<pollfd> sockets, Clock::time_point until);

/// Whether there was only no room for the packet at the moment, so that sending it again later may succeed.
[[nodiscard]] bool isTransientSendError(int error);

} // namespace gige
