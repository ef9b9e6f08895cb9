#include "broadcaster.h"

#include "errors.h"
#include "log.h"
#include "net/errors.h"

#include <algorithm>

namespace gige {

namespace {

std::string describe(const SendFailure& failure)
{
    return failure.host.adapter + " (" + net::formatIpv4(failure.host.address) + "): " + failure.reason;
}

} // namespace

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
        fail({.host = host, .reason = failure.GetDescription()});
    }
}

void Broadcaster::send(gvcp::Bytes packet)
{
    for (std::size_t i = 0; i < m_channels.size(); ++i) {
        send(i, packet, true);
    }
}

void Broadcaster::send(std::size_t channel, gvcp::Bytes packet, bool includesSubnet)
{
    Channel& from = m_channels[channel];
    const Origin origin{.adapterIndex = from.host.adapterIndex, .address = from.host.address};
    std::erase_if(from.destinations, [&](net::Ipv4 destination) {
        if (destination != net::limitedBroadcast && !includesSubnet) {
            return false;
        }
        const int error = from.socket.sendTo(packet, {destination, gvcp::Port}, origin);
        if (error == 0) {
            m_hasSent = true;
            return false;
        }
        const bool isTransient = isTransientSendError(error);
        fail({.host = from.host, .reason = net::describeErrno(error), .isTransient = isTransient});
        return !isTransient;
    });
}

void Broadcaster::fail(const SendFailure& failure)
{
    if (std::ranges::find(m_failures, failure) == m_failures.end()) {
        m_failures.push_back(failure);
        logSearch(ozlog::LogLevel::Warning, "Cannot ask for cameras through adapter %hs",
                  describe(failure).c_str());
    }
}

bool Broadcaster::canSend() const
{
    return std::ranges::any_of(m_channels,
                               [](const Channel& channel) { return !channel.destinations.empty(); });
}

std::string Broadcaster::describeFailures() const
{
    std::string joined;
    for (const SendFailure& failure : m_failures) {
        joined += (joined.empty() ? "" : "; ") + describe(failure);
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
    ReceiveBuffer buffer{};
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
