#pragma once

#include "attempts.h"
#include "request.h"
#include "tessal/failure.h"

#include <optional>
#include <set>

namespace gige {

/// For commands that cameras acknowledge: half a second.
[[nodiscard]] RetryPlan acknowledgedPlan();
/// For a restart: as many sends in a fifth of a second, because few cameras acknowledge it and the wait is
/// usually in vain. Rediscovery shows whether the camera received one.
[[nodiscard]] RetryPlan restartPlan();

/// The addresses from which a camera may answer a command that names it by MAC. Other devices may answer it
/// as well, and the camera may have changed its address since it was heard.
struct ExpectedSources
{
    std::set<net::Ipv4> camera; // where the camera was heard, or will be; empty if that is unknown
    std::set<net::Ipv4> others; // where other cameras were heard; an address in both is the camera's
};

/// Broadcasts a command that names its camera by MAC on all networks of this host, and repeats it until the
/// camera acknowledges it or the plan is over. Returns the camera's status, or nullopt if it did not answer.
/// Answers from another camera's address do not count. Those from an address where no camera was heard count
/// if they name the camera, or if the camera's address is unknown. After a success it waits for another 100
/// ms in case the camera itself refuses what some other device has acknowledged: a refusal outweighs a
/// success. Throws RuntimeException with the values of `failure` if no adapter of this host could send.
[[nodiscard]] std::optional<gvcp::Status> broadcastCommand(const Request& request,
                                                           const ExpectedSources& sources,
                                                           const RetryPlan& plan, Tessal::Failure failure);

} // namespace gige
