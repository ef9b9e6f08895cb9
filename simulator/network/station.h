#pragma once

#include "camera/camera.h"
#include "scene/scene.h"
#include "wire/frames.h"

#include <optional>
#include <vector>

namespace sim {

/// The way out of a camera's subnet: its gateway's hardware address, once it is known, and what waits for it.
struct GatewayRoute
{
    net::Ipv4 gateway;
    std::optional<net::MacAddress> mac;
    std::vector<wire::Frame> waiting;
};

/// A camera plugged into the network: its network stack below GVCP.
class Station
{
public:
    Station(const PlacedCamera& placed, Instant now)
        : m_camera(placed.config, now), m_adapters(placed.adapters), m_routes(placed.adapters.size())
    {}

    [[nodiscard]] Camera& camera() { return m_camera; }
    [[nodiscard]] const Camera& camera() const { return m_camera; }
    [[nodiscard]] const net::MacAddress& mac() const
    {
        const auto& config = m_camera.config();
        return config.interfaceMac ? *config.interfaceMac : config.mac;
    }
    [[nodiscard]] const std::vector<std::size_t>& adapters() const { return m_adapters; }

    /// Whether a packet for this address is for us: our own, or a broadcast of the whole wire or our subnet.
    [[nodiscard]] bool accepts(net::Ipv4 to) const;
    [[nodiscard]] std::uint16_t nextIdentification() { return ++m_identification; }
    /// How long an answer takes that is asked for now: the camera works off one request after another.
    [[nodiscard]] Duration queueWork(Instant now);
    [[nodiscard]] unsigned countRequest() { return m_requests++; }
    /// The address under which the network knows us now; 0.0.0.0 for none.
    [[nodiscard]] net::Ipv4 announcedAddress() const { return m_announcedAddress; }
    void setAnnouncedAddress(net::Ipv4 address);
    [[nodiscard]] GatewayRoute& routeOn(std::size_t adapter);

    [[nodiscard]] wire::Frame arpRequest(net::Ipv4 target, net::Ipv4 sender) const;
    [[nodiscard]] wire::Frame arpReply(const wire::Arp& request) const;

private:
    Camera m_camera;
    std::vector<std::size_t> m_adapters;
    std::vector<GatewayRoute> m_routes; // one for each adapter
    std::uint16_t m_identification = 0;
    unsigned m_requests = 0;
    Instant m_idleAt;
    net::Ipv4 m_announcedAddress;
};

} // namespace sim
