#include "gige/broadcastcommand.h"

#include "gige/attempts.h"
#include "gige/broadcaster.h"
#include "gige/errors.h"

#include <array>

namespace gige {

namespace {

using namespace std::chrono_literals;

constexpr std::array<std::chrono::milliseconds, 5> acknowledgedSends{0ms, 100ms, 200ms, 300ms, 400ms};
constexpr std::array<std::chrono::milliseconds, 5> restartSends{0ms, 40ms, 80ms, 120ms, 160ms};
constexpr std::size_t batch = 64; // datagrams of one socket before the clock is looked at

class Conversation
{
public:
    Conversation(std::uint16_t requestId, gvcp::Ack expected, const Answerers& answerers,
                 const RetryPlan& plan)
        : m_requestId(requestId), m_expected(expected), m_answerers(answerers), m_attempts(plan, Clock::now())
    {}

    std::optional<gvcp::Status> run(const gvcp::Packet& packet);

private:
    void listen();
    void handle(const Datagram& datagram);
    [[nodiscard]] bool mayBeTheCameras(const gvcp::Acknowledge& acknowledge, net::Ipv4 source) const;

    std::uint16_t m_requestId;
    gvcp::Ack m_expected;
    const Answerers& m_answerers;
    Broadcaster m_broadcaster;
    Attempts m_attempts;
    std::optional<gvcp::Status> m_status;
    bool m_settled = false;
};

std::optional<gvcp::Status> Conversation::run(const gvcp::Packet& packet)
{
    for (auto now = Clock::now(); !m_settled && !m_attempts.isOver(now); now = Clock::now()) {
        if (m_attempts.isSendDue(now)) {
            m_broadcaster.send(packet);
            m_attempts.countSent();
        }
        if (!m_broadcaster.hasSent() && !m_broadcaster.canSend()) {
            break;
        }
        listen();
    }
    if (!m_broadcaster.hasSent()) {
        raise<GenICam::RuntimeException>(
            "No network adapter of this computer could send the command to the camera: " +
            m_broadcaster.failures());
    }
    return m_status;
}

void Conversation::listen()
{
    std::vector<pollfd> sockets;
    m_broadcaster.appendTo(sockets);
    waitReadable(sockets, m_attempts.nextEvent());
    for (std::size_t i = 0; i < sockets.size() && !m_settled; ++i) {
        if (sockets[i].revents != 0) {
            m_broadcaster.receive(i, batch, [&](const Datagram& datagram) { handle(datagram); });
        }
    }
}

void Conversation::handle(const Datagram& datagram)
{
    const auto acknowledge = gvcp::decodeAcknowledge(datagram.bytes);
    if (m_settled || !acknowledge || acknowledge->requestId != m_requestId ||
        !mayBeTheCameras(*acknowledge, datagram.source.address)) {
        return;
    }
    if (acknowledge->code == gvcp::Ack::Pending) {
        if (const auto more = gvcp::decodePendingAck(acknowledge->payload)) {
            m_attempts.extend(*more, Clock::now());
        }
    } else if (acknowledge->code == m_expected) {
        m_status = acknowledge->isRefusal() ? acknowledge->status : gvcp::Status::Success;
        // A camera that is busy with the first copy of the command may yet do it.
        m_settled = acknowledge->status != gvcp::Status::Busy;
    }
}

bool Conversation::mayBeTheCameras(const gvcp::Acknowledge& acknowledge, net::Ipv4 source) const
{
    const auto& [camera, others] = m_answerers;
    return camera.contains(source) ||
           (!others.contains(source) && (camera.empty() || !acknowledge.isRefusal()));
}

} // namespace

RetryPlan acknowledgedPlan()
{
    return {.sendAt = acknowledgedSends, .giveUpAfter = 500ms};
}

RetryPlan restartPlan()
{
    return {.sendAt = restartSends, .giveUpAfter = 200ms};
}

std::optional<gvcp::Status> broadcastCommand(std::uint16_t requestId, const gvcp::Packet& packet,
                                             gvcp::Ack expected, const Answerers& answerers,
                                             const RetryPlan& plan)
{
    return Conversation(requestId, expected, answerers, plan).run(packet);
}

} // namespace gige
