#include "gige/unicastprobe.h"

#include "gige/attempts.h"
#include "gige/trace.h"
#include "tessal/transportlayer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace gige {

namespace {

using namespace std::chrono_literals;

constexpr auto repeatInterval = 50ms;
constexpr auto openAtLeast = 400ms; // a camera may take 300 ms to answer, and the first question be lost
constexpr auto openAtLeastOnSlowLines = 800ms;
constexpr auto fullSocketPause = 5ms;
// A thousand questions at once, with an address resolution before each, would overrun the queues on their
// way; and the kernel repeats a lost resolution only after a second.
constexpr std::size_t maxUnderWay = 128;
constexpr std::size_t maxQuestions = 4096;

constexpr UnicastProbe::Answer notReachable{.heard = false,
                                            .accessibility = Tessal::Accessibility::NotReachable};

bool isUnicast(net::Ipv4 address)
{
    const std::uint32_t firstPart = address.value >> 24;
    return firstPart != 0 && firstPart != 127 && firstPart < 224;
}

} // namespace

int accessibilityOf(std::uint32_t privilege)
{
    if ((privilege & gvcp::Privilege::Exclusive) != 0) {
        return Tessal::Accessibility::ControlledExclusively;
    }
    return (privilege & gvcp::Privilege::Control) != 0 ? Tessal::Accessibility::Controlled
                                                       : Tessal::Accessibility::Ok;
}

UnicastProbe::UnicastProbe(Clock::time_point windowEnd, Clock::time_point deadline)
    : m_windowEnd(windowEnd), m_deadline(deadline), m_lastOpenUntil(windowEnd), m_openAtLeast(openAtLeast)
{}

void UnicastProbe::extend(Clock::time_point windowEnd, Clock::time_point deadline)
{
    m_windowEnd = windowEnd;
    m_deadline = deadline;
    m_lastOpenUntil = windowEnd;
    m_lateOpen = 0;
    m_openAtLeast = openAtLeastOnSlowLines;
    for (Question& question : m_questions) {
        question.openUntil = windowEnd;
    }
}

void UnicastProbe::ask(const net::MacAddress& mac, net::Ipv4 address, int adapterIndex, Clock::time_point now)
{
    if (!isUnicast(address)) {
        return;
    }
    if (const auto known = m_byCamera.find({mac, address}); known != m_byCamera.end()) {
        auto& adapters = m_questions[known->second].adapters;
        if (std::ranges::find(adapters, adapterIndex) == adapters.end()) {
            adapters.push_back(adapterIndex);
        }
        return;
    }
    if (m_questions.size() >= maxQuestions) {
        return;
    }
    const std::size_t index = m_questions.size();
    Question question;
    question.requestId = nextRequestId();
    question.address = address;
    question.adapters.push_back(adapterIndex);
    question.openUntil = std::clamp(now + m_openAtLeast, m_windowEnd, m_deadline);
    m_lastOpenUntil = std::max(m_lastOpenUntil, question.openUntil);
    if (question.openUntil > m_windowEnd) {
        ++m_lateOpen;
    }
    m_byCamera.emplace(std::pair(mac, address), index);
    m_byRequestId.emplace(question.requestId, index);
    m_questions.push_back(std::move(question));
    m_waiting.push_back(index);
    sendDue(now);
}

void UnicastProbe::sendDue(Clock::time_point now)
{
    while (!m_sent.empty() && m_sent.front().repeatAt <= now) {
        const std::size_t index = m_sent.front().question;
        m_sent.pop_front();
        if (!m_questions[index].settled) {
            m_questions[index].underWay = false;
            --m_underWay;
            m_waiting.push_back(index);
        }
    }
    while (!m_waiting.empty() && m_underWay < maxUnderWay && now >= m_pausedUntil) {
        const std::size_t index = m_waiting.front();
        m_waiting.pop_front();
        if (m_questions[index].repeating && now < m_questions[index].openUntil) {
            send(index, now);
        }
    }
}

