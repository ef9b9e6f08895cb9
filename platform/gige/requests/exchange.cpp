#include "exchange.h"

#include "errors.h"
#include "log.h"
#include "net/errors.h"

#include <algorithm>
#include <cerrno>

namespace gige {

namespace {

using namespace std::chrono_literals;

// Often enough, even if some are lost, for the few cameras that drop an application after a second of
// silence.
constexpr auto heartbeatInterval = 300ms;

/// Whether the error on the socket is that of an earlier packet: while a camera restarts, its address may
/// refuse packets or be unreachable for a while.
bool isEarlierPacketsError(int error)
{
    return error == ECONNREFUSED || error == EHOSTUNREACH || error == EHOSTDOWN;
}

} // namespace

Exchange::Exchange(const UdpSocket& socket, Request request, Subject subject, const RetryPlan& plan,
                   Clock::time_point limit)
    : m_socket(socket),
      m_request(std::move(request)),
      m_subject(std::move(subject)),
      m_attempts(plan, m_start, limit),
      m_heartbeatAt(m_start + heartbeatInterval)
{}

gvcp::Packet Exchange::run()
{
    for (auto now = m_start; !m_attempts.isOver(now); now = Clock::now()) {
        sendDue(now);
        pollfd readable{.fd = m_socket.descriptor(), .events = POLLIN, .revents = 0};
        waitReadable({&readable, 1}, nextEvent());
        if (readable.revents == 0) {
            continue;
        }
        ReceiveBuffer buffer{};
        const auto datagram = m_socket.receive(buffer);
        if (datagram && handle(datagram->bytes)) {
            logRequest(ozlog::LogLevel::Info, "%hsdone", prefix().c_str());
            return std::move(m_answer);
        }
    }
    raiseGivenUp();
}

void Exchange::sendDue(Clock::time_point now)
{
    if (m_attempts.isSendDue(now)) {
        send(m_request);
        m_attempts.countSent();
    }
    if (askedForMoreTime() && now >= m_heartbeatAt) {
        send(m_heartbeat);
        m_heartbeatAt = now + heartbeatInterval;
    }
}

Clock::time_point Exchange::nextEvent() const
{
    return askedForMoreTime() ? std::min(m_heartbeatAt, m_attempts.nextEvent()) : m_attempts.nextEvent();
}

void Exchange::send(const Request& request)
{
    int error = m_socket.send(request.packet());
    if (isEarlierPacketsError(error)) {
        error = m_socket.send(request.packet());
    }
    if (error != 0 && !isEarlierPacketsError(error) && !isTransientSendError(error)) {
        Tessal::Failure cannotSend = failure(Tessal::FailureKind::CannotSend);
        cannotSend.reason = net::describeErrno(error);
        raise<SocketException>(std::move(cannotSend),
                               prefix() + "this computer could not send it: " + net::describeErrno(error));
    }
    if (error != 0) {
        logRequest(ozlog::LogLevel::Info, "%hs%hs", prefix().c_str(), net::describeErrno(error).c_str());
    }
}

/// Whether the datagram answers an earlier register request: a slow camera answers every repeat.
bool Exchange::isLate(gvcp::Bytes datagram) const
{
    constexpr int recently = 256; // requests
    const auto acknowledge = gvcp::decodeAcknowledge(datagram);
    if (!acknowledge || acknowledge->code == gvcp::Ack::Discovery) {
        return false;
    }
    const auto age = static_cast<std::uint16_t>(m_request.id() - acknowledge->requestId);
    return age > 0 && age < recently;
}

bool Exchange::handle(gvcp::Bytes datagram)
{
    const Reply reply = m_request.judge(datagram);
    switch (reply.kind) {
    case Reply::Kind::NotOurs:
        if (m_heartbeat.judge(datagram).kind == Reply::Kind::NotOurs && !isLate(datagram)) {
            ++m_unmatchedPackets;
        }
        return false;
    case Reply::Kind::Pending:
        m_attempts.extend(reply.moreTime, Clock::now());
        m_isBusy = false;
        ++m_pendingAnswers;
        m_latestPending = reply.moreTime;
        return false;
    case Reply::Kind::Busy:
        m_isBusy = true;
        return false;
    case Reply::Kind::Refused:
        raiseRefused(reply.status);
    case Reply::Kind::Done:
        break;
    }
    m_answer.assign(reply.payload.begin(), reply.payload.end());
    return true;
}

std::string Exchange::prefix() const
{
    return "Camera " + net::formatIpv4(m_subject.camera) + ", " + m_subject.what + ": ";
}

Tessal::Failure Exchange::failure(Tessal::FailureKind kind) const
{
    Tessal::Failure failure;
    failure.kind = kind;
    failure.setting = m_subject.setting;
    failure.address = net::formatIpv4(m_subject.camera);
    failure.wanted = m_subject.wanted;
    return failure;
}

void Exchange::raiseRefused(gvcp::Status status) const
{
    const std::string said = describeStatus(status);
    Tessal::Failure refused =
        failure(status == gvcp::Status::Busy ? Tessal::FailureKind::Busy : Tessal::FailureKind::Refused);
    refused.status = said;
    if (status == gvcp::Status::AccessDenied) {
        raise<GenICam::AccessException>(std::move(refused), prefix() + said);
    }
    raise<RefusalException>(std::move(refused), prefix() + said);
}

void Exchange::raiseGivenUp() const
{
    if (m_isBusy && !askedForMoreTime()) {
        raiseRefused(gvcp::Status::Busy);
    }
    using enum Tessal::FailureKind;
    const Tessal::FailureKind kind = askedForMoreTime()       ? AskedForMoreTime
                                     : m_unmatchedPackets > 0 ? UnusableAnswers
                                                              : NoAnswer;
    const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_start);
    std::string text = prefix() + "no answer within " + std::to_string(waited.count()) + " ms";
    if (askedForMoreTime()) {
        text += "; the camera asked for more time " + std::to_string(m_pendingAnswers) +
                " times, the last time for " + std::to_string(m_latestPending.count()) + " ms";
    }
    if (m_unmatchedPackets > 0) {
        text += " (" + std::to_string(m_unmatchedPackets) + " packets arrived that did not answer it)";
    }
    raise<GenICam::TimeoutException>(failure(kind), text);
}

} // namespace gige
