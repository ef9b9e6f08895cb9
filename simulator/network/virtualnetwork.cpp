#include "network/virtualnetwork.h"

#include <algorithm>
#include <utility>

namespace sim {

namespace {

constexpr std::size_t maxWaiting = 8; // frames that wait for a gateway's hardware address

} // namespace

std::size_t VirtualNetwork::MacHash::operator()(const net::MacAddress& mac) const
{
    std::uint64_t value = 0;
    for (const std::uint8_t byte : mac.bytes) {
        value = value << 8 | byte;
    }
    return std::hash<std::uint64_t>{}(value);
}

VirtualNetwork::VirtualNetwork(const Scene& scene, Instant now, Send send, Report report)
    : m_segments(scene.adapters.size()),
      m_impairments(scene.network),
      m_send(std::move(send)),
      m_report(std::move(report))
{
    for (const PlacedCamera& placed : scene.cameras) {
        m_stations.push_back(std::make_unique<Station>(placed, now));
        Station& station = *m_stations.back();
        for (const std::size_t adapter : placed.adapters) {
            m_segments[adapter].stations.push_back(&station);
            m_segments[adapter].byMac.emplace(station.mac(), &station);
        }
        learnAddress(station);
    }
}

void VirtualNetwork::learnAddress(Station& station)
{
    const net::Ipv4 address = station.camera().isOffline() ? net::Ipv4{} : station.camera().addressing().ip;
    for (const std::size_t adapter : station.adapters()) {
        auto& byAddress = m_segments[adapter].byAddress;
        const auto [first, last] = byAddress.equal_range(station.announcedAddress().value);
        const auto old =
            std::find_if(first, last, [&](const auto& entry) { return entry.second == &station; });
        if (old != last) {
            byAddress.erase(old);
        }
        if (address.value != 0) {
            byAddress.emplace(address.value, &station);
            m_send(adapter, station.arpRequest(address, address).all()); // gratuitous
        }
    }
    station.setAnnouncedAddress(address);
}

void VirtualNetwork::receive(std::size_t adapter, std::span<const std::uint8_t> bytes, Instant now)
{
    const auto frame = wire::parseEthernet(bytes);
    if (!frame) {
        return;
    }
    if (frame->type == wire::EtherType::Arp) {
        if (const auto arp = wire::parseArp(*frame)) {
            receiveArp(adapter, *arp);
        }
        return;
    }
    const auto packet = wire::parseIpv4(*frame);
    if (!packet) {
        return;
    }
    Segment& segment = m_segments[adapter];
    if (frame->to == wire::broadcastMac) {
        for (Station* const station : segment.stations) {
            receivePacket(*station, adapter, *frame, *packet, now);
        }
    } else {
        const auto [first, last] = segment.byMac.equal_range(frame->to);
        std::for_each(first, last, [&](const auto& entry) {
            receivePacket(*entry.second, adapter, *frame, *packet, now);
        });
    }
}

void VirtualNetwork::receiveArp(std::size_t adapter, const wire::Arp& arp)
{
    Segment& segment = m_segments[adapter];
    if (arp.operation == wire::ArpOperation::Request) {
        const auto [first, last] = segment.byAddress.equal_range(arp.targetIp.value);
        std::for_each(first, last,
                      [&](const auto& entry) { m_send(adapter, entry.second->arpReply(arp).all()); });
        return;
    }
    const auto found = segment.byMac.find(arp.targetMac);
    if (arp.operation != wire::ArpOperation::Reply || found == segment.byMac.end()) {
        return;
    }
    GatewayRoute& route = found->second->routeOn(adapter);
    if (arp.senderIp == route.gateway) {
        route.mac = arp.senderMac;
        for (wire::Frame& frame : route.waiting) {
            wire::setReceiver(frame, arp.senderMac);
            m_send(adapter, frame.all());
        }
        route.waiting.clear();
    }
}

void VirtualNetwork::receivePacket(Station& station, std::size_t adapter, const wire::Ethernet& frame,
                                   const wire::Ipv4Packet& packet, Instant now)
{
    if (station.camera().isOffline() || !station.accepts(packet.to)) {
        return;
    }
    const bool isUnicast = packet.to == station.camera().addressing().ip;
    if (const auto udp = wire::parseUdp(packet); udp && udp->toPort == gvcp::Port) {
        const Origin origin{adapter, frame.from, {packet.from, udp->fromPort}};
        receiveRequest(station, origin, {origin.from, !isUnicast, udp->payload}, now);
    } else if (const auto echo = wire::parseEchoRequest(packet); echo && isUnicast) {
        const wire::Frame reply = wire::buildEchoReply(frame.from, station.mac(),
                                                       {packet.to, packet.from, wire::Protocol::Icmp, {}},
                                                       *echo, station.nextIdentification());
        deliver(station, {adapter, frame.from, {packet.from, 0}}, station.camera().addressing(), reply, {},
                now);
    }
}

void VirtualNetwork::receiveRequest(Station& station, const Origin& origin, const Request& request,
                                    Instant now)
{
    const Delivery delivery =
        m_impairments.ofRequest(station.camera().config().faults, station.countRequest());
    for (unsigned copy = 0; copy < delivery.copies; ++copy) {
        station.camera().receive(request, now, m_effects);
        const Duration work = m_effects.answers.empty() ? Duration::zero() : station.queueWork(now);
        for (Answer& answer : m_effects.answers) {
            answer.delay += work;
        }
        applyEffects(station, now, &origin);
    }
}

void VirtualNetwork::applyEffects(Station& station, Instant now, const Origin* origin)
{
    for (const EventLine& event : m_effects.events) {
        m_report(event);
    }
    if (m_effects.hasNewAddress) {
        learnAddress(station);
    }
    if (origin != nullptr) {
        for (Answer& pending : m_effects.answers) {
            answer(station, *origin, pending, now);
        }
    }
    m_effects.clear();
}

void VirtualNetwork::answer(Station& station, const Origin& origin, Answer& answer, Instant now)
{
    const Ipv4Settings& source = answer.source;
    const bool isBroadcast =
        answer.allowBroadcast && !net::inSameSubnet(origin.from.address, source.ip, source.mask);
    const Delivery delivery = m_impairments.ofAnswer(station.camera().config().faults, answer.message);
    const wire::Ipv4Packet packet{
        source.ip, isBroadcast ? net::limitedBroadcast : origin.from.address, wire::Protocol::Udp, {}};
    for (unsigned copy = 0; copy < delivery.copies; ++copy) {
        const wire::Frame frame = wire::buildUdp(isBroadcast ? wire::broadcastMac : origin.mac, station.mac(),
                                                 packet, {gvcp::Port, origin.from.port, answer.message.all()},
                                                 station.nextIdentification());
        if (isBroadcast) {
            sendLater(origin.adapter, frame, answer.delay + delivery.delay, now);
        } else {
            deliver(station, origin, source, frame, answer.delay + delivery.delay, now);
        }
    }
}

void VirtualNetwork::deliver(Station& station, const Origin& origin, const Ipv4Settings& source,
                             wire::Frame frame, Duration delay, Instant now)
{
    if (net::inSameSubnet(origin.from.address, source.ip, source.mask)) {
        sendLater(origin.adapter, frame, delay, now);
        return;
    }
    if (source.gateway.value == 0 || !net::inSameSubnet(source.gateway, source.ip, source.mask)) {
        return;
    }
    GatewayRoute& route = station.routeOn(origin.adapter);
    route.gateway = source.gateway;
    if (route.mac) {
        wire::setReceiver(frame, *route.mac);
        sendLater(origin.adapter, frame, delay, now);
    } else if (route.waiting.size() < maxWaiting) {
        route.waiting.push_back(frame);
        m_send(origin.adapter, station.arpRequest(source.gateway, source.ip).all());
    }
}

void VirtualNetwork::sendLater(std::size_t adapter, const wire::Frame& frame, Duration delay, Instant now)
{
    if (delay > Duration::zero()) {
        m_delayed.push({now + delay, ++m_order, adapter, frame});
    } else {
        m_send(adapter, frame.all());
    }
}

void VirtualNetwork::advance(Instant now)
{
    for (const auto& station : m_stations) {
        if (station->camera().nextDeadline() <= now) {
            station->camera().advance(now, m_effects);
            applyEffects(*station, now, nullptr);
        }
    }
    while (!m_delayed.empty() && m_delayed.top().at <= now) {
        m_send(m_delayed.top().adapter, m_delayed.top().frame.all());
        m_delayed.pop();
    }
}

Instant VirtualNetwork::nextDeadline() const
{
    Instant next = m_delayed.empty() ? never : m_delayed.top().at;
    for (const auto& station : m_stations) {
        next = std::min(next, station->camera().nextDeadline());
    }
    return next;
}

void VirtualNetwork::reportStates() const
{
    for (const auto& station : m_stations) {
        m_report(station->camera().state());
    }
    m_report(EventLine("end"));
}

} // namespace sim
