#pragma once

#include "attempts.h"
#include "request.h"
#include "tessal/failure.h"

#include <optional>
#include <set>

namespace gige {

/// For commands that cameras acknowledge: half a second.
[[nodiscard]] RetryPlan acknowledgedPlan();
/// For a restart, which few cameras acknowledge, so that the whole time is waited as a rule: as many sends in
/// a fifth of a second. Rediscovery tells whether the camera heard one.
[[nodiscard]] RetryPlan restartPlan();

/// From where a camera may answer a command that names it by MAC. Other devices may answer it as well, and a
/// camera may have another address by now than where it was heard.
struct ExpectedSources
{
    std::set<net::Ipv4> camera; // where the camera was heard, or will be; empty if that is unknown
    std::set<net::Ipv4> others; // where other cameras were heard; what is in both is the camera's
};

/// Sends a command that names its camera by MAC to all networks of this host, and repeats it until the camera
/// acknowledges, or the plan is over. Gives the camera's status, or nullopt when it was silent. What comes
/// from another camera's address does not count. What comes from an address where no camera was heard counts
/// if it names the camera, or if the camera's address is unknown. After a success it waits for 100 ms, in
/// case the camera itself refuses what some other device has acknowledged: a refusal outweighs. Throws
/// RuntimeException with the values of `failure` when no adapter of this host could send.
[[nodiscard]] std::optional<gvcp::Status> broadcastCommand(const Request& request,
                                                           const ExpectedSources& sources,
                                                           const RetryPlan& plan, Tessal::Failure failure);

} // namespace gige
