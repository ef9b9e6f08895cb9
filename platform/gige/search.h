#pragma once

#include "gige/broadcaster.h"
#include "gige/codec.h"
#include "gige/hostadapters.h"

#include <memory>
#include <set>
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

/// What searches leave for later ones, so that a camera that answers when nobody listens any more is heard at
/// the next.
struct SearchHistory
{
    int slowSearches = 0;               // how many more give all cameras the time that some camera needed
    std::unique_ptr<Broadcaster> asked; // through which the latest search asked; null while someone is slow
    std::uint16_t requestId = 0;        // of its questions
    std::set<net::MacAddress> heard;    // by it
};

/// Asks for cameras on all networks of this host at once, and asks each that answers over unicast who
/// controls it. Returns them in the order of the host's addresses, then of their MACs; empty also when no
/// adapter of this host can send. Throws SocketException when the adapters cannot be listed or no socket is
/// to be had. Takes 460 ms, however many cameras there are, and up to 700 ms when one
/// that was found late is slow to answer over unicast. Where questions go unanswered more are asked in that
/// time. Where nobody is heard within 280 ms, or some camera needed longer in this search or a recent one,
/// all get a second, and up to 1.5 s for unicast.
///
/// An address that two cameras claim counts as not reachable: nobody can tell which of them a packet gets to.
[[nodiscard]] std::vector<FoundCamera> searchCameras(SearchHistory& history);

} // namespace gige
