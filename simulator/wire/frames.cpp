#include "wire/frames.h"

#include "gvcp/bytes.h"

#include <algorithm>

namespace wire {

namespace {

using bytes::get16;
using bytes::get32;
using bytes::put16;
using bytes::put32;

constexpr std::size_t ethernetHeaderSize = 14;
constexpr std::size_t arpSize = 28;
constexpr std::size_t ipv4HeaderSize = 20;
constexpr std::size_t udpHeaderSize = 8;
constexpr std::size_t icmpHeaderSize = 8;
constexpr std::uint8_t timeToLive = 64;
constexpr std::uint16_t dontFragment = 0x4000;
constexpr std::uint16_t moreFragmentsAndOffset = 0x3FFF;
constexpr std::uint16_t arpEthernet = 1;
constexpr std::uint16_t arpSizes = 0x0604; // the lengths of a MAC address and of an IPv4 address
constexpr std::uint8_t icmpEchoReply = 0;
constexpr std::uint8_t icmpEchoRequest = 8;

net::MacAddress getMac(std::span<const std::uint8_t> from, std::size_t offset)
{
    net::MacAddress mac;
    std::ranges::copy(from.subspan(offset, mac.bytes.size()), mac.bytes.begin());
    return mac;
}

void putMac(std::span<std::uint8_t> to, std::size_t offset, const net::MacAddress& mac)
{
    std::ranges::copy(mac.bytes, to.subspan(offset).begin());
}

std::uint32_t sum(std::span<const std::uint8_t> bytes)
{
    std::uint32_t total = 0;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        total += get16(bytes, i);
    }
    return bytes.size() % 2 == 0 ? total : total + (std::uint32_t{bytes.back()} << 8);
}

/// The sum of the pseudo header, which the UDP checksum covers besides the datagram.
std::uint32_t pseudoHeaderSum(const Ipv4Packet& packet, std::size_t size)
{
    const auto halves = [](std::uint32_t value) { return (value >> 16) + (value & 0xFFFF); };
    return halves(packet.from.value) + halves(packet.to.value) + static_cast<std::uint32_t>(packet.protocol) +
           static_cast<std::uint32_t>(size);
}

std::span<std::uint8_t> beginFrame(Frame& frame, const net::MacAddress& to, const net::MacAddress& from,
                                   EtherType type, std::size_t payloadSize)
{
    frame.size = std::max(ethernetHeaderSize + payloadSize, MinFrameSize);
    const std::span<std::uint8_t> all(frame.bytes);
    putMac(all, 0, to);
    putMac(all, 6, from);
    put16(all, 12, static_cast<std::uint16_t>(type));
    return all.subspan(ethernetHeaderSize, payloadSize);
}

/// Writes the IPv4 header and returns the room for the payload behind it.
std::span<std::uint8_t> beginPacket(std::span<std::uint8_t> room, const Ipv4Packet& packet,
                                    std::uint16_t identification)
{
    room[0] = 0x45; // version 4, header of five words
    put16(room, 2, static_cast<std::uint16_t>(room.size()));
    put16(room, 4, identification);
    put16(room, 6, dontFragment);
    room[8] = timeToLive;
    room[9] = static_cast<std::uint8_t>(packet.protocol);
    put32(room, 12, packet.from.value);
    put32(room, 16, packet.to.value);
    put16(room, 10, checksum(room.first(ipv4HeaderSize)));
    return room.subspan(ipv4HeaderSize);
}

} // namespace

std::uint16_t checksum(std::span<const std::uint8_t> bytes, std::uint32_t seed)
{
    std::uint32_t total = seed + sum(bytes);
    while (total > 0xFFFF) {
        total = (total >> 16) + (total & 0xFFFF);
    }
    return static_cast<std::uint16_t>(~total & 0xFFFF);
}

std::optional<Ethernet> parseEthernet(std::span<const std::uint8_t> frame)
{
    if (frame.size() < ethernetHeaderSize || frame.size() > MaxFrameSize) {
        return std::nullopt;
    }
    const auto type = static_cast<EtherType>(get16(frame, 12));
    if (type != EtherType::Arp && type != EtherType::Ipv4) {
        return std::nullopt;
    }
    return Ethernet{getMac(frame, 0), getMac(frame, 6), type, frame.subspan(ethernetHeaderSize)};
}

std::optional<Arp> parseArp(const Ethernet& frame)
{
    const auto packet = frame.payload;
    if (frame.type != EtherType::Arp || packet.size() < arpSize || get16(packet, 0) != arpEthernet ||
        get16(packet, 2) != static_cast<std::uint16_t>(EtherType::Ipv4) || get16(packet, 4) != arpSizes) {
        return std::nullopt;
    }
    return Arp{static_cast<ArpOperation>(get16(packet, 6)),
               getMac(packet, 8),
               {get32(packet, 14)},
               getMac(packet, 18),
               {get32(packet, 24)}};
}

