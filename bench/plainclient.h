#pragma once

#include <chrono>
#include <cstddef>
#include <string>

/// What any client could do with an afternoon's work, as a yardstick: asks every camera on that adapter once
/// by limited broadcast, listens for the whole of `listening`, and returns how many different MAC addresses
/// answered. Throws std::system_error when it cannot send.
std::size_t countCamerasPlainly(const std::string& adapter, std::chrono::milliseconds listening);
