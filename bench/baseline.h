#pragma once

#include <chrono>
#include <cstddef>
#include <string>

struct BaselineResult
{
    std::size_t cameras = 0;                       // different MAC addresses that answered
    std::chrono::duration<double> lastNewAnswer{}; // after the discovery was sent
};

/// The simplest possible search, as a baseline: sends one discovery by limited broadcast through that adapter
/// and listens for all of `listening`. Throws std::system_error if it cannot send.
BaselineResult baselineSearch(const std::string& adapter, std::chrono::milliseconds listening);
