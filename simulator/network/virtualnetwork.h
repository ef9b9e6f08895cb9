#pragma once

#include "network/impairments.h"
#include "network/station.h"
#include "scene/scene.h"

#include <functional>
#include <queue>
#include <unordered_map>
#include <vector>

namespace sim {

/// The network segments of a scene with their cameras. Receives the host's frames; passes frames for the host
/// to `send` and events to `report`. It has no device and no clock.
class VirtualNetwork
{
public:
    using Send = std::function<void(std::size_t adapter, std::span<const std::uint8_t> frame)>;
    using Report = std::function<void(const EventLine&)>;

    VirtualNetwork(const Scene& scene, Instant now, Send send, Report report);

    void receive(std::size_t adapter, std::span<const std::uint8_t> frame, Instant now);
    /// Sends and does what is due by `now`.
    void advance(Instant now);
    [[nodiscard]] Instant nextDeadline() const;
    /// The state of every camera, then an end line.
    void reportStates() const;

private:
    struct MacHash
    {
        std::size_t operator()(const net::MacAddress& mac) const;
    };
    struct Segment
    {
        std::vector<Station*> stations;
        std::unordered_multimap<net::MacAddress, Station*, MacHash> byMac;
        std::unordered_multimap<std::uint32_t, Station*> byAddress; // several if addresses conflict
    };
    struct DelayedFrame
    {
        Instant at;
        std::uint64_t order = 0;
        std::size_t adapter = 0;
        wire::Frame frame;

        bool operator>(const DelayedFrame& other) const
        {
            return at != other.at ? at > other.at : order > other.order;
        }
    };
    /// Where a request came from.
    struct Origin
    {
        std::size_t adapter = 0;
        net::MacAddress mac;
        Endpoint from;
    };

    void receiveArp(std::size_t adapter, const wire::Arp& arp);
    void receivePacket(Station& station, std::size_t adapter, const wire::Ethernet& frame,
                       const wire::Ipv4Packet& packet, Instant now);
    void receiveRequest(Station& station, const Origin& origin, const Request& request, Instant now);
    void answer(Station& station, const Origin& origin, Answer& answer, Instant now);
    /// Sends a frame to the origin, through the camera's gateway if it is in another subnet than `source`.
    void deliver(Station& station, const Origin& origin, const Ipv4Settings& source, wire::Frame frame,
                 Duration delay, Instant now);
    void sendLater(std::size_t adapter, const wire::Frame& frame, Duration delay, Instant now);
    void applyEffects(Station& station, Instant now, const Origin* origin);
    void learnAddress(Station& station);

    std::vector<std::unique_ptr<Station>> m_stations;
    std::vector<Segment> m_segments; // one for each adapter
    Impairments m_impairments;
    Send m_send;
    Report m_report;
    Effects m_effects;
    std::priority_queue<DelayedFrame, std::vector<DelayedFrame>, std::greater<>> m_delayed;
    std::uint64_t m_order = 0;
};

} // namespace sim
