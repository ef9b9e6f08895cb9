#include "network/impairments.h"

#include "gvcp/bytes.h"

#include <algorithm>

namespace sim {

namespace {

constexpr unsigned LongestHoldUp = 20; // ms by which an answer falls behind those sent after it

} // namespace

Impairments::Impairments(const NetworkConfig& network) : m_network(network), m_dice(network.seed) {}

bool Impairments::happens(double percent)
{
    // no throw of the dice for what the scene rules out, so that one setting does not change another's luck
    constexpr double scale = 100.0 / 4294967296.0;
    return percent > 0 && static_cast<double>(m_dice()) * scale < percent;
}

Fate Impairments::ofRequest(const Faults& faults, unsigned heard)
{
    const bool isListed = std::find(faults.losePackets.begin(), faults.losePackets.end(), heard + 1) !=
                          faults.losePackets.end();
    if (isListed || happens(faults.lossPercent) || happens(m_network.lossPercent)) {
        return {0, {}};
    }
    return {happens(m_network.duplicatePercent) ? 2U : 1U, {}};
}

Fate Impairments::ofAnswer(const Faults& faults, Message& message)
{
    if (happens(faults.lossPercent) || happens(m_network.lossPercent)) {
        return {0, {}};
    }
    spoil(faults.answerWith, message);
    if (happens(m_network.garbagePercent)) {
        fillWithGarbage(message);
    }
    if (happens(m_network.truncatePercent)) {
        truncate(message);
    }
    Fate fate{1 + faults.repeatAnswers, m_network.delay};
    if (happens(m_network.duplicatePercent)) {
        ++fate.copies;
    }
    if (happens(m_network.reorderPercent)) {
        fate.delay += Duration(1 + m_dice() % LongestHoldUp);
    }
    return fate;
}

void Impairments::fillWithGarbage(Message& message)
{
    std::ranges::generate(message.all(), [this] { return static_cast<std::uint8_t>(m_dice() & 0xFF); });
}

void Impairments::truncate(Message& message)
{
    message.size = m_dice() % message.size;
}

void Impairments::spoil(SpoiledAnswer how, Message& message)
{
    const auto bytes = message.all();
    switch (how) {
    case SpoiledAnswer::No:
        break;
    case SpoiledAnswer::Garbage:
        fillWithGarbage(message);
        break;
    case SpoiledAnswer::Truncated:
        truncate(message);
        break;
    case SpoiledAnswer::WrongId:
        bytes::put16(bytes, gvcp::Header::RequestId,
                     static_cast<std::uint16_t>(bytes::get16(bytes, gvcp::Header::RequestId) + 1));
        break;
    case SpoiledAnswer::WrongLength:
        bytes::put16(bytes, gvcp::Header::Length,
                     static_cast<std::uint16_t>(bytes::get16(bytes, gvcp::Header::Length) + 4));
        break;
    case SpoiledAnswer::LongPayload:
        message.size = Message::Capacity;
        bytes::put16(message.all(), gvcp::Header::Length,
                     static_cast<std::uint16_t>(message.size - gvcp::HeaderSize));
        break;
    case SpoiledAnswer::Surplus:
        message.size = Message::Capacity;
        break;
    }
}

} // namespace sim
