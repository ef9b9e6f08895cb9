#pragma once

#include "camera/cameraconfig.h"
#include "scene/jsonreader.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace sim {

/// Readers of the values that occur in scenes only. All throw SceneError.
[[nodiscard]] net::Ipv4 readIpv4(JsonObject& object, const std::string& key);
[[nodiscard]] net::MacAddress readMac(JsonObject& object, const std::string& key);
/// Milliseconds, at most an hour.
[[nodiscard]] Duration readDuration(JsonObject& object, const std::string& key, Duration otherwise);
/// {"ip", "mask", "gateway"}; nullopt when the key is absent. The gateway may be left out.
[[nodiscard]] std::optional<Ipv4Settings> readSettings(JsonObject& object, const std::string& key);
[[nodiscard]] Faults readFaults(JsonObject& object);

/// One of a set of words.
template <typename T, std::size_t N>
[[nodiscard]] T chooseWord(const std::string& word, const std::string& path,
                           const std::array<std::pair<std::string_view, T>, N>& words)
{
    std::string known;
    for (const auto& [name, value] : words) {
        if (word == name) {
            return value;
        }
        known += known.empty() ? "" : ", ";
        known += name;
    }
    throw SceneError(path, "must be one of " + known);
}

} // namespace sim
