#include "gige/broadcaster.h"

#include "gige/errors.h"
#include "gige/trace.h"

#include <algorithm>
#include <array>

namespace gige {

Broadcaster::Broadcaster()
{
    for (const HostAddress& host : hostAddresses()) {
        open(host);
    }
}

void Broadcaster::open(const HostAddress& host)
{
    try {
        UdpSocket socket;
        socket.allowBroadcast();
        std::vector<net::Ipv4> destinations{net::limitedBroadcast};
        // Networks of one or two addresses have no broadcast address of their own.
        if (constexpr net::Ipv4 narrow{0xFFFFFFFE}; host.mask < narrow) {
            destinations.push_back(net::subnetBroadcast(host.address, host.mask));
        }
        m_channels.push_back({host, std::move(socket), std::move(destinations)});
    } catch (const SocketException& failure) {
        fail(host, failure.GetDescription());
    }
}

void Broadcaster::send(gvcp::Bytes packet)
{
    for (Channel& channel : m_channels) {
        const Origin origin{.adapterIndex = channel.host.adapterIndex, .address = channel.host.address};
        std::erase_if(channel.destinations, [&](net::Ipv4 destination) {
            const int error = channel.socket.sendTo(packet, {destination, gvcp::Port}, origin);
            if (error == 0) {
                m_hasSent = true;
                return false;
            }
            fail(channel.host, describeErrno(error));
            return !isTransientSendError(error);
        });
    }
}

void Broadcaster::fail(const HostAddress& host, const std::string& reason)
{
    const std::string text = host.adapter + " (" + net::formatIpv4(host.address) + "): " + reason;
    if (std::ranges::find(m_failures, text) == m_failures.end()) {
        m_failures.push_back(text);
        trace::search(ozlog::LogLevel::Warning, "Cannot ask for cameras through adapter %hs", text.c_str());
    }
}

bool Broadcaster::canSend() const
{
    return std::ranges::any_of(m_channels,
                               [](const Channel& channel) { return !channel.destinations.empty(); });
}

std::string Broadcaster::failures() const
{
    std::string joined;
    for (const std::string& failure : m_failures) {
        joined += (joined.empty() ? "" : "; ") + failure;
    }
    return joined.empty() ? "no network adapter is up" : joined;
}

void Broadcaster::appendTo(std::vector<pollfd>& sockets) const
{
    for (const Channel& channel : m_channels) {
        sockets.push_back({.fd = channel.socket.descriptor(), .events = POLLIN, .revents = 0});
    }
}

void Broadcaster::receive(std::size_t channel, std::size_t limit,
                          const std::function<void(const Datagram&)>& handle)
{
    Channel& from = m_channels[channel];
    std::array<std::uint8_t, gvcp::MaxPacketSize> buffer{};
    for (std::size_t i = 0; i < limit; ++i) {
        const auto datagram = from.socket.receive(buffer);
        if (!datagram) {
            return;
        }
        if (datagram->adapterIndex == from.host.adapterIndex) {
            handle(*datagram);
        }
    }
}

} // namespace gige
