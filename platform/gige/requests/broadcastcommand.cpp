#include "broadcastcommand.h"

#include "attempts.h"
#include "broadcaster.h"
#include "errors.h"

#include <array>

namespace gige {

namespace {

using namespace std::chrono_literals;

constexpr std::array<std::chrono::milliseconds, 5> acknowledgedSends{0ms, 100ms, 200ms, 300ms, 400ms};
constexpr std::array<std::chrono::milliseconds, 5> restartSends{0ms, 40ms, 80ms, 120ms, 160ms};
constexpr auto objectionTime = 100ms; // a simple camera takes 60 ms to answer
constexpr std::size_t batch = 64;     // datagrams of one socket before the clock is checked

/// One command to all adapters, and the answers of the camera that is meant.
class BroadcastExchange
{
public:
    BroadcastExchange(const Request& request, const ExpectedSources& sources, const RetryPlan& plan)
        : m_request(request), m_sources(sources), m_attempts(plan, Clock::now())
    {}

    std::optional<gvcp::Status> run(Tessal::Failure failure);

private:
    void listen();
    void handle(const Datagram& datagram);
    [[nodiscard]] bool isPlausibleSource(const Reply& reply, net::Ipv4 source) const;

    const Request& m_request;
    const ExpectedSources& m_sources;
    Broadcaster m_broadcaster;
    Attempts m_attempts;
    std::optional<gvcp::Status> m_status;
    bool m_settled = false;
};

std::optional<gvcp::Status> BroadcastExchange::run(Tessal::Failure failure)
{
    for (auto now = Clock::now(); !m_settled && !m_attempts.isOver(now); now = Clock::now()) {
        if (m_attempts.isSendDue(now)) {
            m_broadcaster.send(m_request.packet());
            m_attempts.countSent();
        }
        if (!m_broadcaster.hasSent() && !m_broadcaster.canSend()) {
            break;
        }
        listen();
    }
    if (!m_broadcaster.hasSent()) {
        failure.kind = Tessal::FailureKind::CannotSend;
        failure.reason = m_broadcaster.describeFailures();
        const std::string text =
            "No network adapter of this computer could send the command to the camera: " + failure.reason;
        raise<GenICam::RuntimeException>(std::move(failure), text);
    }
    return m_status;
}

void BroadcastExchange::listen()
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

void BroadcastExchange::handle(const Datagram& datagram)
{
    using enum Reply::Kind;
    const Reply reply = m_request.judge(datagram.bytes);
    if (m_settled || reply.kind == NotOurs || !isPlausibleSource(reply, datagram.source.address)) {
        return;
    }
    const bool isAcknowledged = m_status == gvcp::Status::Success;
    if (reply.kind == Refused) {
        m_status = reply.status;
        m_settled = true;
    } else if (isAcknowledged) {
        return; // to the second copy of the command, which is broadcast in two ways
    } else if (reply.kind == Pending) {
        m_attempts.extend(reply.moreTime, Clock::now());
    } else if (reply.kind == Busy) {
        m_status = reply.status; // perhaps with the first copy, which it may still carry out
    } else {
        m_status = gvcp::Status::Success;
        m_attempts.conclude(objectionTime, Clock::now());
    }
}

bool BroadcastExchange::isPlausibleSource(const Reply& reply, net::Ipv4 source) const
{
    const auto& [camera, others] = m_sources;
    return camera.contains(source) || (!others.contains(source) && (camera.empty() || reply.namesCamera));
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

std::optional<gvcp::Status> broadcastCommand(const Request& request, const ExpectedSources& sources,
                                             const RetryPlan& plan, Tessal::Failure failure)
{
    return BroadcastExchange(request, sources, plan).run(std::move(failure));
}

} // namespace gige
