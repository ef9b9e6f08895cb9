#include "camera/camera.h"

#include <cstdlib>

// A simulated camera, and what two hosts say to it: for each datagram one byte that tells who speaks and how,
// one with its length, and the datagram itself. A quarter of a second passes between two of them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    sim::CameraConfig config;
    config.mac = {{2, 0, 0, 0, 0, 1}};
    config.persistent = {{0xC0A80A15}, {0xFFFFFF00}, {}};
    config.description = std::make_shared<sim::Description>();
    sim::Instant now{};
    sim::Camera camera(config, now);
    sim::Effects effects;
    std::span<const std::uint8_t> rest(data, size);
    while (rest.size() >= 2) {
        const std::size_t length = std::min<std::size_t>(rest[1], rest.size() - 2);
        // In a buffer of its own, so that a byte read beyond the datagram is seen.
        const std::vector<std::uint8_t> datagram(rest.begin() + 2,
                                                 rest.begin() + 2 + static_cast<std::ptrdiff_t>(length));
        const sim::Endpoint from{{0xC0A80A01U + (rest[0] & 1U)}, 40000};
        effects.clear();
        camera.hear({from, (rest[0] & 2) != 0, datagram}, now, effects);
        for (const sim::Answer& answer : effects.answers) {
            if (answer.message.size < gvcp::HeaderSize || answer.message.size > gvcp::MaxPacketSize) {
                std::abort();
            }
        }
        now += std::chrono::milliseconds(250);
        camera.advance(now, effects);
        rest = rest.subspan(2 + length);
    }
    static_cast<void>(camera.state());
    return 0;
}
