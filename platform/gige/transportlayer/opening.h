#pragma once

#include "search.h"

#include <optional>
#include <span>

namespace gige {

/// The index of the adapter through which a camera is opened: the one that heard it, of several one that
/// reaches it. 0, for any, if the latest search heard no camera at this address. Cameras behind different
/// adapters may have the same address; then `expected` says which is meant. Throws RuntimeException if the
/// address is that of two cameras all the same.
[[nodiscard]] int adapterForOpening(std::span<const FoundCamera> found, net::Ipv4 address,
                                    const std::optional<net::MacAddress>& expected);

/// Throws RuntimeException if the latest search heard only another camera there, through this adapter: leases
/// may have changed hands.
void checkStillThere(std::span<const FoundCamera> found, net::Ipv4 address, int adapterIndex,
                     const net::MacAddress& answered);

} // namespace gige
