#pragma once

#include <chrono>

namespace sim {

/// Time is always passed in; only the main loop of the program reads the clock.
using Instant = std::chrono::steady_clock::time_point;
using Duration = std::chrono::milliseconds;

inline constexpr Instant never = Instant::max();

} // namespace sim
