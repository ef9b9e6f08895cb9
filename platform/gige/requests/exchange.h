#pragma once

#include "attempts.h"
#include "request.h"
#include "socket.h"
#include "tessal/failure.h"

#include <string>

namespace gige {

/// What a request is about, for the exceptions that tell of its failure.
struct Subject
{
    net::Ipv4 camera;
    std::string what; // "WRITEREG of 0x0006 to 0x0014"
    Tessal::Setting setting = Tessal::Setting::None;
    std::string wanted; // what is to be written, where it has a text
};

/// One request to one camera and all that belongs to it, from its first sending until it is answered or given
/// up.
class Exchange
{
public:
    /// The socket is connected to the camera's control port. Given up at `limit` at the latest.
    Exchange(const UdpSocket& socket, Request request, Subject subject, const RetryPlan& plan,
             Clock::time_point limit);

    /// Gives the payload of the success. Throws AccessException when the camera refuses for want of
    /// privilege, RefusalException for any other refusal and when it stays busy, TimeoutException when it
    /// does not answer, SocketException when this host cannot send.
    [[nodiscard]] gvcp::Packet run();

    /// Whether the camera said that it has heard the request and needs time.
    [[nodiscard]] bool askedForMoreTime() const { return m_attempts.wasExtended(); }

private:
    void sendDue(Clock::time_point now);
    void send(const Request& request);
    /// Whether the packet ends the exchange; if so, m_answer is set.
    [[nodiscard]] bool take(gvcp::Bytes datagram);
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
    bool m_isBusy = false; // as the latest answer said
    int m_pendingAnswers = 0;
    std::chrono::milliseconds m_latestPending{}; // what it asked for
    int m_unmatchedPackets = 0;
};

} // namespace gige
