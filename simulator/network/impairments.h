#pragma once

#include "camera/cameraconfig.h"
#include "camera/message.h"
#include "scene/scene.h"

#include <random>

namespace sim {

/// How a datagram is delivered.
struct Delivery
{
    unsigned copies = 1; // 0: lost
    Duration delay{};
};

/// The impairments of the line, drawn from a generator with a fixed seed: the same scene and the same traffic
/// see the same losses.
class Impairments
{
public:
    explicit Impairments(const NetworkConfig& network);

    /// Of a request to a camera that has received `received` datagrams before.
    [[nodiscard]] Delivery ofRequest(const Faults& faults, unsigned received);
    /// Of an answer, whose bytes may be corrupted.
    [[nodiscard]] Delivery ofAnswer(const Faults& faults, Message& message);

private:
    [[nodiscard]] bool happens(double percent);
    void fillWithGarbage(Message& message);
    void truncate(Message& message);
    void corrupt(CorruptAnswer how, Message& message);

    NetworkConfig m_network;
    std::mt19937 m_random;
};

} // namespace sim
