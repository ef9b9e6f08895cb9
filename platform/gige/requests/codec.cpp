#include "codec.h"

#include "gvcp/bytes.h"

#include <algorithm>
#include <array>

namespace gvcp {

namespace {

Packet command(Command code, std::uint8_t flags, std::uint16_t requestId, std::size_t payloadSize)
{
    Packet packet(HeaderSize + payloadSize);
    packet[Header::Key] = Key;
    packet[Header::Flags] = flags;
    bytes::put16(packet, Header::Code, static_cast<std::uint16_t>(code));
    bytes::put16(packet, Header::Length, static_cast<std::uint16_t>(payloadSize));
    bytes::put16(packet, Header::RequestId, requestId);
    return packet;
}

std::span<std::uint8_t> payloadOf(Packet& packet)
{
    return std::span(packet).subspan(HeaderSize);
}

constexpr std::uint8_t broadcastFlags = Flag::AckRequired | Flag::AllowBroadcastAck;

void putMac(std::span<std::uint8_t> payload, std::size_t offset, const net::MacAddress& mac)
{
    std::ranges::copy(mac.bytes, payload.subspan(offset).begin());
}

/// The field must lie within the payload. The text ends at NUL, or at FF, which fills erased memory.
std::string getText(Bytes payload, std::size_t offset, std::size_t size)
{
    const Bytes field = payload.subspan(offset, size);
    return {field.begin(), std::ranges::find_if(field, [](auto byte) { return byte == 0 || byte == 0xFF; })};
}

std::string getBytes(Bytes payload, std::size_t offset, std::size_t size)
{
    const Bytes field = payload.subspan(offset, size);
    return {field.begin(), std::ranges::find(field, 0)};
}

/// The size in bytes of the UTF-8 character at the beginning of the text (RFC 3629); 0 if there is none.
std::size_t characterSize(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const auto isFollowedBy = [&](std::size_t count, std::uint8_t lowest, std::uint8_t highest) {
        if (text.size() <= count || byte(1) < lowest || byte(1) > highest) {
            return false;
        }
        return std::ranges::all_of(text.substr(1, count), [](char next) { return (next & 0xC0) == 0x80; });
    };
    const std::uint8_t first = byte(0);
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first <= 0xDF) {
        return isFollowedBy(1, 0x80, 0xBF) ? 2 : 0;
    }
    if (first >= 0xE0 && first <= 0xEF) {
        return isFollowedBy(2, first == 0xE0 ? 0xA0 : 0x80, first == 0xED ? 0x9F : 0xBF) ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        return isFollowedBy(3, first == 0xF0 ? 0x90 : 0x80, first == 0xF4 ? 0x8F : 0xBF) ? 4 : 0;
    }
    return 0;
}

/// Replaces every byte that is not part of a character with '?'. Unlike the replacement character, this does
/// not make the text longer, so that it can still be stored.
std::string validUtf8(std::string text)
{
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t size = characterSize(std::string_view(text).substr(i));
        if (size == 0) {
            text[i] = '?';
        }
        i += std::max<std::size_t>(size, 1);
    }
    return text;
}

} // namespace

Packet encodeDiscovery(std::uint16_t requestId)
{
    return command(Command::Discovery, broadcastFlags, requestId, 0);
}

Packet encodeForceIp(std::uint16_t requestId, const AddressAssignment& assignment)
{
    Packet packet = command(Command::ForceIp, broadcastFlags, requestId, ForceIp::Size);
    const auto payload = payloadOf(packet);
    putMac(payload, ForceIp::Mac, assignment.mac);
    bytes::put32(payload, ForceIp::Ip, assignment.ip.value);
    bytes::put32(payload, ForceIp::Mask, assignment.mask.value);
    bytes::put32(payload, ForceIp::Gateway, assignment.gateway.value);
    return packet;
}

Packet encodeBroadcastIpConfig(std::uint16_t requestId, const StoredConfiguration& configuration)
{
    Packet packet = command(Command::BroadcastIpConfig, broadcastFlags, requestId, BroadcastIpConfig::Size);
    const auto payload = payloadOf(packet);
    putMac(payload, BroadcastIpConfig::Mac, configuration.mac);
    bytes::put32(payload, BroadcastIpConfig::IpConfig, configuration.ipConfig);
    bytes::put32(payload, BroadcastIpConfig::Ip, configuration.ip.value);
    bytes::put32(payload, BroadcastIpConfig::Mask, configuration.mask.value);
    bytes::put32(payload, BroadcastIpConfig::Gateway, configuration.gateway.value);
    const auto name = configuration.userDefinedName.substr(0, BroadcastIpConfig::UserDefinedNameSize);
    std::ranges::copy(name, payload.subspan(BroadcastIpConfig::UserDefinedName).begin());
    return packet;
}

