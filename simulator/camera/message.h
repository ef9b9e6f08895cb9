#pragma once

#include "gvcp/gvcp.h"
#include "net/addresses.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace sim {

using net::Endpoint;

/// One GVCP message of the simulator. Stored in place, since a search causes thousands of them.
struct Message
{
    static constexpr std::size_t Capacity = 1472; // bytes; the room in a frame after the IP and UDP headers

    std::array<std::uint8_t, Capacity> bytes{};
    std::size_t size = 0;

    [[nodiscard]] std::span<std::uint8_t> all() { return std::span(bytes).first(size); }
    [[nodiscard]] std::span<const std::uint8_t> all() const { return std::span(bytes).first(size); }
};

struct CommandMessage
{
    bool isWellFormed = false; // key and length are correct
    bool ackRequired = false;
    bool allowBroadcastAck = false;
    std::uint16_t code = 0;
    std::uint16_t id = 0;
    std::span<const std::uint8_t> payload;

    [[nodiscard]] bool is(gvcp::Command command) const { return code == static_cast<std::uint16_t>(command); }
};

/// Parses a received command; nullopt if it is shorter than a header and so cannot be answered. The payload
/// points into `bytes`.
[[nodiscard]] std::optional<CommandMessage> parseCommand(std::span<const std::uint8_t> bytes);

/// Builds an acknowledge. The payload must fit into a message.
[[nodiscard]] Message makeAcknowledge(gvcp::Status status, std::uint16_t code, std::uint16_t id,
                                      std::span<const std::uint8_t> payload = {});

/// Whether the payload contains the MAC address at that offset.
[[nodiscard]] bool hasMac(std::span<const std::uint8_t> payload, std::size_t offset,
                          const net::MacAddress& mac);

/// The command's name in the protocol, or its code in hexadecimal.
[[nodiscard]] std::string commandName(std::uint16_t code);
[[nodiscard]] std::optional<gvcp::Command> commandByName(std::string_view name);

/// Four upper-case hexadecimal digits.
[[nodiscard]] std::string hex16(std::uint16_t value);

} // namespace sim
