#pragma once

#include "gige/codec.h"
#include "gige/hostadapters.h"

#include <vector>

namespace gige {

/// One camera as one host address heard it.
struct FoundCamera
{
    gvcp::Identity identity;
    HostAddress heardBy;
    bool answersUnicast = false;
    int accessibility = 0; // a Tessal::Accessibility code
};

/// Asks for cameras on all networks of this host at once, and asks each that answers over unicast who
/// controls it. Returns them in the order of the host's addresses, then of their MACs; empty also when no
/// adapter of this host can send. Takes 460 ms, however many cameras there are, and up to 700 ms when one
/// that was found late is slow to answer over unicast. Where questions go unanswered more are asked in that
/// time; where a camera is first heard after more than 280 ms, all get a second, and up to 1.5 s for unicast.
///
/// An address that two cameras claim counts as not reachable: nobody can tell which of them a packet gets to.
[[nodiscard]] std::vector<FoundCamera> searchCameras();

} // namespace gige
