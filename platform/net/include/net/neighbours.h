#pragma once

#include "net/addresses.h"

#include <cstddef>
#include <optional>
#include <set>

namespace net {

/// A host on the link of an adapter, as listed in the kernel's neighbour table.
struct Neighbour
{
    int adapterIndex = 0;
    Ipv4 address;

    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the zero of a defaulted comparison for a pointer
    friend constexpr auto operator<=>(const Neighbour&, const Neighbour&) = default;
};

/// All entries of the table. This function and the next two throw std::system_error if the kernel refuses.
[[nodiscard]] std::set<Neighbour> neighbours();

/// The hardware address to which packets for the neighbour are sent; nullopt while the kernel knows none.
[[nodiscard]] std::optional<MacAddress> hardwareAddressOf(const Neighbour& neighbour);

/// How many entries all network namespaces together can still add; nullopt if the kernel does not say.
[[nodiscard]] std::optional<std::size_t> freeNeighbourEntries();

} // namespace net
