#pragma once

#include "codec.h"

#include <chrono>
#include <optional>

namespace gige {

/// What a received packet means to a pending request.
struct Reply
{
    enum class Kind {
        NotOurs, // another request's, or not a valid answer to this one
        Pending, // the camera has received the command and asks for `moreTime`
        Busy,    // the camera has no time for it; a repeat may find it idle
        Refused, // `status` says why
        Done,    // `payload` holds at least what the command asked for
    };

    Kind kind = Kind::NotOurs;
    gvcp::Status status = gvcp::Status::Success;
    gvcp::Bytes payload{}; // of Refused and Done; points into the packet
    std::chrono::milliseconds moreTime{};
    bool namesCamera = false; // the answer carries the MAC address of the camera that was meant
};

/// One command with its own id. judge() is the only place that decides what is an answer to it; the sender
/// decides where an answer may come from. Repeats are sent with the same bytes.
class Request
{
public:
    [[nodiscard]] static Request discovery();
    [[nodiscard]] static Request forceIp(const gvcp::AddressAssignment& assignment);
    [[nodiscard]] static Request broadcastIpConfig(const gvcp::StoredConfiguration& configuration);
    [[nodiscard]] static Request readRegister(std::uint32_t address);
    [[nodiscard]] static Request writeRegister(std::uint32_t address, std::uint32_t value);
    /// `count` in bytes, a multiple of 4 and at most gvcp::MaxDataSize, as is the size of `data` below.
    [[nodiscard]] static Request readMemory(std::uint32_t address, std::uint16_t count);
    [[nodiscard]] static Request writeMemory(std::uint32_t address, gvcp::Bytes data);

    [[nodiscard]] std::uint16_t id() const { return m_id; }
    [[nodiscard]] const gvcp::Packet& packet() const { return m_packet; }

    [[nodiscard]] Reply judge(gvcp::Bytes datagram) const;

private:
    Request(std::uint16_t id, gvcp::Packet packet, gvcp::Ack expected)
        : m_id(id), m_packet(std::move(packet)), m_expected(expected)
    {}

    /// Whether the payload carries the MAC address that the command does.
    [[nodiscard]] bool namesCamera(gvcp::Bytes payload) const;
    /// Whether the payload of a success holds what was asked for. Surplus is ignored.
    [[nodiscard]] bool isSufficient(gvcp::Bytes payload) const;

    std::uint16_t m_id;
    gvcp::Packet m_packet;
    gvcp::Ack m_expected;
};

/// The id of the request that a packet may answer; nullopt if it is not an acknowledge.
[[nodiscard]] std::optional<std::uint16_t> requestIdOf(gvcp::Bytes datagram);

} // namespace gige
