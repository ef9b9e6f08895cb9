#include "scene/scene.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        static_cast<void>(
            sim::parseScene(std::string(reinterpret_cast<const char*>(data), size), "/nonexistent"));
    } catch (const sim::SceneError&) {
        return 0;
    }
    return 0;
}
