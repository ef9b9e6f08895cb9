#pragma once

#include "gvcp/gvcp.h"
#include "net/addresses.h"

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Converts GVCP messages to and from bytes. Pure functions: encoders return the whole datagram, decoders
/// return nullopt for anything that is not such a message. Cameras may send more than is needed; the surplus
/// is ignored.
namespace gvcp {

using Packet = std::vector<std::uint8_t>;
using Bytes = std::span<const std::uint8_t>;

/// How a camera describes itself: the payload of a DISCOVERY acknowledge and the first 248 bytes of its
/// registers. Texts are the camera's bytes up to the first NUL or FF, or to the end of the field.
struct Identity
{
    net::MacAddress mac;
    std::uint32_t ipConfigSupported = 0; // bits of IpConfig; others are the camera's own
    std::uint32_t ipConfigCurrent = 0;
    net::Ipv4 ip;
    net::Ipv4 mask;
    net::Ipv4 gateway;
    std::string manufacturer;
    std::string model;
    std::string deviceVersion;
    std::string manufacturerInfo;
    std::string serialNumber;
    std::string userDefinedName;       // UTF-8, with '?' for each invalid byte
    std::string storedUserDefinedName; // byte for byte, up to the first NUL

    friend bool operator==(const Identity&, const Identity&) = default;
};

/// What FORCEIP carries.
struct AddressAssignment
{
    net::MacAddress mac;
    net::Ipv4 ip; // 0.0.0.0 makes the camera run its IP configuration cycle
    net::Ipv4 mask;
    net::Ipv4 gateway;
};

/// What the manufacturer's broadcast command carries.
struct StoredConfiguration
{
    net::MacAddress mac;
    std::uint32_t ipConfig = IpConfig::LinkLocal; // bits of IpConfig
    net::Ipv4 ip;
    net::Ipv4 mask;
    net::Ipv4 gateway;
    std::string_view userDefinedName; // cut off at the field's 16 bytes
};

[[nodiscard]] Packet encodeDiscovery(std::uint16_t requestId);
[[nodiscard]] Packet encodeForceIp(std::uint16_t requestId, const AddressAssignment& assignment);
[[nodiscard]] Packet encodeBroadcastIpConfig(std::uint16_t requestId,
                                             const StoredConfiguration& configuration);
[[nodiscard]] Packet encodeReadReg(std::uint16_t requestId, std::uint32_t address);
[[nodiscard]] Packet encodeWriteReg(std::uint16_t requestId, std::uint32_t address, std::uint32_t value);
/// `count` in bytes.
[[nodiscard]] Packet encodeReadMem(std::uint16_t requestId, std::uint32_t address, std::uint16_t count);
[[nodiscard]] Packet encodeWriteMem(std::uint16_t requestId, std::uint32_t address, Bytes data);

/// An acknowledge with a valid header and at least the length that it states. The payload points into the
/// datagram; what follows it is ignored.
struct Acknowledge
{
    Status status = Status::Error;
    Ack code = Ack::Pending;
    std::uint16_t requestId = 0;
    Bytes payload;

    /// Whether the camera did not do what was asked. Codes without the error bit only qualify a success.
    [[nodiscard]] bool isRefusal() const { return (static_cast<std::uint16_t>(status) & 0x8000) != 0; }
};

[[nodiscard]] std::optional<Acknowledge> decodeAcknowledge(Bytes datagram);

[[nodiscard]] std::optional<Identity> decodeIdentity(Bytes payload);
[[nodiscard]] std::optional<std::uint32_t> decodeReadRegAck(Bytes payload);
/// The data, `count` bytes from `address`, if the payload holds them.
[[nodiscard]] std::optional<Bytes> decodeReadMemAck(Bytes payload, std::uint32_t address, std::size_t count);
/// The MAC address in the registers MacHigh and MacLow.
[[nodiscard]] net::MacAddress decodeMac(std::uint32_t high, std::uint32_t low);
/// How much more time the camera asks for.
[[nodiscard]] std::optional<std::chrono::milliseconds> decodePendingAck(Bytes payload);

} // namespace gvcp
