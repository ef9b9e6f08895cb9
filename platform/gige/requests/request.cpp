#include "request.h"

#include "gvcp/bytes.h"

#include <algorithm>
#include <random>

namespace gige {

namespace {

/// Never 0, and never an id that was used recently.
std::uint16_t nextRequestId()
{
    // A random start keeps late answers to an earlier run of the program from matching.
    static std::uint16_t last = static_cast<std::uint16_t>(std::random_device{}());
    ++last;
    if (last == 0) {
        ++last;
    }
    return last;
}

} // namespace

Request Request::discovery()
{
    const std::uint16_t id = nextRequestId();
    return {id, gvcp::encodeDiscovery(id), gvcp::Ack::Discovery};
}

Request Request::forceIp(const gvcp::AddressAssignment& assignment)
{
    const std::uint16_t id = nextRequestId();
    return {id, gvcp::encodeForceIp(id, assignment), gvcp::Ack::ForceIp};
}

Request Request::broadcastIpConfig(const gvcp::StoredConfiguration& configuration)
{
    const std::uint16_t id = nextRequestId();
    return {id, gvcp::encodeBroadcastIpConfig(id, configuration), gvcp::Ack::BroadcastIpConfig};
}

Request Request::readRegister(std::uint32_t address)
{
    const std::uint16_t id = nextRequestId();
    return {id, gvcp::encodeReadReg(id, address), gvcp::Ack::ReadReg};
}

Request Request::writeRegister(std::uint32_t address, std::uint32_t value)
{
    const std::uint16_t id = nextRequestId();
    return {id, gvcp::encodeWriteReg(id, address, value), gvcp::Ack::WriteReg};
}

Request Request::readMemory(std::uint32_t address, std::uint16_t count)
{
    const std::uint16_t id = nextRequestId();
    return {id, gvcp::encodeReadMem(id, address, count), gvcp::Ack::ReadMem};
}

Request Request::writeMemory(std::uint32_t address, gvcp::Bytes data)
{
    const std::uint16_t id = nextRequestId();
    return {id, gvcp::encodeWriteMem(id, address, data), gvcp::Ack::WriteMem};
}

Reply Request::judge(gvcp::Bytes datagram) const
{
    using enum Reply::Kind;
    const auto acknowledge = gvcp::decodeAcknowledge(datagram);
    if (!acknowledge || acknowledge->requestId != m_id) {
        return {};
    }
    if (acknowledge->code == gvcp::Ack::Pending) {
        const auto more = gvcp::decodePendingAck(acknowledge->payload);
        return more ? Reply{.kind = Pending, .moreTime = *more} : Reply{};
    }
    if (acknowledge->code != m_expected) {
        return {};
    }
    const bool isNamed = m_expected == gvcp::Ack::BroadcastIpConfig;
    if (isNamed && !namesCamera(acknowledge->payload)) {
        return {};
    }
    if (acknowledge->status == gvcp::Status::Busy) {
        return {.kind = Busy, .status = acknowledge->status, .namesCamera = isNamed};
    }
    if (acknowledge->isRefusal()) {
        return {.kind = Refused,
                .status = acknowledge->status,
                .payload = acknowledge->payload,
                .namesCamera = isNamed};
    }
    if (!isSufficient(acknowledge->payload)) {
        return {};
    }
    return {.kind = Done, .payload = acknowledge->payload, .namesCamera = isNamed};
}

bool Request::namesCamera(gvcp::Bytes payload) const
{
    constexpr std::size_t size = sizeof(net::MacAddress::bytes);
    const auto meant = gvcp::Bytes(m_packet).subspan(gvcp::HeaderSize + gvcp::BroadcastIpConfig::Mac, size);
    return payload.size() >= gvcp::BroadcastIpConfigAck::Size &&
           std::ranges::equal(payload.subspan(gvcp::BroadcastIpConfigAck::Mac, size), meant);
}

bool Request::isSufficient(gvcp::Bytes payload) const
{
    switch (m_expected) {
    case gvcp::Ack::Discovery:
        return payload.size() >= gvcp::DiscoveryAck::Size;
    case gvcp::Ack::ReadReg:
        return payload.size() >= gvcp::RegisterSize;
    case gvcp::Ack::ReadMem: {
        const auto asked = gvcp::Bytes(m_packet).subspan(gvcp::HeaderSize);
        return gvcp::decodeReadMemAck(payload, bytes::get32(asked, gvcp::ReadMem::Address),
                                      bytes::get16(asked, gvcp::ReadMem::Count))
            .has_value();
    }
    default:
        // Cameras differ in what they report beyond the status of a success, and some report nothing. What
        // was written is read back.
        return true;
    }
}

std::optional<std::uint16_t> requestIdOf(gvcp::Bytes datagram)
{
    const auto acknowledge = gvcp::decodeAcknowledge(datagram);
    return acknowledge ? std::optional(acknowledge->requestId) : std::nullopt;
}

} // namespace gige
