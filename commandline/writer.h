#pragma once

#include "plan.h"

namespace cli {

/// Stores the change in the camera, which is at `address` now, and makes it take it up: by the maker's
/// broadcast command where the camera knows it, and otherwise opened and written, if need be under its
/// temporary address. Throws what the camera layer throws.
void writeChange(const Change& change, net::Ipv4 address);

/// Gives the camera an address until it restarts. Throws what the camera layer throws.
void forceAddress(const net::MacAddress& mac, net::Ipv4 address, net::Ipv4 mask, net::Ipv4 gateway);

/// What an exception says to the user, in one line.
[[nodiscard]] QString sentenceOf(const std::exception& exception);

} // namespace cli