std::optional<Ipv4Packet> parseIpv4(const Ethernet& frame)
{
    const auto bytes = frame.payload;
    if (frame.type != EtherType::Ipv4 || bytes.size() < ipv4HeaderSize || bytes[0] >> 4 != 4) {
        return std::nullopt;
    }
    const std::size_t headerSize = std::size_t{4} * (bytes[0] & 0xFU);
    const std::size_t totalSize = get16(bytes, 2);
    if (headerSize < ipv4HeaderSize || totalSize < headerSize || totalSize > bytes.size() ||
        (get16(bytes, 6) & moreFragmentsAndOffset) != 0 || checksum(bytes.first(headerSize)) != 0) {
        return std::nullopt;
    }
    return Ipv4Packet{{get32(bytes, 12)},
                      {get32(bytes, 16)},
                      static_cast<Protocol>(bytes[9]),
                      bytes.subspan(headerSize, totalSize - headerSize)};
}

std::optional<Udp> parseUdp(const Ipv4Packet& packet)
{
    const auto bytes = packet.payload;
    if (packet.protocol != Protocol::Udp || bytes.size() < udpHeaderSize) {
        return std::nullopt;
    }
    const std::size_t size = get16(bytes, 4);
    if (size < udpHeaderSize || size > bytes.size()) {
        return std::nullopt;
    }
    const bool hasChecksum = get16(bytes, 6) != 0;
    if (hasChecksum && checksum(bytes.first(size), pseudoHeaderSum(packet, size)) != 0) {
        return std::nullopt;
    }
    return Udp{get16(bytes, 0), get16(bytes, 2), bytes.subspan(udpHeaderSize, size - udpHeaderSize)};
}

std::optional<std::span<const std::uint8_t>> parseEchoRequest(const Ipv4Packet& packet)
{
    const auto bytes = packet.payload;
    if (packet.protocol != Protocol::Icmp || bytes.size() < icmpHeaderSize || bytes[0] != icmpEchoRequest ||
        bytes[1] != 0 || checksum(bytes) != 0) {
        return std::nullopt;
    }
    return bytes;
}

Frame buildArp(const net::MacAddress& to, const Arp& arp)
{
    Frame frame;
    const auto packet = beginFrame(frame, to, arp.senderMac, EtherType::Arp, arpSize);
    put16(packet, 0, arpEthernet);
    put16(packet, 2, static_cast<std::uint16_t>(EtherType::Ipv4));
    put16(packet, 4, arpSizes);
    put16(packet, 6, static_cast<std::uint16_t>(arp.operation));
    putMac(packet, 8, arp.senderMac);
    put32(packet, 14, arp.senderIp.value);
    putMac(packet, 18, arp.targetMac);
    put32(packet, 24, arp.targetIp.value);
    return frame;
}

Frame buildUdp(const net::MacAddress& to, const net::MacAddress& from, const Ipv4Packet& packet,
               const Udp& udp, std::uint16_t identification)
{
    Frame frame;
    const std::size_t size = udpHeaderSize + udp.payload.size();
    const auto room = beginFrame(frame, to, from, EtherType::Ipv4, ipv4HeaderSize + size);
    const auto datagram = beginPacket(room, packet, identification);
    put16(datagram, 0, udp.fromPort);
    put16(datagram, 2, udp.toPort);
    put16(datagram, 4, static_cast<std::uint16_t>(size));
    std::ranges::copy(udp.payload, datagram.subspan(udpHeaderSize).begin());
    const std::uint16_t sum = checksum(datagram, pseudoHeaderSum(packet, size));
    put16(datagram, 6, sum == 0 ? 0xFFFF : sum); // 0 would mean "no checksum"
    return frame;
}

Frame buildEchoReply(const net::MacAddress& to, const net::MacAddress& from, const Ipv4Packet& packet,
                     std::span<const std::uint8_t> request, std::uint16_t identification)
{
    Frame frame;
    const auto room = beginFrame(frame, to, from, EtherType::Ipv4, ipv4HeaderSize + request.size());
    const auto message = beginPacket(room, packet, identification);
    std::ranges::copy(request, message.begin());
    message[0] = icmpEchoReply;
    put16(message, 2, 0);
    put16(message, 2, checksum(message));
    return frame;
}

void setReceiver(Frame& frame, const net::MacAddress& to)
{
    putMac(frame.bytes, 0, to);
}

} // namespace wire
