#pragma once

#include "attempts.h"
#include "request.h"
#include "socket.h"
#include "tessal/failure.h"

#include <string>

namespace gige {

/// What a request is about, for the exceptions that report its failure.
struct Subject
{
    net::Ipv4 camera;
    std::string what; // "WRITEREG of 0x0006 to 0x0014"
    Tessal::Setting setting = Tessal::Setting::None;
    std::string wanted; // the value to be written, if it has a text form
};

/// One request to one camera, from its first packet until it is answered or given up.
class Exchange
{
public:
    /// The socket must be connected to the camera's control port. The request is given up at `limit` at the
    /// latest.
    Exchange(const UdpSocket& socket, Request request, Subject subject, const RetryPlan& plan,
             Clock::time_point limit);

    /// Returns the payload of the answer. Throws AccessException if the camera refuses for lack of privilege,
    /// RefusalException for any other refusal and if it stays busy, TimeoutException if it does not answer,
    /// SocketException if this host cannot send.
    [[nodiscard]] gvcp::Packet run();

    /// Whether the camera confirmed that it has received the request and asked for time.
    [[nodiscard]] bool askedForMoreTime() const { return m_attempts.wasExtended(); }

private:
    void sendDue(Clock::time_point now);
    void send(const Request& request);
    /// Whether the packet ends the exchange; if so, m_answer is set.
    [[nodiscard]] bool handle(gvcp::Bytes datagram);
    [[nodiscard]] bool isLate(gvcp::Bytes datagram) const;
    [[nodiscard]] Clock::time_point nextEvent() const;
    [[nodiscard]] std::string prefix() const;
    [[nodiscard]] Tessal::Failure failure(Tessal::FailureKind kind) const;
    [[noreturn]] void raiseRefused(gvcp::Status status) const;
    [[noreturn]] void raiseGivenUp() const;

    const UdpSocket& m_socket;
    Request m_request;
    Request m_heartbeat = Request::readRegister(gvcp::Register::ControlChannelPrivilege);
    Subject m_subject;
    Clock::time_point m_start = Clock::now();
    Attempts m_attempts;
    Clock::time_point m_heartbeatAt;
    gvcp::Packet m_answer;
    bool m_isBusy = false; // according to the latest answer
    int m_pendingAnswers = 0;
    std::chrono::milliseconds m_latestPending{}; // the time it asked for
    int m_unmatchedPackets = 0;
};

} // namespace gige
