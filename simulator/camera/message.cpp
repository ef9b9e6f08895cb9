#include "camera/message.h"

#include "gvcp/bytes.h"

#include <algorithm>
#include <string>
#include <utility>

namespace sim {

namespace {

constexpr std::array<std::pair<gvcp::Command, std::string_view>, 7> commandNames{{
    {gvcp::Command::Discovery, "DISCOVERY"},
    {gvcp::Command::ForceIp, "FORCEIP"},
    {gvcp::Command::ReadReg, "READREG"},
    {gvcp::Command::WriteReg, "WRITEREG"},
    {gvcp::Command::ReadMem, "READMEM"},
    {gvcp::Command::WriteMem, "WRITEMEM"},
    {gvcp::Command::BroadcastIpConfig, "BROADCAST_IPCONFIG"},
}};

} // namespace

std::optional<CommandMessage> parseCommand(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() < gvcp::HeaderSize) {
        return std::nullopt;
    }
    CommandMessage command;
    command.payload = bytes.subspan(gvcp::HeaderSize);
    command.isWellFormed = bytes[gvcp::Header::Key] == gvcp::Key &&
                           bytes::get16(bytes, gvcp::Header::Length) == command.payload.size();
    command.ackRequired = (bytes[gvcp::Header::Flags] & gvcp::Flag::AckRequired) != 0;
    command.allowBroadcastAck = (bytes[gvcp::Header::Flags] & gvcp::Flag::AllowBroadcastAck) != 0;
    command.code = bytes::get16(bytes, gvcp::Header::Code);
    command.id = bytes::get16(bytes, gvcp::Header::RequestId);
    return command;
}

Message makeAcknowledge(gvcp::Status status, std::uint16_t code, std::uint16_t id,
                        std::span<const std::uint8_t> payload)
{
    Message message;
    message.size = gvcp::HeaderSize + payload.size();
    const std::span<std::uint8_t> bytes = message.all();
    bytes::put16(bytes, gvcp::Header::Status, static_cast<std::uint16_t>(status));
    bytes::put16(bytes, gvcp::Header::Code, code);
    bytes::put16(bytes, gvcp::Header::Length, static_cast<std::uint16_t>(payload.size()));
    bytes::put16(bytes, gvcp::Header::RequestId, id);
    std::copy(payload.begin(), payload.end(), bytes.begin() + gvcp::HeaderSize);
    return message;
}

bool hasMac(std::span<const std::uint8_t> payload, std::size_t offset, const net::MacAddress& mac)
{
    return payload.size() >= offset + mac.bytes.size() &&
           std::equal(mac.bytes.begin(), mac.bytes.end(),
                      payload.begin() + static_cast<std::ptrdiff_t>(offset));
}

std::string commandName(std::uint16_t code)
{
    for (const auto& [command, name] : commandNames) {
        if (static_cast<std::uint16_t>(command) == code) {
            return std::string(name);
        }
    }
    return hex16(code);
}

std::optional<gvcp::Command> commandByName(std::string_view text)
{
    for (const auto& [command, name] : commandNames) {
        if (name == text) {
            return command;
        }
    }
    return std::nullopt;
}

std::string hex16(std::uint16_t value)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    return {digits[value >> 12], digits[value >> 8 & 0xF], digits[value >> 4 & 0xF], digits[value & 0xF]};
}

} // namespace sim
