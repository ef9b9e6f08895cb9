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

/// The bytes of one GVCP message of this simulator, held in place: answers come in thousands.
struct Message
{
    static constexpr std::size_t Capacity = 1472; // bytes; what a frame holds beside the IP and UDP headers

    std::array<std::uint8_t, Capacity> bytes{};
    std::size_t size = 0;

    [[nodiscard]] std::span<std::uint8_t> all() { return std::span(bytes).first(size); }
    [[nodiscard]] std::span<const std::uint8_t> all() const { return std::span(bytes).first(size); }
};

struct CommandMessage
{
    bool isWellFormed = false; // key and length are right
    bool ackRequired = false;
    bool allowBroadcastAck = false;
    std::uint16_t code = 0;
    std::uint16_t id = 0;
    std::span<const std::uint8_t> payload;

    [[nodiscard]] bool is(gvcp::Command command) const { return code == static_cast<std::uint16_t>(command); }
};

/// Takes a received command apart; nullopt when it is shorter than a header, so that nobody could answer it.
/// The payload points into `bytes`.
[[nodiscard]] std::optional<CommandMessage> parseCommand(std::span<const std::uint8_t> bytes);

/// Builds an acknowledge; a payload that does not fit in a message is a bug.
[[nodiscard]] Message makeAcknowledge(gvcp::Status status, std::uint16_t code, std::uint16_t id,
                                      std::span<const std::uint8_t> payload = {});

/// Whether the MAC address stands at that offset of a payload.
[[nodiscard]] bool hasMac(std::span<const std::uint8_t> payload, std::size_t offset,
                          const net::MacAddress& mac);

/// The command's name in the protocol, or its code in hexadecimal digits.
[[nodiscard]] std::string commandName(std::uint16_t code);
[[nodiscard]] std::optional<gvcp::Command> commandByName(std::string_view name);

/// Four upper-case hexadecimal digits.
[[nodiscard]] std::string hex16(std::uint16_t value);

} // namespace sim
