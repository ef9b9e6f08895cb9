#pragma once

#include "camera/cameraconfig.h"
#include "net/addresses.h"
#include "scene/jsonreader.h"

#include <filesystem>
#include <string>
#include <vector>

namespace sim {

struct HostAddress
{
    net::Ipv4 address;
    unsigned prefixLength = 24;
};

struct AdapterConfig
{
    std::string name;
    net::MacAddress mac;
    std::vector<HostAddress> addresses;
};

/// A camera and the adapters that it is connected to, as positions in the scene's list, its own first.
struct PlacedCamera
{
    CameraConfig config;
    std::vector<std::size_t> adapters;
};

/// What happens to GVCP datagrams: requests and answers are lost or duplicated, answers also delayed,
/// reordered or corrupted.
struct NetworkConfig
{
    double lossPercent = 0;
    Duration delay{};
    double duplicatePercent = 0;
    double reorderPercent = 0;
    double garbagePercent = 0;
    double truncatePercent = 0;
    unsigned seed = 1;
};

/// Everything that a simulation consists of.
struct Scene
{
    std::vector<AdapterConfig> adapters;
    std::vector<PlacedCamera> cameras;
    NetworkConfig network;
};

/// Reads a scene from JSON. File names in it are relative to `directory`. Throws SceneError.
[[nodiscard]] Scene parseScene(const std::string& text, const std::filesystem::path& directory);
[[nodiscard]] Scene loadScene(const std::filesystem::path& file);

} // namespace sim
