#include "neighbourbudget.h"

#include "log.h"
#include "net/neighbours.h"

#include <algorithm>
#include <optional>
#include <system_error>

namespace gige {

namespace {

constexpr std::size_t reserve = 64;          // entries for the rest of the system
constexpr std::size_t usualTableSize = 1024; // entries
constexpr std::size_t reserveOfAdapter = 32; // entries, as long as there are that many

} // namespace

NeighbourBudget::NeighbourBudget()
{
    std::optional<std::size_t> free;
    try {
        m_known = net::neighbours();
        free = net::freeNeighbourEntries();
    } catch (const std::system_error& error) {
        logSearch(ozlog::LogLevel::Info, "%hs", error.what());
    }
    const std::size_t left = free.value_or(usualTableSize - std::min(usualTableSize, m_known.size()));
    m_free = left > reserve ? left - reserve : 0;
}

void NeighbourBudget::reserveFor(int adapterIndex)
{
    std::size_t unreserved = m_free;
    for (const auto& [adapter, reserved] : m_reserved) {
        unreserved -= reserved;
    }
    m_reserved.try_emplace(adapterIndex, std::min(reserveOfAdapter, unreserved));
}

bool NeighbourBudget::canAdd(const net::Neighbour& host) const
{
    std::size_t reservedForOthers = 0;
    for (const auto& [adapter, reserved] : m_reserved) {
        reservedForOthers += adapter != host.adapterIndex ? reserved : 0;
    }
    return m_free > reservedForOthers || m_known.contains(host);
}

void NeighbourBudget::add(const net::Neighbour& host)
{
    if (!m_known.insert(host).second || m_free == 0) {
        return;
    }
    --m_free;
    if (const auto reserved = m_reserved.find(host.adapterIndex);
        reserved != m_reserved.end() && reserved->second > 0) {
        --reserved->second;
    }
}

} // namespace gige
