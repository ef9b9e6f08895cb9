#pragma once

#include "broadcaster.h"
#include "hostadapters.h"
#include "request.h"
#include "tessal/searchreport.h"

#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace gige {

/// One camera as heard by one host address.
struct FoundCamera
{
    gvcp::Identity identity;
    HostAddress heardBy;
    bool answersUnicast = false;
    int accessibility = 0;  // a Tessal::Accessibility code
    net::Ipv4 controlledBy; // of the application that has control, if the camera tells
    /// Another camera that the same adapter heard with the same address.
    std::optional<gvcp::Identity> sameAddress;
    /// Another camera with the same MAC address; only this one is listed.
    std::optional<gvcp::Identity> sameMac;
};

/// What a search leaves for later ones, so that a camera that answers after the search has ended is found by
/// the next.
struct SearchHistory
{
    int slowSearches = 0;                            // how many more are to run at the slow pace
    std::unique_ptr<Broadcaster> asked;              // sent the latest search; null while searches are slow
    std::vector<Request> requests;                   // of the latest search
    std::set<std::pair<int, net::MacAddress>> heard; // adapter index and MAC address of each camera
    std::vector<Tessal::AdapterObstacle> obstacles;  // that the latest search met
};

/// Searches for cameras on all networks of this host at once, and asks each that answers over unicast which
/// application controls it. Returns them in the order of the host's addresses, then of their MAC addresses;
/// empty also if no adapter of this host can send. Throws SocketException if the adapters cannot be listed or
/// no socket can be opened. searchpace.h sets how long it takes and how often it asks: 460 ms, however many
/// cameras there are, unless some are slow.
///
/// An address that two cameras behind one adapter claim counts as not reachable: a packet may get to either.
[[nodiscard]] std::vector<FoundCamera> searchCameras(SearchHistory& history);

} // namespace gige
