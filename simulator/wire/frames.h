#pragma once

#include "net/addresses.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>

/// Ethernet, ARP, IPv4, UDP and ICMP echo as bytes. Parsing checks every length and checksum and returns
/// views into the frame; building returns a frame by value.
namespace wire {

inline constexpr std::size_t Mtu = 1500;              // bytes of IPv4
inline constexpr std::size_t MaxFrameSize = Mtu + 14; // bytes, without the frame check sequence
inline constexpr std::size_t MinFrameSize = 60;       // bytes; shorter frames are padded
inline constexpr net::MacAddress broadcastMac{{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}};

enum class EtherType : std::uint16_t { Ipv4 = 0x0800, Arp = 0x0806 };
enum class Protocol : std::uint8_t { Icmp = 1, Udp = 17 };
enum class ArpOperation : std::uint16_t { Request = 1, Reply = 2 };

struct Frame
{
    std::array<std::uint8_t, MaxFrameSize> bytes{};
    std::size_t size = 0;

    [[nodiscard]] std::span<const std::uint8_t> all() const { return std::span(bytes).first(size); }
};

struct Ethernet
{
    net::MacAddress to;
    net::MacAddress from;
    EtherType type = EtherType::Ipv4;
    std::span<const std::uint8_t> payload;
};

struct Arp
{
    ArpOperation operation = ArpOperation::Request;
    net::MacAddress senderMac;
    net::Ipv4 senderIp;
    net::MacAddress targetMac;
    net::Ipv4 targetIp;
};

/// An unfragmented packet.
struct Ipv4Packet
{
    net::Ipv4 from;
    net::Ipv4 to;
    Protocol protocol = Protocol::Udp;
    std::span<const std::uint8_t> payload;
};

struct Udp
{
    std::uint16_t fromPort = 0;
    std::uint16_t toPort = 0;
    std::span<const std::uint8_t> payload;
};

/// The Internet checksum of `bytes`, with `seed` added in; 0 over data that contains its correct checksum.
[[nodiscard]] std::uint16_t checksum(std::span<const std::uint8_t> bytes, std::uint32_t seed = 0);

/// Each returns nullopt for data that is truncated, fragmented, of another kind or has a wrong checksum.
[[nodiscard]] std::optional<Ethernet> parseEthernet(std::span<const std::uint8_t> frame);
[[nodiscard]] std::optional<Arp> parseArp(const Ethernet& frame);
[[nodiscard]] std::optional<Ipv4Packet> parseIpv4(const Ethernet& frame);
[[nodiscard]] std::optional<Udp> parseUdp(const Ipv4Packet& packet);
/// The ICMP message of an echo request.
[[nodiscard]] std::optional<std::span<const std::uint8_t>> parseEchoRequest(const Ipv4Packet& packet);

[[nodiscard]] Frame buildArp(const net::MacAddress& to, const Arp& arp);
/// `identification` is the packet's IPv4 identification. The payloads must fit in one packet.
[[nodiscard]] Frame buildUdp(const net::MacAddress& to, const net::MacAddress& from, const Ipv4Packet& packet,
                             const Udp& udp, std::uint16_t identification);
[[nodiscard]] Frame buildEchoReply(const net::MacAddress& to, const net::MacAddress& from,
                                   const Ipv4Packet& packet, std::span<const std::uint8_t> request,
                                   std::uint16_t identification);
/// Gives a built frame another receiver.
void setReceiver(Frame& frame, const net::MacAddress& to);

} // namespace wire
