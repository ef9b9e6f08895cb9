#pragma once

#include "camera/description.h"
#include "camera/time.h"
#include "gvcp/gvcp.h"
#include "net/addresses.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace sim {

struct Ipv4Settings
{
    net::Ipv4 ip;
    net::Ipv4 mask;
    net::Ipv4 gateway;

    friend bool operator==(const Ipv4Settings&, const Ipv4Settings&) = default;
};

/// The texts of the discovery data, each no longer than its field.
struct Identity
{
    std::string vendor;
    std::string model;
    std::string version;
    std::string info;
    std::string serial;
    std::string userId;
};

/// Another application that controls the camera from the start.
struct InUse
{
    std::uint32_t privilege = gvcp::Privilege::Control;
    net::Ipv4 by;
    std::optional<Duration> duration; // absent: for ever
};

/// How a device acknowledges the maker's broadcast command to another camera.
enum class ForeignAck { Never, Nameless, AsItself, AsThatCamera };
enum class ForceIpAck { NewAddress, OldAddress, Never };
enum class CorruptAnswer { No, Garbage, Truncated, WrongId, WrongLength, Surplus, LongPayload };

/// The faults of a camera, or of the line to it.
struct Faults
{
    Duration discoveryDelay{};
    Duration answerDelay{};
    Duration work{}; // for each answer, one after another
    bool muteToUnicast = false;
    bool muteToDiscovery = false;
    bool ignoreBroadcastAckFlag = false;
    bool vanishAfterRestart = false;
    std::vector<unsigned> losePackets; // counted from 1, of the requests that reach the camera
    unsigned repeatAnswers = 0;        // further copies of each answer
    double lossPercent = 0;            // of requests and of answers
    CorruptAnswer answerWith = CorruptAnswer::No;
    std::map<gvcp::Command, gvcp::Status> refusedCommands;
    std::map<std::uint32_t, gvcp::Status> refusedWrites; // by register address
    std::map<std::uint32_t, gvcp::Status> refusedReads;
    std::map<std::uint32_t, std::optional<gvcp::Status>> misreportedWrites; // done; absent: not acknowledged
    std::set<std::uint32_t> forgottenWrites;                                // acknowledged but not done
    std::map<gvcp::Command, Duration> onlyPending; // never done; each answer asks for more time
    bool emptyWriteAcks = false;                   // confirm the write without the number of words
    bool knowsWriteMem = true;
    bool togglesPause = false; // a write of the mode toggles the generation of pause frames
    ForceIpAck forceIpAck = ForceIpAck::NewAddress;
    bool ignoreForceIp = false;            // acknowledges a temporary address and keeps its own
    std::optional<net::Ipv4> forceIpTakes; // takes this address instead of the given one
    Duration forceIpDelay{};               // takes it that long after the acknowledge
    bool restartAck = false;
    ForeignAck acknowledgeOthers = ForeignAck::Never;
    bool busyAtFirst = false;   // refuses each register access as busy once, and does it when repeated
    bool neverConfirms = false; // a slow write is done, but only PENDING_ACK is sent
    Duration pendingAck{};      // zero: writes are fast and need no PENDING_ACK
    std::optional<unsigned> vanishAfterWrites; // writes of anything but the privilege
};

/// One camera of a scene.
struct CameraConfig
{
    std::string name;
    net::MacAddress mac;
    std::optional<net::MacAddress> interfaceMac; // the source of its frames, if it differs from `mac`
    Identity identity;
    std::uint32_t supported = gvcp::IpConfig::Persistent | gvcp::IpConfig::Dhcp | gvcp::IpConfig::LinkLocal;
    std::uint32_t enabled = gvcp::IpConfig::LinkLocal;
    Ipv4Settings persistent;
    std::optional<Ipv4Settings> lease; // absent: no DHCP server answers
    net::Ipv4 linkLocal;
    std::optional<Ipv4Settings> forced;
    Duration restart{300};
    Duration dhcpTimeout{2000};
    Duration heartbeatTimeout{gvcp::DefaultHeartbeatTimeout};
    bool broadcastCommand = true;      // false: switched off
    bool knowsBroadcastCommand = true; // false: a camera of another maker
    std::optional<InUse> inUse;
    Faults faults;
    std::shared_ptr<const Description> description;
};

} // namespace sim
