#include "gige/cameraport.h"

#include "gige/bytes.h"
#include "gige/errors.h"
#include "gige/trace.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace gige {

namespace {

using namespace std::chrono_literals;

constexpr std::array<std::chrono::milliseconds, 7> patientSends{0ms,    100ms,  300ms, 600ms,
                                                                1000ms, 1400ms, 1800ms};
constexpr std::array<std::chrono::milliseconds, 4> quickSends{0ms, 60ms, 150ms, 300ms};

// Often enough for a camera that drops who is silent for a second, as few do, even when some are lost.
constexpr auto heartbeatInterval = 300ms;

constexpr std::uint64_t registerSpace = std::uint64_t{1} << 32; // bytes

void checkRange(std::uint32_t address, std::size_t size)
{
    if (size > registerSpace - address) {
        raise<GenICam::InvalidArgumentException>("Register " + hex(address) + " and the " +
                                                 std::to_string(size) +
                                                 " bytes from there on are beyond the register space");
    }
}

/// Errors that another packet's fate left on the socket: while a camera restarts, its address may be refused
/// or unreachable for a while.
bool isEarlierPacketsError(int error)
{
    return error == ECONNREFUSED || error == EHOSTUNREACH || error == EHOSTDOWN;
}

} // namespace

RetryPlan patientPlan()
{
    return {.sendAt = patientSends, .giveUpAfter = 2500ms};
}

RetryPlan quickPlan()
{
    return {.sendAt = quickSends, .giveUpAfter = 500ms};
}

CameraPort::CameraPort(net::Ipv4 address) : m_address(address)
{
    m_socket.connect({address, gvcp::Port});
}

void CameraPort::read(std::uint32_t address, std::span<std::uint8_t> to)
{
    checkRange(address, to.size());
    std::array<std::uint8_t, gvcp::MaxDataSize> aligned{};
    while (!to.empty()) {
        const std::uint32_t skipped = address % gvcp::RegisterSize;
        const std::size_t taken = std::min(to.size(), aligned.size() - skipped);
        const std::size_t wanted =
            (skipped + taken + gvcp::RegisterSize - 1) / gvcp::RegisterSize * gvcp::RegisterSize;
        const auto block = std::span(aligned).first(wanted);
        readBlock(address - skipped, block);
        std::ranges::copy(block.subspan(skipped, taken), to.begin());
        to = to.subspan(taken);
        address += static_cast<std::uint32_t>(taken);
    }
}

void CameraPort::readBlock(std::uint32_t address, std::span<std::uint8_t> to)
{
    if (to.size() == gvcp::RegisterSize) {
        bytes::put32(to, 0, readRegister(address));
        return;
    }
    const std::uint16_t id = nextRequestId();
    exchange(id, gvcp::encodeReadMem(id, address, static_cast<std::uint16_t>(to.size())), gvcp::Ack::ReadMem,
             "READMEM of " + std::to_string(to.size()) + " bytes at " + hex(address),
             [&](gvcp::Bytes payload) {
                 const auto data = gvcp::decodeReadMemAck(payload, address, to.size());
                 if (data) {
                     std::ranges::copy(*data, to.begin());
                 }
                 return data.has_value();
             });
}

std::uint32_t CameraPort::readRegister(std::uint32_t address)
{
    std::uint32_t value = 0;
    const std::uint16_t id = nextRequestId();
    exchange(id, gvcp::encodeReadReg(id, address), gvcp::Ack::ReadReg, "READREG of " + hex(address),
             [&](gvcp::Bytes payload) {
                 const auto read = gvcp::decodeReadRegAck(payload);
                 value = read.value_or(0);
                 return read.has_value();
             });
    return value;
}

void CameraPort::writeRegister(std::uint32_t address, std::uint32_t value)
{
    std::array<std::uint8_t, gvcp::RegisterSize> word{};
    bytes::put32(word, 0, value);
    writeBlock(address, word);
}

void CameraPort::write(std::uint32_t address, std::span<const std::uint8_t> from)
{
    checkRange(address, from.size());
    if (address % gvcp::RegisterSize != 0 || from.size() % gvcp::RegisterSize != 0) {
        raise<GenICam::InvalidArgumentException>("Cannot write " + std::to_string(from.size()) +
                                                 " bytes at " + hex(address) +
                                                 ": address and length must be multiples of 4");
    }
    while (!from.empty()) {
        const auto block =
            from.first(m_writeMemGranted ? std::min(from.size(), gvcp::MaxDataSize) : gvcp::RegisterSize);
        writeBlock(address, block);
        from = from.subspan(block.size());
        address += static_cast<std::uint32_t>(block.size());
    }
}

