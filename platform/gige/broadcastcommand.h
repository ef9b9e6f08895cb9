#pragma once

#include "gige/attempts.h"
#include "gige/codec.h"

#include <optional>
#include <vector>

namespace gige {

/// For commands that cameras acknowledge: half a second.
[[nodiscard]] RetryPlan acknowledgedPlan();
/// For a restart, which few cameras acknowledge, so that the whole time is waited as a rule: as many sends in
/// a fifth of a second. Rediscovery tells whether the camera heard one.
[[nodiscard]] RetryPlan restartPlan();

/// Sends a command that names its camera by MAC to all networks of this host, and repeats it until the camera
/// acknowledges, or the plan is over. Gives the camera's status, or nullopt when it was silent. An
/// answer counts only when it comes from one of `sources`; an empty list stands for any address, where nobody
/// knows the camera's. (Cameras that do not know a command may answer it although it names another one.)
/// Throws RuntimeException when no adapter of this host could send.
[[nodiscard]] std::optional<gvcp::Status> broadcastCommand(std::uint16_t requestId,
                                                           const gvcp::Packet& packet, gvcp::Ack expected,
                                                           const std::vector<net::Ipv4>& sources,
                                                           const RetryPlan& plan);

} // namespace gige
