#pragma once

#include "gige/codec.h"
#include "gige/neighbours.h"
#include "gige/socket.h"

#include <cstdint>
#include <deque>
#include <map>
#include <unordered_map>
#include <vector>

namespace gige {

/// The part of a search that finds out which cameras can be talked to and who controls them: reads the
/// control channel privilege of all of them at the same time, through one socket.
class UnicastProbe
{
public:
    struct Answer
    {
        bool heard = false;
        int accessibility = 0; // Tessal::Accessibility
    };

    /// Every question stays open until `windowEnd` at least; one asked shortly before, for its share of time
    /// beyond, but none longer than until `deadline`. Throws SocketException.
    UnicastProbe(Clock::time_point windowEnd, Clock::time_point deadline);

    /// Gives every question, asked or yet to come, more time: the line is slow. `windowEnd` is not before the
    /// former deadline.
    void extend(Clock::time_point windowEnd, Clock::time_point deadline);

    /// Asks the camera, unless it was asked before. Its answer counts only when it comes through an adapter
    /// that was named for it here: a camera of another network may own the same address.
    void ask(const net::MacAddress& mac, net::Ipv4 address, int adapterIndex, Clock::time_point now);

    /// Repeats what is unanswered.
    void sendDue(Clock::time_point now);
    /// Takes in at most `limit` datagrams.
    void receive(std::size_t limit);

    [[nodiscard]] int descriptor() const { return m_socket.descriptor(); }
    /// When sendDue() is next of use.
    [[nodiscard]] Clock::time_point nextSend() const;
    /// When nothing is left to wait for: the end of the window, or later.
    [[nodiscard]] Clock::time_point end() const;

    [[nodiscard]] Answer answerOf(const net::MacAddress& mac, net::Ipv4 address) const;

private:
    struct Question
    {
        std::uint16_t requestId = 0;
        net::Ipv4 address;
        std::vector<int> adapters;
        Clock::time_point openUntil;
        bool underWay = false; // sent, and neither answered nor due for its repeat
        bool settled = false;  // answered, or there is no way to the camera
        bool repeating = true; // until the camera says that it has heard and needs time
        Answer answer;
    };
    struct Sent
    {
        Clock::time_point repeatAt;
        std::size_t question = 0;
    };

    void send(std::size_t index, Clock::time_point now);
    void settle(Question& question, Answer answer);
    void handle(const Datagram& datagram);
    void handle(Question& question, const gvcp::Acknowledge& acknowledge);

    UdpSocket m_socket;
    NeighbourRoom m_room;
    bool m_roomEnded = false;
    Clock::time_point m_windowEnd;
    Clock::time_point m_deadline;
    Clock::time_point m_lastOpenUntil;
    Clock::duration m_openAtLeast;
    Clock::time_point m_pausedUntil; // the socket took no more
    std::size_t m_lateOpen = 0;      // unsettled questions that stay open beyond the window
    std::vector<Question> m_questions;
    std::deque<std::size_t> m_waiting; // indices of questions to be sent
    std::deque<Sent> m_sent;           // in the order of their repeats
    std::size_t m_underWay = 0;
    std::map<std::pair<net::MacAddress, net::Ipv4>, std::size_t> m_byCamera;
    std::unordered_map<std::uint16_t, std::size_t> m_byRequestId;
};

/// The accessibility code that a value of the control channel privilege register means.
[[nodiscard]] int accessibilityOf(std::uint32_t privilege);

} // namespace gige
