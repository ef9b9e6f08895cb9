#include "network/station.h"

#include <algorithm>

namespace sim {

bool Station::accepts(net::Ipv4 to) const
{
    const Ipv4Settings& own = m_camera.addressing();
    return to == own.ip || to == net::limitedBroadcast || to == net::subnetBroadcast(own.ip, own.mask);
}

void Station::setAnnouncedAddress(net::Ipv4 address)
{
    m_announcedAddress = address;
    std::ranges::fill(m_routes, GatewayRoute{});
}

GatewayRoute& Station::routeOn(std::size_t adapter)
{
    const auto found = std::ranges::find(m_adapters, adapter);
    return m_routes[static_cast<std::size_t>(found - m_adapters.begin())];
}

Duration Station::queueWork(Instant now)
{
    m_idleAt = std::max(now, m_idleAt) + m_camera.config().faults.work;
    return std::chrono::ceil<Duration>(m_idleAt - now);
}

wire::Frame Station::arpRequest(net::Ipv4 target, net::Ipv4 sender) const
{
    return wire::buildArp(wire::broadcastMac,
                          {wire::ArpOperation::Request, mac(), sender, net::MacAddress{}, target});
}

wire::Frame Station::arpReply(const wire::Arp& request) const
{
    return wire::buildArp(request.senderMac, {wire::ArpOperation::Reply, mac(), request.targetIp,
                                              request.senderMac, request.senderIp});
}

} // namespace sim