void CameraPort::writeBlock(std::uint32_t address, std::span<const std::uint8_t> block)
{
    const std::uint16_t id = nextRequestId();
    try {
        if (block.size() == gvcp::RegisterSize) {
            const std::uint32_t value = bytes::get32(block, 0);
            exchange(id, gvcp::encodeWriteReg(id, address, value), gvcp::Ack::WriteReg,
                     "WRITEREG of " + hex(value) + " to " + hex(address), gvcp::isWriteAck);
        } else {
            exchange(id, gvcp::encodeWriteMem(id, address, block), gvcp::Ack::WriteMem,
                     "WRITEMEM of " + std::to_string(block.size()) + " bytes at " + hex(address),
                     gvcp::isWriteAck);
        }
    } catch (const GenICam::TimeoutException&) {
        // A camera that asked for time has heard the command; perhaps only its last word was lost. (The
        // privilege may look as wanted because another application has it.)
        if (!m_wasExtended || address == gvcp::Register::ControlChannelPrivilege || !holds(address, block)) {
            throw;
        }
    }
}

bool CameraPort::holds(std::uint32_t address, std::span<const std::uint8_t> block)
{
    std::vector<std::uint8_t> kept(block.size());
    try {
        read(address, kept);
    } catch (const GenICam::GenericException& failure) {
        trace::requests(ozlog::LogLevel::Info, "%hs", failure.GetDescription());
        return false;
    }
    return std::ranges::equal(kept, block);
}

std::string CameraPort::prefix(const std::string& what) const
{
    return "Camera " + net::formatIpv4(m_address) + ", " + what + ": ";
}

void CameraPort::exchange(std::uint16_t requestId, const gvcp::Packet& packet, gvcp::Ack expected,
                          const std::string& what, const Accept& accept)
{
    m_misfits = 0;
    m_wasExtended = false;
    m_wasBusy = false;
    const auto start = Clock::now();
    Attempts attempts(m_plan, start);
    auto heartbeatAt = start + heartbeatInterval;
    auto now = start;
    for (; !attempts.isOver(now); now = Clock::now()) {
        if (attempts.isSendDue(now)) {
            send(packet, what);
            attempts.countSent();
        }
        if (attempts.wasExtended() && now >= heartbeatAt) {
            send(gvcp::encodeReadReg(m_heartbeatId, gvcp::Register::ControlChannelPrivilege), what);
            heartbeatAt = now + heartbeatInterval;
        }
        pollfd readable{.fd = m_socket.descriptor(), .events = POLLIN, .revents = 0};
        waitReadable({&readable, 1}, attempts.wasExtended() ? std::min(heartbeatAt, attempts.nextEvent())
                                                            : attempts.nextEvent());
        if (readable.revents != 0 && receive(requestId, expected, what, accept, attempts)) {
            return;
        }
    }
    m_wasExtended = attempts.wasExtended();
    if (m_wasBusy && !m_wasExtended) {
        raise<RefusalException>(prefix(what) + describeStatus(gvcp::Status::Busy));
    }
    const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(now - start).count();
    raise<GenICam::TimeoutException>(
        prefix(what) + "no answer within " + std::to_string(waited) + " ms" +
        (m_wasExtended ? ", though the camera had asked for more time" : "") +
        (m_misfits > 0 ? " (" + std::to_string(m_misfits) + " packets came that were no answer to this)"
                       : ""));
}

void CameraPort::send(const gvcp::Packet& packet, const std::string& what)
{
    int error = m_socket.send(packet);
    if (isEarlierPacketsError(error)) {
        error = m_socket.send(packet);
    }
    if (error != 0 && !isEarlierPacketsError(error) && !isTransientSendError(error)) {
        raise<SocketException>(prefix(what) + "this computer could not send it: " + describeErrno(error));
    }
    if (error != 0) {
        trace::requests(ozlog::LogLevel::Info, "%hs%hs", prefix(what).c_str(), describeErrno(error).c_str());
    }
}

bool CameraPort::receive(std::uint16_t requestId, gvcp::Ack expected, const std::string& what,
                         const Accept& accept, Attempts& attempts)
{
    std::array<std::uint8_t, gvcp::MaxPacketSize> buffer{};
    const auto datagram = m_socket.receive(buffer);
    if (!datagram) {
        return false;
    }
    const auto acknowledge = gvcp::decodeAcknowledge(datagram->bytes);
    if (!acknowledge || acknowledge->requestId != requestId) {
        m_misfits += acknowledge && acknowledge->requestId == m_heartbeatId ? 0 : 1;
        return false;
    }
    if (acknowledge->code == gvcp::Ack::Pending) {
        if (const auto more = gvcp::decodePendingAck(acknowledge->payload)) {
            attempts.extend(*more, Clock::now());
            m_wasBusy = false;
        }
        return false;
    }
    if (acknowledge->code == expected && acknowledge->status == gvcp::Status::AccessDenied) {
        raise<GenICam::AccessException>(prefix(what) + describeStatus(acknowledge->status));
    }
    m_wasBusy = acknowledge->code == expected && acknowledge->status == gvcp::Status::Busy;
    if (m_wasBusy) {
        return false; // one of the repeats may find it at leisure
    }
    if (acknowledge->code == expected && acknowledge->isRefusal()) {
        raise<RefusalException>(prefix(what) + describeStatus(acknowledge->status));
    }
    if (acknowledge->code != expected || !accept(acknowledge->payload)) {
        ++m_misfits;
        return false;
    }
    trace::requests(ozlog::LogLevel::Info, "%hsdone", prefix(what).c_str());
    return true;
}

} // namespace gige
