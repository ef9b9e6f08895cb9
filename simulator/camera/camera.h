#pragma once

#include "camera/cameraconfig.h"
#include "camera/controlchannel.h"
#include "camera/ipcycle.h"
#include "camera/message.h"
#include "camera/registerspace.h"
#include "events.h"

#include <array>
#include <vector>

namespace sim {

/// A datagram that reached the camera's GVCP port.
struct Request
{
    Endpoint from;
    bool isBroadcast = false;
    std::span<const std::uint8_t> bytes;
};

/// An acknowledge on its way out.
struct Answer
{
    Message message;
    Ipv4Settings source; // the address that it is sent from, with its subnet and gateway
    bool allowBroadcast = false;
    Duration delay{};
};

/// What a command or the passing of time causes. The camera appends; the caller acts on it and clears it.
struct Effects
{
    std::vector<Answer> answers;
    std::vector<EventLine> events;
    bool hasNewAddress = false;

    void clear();
};

/// A camera behind its GVCP port: discovery, forced addresses, registers and the control privilege, the
/// maker's broadcast command, the IP configuration cycle. It has no socket and no clock.
class Camera
{
public:
    Camera(CameraConfig config, Instant now);

    void receive(const Request& request, Instant now, Effects& effects);
    /// Does what is due by `now`, such as the end of a restart or the expiry of control.
    void advance(Instant now, Effects& effects);
    /// When `advance` has something to do next, or `never`.
    [[nodiscard]] Instant nextDeadline() const;

    [[nodiscard]] const CameraConfig& config() const { return m_config; }
    [[nodiscard]] const Ipv4Settings& addressing() const { return m_cycle.current(); }
    /// Restarting or gone for good: does not even answer ARP.
    [[nodiscard]] bool isOffline() const { return m_hasVanished || m_cycle.isRunning(); }
    [[nodiscard]] EventLine state() const;

private:
    /// The result of a command. The handler leaves the payload of its acknowledge in `m_payload`.
    struct Outcome
    {
        gvcp::Status status = gvcp::Status::Success;
        const char* reason = "";
    };
    /// A command that is being handled: the datagram that brought it, the time, and what it causes.
    struct CommandContext
    {
        const CommandMessage& command;
        const Request& request;
        Instant now;
        Effects& effects;
    };
    struct Executed
    {
        Endpoint from;
        std::vector<std::uint8_t> command;
        Answer answer;
        Instant readyAt;
    };

    [[nodiscard]] bool isForThisCamera(const CommandContext& context) const;
    /// Answers a repeated command as its first copy was answered.
    [[nodiscard]] bool answerRepeat(const CommandContext& context);
    /// Answers PENDING_ACK alone if the scene says so.
    [[nodiscard]] bool answerPending(const CommandContext& context) const;
    void execute(const CommandContext& context);
    [[nodiscard]] Outcome dispatch(const CommandContext& context);
    /// Whether a write that was done is acknowledged at all; if so, `outcome` is what the camera reports.
    [[nodiscard]] bool acknowledgesWrite(const CommandMessage& command, Outcome& outcome) const;
    /// `work` is how long the answer takes beyond the usual; unless zero, a PENDING_ACK precedes it.
    void acknowledge(const CommandContext& context, const Outcome& outcome, const Ipv4Settings& source,
                     Duration work);
    void reportRefusal(const CommandContext& context, const Outcome& outcome) const;
    void vanish(Effects& effects);

    Outcome discover(const CommandContext& context);
    Outcome forceIp(const CommandContext& context);
    Outcome readRegisters(const CommandContext& context);
    Outcome writeRegisters(const CommandContext& context);
    Outcome readMemory(const CommandContext& context);
    Outcome writeMemory(const CommandContext& context);
    Outcome broadcastIpConfig(const CommandContext& context);

    [[nodiscard]] Outcome checkRead(std::uint32_t address, std::size_t size, Endpoint from) const;
    [[nodiscard]] Outcome checkWrite(std::uint32_t address, Endpoint from) const;
    Outcome writeWord(std::uint32_t address, std::uint32_t value, const CommandContext& context);
    Outcome writePrivilege(std::uint32_t value, const CommandContext& context);
    /// Writes word by word; `done` counts the bytes written before the first refusal.
    Outcome writeWords(std::span<const std::uint8_t> data, std::uint32_t address,
                       const CommandContext& context, std::size_t& done);

    void restart(Instant now, Effects& effects);
    void applyForcedAddress(const Ipv4Settings& settings, Effects& effects);
    void addressChanged(Effects& effects);
    void controlChanged(net::Ipv4 by, const char* reason, Effects& effects);
    void reportConfiguration(const char* by, const char* what, Effects& effects) const;
    /// Fills the payload with the MAC address that acknowledges the maker's broadcast command.
    void answerMac(std::span<const std::uint8_t> command);
    void answerIndex(std::size_t index);
    [[nodiscard]] Duration heartbeatTimeout() const;
    [[nodiscard]] StoredIpConfig stored() const;
    [[nodiscard]] EventLine event(std::string_view word) const;

    CameraConfig m_config;
    RegisterSpace m_registers;
    ControlChannel m_control;
    IpCycle m_cycle;
    bool m_hasVanished = false;
    Ipv4Settings m_forcedNext; // temporary address that takes effect at the time below
    Instant m_forcedNextAt = never;
    unsigned m_writes = 0; // of registers or blocks, without the privilege
    std::optional<Executed> m_lastExecuted;
    std::uint16_t m_lastUnicastId = 0; // request id of the latest unicast command
    std::array<std::pair<Endpoint, std::uint16_t>, 8> m_lastSearches{}; // source and request id
    std::size_t m_nextSearch = 0;
    Message m_payload;
};

} // namespace sim
