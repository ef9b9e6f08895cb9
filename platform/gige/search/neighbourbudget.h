#pragma once

#include "net/neighbours.h"

#include <cstddef>
#include <map>
#include <set>

namespace gige {

/// How many more hosts this one may talk to before the kernel's neighbour table is full. A full table, 1024
/// entries unless the administrator raised net.ipv4.neigh.default.gc_thresh3, drops the packets of every
/// program to new neighbours, and our own broadcasts with them, for about five seconds; so a search among
/// that many cameras has to stop short of it.
class NeighbourBudget
{
public:
    /// Asks the kernel; takes the usual size where it does not say.
    NeighbourBudget();

    /// Keeps some entries for hosts behind this adapter, however many there are behind others.
    void reserveFor(int adapterIndex);
    /// Whether a packet to the host leaves the table in order: it is there already, or there is room.
    [[nodiscard]] bool canAdd(const net::Neighbour& host) const;
    /// Counts a host that was sent to.
    void add(const net::Neighbour& host);

private:
    std::size_t m_free = 0;
    std::map<int, std::size_t> m_reserved; // by adapter; a part of what is free
    std::set<net::Neighbour> m_known;
};

} // namespace gige
