#pragma once

#include "gige/hostadapters.h"
#include "gige/socket.h"

#include <functional>
#include <string>
#include <vector>

namespace gige {

/// Speaks to every camera on every network of this host at once, whatever their addresses: one socket for
/// each host address, so that the port at which an answer arrives tells which of them asked.
class Broadcaster
{
public:
    /// An adapter that cannot be used is traced and left out. Throws SocketException when the adapters cannot
    /// be listed.
    Broadcaster();

    /// Sends to the limited broadcast and the subnet's own, from every host address. A way that fails is
    /// traced and not tried again, unless it was only short of memory.
    void send(gvcp::Bytes packet);

    /// Whether any packet could be sent so far.
    [[nodiscard]] bool hasSent() const { return m_hasSent; }
    /// Whether any way is left that has not failed for good.
    [[nodiscard]] bool canSend() const;
    /// What kept the adapters from sending, for people: "eth0: Network is down".
    [[nodiscard]] std::string failures() const;

    [[nodiscard]] std::size_t channelCount() const { return m_channels.size(); }
    /// The host address of a channel; channels keep the order in which the system lists its addresses.
    [[nodiscard]] const HostAddress& host(std::size_t channel) const { return m_channels[channel].host; }

    /// Adds one entry for each channel, in their order.
    void appendTo(std::vector<pollfd>& sockets) const;

    /// Hands on what waits at a channel, at most `limit` datagrams, so that a flood leaves time to look at
    /// the clock. What another adapter heard is dropped: there the same packet has, or had, its own channel.
    void receive(std::size_t channel, std::size_t limit, const std::function<void(const Datagram&)>& handle);

private:
    struct Channel
    {
        HostAddress host;
        UdpSocket socket;
        std::vector<net::Ipv4> destinations;
    };

    void open(const HostAddress& host);
    void fail(const HostAddress& host, const std::string& reason);

    std::vector<Channel> m_channels;
    std::vector<std::string> m_failures;
    bool m_hasSent = false;
};

} // namespace gige
