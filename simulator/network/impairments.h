#pragma once

#include "camera/cameraconfig.h"
#include "camera/message.h"
#include "scene/scene.h"

#include <random>

namespace sim {

/// What becomes of a datagram on its way.
struct Fate
{
    unsigned copies = 1; // 0: lost
    Duration delay{};
};

/// The badness of the line, by dice with a fixed seed: the same scene and the same traffic meet the same
/// fate.
class Impairments
{
public:
    explicit Impairments(const NetworkConfig& network);

    /// A request on its way to one camera that has heard `heard` datagrams before.
    [[nodiscard]] Fate ofRequest(const Faults& faults, unsigned heard);
    /// An answer on its way back; may spoil its bytes.
    [[nodiscard]] Fate ofAnswer(const Faults& faults, Message& message);

private:
    [[nodiscard]] bool happens(double percent);
    void fillWithGarbage(Message& message);
    void truncate(Message& message);
    void spoil(SpoiledAnswer how, Message& message);

    NetworkConfig m_network;
    std::mt19937 m_dice;
};

} // namespace sim
