#include "camera/camera.h"
#include "gvcp/bytes.h"

#include <algorithm>

namespace sim {

namespace {

using gvcp::RegisterSize;
using gvcp::Status;

bool isUsableAddress(net::Ipv4 ip)
{
    const std::uint32_t first = ip.value >> 24;
    return first != 0 && first != 127 && first < 224;
}

const char* reasonOf(Status status)
{
    switch (status) {
    case Status::InvalidAddress:
        return "no such register";
    case Status::WriteProtected:
        return "the register is read-only";
    case Status::AccessDenied:
        return "another application holds control";
    case Status::InvalidParameter:
        return "invalid value";
    default:
        return "";
    }
}

/// The status with which the scene refuses one of the words from `address` on.
Status refusal(const std::map<std::uint32_t, Status>& refused, std::uint32_t address, std::size_t size)
{
    const auto found = refused.lower_bound(address);
    return found != refused.end() && found->first < address + size ? found->second : Status::Success;
}

bool isInName(std::uint32_t address)
{
    return address >= gvcp::Register::UserDefinedName &&
           address < gvcp::Register::UserDefinedName + gvcp::DiscoveryAck::UserDefinedNameSize;
}

const char* settingAt(std::uint32_t address)
{
    switch (address) {
    case gvcp::Register::IpConfigCurrent:
        return "mode";
    case gvcp::Register::PersistentIp:
    case gvcp::Register::PersistentMask:
    case gvcp::Register::PersistentGateway:
        return "address";
    default:
        return isInName(address) ? "name" : nullptr;
    }
}

} // namespace

Camera::Outcome Camera::discover(const CommandContext& context)
{
    const auto& [command, request, now, effects] = context;
    if (!command.payload.empty()) {
        return {Status::InvalidParameter, "a discovery has no payload"};
    }
    const std::pair search(request.from, command.id);
    if (command.ackRequired &&
        std::find(m_lastSearches.begin(), m_lastSearches.end(), search) == m_lastSearches.end()) {
        m_lastSearches[m_nextSearch] = search;
        m_nextSearch = (m_nextSearch + 1) % m_lastSearches.size();
        effects.events.push_back(event("found")
                                     .add("mac", net::formatMac(m_config.mac))
                                     .add("from", net::formatIpv4(request.from.address) + ":" +
                                                      std::to_string(request.from.port)));
    }
    m_payload.size = gvcp::DiscoveryAck::Size;
    m_registers.read(0, m_payload.all());
    return {};
}

Camera::Outcome Camera::forceIp(const CommandContext& context)
{
    const auto payload = context.command.payload;
    if (payload.size() != gvcp::ForceIp::Size) {
        return {Status::InvalidParameter, "wrong length"};
    }
    if (m_control.isHeldByOtherThan(context.request.from)) {
        return {Status::AccessDenied, reasonOf(Status::AccessDenied)};
    }
    Ipv4Settings wanted{{bytes::get32(payload, gvcp::ForceIp::Ip)},
                        {bytes::get32(payload, gvcp::ForceIp::Mask)},
                        {bytes::get32(payload, gvcp::ForceIp::Gateway)}};
    if (wanted.ip.value == 0) {
        restart(context.now, context.effects);
        return {};
    }
    if (!isUsableAddress(wanted.ip) || !net::isContiguousMask(wanted.mask)) {
        return {Status::InvalidParameter, "not an address for a camera"};
    }
    const Faults& faults = m_config.faults;
    wanted.ip = faults.forceIpTakes.value_or(wanted.ip);
    if (faults.forceIpDelay > Duration::zero()) {
        m_forcedNext = wanted;
        m_forcedNextAt = context.now + faults.forceIpDelay;
    } else if (!faults.ignoreForceIp) {
        applyForcedAddress(wanted, context.effects);
    }
    return {};
}

Camera::Outcome Camera::checkRead(std::uint32_t address, std::size_t size, Endpoint from) const
{
    if (address % RegisterSize != 0 || size % RegisterSize != 0) {
        return {Status::BadAlignment, "address and length must be multiples of four"};
    }
    if (const Status status = m_registers.checkRead(address, size); status != Status::Success) {
        return {status, reasonOf(status)};
    }
    if (const Status status = refusal(m_config.faults.refusedReads, address, size);
        status != Status::Success) {
        return {status, "the scene refuses this register"};
    }
    const bool isPrivilege = address == gvcp::Register::ControlChannelPrivilege && size == RegisterSize;
    if (m_control.privilege() & gvcp::Privilege::Exclusive && m_control.isHeldByOtherThan(from) &&
        !isPrivilege) {
        return {Status::AccessDenied, "another application has exclusive access"};
    }
    return {};
}

Camera::Outcome Camera::readRegisters(const CommandContext& context)
{
    const auto payload = context.command.payload;
    if (payload.empty() || payload.size() % RegisterSize != 0 || payload.size() > gvcp::MaxDataSize) {
        return {Status::InvalidParameter, "wrong length"};
    }
    for (std::size_t at = 0; at < payload.size(); at += RegisterSize) {
        const std::uint32_t address = bytes::get32(payload, at);
        if (address >= DescriptionAddress) {
            return {Status::InvalidAddress, "the address is memory, not a register"};
        }
        if (const Outcome outcome = checkRead(address, RegisterSize, context.request.from);
            outcome.status != Status::Success) {
            return outcome; // With the values read so far.
        }
        m_payload.size = at + RegisterSize;
        m_registers.read(address, m_payload.all().subspan(at, RegisterSize));
    }
    return {};
}

Camera::Outcome Camera::readMemory(const CommandContext& context)
{
    const auto payload = context.command.payload;
    if (payload.size() != gvcp::ReadMem::Size) {
        return {Status::InvalidParameter, "wrong length"};
    }
    const std::uint32_t address = bytes::get32(payload, gvcp::ReadMem::Address);
    const std::size_t count = bytes::get16(payload, gvcp::ReadMem::Count);
    if (count == 0 || count > gvcp::MaxDataSize) {
        return {Status::InvalidParameter, "wrong number of bytes"};
    }
    if (const Outcome outcome = checkRead(address, count, context.request.from);
        outcome.status != Status::Success) {
        return outcome;
    }
    m_payload.size = RegisterSize + count;
    bytes::put32(m_payload.all(), 0, address);
    m_registers.read(address, m_payload.all().subspan(RegisterSize));
    return {};
}

Camera::Outcome Camera::checkWrite(std::uint32_t address, Endpoint from) const
{
    if (address % RegisterSize != 0) {
        return {Status::BadAlignment, "the address is not a multiple of four"};
    }
    if (const Status status = m_registers.checkWrite(address, RegisterSize); status != Status::Success) {
        return {status, reasonOf(status)};
    }
    if (const Status status = refusal(m_config.faults.refusedWrites, address, RegisterSize);
        status != Status::Success) {
        return {status, "the scene refuses this register"};
    }
    if (address != gvcp::Register::ControlChannelPrivilege && !m_control.isHeldBy(from)) {
        return {Status::AccessDenied,
                m_control.isHeld() ? reasonOf(Status::AccessDenied) : "the sender does not have control"};
    }
    return {};
}

Camera::Outcome Camera::writeWord(std::uint32_t address, std::uint32_t value, const CommandContext& context)
{
    if (const Outcome outcome = checkWrite(address, context.request.from);
        outcome.status != Status::Success) {
        return outcome;
    }
    const Faults& faults = m_config.faults;
    if (faults.forgottenWrites.contains(address)) {
        return {};
    }
    switch (address) {
    case gvcp::Register::ControlChannelPrivilege:
        return writePrivilege(value, context);
    case gvcp::Register::IpConfigCurrent:
        if ((value & ~m_registers.get(gvcp::Register::IpConfigSupported)) != 0) {
            return {Status::InvalidParameter, "mode not supported"};
        }
        m_registers.set(address, (value | gvcp::IpConfig::LinkLocal) ^
                                     (faults.togglesPause ? gvcp::IpConfig::PauseGeneration : 0));
        break;
    case gvcp::Register::HeartbeatTimeout:
        if (value == 0) {
            return {Status::InvalidParameter, reasonOf(Status::InvalidParameter)};
        }
        m_registers.set(address, value);
        m_control.keepAlive(context.request.from, context.now, heartbeatTimeout());
        break;
    default:
        m_registers.set(address, value);
    }
    return {};
}

Camera::Outcome Camera::writePrivilege(std::uint32_t value, const CommandContext& context)
{
    const Endpoint from = context.request.from;
    const std::uint32_t before = m_control.privilege();
    const Status status = m_control.write(from, value, context.now, heartbeatTimeout());
    if (status == Status::Success && before != m_control.privilege()) {
        controlChanged(from.address, "written", context.effects);
    }
    return {status, reasonOf(status)};
}

Camera::Outcome Camera::writeRegisters(const CommandContext& context)
{
    const auto payload = context.command.payload;
    constexpr std::size_t pairSize = std::size_t{2} * RegisterSize;
    if (payload.empty() || payload.size() % pairSize != 0 || payload.size() > gvcp::MaxDataSize) {
        return {Status::InvalidParameter, "wrong length"};
    }
    for (std::size_t at = 0; at < payload.size(); at += pairSize) {
        const auto data = payload.subspan(at + RegisterSize, RegisterSize);
        std::size_t done = 0;
        const Outcome outcome = writeWords(data, bytes::get32(payload, at), context, done);
        answerIndex(at / pairSize + done / RegisterSize);
        if (outcome.status != Status::Success) {
            return outcome;
        }
    }
    return {};
}

Camera::Outcome Camera::writeMemory(const CommandContext& context)
{
    const auto payload = context.command.payload;
    if (payload.size() <= RegisterSize || payload.size() > RegisterSize + gvcp::MaxDataSize) {
        return {Status::InvalidParameter, "wrong length"};
    }
    const auto data = payload.subspan(RegisterSize);
    if (data.size() % RegisterSize != 0) {
        return {Status::BadAlignment, "the length is not a multiple of four"};
    }
    std::size_t done = 0;
    const Outcome outcome = writeWords(data, bytes::get32(payload, 0), context, done);
    answerIndex(done);
    return outcome;
}

Camera::Outcome Camera::writeWords(std::span<const std::uint8_t> data, std::uint32_t address,
                                   const CommandContext& context, std::size_t& done)
{
    Outcome outcome;
    const char* changed = nullptr;
    while (done < data.size() && outcome.status == Status::Success) {
        const std::uint32_t at = address + static_cast<std::uint32_t>(done);
        outcome = writeWord(at, bytes::get32(data, done), context);
        if (outcome.status == Status::Success) {
            changed = settingAt(at) != nullptr ? settingAt(at) : changed;
            done += RegisterSize;
        }
    }
    m_writes += done > 0 && address != gvcp::Register::ControlChannelPrivilege ? 1 : 0;
    if (changed != nullptr) {
        reportConfiguration("register", changed, context.effects);
    }
    return outcome;
}

Camera::Outcome Camera::broadcastIpConfig(const CommandContext& context)
{
    const auto payload = context.command.payload;
    namespace Field = gvcp::BroadcastIpConfig;
    if (!hasMac(payload, Field::Mac, m_config.mac)) {
        return {}; // The scene has it acknowledge a command to another camera.
    }
    if (!m_config.broadcastCommand) {
        return {Status::NotImplemented, "the command is switched off"};
    }
    if (payload.size() != Field::Size) {
        return {Status::InvalidParameter, "wrong length"};
    }
    const std::uint32_t mode = bytes::get32(payload, Field::IpConfig);
    if ((mode & ~m_registers.get(gvcp::Register::IpConfigSupported)) != 0) {
        return {Status::InvalidParameter, "mode not supported"};
    }
    if (m_control.isHeldByOtherThan(context.request.from)) {
        return {Status::AccessDenied, reasonOf(Status::AccessDenied)};
    }
    m_registers.set(gvcp::Register::IpConfigCurrent, mode | gvcp::IpConfig::LinkLocal);
    m_registers.set(gvcp::Register::PersistentIp, bytes::get32(payload, Field::Ip));
    m_registers.set(gvcp::Register::PersistentMask, bytes::get32(payload, Field::Mask));
    m_registers.set(gvcp::Register::PersistentGateway, bytes::get32(payload, Field::Gateway));
    if (m_registers.hasWritableName()) {
        for (std::size_t at = 0; at < Field::UserDefinedNameSize; at += RegisterSize) {
            m_registers.set(gvcp::Register::UserDefinedName + static_cast<std::uint32_t>(at),
                            bytes::get32(payload, Field::UserDefinedName + at));
        }
    }
    reportConfiguration("broadcast", "all", context.effects);
    return {};
}

void Camera::answerMac(std::span<const std::uint8_t> command)
{
    namespace Field = gvcp::BroadcastIpConfig;
    const bool isForAnother = !hasMac(command, Field::Mac, m_config.mac);
    const ForeignAck manner = isForAnother ? m_config.faults.acknowledgeOthers : ForeignAck::AsItself;
    if (manner == ForeignAck::Nameless) {
        return;
    }
    const std::span<const std::uint8_t> own = m_config.mac.bytes;
    const auto mac = manner == ForeignAck::AsThatCamera ? command.subspan(Field::Mac, own.size()) : own;
    m_payload.size = gvcp::BroadcastIpConfigAck::Size;
    bytes::put16(m_payload.all(), 0, 0);
    std::copy(mac.begin(), mac.end(), m_payload.all().begin() + gvcp::BroadcastIpConfigAck::Mac);
}

void Camera::answerIndex(std::size_t index)
{
    if (m_config.faults.emptyWriteAcks) {
        m_payload.size = 0;
        return;
    }
    m_payload.size = gvcp::WriteAck::Size;
    bytes::put16(m_payload.all(), 0, 0);
    bytes::put16(m_payload.all(), gvcp::WriteAck::Index, static_cast<std::uint16_t>(index));
}

} // namespace sim
