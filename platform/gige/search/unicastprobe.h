#pragma once

#include "neighbourbudget.h"
#include "net/routes.h"
#include "request.h"
#include "searchpace.h"
#include "socket.h"

#include <cstdint>
#include <deque>
#include <map>
#include <queue>
#include <unordered_map>
#include <vector>

namespace gige {

/// The part of a search that finds out which cameras can be reached over unicast and which application
/// controls them. Reads the control channel privilege of all cameras at the same time, through one socket,
/// each through the adapter that heard it. Only the camera's own answer counts, not that of another device at
/// its address: the kernel knows which hardware address answered, and if that is not the camera's, the device
/// is asked for its MAC address.
class UnicastProbe
{
public:
    struct Answer
    {
        bool heard = false;
        int accessibility = 0;  // Tessal::Accessibility
        net::Ipv4 controlledBy; // of the application that has control, if the camera tells
    };
    struct Camera
    {
        net::MacAddress mac;
        net::Ipv4 address;

        // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the zero of a comparison for a pointer
        friend auto operator<=>(const Camera&, const Camera&) = default;
    };

    /// Throws SocketException.
    UnicastProbe(const SearchPace& pace, Clock::time_point start);

    /// Gives every question, pending or future, more time. The window of the new pace is no shorter than the
    /// former deadline.
    void switchTo(const SearchPace& pace);
    /// Reserves room for questions through this adapter, however many there are through others.
    void addAdapter(int adapterIndex) { m_neighbours.reserveFor(adapterIndex); }

    /// Asks the camera, if the adapter that heard it reaches its address without a gateway; only once, but
    /// through several adapters in turn. `lateness` is the time that the camera took for other answers: it
    /// gets as long for this one.
    void ask(const Camera& camera, int adapterIndex, Clock::duration lateness, Clock::time_point now);

    /// Sends what is waiting, and repeats what is unanswered.
    void sendDue(Clock::time_point now);
    /// Handles at most `limit` datagrams.
    void receive(std::size_t limit, Clock::time_point now);

    [[nodiscard]] int descriptor() const { return m_socket.descriptor(); }
    /// When sendDue() next has something to do.
    [[nodiscard]] Clock::time_point nextSend() const;
    /// When there is nothing left to wait for: the end of the window, or later.
    [[nodiscard]] Clock::time_point end(Clock::time_point now) const;

    [[nodiscard]] Answer answerOf(const Camera& camera) const;

private:
    enum class Step { Privilege, MacHigh, MacLow, ControlledBy };

    struct Question
    {
        Camera camera;
        std::vector<int> adapters; // that reach it
        Clock::time_point askedAt;
        Clock::duration repeatInterval{};
        Clock::time_point openUntil;
        Step step = Step::Privilege;
        Request request = Request::readRegister(gvcp::Register::ControlChannelPrivilege);
        std::size_t sent = 0;      // attempts, also failed ones; the adapters take turns
        std::size_t failures = 0;  // to send, in succession
        bool wasSent = false;      // in this step
        bool hasNoAdapter = false; // settled because no adapter could send it
        int sentThrough = 0;       // adapter index, as is the next
        int heardThrough = 0;
        bool inFlight = false; // sent, and neither answered nor due for its repeat
        bool settled = false;  // answered, or no adapter leads to the camera
        bool repeating = true; // until the camera asks for more time
        std::uint32_t macHigh = 0;
        Answer answer;
        Answer unverified; // becomes the answer once the device is known to be the camera
    };
    struct Repeat
    {
        Clock::time_point at;
        std::size_t question = 0;
        std::uint16_t requestId = 0;

        bool operator>(const Repeat& other) const { return at > other.at; }
    };
    struct Queue // of one adapter
    {
        std::deque<std::size_t> waiting; // indices of questions to be sent
        std::size_t inFlight = 0;
        std::size_t questions = 0;
    };

    void add(const Camera& camera, int adapterIndex, Clock::duration lateness, Clock::time_point now);
    void giveTime(Question& question, Clock::duration lateness);
    [[nodiscard]] Queue& queueOf(const Question& question);
    /// Whether the next question of the queue may be sent too.
    [[nodiscard]] bool send(Queue& queue, std::size_t index, Clock::time_point now);
    void tryNextAdapter(Question& question, std::size_t index, Clock::time_point now);
    void clearInFlight(Question& question);
    void settle(Question& question, const Answer& answer);
    void handle(const Datagram& datagram, Clock::time_point now);
    void handle(std::size_t index, const Reply& reply, Clock::time_point now);
    void handleValue(std::size_t index, std::uint32_t value, Clock::time_point now);
    void verifySender(std::size_t index, const Answer& answer, Clock::time_point now);
    void conclude(std::size_t index, Clock::time_point now);
    void askNext(std::size_t index, Step step, std::uint32_t address, Clock::time_point now);
    [[nodiscard]] bool isFromCamera(const Question& question) const;

    UdpSocket m_socket;
    NeighbourBudget m_neighbours;
    std::vector<net::LinkRoute> m_routes;
    bool m_isNeighbourTableFull = false;
    Clock::time_point m_start;
    SearchPace m_pace;
    Clock::time_point m_pausedUntil; // because the socket was full
    std::vector<Question> m_questions;
    std::map<int, Queue> m_queues; // by adapter
    std::priority_queue<Repeat, std::vector<Repeat>, std::greater<>> m_repeats;
    std::map<Camera, std::size_t> m_byCamera;
    std::unordered_map<std::uint16_t, std::size_t> m_byRequestId;
};

/// The accessibility code for a value of the control channel privilege register.
[[nodiscard]] int accessibilityOf(std::uint32_t privilege);

} // namespace gige
