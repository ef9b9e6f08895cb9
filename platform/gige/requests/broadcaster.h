#pragma once

#include "hostadapters.h"
#include "socket.h"

#include <functional>
#include <string>
#include <vector>

namespace gige {

struct SendFailure
{
    HostAddress host;
    std::string reason;       // the operating system's words
    bool isTransient = false; // the socket was only full for a moment

    friend bool operator==(const SendFailure&, const SendFailure&) = default;
};

/// Sends to every camera on every network of this host at once, whatever their addresses. There is one socket
/// for each host address, so that the port at which an answer arrives tells which of them asked.
class Broadcaster
{
public:
    /// An adapter that cannot be used is logged and left out. Throws SocketException if the adapters cannot
    /// be listed.
    Broadcaster();

    /// Sends to the limited broadcast address and to the subnet's own, from every host address. A destination
    /// that fails is logged and not tried again, unless the socket was only full for the moment.
    void send(gvcp::Bytes packet);
    /// The same from the host address of one channel; to the subnet's own broadcast address only if
    /// `includesSubnet`.
    void send(std::size_t channel, gvcp::Bytes packet, bool includesSubnet);

    /// Whether any packet has been sent so far.
    [[nodiscard]] bool hasSent() const { return m_hasSent; }
    /// Whether any destination has not failed for good.
    [[nodiscard]] bool canSend() const;
    /// What kept the adapters from sending.
    [[nodiscard]] const std::vector<SendFailure>& failures() const { return m_failures; }
    /// The same in words: "eth0 (192.168.1.5): Network is down".
    [[nodiscard]] std::string describeFailures() const;

    [[nodiscard]] std::size_t channelCount() const { return m_channels.size(); }
    /// The host address of a channel; channels keep the order in which the system lists its addresses.
    [[nodiscard]] const HostAddress& host(std::size_t channel) const { return m_channels[channel].host; }

    /// Adds one entry for each channel, in their order.
    void appendTo(std::vector<pollfd>& sockets) const;

    /// Passes on what a channel has received, at most `limit` datagrams, so that a flood leaves time to check
    /// the clock. Packets received by another adapter are dropped: that adapter has a channel of its own.
    void receive(std::size_t channel, std::size_t limit, const std::function<void(const Datagram&)>& handle);

private:
    struct Channel
    {
        HostAddress host;
        UdpSocket socket;
        std::vector<net::Ipv4> destinations;
    };

    void open(const HostAddress& host);
    void fail(const SendFailure& failure);

    std::vector<Channel> m_channels;
    std::vector<SendFailure> m_failures;
    bool m_hasSent = false;
};

} // namespace gige
