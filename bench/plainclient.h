#pragma once

#include <chrono>
#include <cstddef>
#include <string>

struct PlainSearch
{
    std::size_t cameras = 0;                       // different MAC addresses that answered
    std::chrono::duration<double> lastNewAnswer{}; // after the question
};

/// What any client could do with an afternoon's work, as a yardstick: asks every camera on that adapter once
/// by limited broadcast and listens for the whole of `listening`. Throws std::system_error when it cannot
/// send.
PlainSearch searchPlainly(const std::string& adapter, std::chrono::milliseconds listening);