Packet encodeReadReg(std::uint16_t requestId, std::uint32_t address)
{
    Packet packet = command(Command::ReadReg, Flag::AckRequired, requestId, RegisterSize);
    bytes::put32(packet, HeaderSize, address);
    return packet;
}

Packet encodeWriteReg(std::uint16_t requestId, std::uint32_t address, std::uint32_t value)
{
    Packet packet = command(Command::WriteReg, Flag::AckRequired, requestId, std::size_t{2} * RegisterSize);
    bytes::put32(packet, HeaderSize, address);
    bytes::put32(packet, HeaderSize + RegisterSize, value);
    return packet;
}

Packet encodeReadMem(std::uint16_t requestId, std::uint32_t address, std::uint16_t count)
{
    Packet packet = command(Command::ReadMem, Flag::AckRequired, requestId, ReadMem::Size);
    bytes::put32(packet, HeaderSize + ReadMem::Address, address);
    bytes::put16(packet, HeaderSize + ReadMem::Count, count);
    return packet;
}

Packet encodeWriteMem(std::uint16_t requestId, std::uint32_t address, Bytes data)
{
    Packet packet = command(Command::WriteMem, Flag::AckRequired, requestId, RegisterSize + data.size());
    bytes::put32(packet, HeaderSize, address);
    std::ranges::copy(data, payloadOf(packet).subspan(RegisterSize).begin());
    return packet;
}

std::optional<Acknowledge> decodeAcknowledge(Bytes datagram)
{
    if (datagram.size() < HeaderSize) {
        return std::nullopt;
    }
    const std::size_t size = bytes::get16(datagram, Header::Length);
    if (size > datagram.size() - HeaderSize) {
        return std::nullopt;
    }
    return Acknowledge{.status = static_cast<Status>(bytes::get16(datagram, Header::Status)),
                       .code = static_cast<Ack>(bytes::get16(datagram, Header::Code)),
                       .requestId = bytes::get16(datagram, Header::RequestId),
                       .payload = datagram.subspan(HeaderSize, size)};
}

std::optional<Identity> decodeIdentity(Bytes payload)
{
    if (payload.size() < DiscoveryAck::Size) {
        return std::nullopt;
    }
    using namespace DiscoveryAck;
    Identity identity;
    std::ranges::copy(payload.subspan(Mac, identity.mac.bytes.size()), identity.mac.bytes.begin());
    identity.ipConfigSupported = bytes::get32(payload, IpConfigSupported);
    identity.ipConfigCurrent = bytes::get32(payload, IpConfigCurrent);
    identity.ip.value = bytes::get32(payload, Ip);
    identity.mask.value = bytes::get32(payload, Mask);
    identity.gateway.value = bytes::get32(payload, Gateway);
    identity.manufacturer = getText(payload, Manufacturer, ManufacturerSize);
    identity.model = getText(payload, Model, ModelSize);
    identity.deviceVersion = getText(payload, DeviceVersion, DeviceVersionSize);
    identity.manufacturerInfo = getText(payload, ManufacturerInfo, ManufacturerInfoSize);
    identity.serialNumber = getText(payload, SerialNumber, SerialNumberSize);
    identity.userDefinedName = validUtf8(getText(payload, UserDefinedName, UserDefinedNameSize));
    identity.storedUserDefinedName = getBytes(payload, UserDefinedName, UserDefinedNameSize);
    return identity;
}

std::optional<std::uint32_t> decodeReadRegAck(Bytes payload)
{
    if (payload.size() < RegisterSize) {
        return std::nullopt;
    }
    return bytes::get32(payload, 0);
}

std::optional<Bytes> decodeReadMemAck(Bytes payload, std::uint32_t address, std::size_t count)
{
    if (payload.size() < RegisterSize + count || bytes::get32(payload, 0) != address) {
        return std::nullopt;
    }
    return payload.subspan(RegisterSize, count);
}

net::MacAddress decodeMac(std::uint32_t high, std::uint32_t low)
{
    std::array<std::uint8_t, std::size_t{2} * RegisterSize> registers{};
    bytes::put32(registers, 0, high);
    bytes::put32(registers, RegisterSize, low);
    net::MacAddress mac;
    std::ranges::copy(std::span(registers).last<sizeof mac.bytes>(), mac.bytes.begin());
    return mac;
}

std::optional<std::chrono::milliseconds> decodePendingAck(Bytes payload)
{
    if (payload.size() < PendingAck::Size) {
        return std::nullopt;
    }
    return std::chrono::milliseconds(bytes::get16(payload, PendingAck::Time));
}

} // namespace gvcp
