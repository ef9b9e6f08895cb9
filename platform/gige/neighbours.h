#pragma once

#include "net/addresses.h"

#include <cstddef>
#include <set>

namespace gige {

/// How many more hosts this one may talk to before the kernel's neighbour table is full. A full table, 1024
/// entries unless the administrator raised net.ipv4.neigh.default.gc_thresh3, drops the packets of every
/// program to new neighbours, and our own broadcasts with them, for about five seconds; so a search among
/// that many cameras has to stop short of it.
class NeighbourRoom
{
public:
    /// Asks the kernel.
    NeighbourRoom();

    /// Whether a packet to the address leaves the table in order: it is there already, or there is room.
    [[nodiscard]] bool admits(net::Ipv4 address) const { return m_free > 0 || m_known.contains(address); }
    /// Counts an address that was sent to.
    void enter(net::Ipv4 address);

private:
    std::size_t m_free;
    std::set<net::Ipv4> m_known;
};

} // namespace gige
