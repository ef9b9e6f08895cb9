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

/// One camera as one host address heard it.
struct FoundCamera
{
    gvcp::Identity identity;
    HostAddress heardBy;
    bool answersUnicast = false;
    int accessibility = 0;  // a Tessal::Accessibility code
    net::Ipv4 controlledBy; // of the application that has control, where the camera tells
    /// Another camera that the same adapter heard with the same address.
    std::optional<gvcp::Identity> sameAddress;
    /// Another camera with the same MAC address, of which only this one is listed.
    std::optional<gvcp::Identity> sameMac;
};

/// What searches leave for later ones, so that a camera that answers when no search listens any more is heard
/// at the next.
struct SearchHistory
{
    int slowSearches = 0;               // how many more give all cameras the time that some camera needed
    std::unique_ptr<Broadcaster> asked; // through which the latest search asked; null while one is slow
    std::vector<Request> requests;      // of it
    std::set<std::pair<int, net::MacAddress>> heard; // by it, with the index of the adapter
    std::vector<Tessal::AdapterObstacle> obstacles;  // to it
};

/// Asks for cameras on all networks of this host at once, and asks each that answers over unicast who
/// controls it. Returns them in the order of the host's addresses, then of their MACs; empty also when no
/// adapter of this host can send. Throws SocketException when the adapters cannot be listed or no socket is
/// to be had. How long it takes and how often it asks is said in searchpace.h: 460 ms, however many cameras
/// there are, unless some are slow.
///
/// An address that two cameras behind one adapter claim counts as not reachable: a packet may get to either.
[[nodiscard]] std::vector<FoundCamera> searchCameras(SearchHistory& history);

} // namespace gige