void UnicastProbe::send(std::size_t index, Clock::time_point now)
{
    Question& question = m_questions[index];
    if (!m_room.admits(question.address)) {
        if (!std::exchange(m_roomEnded, true)) {
            trace::search(
                ozlog::LogLevel::Warning,
                "The kernel's neighbour table (net.ipv4.neigh.default.gc_thresh3) has no room to ask "
                "all cameras; the others count as not reachable.");
        }
        settle(question, notReachable);
        return;
    }
    const gvcp::Packet packet =
        gvcp::encodeReadReg(question.requestId, gvcp::Register::ControlChannelPrivilege);
    const int error = m_socket.sendTo(packet, {question.address, gvcp::Port});
    if (isTransientSendError(error)) {
        m_waiting.push_front(index);
        m_pausedUntil = now + fullSocketPause;
    } else if (error != 0) {
        settle(question, notReachable);
    } else {
        m_room.enter(question.address);
        question.underWay = true;
        ++m_underWay;
        m_sent.push_back({now + repeatInterval, index});
    }
}

void UnicastProbe::settle(Question& question, Answer answer)
{
    question.answer = answer;
    question.settled = true;
    if (question.underWay) {
        question.underWay = false;
        --m_underWay;
    }
    if (question.openUntil > m_windowEnd) {
        --m_lateOpen;
    }
}

void UnicastProbe::receive(std::size_t limit)
{
    std::array<std::uint8_t, gvcp::MaxPacketSize> buffer{};
    for (std::size_t i = 0; i < limit; ++i) {
        const auto datagram = m_socket.receive(buffer);
        if (!datagram) {
            return;
        }
        handle(*datagram);
    }
}

void UnicastProbe::handle(const Datagram& datagram)
{
    const auto acknowledge = gvcp::decodeAcknowledge(datagram.bytes);
    if (!acknowledge) {
        return;
    }
    const auto found = m_byRequestId.find(acknowledge->requestId);
    if (found == m_byRequestId.end()) {
        return;
    }
    Question& question = m_questions[found->second];
    const bool fromTheCamera =
        datagram.source == Endpoint{question.address, gvcp::Port} &&
        std::ranges::find(question.adapters, datagram.adapterIndex) != question.adapters.end();
    if (fromTheCamera && !question.settled) {
        handle(question, *acknowledge);
    }
}

void UnicastProbe::handle(Question& question, const gvcp::Acknowledge& acknowledge)
{
    if (acknowledge.code == gvcp::Ack::Pending) {
        question.repeating = false;
        // It can be reached, and whether somebody holds it opening will tell if the answer does not come in
        // time.
        question.answer = {.heard = true, .accessibility = Tessal::Accessibility::Ok};
    } else if (acknowledge.code != gvcp::Ack::ReadReg) {
        return;
    } else if (acknowledge.status == gvcp::Status::Busy) {
        question.answer = {.heard = true, .accessibility = Tessal::Accessibility::Unknown};
    } else if (acknowledge.status == gvcp::Status::AccessDenied) {
        // Whoever may not even read is kept out by somebody who holds the camera for himself alone.
        settle(question, {.heard = true, .accessibility = Tessal::Accessibility::ControlledExclusively});
    } else if (acknowledge.isRefusal()) {
        settle(question, {.heard = true, .accessibility = Tessal::Accessibility::Unknown});
    } else if (const auto privilege = gvcp::decodeReadRegAck(acknowledge.payload)) {
        settle(question, {.heard = true, .accessibility = accessibilityOf(*privilege)});
    }
}

Clock::time_point UnicastProbe::nextSend() const
{
    const auto repeat = m_sent.empty() ? m_deadline : m_sent.front().repeatAt;
    const bool blocked = m_waiting.empty() || m_underWay >= maxUnderWay;
    return blocked ? repeat : std::min(repeat, m_pausedUntil);
}

Clock::time_point UnicastProbe::end() const
{
    return m_lateOpen > 0 ? m_lastOpenUntil : m_windowEnd;
}

UnicastProbe::Answer UnicastProbe::answerOf(const net::MacAddress& mac, net::Ipv4 address) const
{
    const auto found = m_byCamera.find({mac, address});
    if (found == m_byCamera.end() || !m_questions[found->second].answer.heard) {
        return notReachable;
    }
    return m_questions[found->second].answer;
}

} // namespace gige
