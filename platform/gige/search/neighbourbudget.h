#pragma once

#include "net/neighbours.h"

#include <cstddef>
#include <map>
#include <set>

namespace gige {

/// How many more hosts can be contacted before the kernel's neighbour table is full. It has 1024 entries
/// unless the administrator raised net.ipv4.neigh.default.gc_thresh3. Once it is full, the kernel drops every
/// program's packets to new neighbours, and our own broadcasts with them, for about five seconds; a search
/// among that many cameras has to stop before that.
class NeighbourBudget
{
public:
    /// Asks the kernel; assumes the usual size if it does not say.
    NeighbourBudget();

    /// Reserves some entries for hosts behind this adapter, however many there are behind others.
    void reserveFor(int adapterIndex);
    /// Whether a packet to the host does not overflow the table: the host is in it already, or there is room.
    [[nodiscard]] bool canAdd(const net::Neighbour& host) const;
    /// Counts a host to which a packet was sent.
    void add(const net::Neighbour& host);

private:
    std::size_t m_free = 0;
    std::map<int, std::size_t> m_reserved; // by adapter; part of m_free
    std::set<net::Neighbour> m_known;
};

} // namespace gige
