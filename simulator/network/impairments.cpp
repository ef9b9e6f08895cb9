#include "network/impairments.h"

#include "gvcp/bytes.h"

#include <algorithm>

namespace sim {

namespace {

constexpr unsigned maxReorderDelay = 20; // ms by which an answer may fall behind later ones

} // namespace

Impairments::Impairments(const NetworkConfig& network) : m_network(network), m_random(network.seed) {}

bool Impairments::happens(double percent)
{
    // Draws no number for an impairment that the scene does not have, so that it does not affect the others.
    constexpr double scale = 100.0 / 4294967296.0;
    return percent > 0 && static_cast<double>(m_random()) * scale < percent;
}

Delivery Impairments::ofRequest(const Faults& faults, unsigned received)
{
    const bool isListed = std::find(faults.losePackets.begin(), faults.losePackets.end(), received + 1) !=
                          faults.losePackets.end();
    if (isListed || happens(faults.lossPercent) || happens(m_network.lossPercent)) {
        return {0, {}};
    }
    return {happens(m_network.duplicatePercent) ? 2U : 1U, {}};
}

Delivery Impairments::ofAnswer(const Faults& faults, Message& message)
{
    if (happens(faults.lossPercent) || happens(m_network.lossPercent)) {
        return {0, {}};
    }
    corrupt(faults.answerWith, message);
    if (happens(m_network.garbagePercent)) {
        fillWithGarbage(message);
    }
    if (happens(m_network.truncatePercent)) {
        truncate(message);
    }
    Delivery delivery{1 + faults.repeatAnswers, m_network.delay};
    if (happens(m_network.duplicatePercent)) {
        ++delivery.copies;
    }
    if (happens(m_network.reorderPercent)) {
        delivery.delay += Duration(1 + m_random() % maxReorderDelay);
    }
    return delivery;
}

void Impairments::fillWithGarbage(Message& message)
{
    std::ranges::generate(message.all(), [this] { return static_cast<std::uint8_t>(m_random() & 0xFF); });
}

void Impairments::truncate(Message& message)
{
    message.size = m_random() % message.size;
}

void Impairments::corrupt(CorruptAnswer how, Message& message)
{
    const auto bytes = message.all();
    switch (how) {
    case CorruptAnswer::No:
        break;
    case CorruptAnswer::Garbage:
        fillWithGarbage(message);
        break;
    case CorruptAnswer::Truncated:
        truncate(message);
        break;
    case CorruptAnswer::WrongId:
        bytes::put16(bytes, gvcp::Header::RequestId,
                     static_cast<std::uint16_t>(bytes::get16(bytes, gvcp::Header::RequestId) + 1));
        break;
    case CorruptAnswer::WrongLength:
        bytes::put16(bytes, gvcp::Header::Length,
                     static_cast<std::uint16_t>(bytes::get16(bytes, gvcp::Header::Length) + 4));
        break;
    case CorruptAnswer::LongPayload:
        message.size = Message::Capacity;
        bytes::put16(message.all(), gvcp::Header::Length,
                     static_cast<std::uint16_t>(message.size - gvcp::HeaderSize));
        break;
    case CorruptAnswer::Surplus:
        message.size = Message::Capacity;
        break;
    }
}

} // namespace sim
