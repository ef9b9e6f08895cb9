#pragma once

#include "search.h"

#include <optional>
#include <span>

namespace gige {

/// The index of the adapter through which a camera is opened: the one that heard it or, of several, one that
/// reaches it. 0, for any, if the latest search heard no camera at this address. Cameras behind different
/// adapters may have the same address; `expected` then says which is meant. Throws RuntimeException if the
/// address is still that of two cameras.
[[nodiscard]] int adapterForOpening(std::span<const FoundCamera> found, net::Ipv4 address,
                                    const std::optional<net::MacAddress>& expected);

/// The index of the adapter through which the latest search heard the camera at this address; 0, for any, if
/// it heard none there.
[[nodiscard]] int adapterThatHeard(std::span<const FoundCamera> found, net::Ipv4 address,
                                   const std::optional<net::MacAddress>& mac);

/// Throws RuntimeException if the camera that answers at the address is not the expected one. If none is
/// expected, it must be one that the latest search heard there through this adapter, unless it heard none
/// there: leases may have changed hands.
void checkAnswered(std::span<const FoundCamera> found, net::Ipv4 address, int adapterIndex,
                   const std::optional<net::MacAddress>& expected, const net::MacAddress& answered);

} // namespace gige
