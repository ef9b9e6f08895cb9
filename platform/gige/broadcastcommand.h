#pragma once

#include "gige/attempts.h"
#include "gige/codec.h"

#include <optional>
#include <set>

namespace gige {

/// For commands that cameras acknowledge: half a second.
[[nodiscard]] RetryPlan acknowledgedPlan();
/// For a restart, which few cameras acknowledge, so that the whole time is waited as a rule: as many sends in
/// a fifth of a second. Rediscovery tells whether the camera heard one.
[[nodiscard]] RetryPlan restartPlan();

/// From where a camera may answer a command that names it by MAC. Cameras that do not know a command may
/// answer it although it names another one; and a camera may have another address by now than where it was
/// heard.
struct Answerers
{
    std::set<net::Ipv4> camera; // where the camera was heard, or will be; empty when nobody knows
    std::set<net::Ipv4> others; // where other cameras were heard; what is in both is the camera's
};

/// Sends a command that names its camera by MAC to all networks of this host, and repeats it until the camera
/// acknowledges, or the plan is over. Gives the camera's status, or nullopt when it was silent. What another
/// camera's address says does not count, nor a refusal from an address of nobody, unless the camera's is
/// unknown. Throws RuntimeException when no adapter of this host could send.
[[nodiscard]] std::optional<gvcp::Status> broadcastCommand(std::uint16_t requestId,
                                                           const gvcp::Packet& packet, gvcp::Ack expected,
                                                           const Answerers& answerers, const RetryPlan& plan);

} // namespace gige
