#include "camera/camera.h"

#include "gvcp/bytes.h"

#include <algorithm>
#include <utility>

namespace sim {

namespace {

using gvcp::Command;
using gvcp::Status;

bool changesSomething(const CommandMessage& command)
{
    return command.is(Command::WriteReg) || command.is(Command::WriteMem) || command.is(Command::ForceIp);
}

Message pendingAcknowledge(Duration left, std::uint16_t id)
{
    std::array<std::uint8_t, gvcp::PendingAck::Size> payload{};
    bytes::put16(payload, gvcp::PendingAck::Time,
                 static_cast<std::uint16_t>(std::min<Duration::rep>(left.count(), 0xFFFF)));
    return makeAcknowledge(Status::Success, static_cast<std::uint16_t>(gvcp::Ack::Pending), id, payload);
}

std::string modeText(std::uint32_t enabled)
{
    std::string text;
    text += (enabled & gvcp::IpConfig::Persistent) != 0 ? "static+" : "";
    text += (enabled & gvcp::IpConfig::Dhcp) != 0 ? "dhcp+" : "";
    return text + "lla";
}

std::string enabledText(std::uint32_t enabled)
{
    std::string text;
    text += (enabled & gvcp::IpConfig::Persistent) != 0 ? "persistent," : "";
    text += (enabled & gvcp::IpConfig::Dhcp) != 0 ? "dhcp," : "";
    text += (enabled & gvcp::IpConfig::PauseReception) != 0 ? "pause-reception," : "";
    text += (enabled & gvcp::IpConfig::PauseGeneration) != 0 ? "pause-generation," : "";
    return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

} // namespace

void Effects::clear()
{
    answers.clear();
    events.clear();
    hasNewAddress = false;
}

Camera::Camera(CameraConfig config, Instant now)
    : m_config(std::move(config)), m_registers(m_config), m_cycle(m_config, stored())
{
    if (m_config.inUse) {
        const InUse& use = *m_config.inUse;
        m_control.occupy(use.privilege, {use.by, 0}, use.duration ? now + *use.duration : never);
    }
    Effects unused;
    addressChanged(unused);
}

void Camera::receive(const Request& request, Instant now, Effects& effects)
{
    const std::optional<CommandMessage> command = parseCommand(request.bytes);
    if (isOffline() || !command || command->id == 0 ||
        (m_config.faults.muteToUnicast && !request.isBroadcast)) {
        return;
    }
    const CommandContext context{*command, request, now, effects};
    if (!command->isWellFormed) {
        // One malformed broadcast must not be answered by every camera.
        if (!request.isBroadcast) {
            m_payload.size = 0;
            acknowledge(context, {Status::InvalidHeader, "wrong key or length"}, addressing(), {});
        }
        return;
    }
    m_control.keepAlive(request.from, now, heartbeatTimeout());
    if (isForThisCamera(context) && !answerPending(context) && !answerRepeat(context)) {
        execute(context);
    }
}

bool Camera::isForThisCamera(const CommandContext& context) const
{
    const CommandMessage& command = context.command;
    const bool isBroadcast = context.request.isBroadcast;
    if (command.is(Command::Discovery)) {
        return !m_config.faults.muteToDiscovery && (!isBroadcast || command.payload.empty());
    }
    if (command.is(Command::ForceIp)) {
        return hasMac(command.payload, gvcp::ForceIp::Mac, m_config.mac);
    }
    if (command.is(Command::BroadcastIpConfig) && m_config.knowsBroadcastCommand) {
        return (m_config.faults.acknowledgeOthers != ForeignAck::Never &&
                command.payload.size() == gvcp::BroadcastIpConfig::Size) ||
               hasMac(command.payload, gvcp::BroadcastIpConfig::Mac, m_config.mac);
    }
    return !isBroadcast;
}

bool Camera::answerRepeat(const CommandContext& context)
{
    const Request& request = context.request;
    if (!m_lastExecuted || m_lastExecuted->from != request.from ||
        !std::equal(request.bytes.begin(), request.bytes.end(), m_lastExecuted->command.begin(),
                    m_lastExecuted->command.end())) {
        return false;
    }
    Answer answer = m_lastExecuted->answer;
    if (answer.message.size == 0) {
        return true;
    }
    if (m_config.faults.pendingAck > Duration::zero() && context.now < m_lastExecuted->readyAt) {
        // Still working: the answer to the first copy will serve this one as well.
        answer.message = pendingAcknowledge(
            std::chrono::ceil<Duration>(m_lastExecuted->readyAt - context.now), context.command.id);
    }
    answer.delay = m_config.faults.answerDelay;
    context.effects.answers.push_back(answer);
    return true;
}

bool Camera::answerPending(const CommandContext& context) const
{
    const auto pending = m_config.faults.onlyPending.find(static_cast<Command>(context.command.code));
    if (pending == m_config.faults.onlyPending.end()) {
        return false;
    }
    context.effects.answers.push_back(
        {pendingAcknowledge(pending->second, context.command.id), addressing()});
    return true;
}

bool Camera::acknowledgesWrite(const CommandMessage& command, Outcome& outcome) const
{
    if (!command.is(Command::WriteReg) || outcome.status != Status::Success) {
        return true;
    }
    const auto& misreported = m_config.faults.misreportedWrites;
    const auto found = misreported.find(bytes::get32(command.payload, 0));
    if (found == misreported.end()) {
        return true;
    }
    outcome = {found->second.value_or(Status::Success), "the write was done nevertheless"};
    return found->second.has_value();
}

void Camera::execute(const CommandContext& context)
{
    const auto& [command, request, now, effects] = context;
    const Faults& faults = m_config.faults;
    const Ipv4Settings before = addressing();
    const unsigned writesBefore = m_writes;
    const std::size_t answersBefore = effects.answers.size();
    m_payload.size = 0;
    if (command.is(Command::BroadcastIpConfig) && m_config.knowsBroadcastCommand) {
        answerMac(command.payload);
    }
    const auto refusal = faults.refusedCommands.find(static_cast<Command>(command.code));
    const bool isBusy = faults.busyAtFirst && !request.isBroadcast &&
                        std::exchange(m_lastUnicastId, command.id) != command.id;
    Outcome outcome = refusal != faults.refusedCommands.end()
                          ? Outcome{refusal->second, "the scene refuses this command"}
                      : isBusy ? Outcome{Status::Busy, "the camera is busy at first"}
                               : dispatch(context);
    const bool obeyed = command.is(Command::ForceIp) && outcome.status == Status::Success;
    const bool restarts = m_cycle.isRunning();
    const bool staysSilent =
        (obeyed && (restarts ? !faults.restartAck : faults.forceIpAck == ForceIpAck::Never)) ||
        !acknowledgesWrite(command, outcome);
    if (!staysSilent) {
        const bool fromOldAddress = restarts || faults.forceIpAck == ForceIpAck::OldAddress;
        const bool isSlow = m_writes > writesBefore && outcome.status == Status::Success;
        acknowledge(context, outcome, fromOldAddress ? before : addressing(),
                    isSlow ? faults.pendingAck : Duration::zero());
    }
    if (changesSomething(command) && outcome.status == Status::Success) {
        m_lastExecuted = {request.from, {request.bytes.begin(), request.bytes.end()}, {}, now};
        if (effects.answers.size() > answersBefore) {
            m_lastExecuted->answer = effects.answers.back();
            m_lastExecuted->readyAt = now + effects.answers.back().delay;
        }
    }
    if (faults.vanishAfterWrites && m_writes >= *faults.vanishAfterWrites) {
        vanish(effects);
    }
}

Camera::Outcome Camera::dispatch(const CommandContext& context)
{
    switch (static_cast<Command>(context.command.code)) {
    case Command::Discovery:
        return discover(context);
    case Command::ForceIp:
        return forceIp(context);
    case Command::ReadReg:
        return readRegisters(context);
    case Command::WriteReg:
        return writeRegisters(context);
    case Command::ReadMem:
        return readMemory(context);
    case Command::WriteMem:
        if (m_config.faults.knowsWriteMem) {
            return writeMemory(context);
        }
        break;
    case Command::BroadcastIpConfig:
        if (m_config.knowsBroadcastCommand) {
            return broadcastIpConfig(context);
        }
        break;
    }
    return {Status::NotImplemented, "unknown command"};
}

void Camera::acknowledge(const CommandContext& context, const Outcome& outcome, const Ipv4Settings& source,
                         Duration work)
{
    const CommandMessage& command = context.command;
    if (outcome.status != Status::Success) {
        reportRefusal(context, outcome);
    }
    if (!command.ackRequired) {
        return;
    }
    const Faults& faults = m_config.faults;
    const bool isBroadcastCommand = command.is(Command::Discovery) || command.is(Command::ForceIp) ||
                                    command.is(Command::BroadcastIpConfig);
    Answer answer;
    answer.source = source;
    answer.allowBroadcast = command.allowBroadcastAck && isBroadcastCommand && !faults.ignoreBroadcastAckFlag;
    answer.delay = command.is(Command::Discovery) ? faults.discoveryDelay : faults.answerDelay;
    if (work > Duration::zero()) {
        answer.message = pendingAcknowledge(work, command.id);
        context.effects.answers.push_back(answer);
        answer.delay += work;
        if (faults.neverConfirms) {
            return;
        }
    }
    answer.message = makeAcknowledge(outcome.status, static_cast<std::uint16_t>(command.code + 1), command.id,
                                     m_payload.all());
    context.effects.answers.push_back(answer);
}

void Camera::reportRefusal(const CommandContext& context, const Outcome& outcome) const
{
    context.effects.events.push_back(event("refused")
                                         .add("command", commandName(context.command.code))
                                         .add("status", hex16(static_cast<std::uint16_t>(outcome.status)))
                                         .addQuoted("reason", outcome.reason));
}

void Camera::vanish(Effects& effects)
{
    m_hasVanished = true;
    effects.hasNewAddress = true;
    effects.events.push_back(event("vanished"));
}

void Camera::advance(Instant now, Effects& effects)
{
    if (m_hasVanished) {
        return;
    }
    const net::Ipv4 holder = m_control.holder().address;
    if (m_control.expireIfDue(now)) {
        controlChanged(holder, "heartbeat", effects);
    }
    if (now >= m_forcedNextAt) {
        applyForcedAddress(m_forcedNext, effects);
    }
    if (!m_cycle.isRunning() || !m_cycle.advance(now, stored())) {
        return;
    }
    if (m_config.faults.vanishAfterRestart) {
        vanish(effects);
        return;
    }
    addressChanged(effects);
    effects.events.push_back(event("restarted")
                                 .add("mode", modeName(m_cycle.mode()))
                                 .add("ip", addressing().ip)
                                 .add("mask", addressing().mask)
                                 .add("gateway", addressing().gateway));
}

Instant Camera::nextDeadline() const
{
    return m_hasVanished ? never : std::min({m_control.deadline(), m_cycle.deadline(), m_forcedNextAt});
}

void Camera::restart(Instant now, Effects& effects)
{
    if (m_control.isHeld()) {
        const net::Ipv4 holder = m_control.holder().address;
        m_control.release();
        controlChanged(holder, "restart", effects);
    }
    m_forcedNextAt = never;
    m_cycle.restart(now);
    effects.hasNewAddress = true;
}

void Camera::applyForcedAddress(const Ipv4Settings& settings, Effects& effects)
{
    m_forcedNextAt = never;
    m_cycle.force(settings);
    addressChanged(effects);
    effects.events.push_back(
        event("forced").add("ip", settings.ip).add("mask", settings.mask).add("gateway", settings.gateway));
}

void Camera::addressChanged(Effects& effects)
{
    m_registers.set(gvcp::Register::CurrentIp, addressing().ip.value);
    m_registers.set(gvcp::Register::CurrentMask, addressing().mask.value);
    m_registers.set(gvcp::Register::CurrentGateway, addressing().gateway.value);
    m_registers.set(gvcp::Register::ControlChannelPrivilege, m_control.privilege());
    m_registers.set(gvcp::Register::PrimaryApplicationIp, m_control.holder().address.value);
    effects.hasNewAddress = true;
}

void Camera::controlChanged(net::Ipv4 by, const char* reason, Effects& effects)
{
    m_registers.set(gvcp::Register::ControlChannelPrivilege, m_control.privilege());
    m_registers.set(gvcp::Register::PrimaryApplicationPort, m_control.holder().port);
    m_registers.set(gvcp::Register::PrimaryApplicationIp, m_control.holder().address.value);
    effects.events.push_back(event("controlled")
                                 .add("by", by)
                                 .add("privilege", privilegeName(m_control.privilege()))
                                 .add("reason", reason));
}

void Camera::reportConfiguration(const char* by, const char* what, Effects& effects) const
{
    const StoredIpConfig now = stored();
    effects.events.push_back(
        event("configured")
            .add("by", by)
            .add("what", what)
            .add("mode", modeText(now.enabled))
            .add("persistent-ip", now.persistent.ip)
            .add("persistent-mask", now.persistent.mask)
            .add("persistent-gateway", now.persistent.gateway)
            .addQuoted("name", m_registers.text(gvcp::Register::UserDefinedName,
                                                gvcp::DiscoveryAck::UserDefinedNameSize)));
}

EventLine Camera::state() const
{
    const StoredIpConfig now = stored();
    return event("state")
        .add("mac", net::formatMac(m_config.mac))
        .add("ip", addressing().ip)
        .add("mask", addressing().mask)
        .add("gateway", addressing().gateway)
        .add("mode", modeName(m_cycle.mode()))
        .add("enabled", enabledText(now.enabled))
        .add("persistent-ip", now.persistent.ip)
        .add("persistent-mask", now.persistent.mask)
        .add("persistent-gateway", now.persistent.gateway)
        .addQuoted("name",
                   m_registers.text(gvcp::Register::UserDefinedName, gvcp::DiscoveryAck::UserDefinedNameSize))
        .add("control", privilegeName(m_control.privilege()));
}

Duration Camera::heartbeatTimeout() const
{
    return Duration(m_registers.get(gvcp::Register::HeartbeatTimeout));
}

StoredIpConfig Camera::stored() const
{
    using namespace gvcp;
    return {m_registers.get(Register::IpConfigCurrent),
            {{m_registers.get(Register::PersistentIp)},
             {m_registers.get(Register::PersistentMask)},
             {m_registers.get(Register::PersistentGateway)}}};
}

EventLine Camera::event(std::string_view word) const
{
    return EventLine(word).add("camera", m_config.name);
}

} // namespace sim
