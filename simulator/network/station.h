#pragma once

#include "camera/camera.h"
#include "scene/scene.h"
#include "wire/frames.h"

#include <optional>
#include <vector>

namespace sim {

/// A camera's route out of its subnet: the gateway, its hardware address once known, and the frames that wait
/// for it.
struct GatewayRoute
{
    net::Ipv4 gateway;
    std::optional<net::MacAddress> mac;
    std::vector<wire::Frame> waiting;
};

/// A camera's network stack below GVCP.
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

    /// Whether the camera accepts packets to this address: its own, or a limited or subnet broadcast.
    [[nodiscard]] bool accepts(net::Ipv4 to) const;
    [[nodiscard]] std::uint16_t nextIdentification() { return ++m_identification; }
    /// How long an answer to a request takes that arrives now. The camera handles one request after another.
    [[nodiscard]] Duration queueWork(Instant now);
    [[nodiscard]] unsigned countRequest() { return m_requests++; }
    /// The address that the camera has last announced by ARP; 0.0.0.0 for none.
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
