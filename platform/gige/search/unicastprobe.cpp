#include "unicastprobe.h"

#include "gvcp/bytes.h"
#include "log.h"
#include "tessal/transportlayer.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace gige {

namespace {

using namespace std::chrono_literals;

// A camera that was slow with other answers gets the same time for this one before it is asked again.
constexpr auto shortestRepeat = 50ms;
constexpr auto longestRepeat = 200ms;
constexpr int repeatFactor = 3;

constexpr auto fullSocketPause = 5ms;
// A thousand questions at once, with an address resolution before each, would overrun the queues on their
// way, and the kernel repeats a lost address resolution only after a second.
constexpr std::size_t maxInFlight = 128; // through one adapter, as is the next
constexpr std::size_t maxQuestions = 4096;

constexpr UnicastProbe::Answer notReachable{
    .heard = false, .accessibility = Tessal::Accessibility::NotReachable, .controlledBy = {}};

constexpr UnicastProbe::Answer heardWith(int accessibility)
{
    return {.heard = true, .accessibility = accessibility, .controlledBy = {}};
}

bool isUnicast(net::Ipv4 address)
{
    const std::uint32_t firstPart = address.value >> 24;
    return firstPart != 0 && firstPart != 127 && firstPart < 224;
}

std::vector<net::LinkRoute> readLinkRoutes()
{
    try {
        return net::linkRoutes();
    } catch (const std::system_error& error) {
        logSearch(ozlog::LogLevel::Warning, "No camera can be asked over unicast: %hs", error.what());
        return {};
    }
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

UnicastProbe::UnicastProbe(const SearchPace& pace, Clock::time_point start)
    : m_routes(readLinkRoutes()), m_start(start), m_pace(pace)
{}

void UnicastProbe::switchTo(const SearchPace& pace)
{
    m_pace = pace;
    for (Question& question : m_questions) {
        question.openUntil = std::max(question.openUntil, m_start + m_pace.window);
    }
}

void UnicastProbe::ask(const Camera& camera, int adapterIndex, Clock::duration lateness,
                       Clock::time_point now)
{
    if (!isUnicast(camera.address) || !net::isOnLink(m_routes, camera.address, adapterIndex)) {
        return;
    }
    const auto known = m_byCamera.find(camera);
    if (known == m_byCamera.end()) {
        add(camera, adapterIndex, lateness, now);
        return;
    }
    Question& question = m_questions[known->second];
    giveTime(question, lateness);
    if (std::ranges::find(question.adapters, adapterIndex) == question.adapters.end()) {
        question.adapters.push_back(adapterIndex);
        if (std::exchange(question.hasNoAdapter, false)) {
            question.settled = false;
            question.failures = 0;
            question.sent = question.adapters.size() - 1;
            queueOf(question).waiting.push_back(known->second);
            sendDue(now);
        }
    }
}

void UnicastProbe::add(const Camera& camera, int adapterIndex, Clock::duration lateness,
                       Clock::time_point now)
{
    Queue& queue = m_queues[adapterIndex];
    if (queue.questions >= maxQuestions) {
        return;
    }
    ++queue.questions;
    const std::size_t index = m_questions.size();
    Question question;
    question.camera = camera;
    question.adapters.push_back(adapterIndex);
    question.askedAt = now;
    giveTime(question, lateness);
    m_byCamera.emplace(camera, index);
    m_byRequestId.emplace(question.request.id(), index);
    m_questions.push_back(std::move(question));
    queue.waiting.push_back(index);
    sendDue(now);
}

void UnicastProbe::giveTime(Question& question, Clock::duration lateness)
{
    const Clock::duration patience = std::max<Clock::duration>(m_pace.unicastPatience, lateness * 3 / 2);
    question.openUntil =
        std::max(question.openUntil,
                 std::clamp(question.askedAt + patience, m_start + m_pace.window, m_start + m_pace.deadline));
    question.repeatInterval =
        std::clamp<Clock::duration>(lateness * repeatFactor, shortestRepeat, longestRepeat);
}

UnicastProbe::Queue& UnicastProbe::queueOf(const Question& question)
{
    return m_queues[question.adapters[question.sent % question.adapters.size()]];
}

void UnicastProbe::sendDue(Clock::time_point now)
{
    for (; !m_repeats.empty() && m_repeats.top().at <= now; m_repeats.pop()) {
        const Repeat& repeat = m_repeats.top();
        Question& question = m_questions[repeat.question];
        if (!question.settled && question.request.id() == repeat.requestId) {
            clearInFlight(question);
            queueOf(question).waiting.push_back(repeat.question);
        }
    }
    for (auto& [adapter, queue] : m_queues) {
        bool canSendMore = now >= m_pausedUntil;
        while (canSendMore && !queue.waiting.empty() && queue.inFlight < maxInFlight) {
            const std::size_t index = queue.waiting.front();
            queue.waiting.pop_front();
            const Question& question = m_questions[index];
            if (!question.settled && question.repeating && now < question.openUntil) {
                canSendMore = send(queue, index, now);
            }
        }
    }
}

bool UnicastProbe::send(Queue& queue, std::size_t index, Clock::time_point now)
{
    Question& question = m_questions[index];
    const int adapter = question.adapters[question.sent % question.adapters.size()];
    if (!m_neighbours.canAdd({adapter, question.camera.address})) {
        if (!std::exchange(m_isNeighbourTableFull, true)) {
            logSearch(ozlog::LogLevel::Warning,
                      "The kernel's neighbour table (net.ipv4.neigh.default.gc_thresh3) has no room to ask "
                      "all cameras; the others count as not reachable.");
        }
        tryNextAdapter(question, index, now);
        return true;
    }
    const int error = m_socket.sendTo(question.request.packet(), {question.camera.address, gvcp::Port},
                                      Origin{.adapterIndex = adapter, .address = {}});
    if (isTransientSendError(error)) {
        queue.waiting.push_front(index);
        m_pausedUntil = now + fullSocketPause;
        return false;
    }
    if (error == 0) {
        ++question.sent;
        question.wasSent = true;
        question.failures = 0;
        m_neighbours.add({adapter, question.camera.address});
        question.sentThrough = adapter;
        question.inFlight = true;
        ++queue.inFlight;
        m_repeats.push({now + question.repeatInterval, index, question.request.id()});
    } else {
        tryNextAdapter(question, index, now);
    }
    return true;
}

/// For an adapter that could not send when it was its turn. Earlier answers of the camera stand, and what was
/// sent through another adapter may still be answered.
void UnicastProbe::tryNextAdapter(Question& question, std::size_t index, Clock::time_point now)
{
    ++question.sent;
    ++question.failures;
    if (question.failures < question.adapters.size()) {
        queueOf(question).waiting.push_back(index);
    } else if (question.wasSent) {
        question.failures = 0;
        m_repeats.push({now + question.repeatInterval, index, question.request.id()});
    } else {
        question.hasNoAdapter = true;
        settle(question, question.answer);
    }
}

/// The question is no longer in flight.
void UnicastProbe::clearInFlight(Question& question)
{
    if (std::exchange(question.inFlight, false)) {
        --m_queues[question.sentThrough].inFlight;
    }
}

void UnicastProbe::settle(Question& question, const Answer& answer)
{
    question.answer = answer;
    question.settled = true;
    clearInFlight(question);
}

void UnicastProbe::receive(std::size_t limit, Clock::time_point now)
{
    ReceiveBuffer buffer{};
    for (std::size_t i = 0; i < limit; ++i) {
        const auto datagram = m_socket.receive(buffer);
        if (!datagram) {
            return;
        }
        handle(*datagram, now);
    }
}

void UnicastProbe::handle(const Datagram& datagram, Clock::time_point now)
{
    const auto requestId = requestIdOf(datagram.bytes);
    const auto found = requestId ? m_byRequestId.find(*requestId) : m_byRequestId.end();
    if (found == m_byRequestId.end()) {
        return;
    }
    Question& question = m_questions[found->second];
    const bool isFromCameraAddress =
        datagram.source == Endpoint{question.camera.address, gvcp::Port} &&
        std::ranges::find(question.adapters, datagram.adapterIndex) != question.adapters.end();
    if (isFromCameraAddress && !question.settled && question.request.id() == *requestId) {
        question.heardThrough = datagram.adapterIndex;
        handle(found->second, question.request.judge(datagram.bytes), now);
    }
}

void UnicastProbe::handle(std::size_t index, const Reply& reply, Clock::time_point now)
{
    Question& question = m_questions[index];
    const bool isFirstStep = question.step == Step::Privilege;
    switch (reply.kind) {
    case Reply::Kind::NotOurs:
        break;
    case Reply::Kind::Pending:
        question.repeating = false;
        [[fallthrough]];
    case Reply::Kind::Busy:
        if (isFirstStep) {
            // The camera can be reached, but has not said whether it can be opened.
            question.answer = heardWith(Tessal::Accessibility::Unknown);
        }
        break;
    case Reply::Kind::Refused:
        if (!isFirstStep) {
            settle(question, question.step == Step::ControlledBy ? question.answer
                                                                 : heardWith(Tessal::Accessibility::Unknown));
        } else {
            // A refused read means that another application has exclusive access.
            verifySender(index,
                         heardWith(reply.status == gvcp::Status::AccessDenied
                                       ? Tessal::Accessibility::ControlledExclusively
                                       : Tessal::Accessibility::Unknown),
                         now);
        }
        break;
    case Reply::Kind::Done:
        handleValue(index, bytes::get32(reply.payload, 0), now);
        break;
    }
}

void UnicastProbe::handleValue(std::size_t index, std::uint32_t value, Clock::time_point now)
{
    Question& question = m_questions[index];
    switch (question.step) {
    case Step::Privilege:
        verifySender(index, heardWith(accessibilityOf(value)), now);
        break;
    case Step::MacHigh:
        question.macHigh = value;
        askNext(index, Step::MacLow, gvcp::Register::MacLow, now);
        break;
    case Step::MacLow:
        if (gvcp::decodeMac(question.macHigh, value) == question.camera.mac) {
            conclude(index, now);
        } else {
            settle(question, notReachable);
        }
        break;
    case Step::ControlledBy:
        question.answer.controlledBy = {value};
        settle(question, question.answer);
        break;
    }
}

/// The device at the camera's address has answered. If the kernel does not know it to be the camera, it is
/// asked for its MAC address.
void UnicastProbe::verifySender(std::size_t index, const Answer& answer, Clock::time_point now)
{
    Question& question = m_questions[index];
    question.unverified = answer;
    question.answer = {};
    if (isFromCamera(question)) {
        conclude(index, now);
    } else {
        askNext(index, Step::MacHigh, gvcp::Register::MacHigh, now);
    }
}

bool UnicastProbe::isFromCamera(const Question& question) const
{
    try {
        return net::hardwareAddressOf({question.heardThrough, question.camera.address}) ==
               question.camera.mac;
    } catch (const std::system_error& error) {
        logSearch(ozlog::LogLevel::Info, "%hs", error.what());
        return false;
    }
}

/// The answer is known to be the camera's own.
void UnicastProbe::conclude(std::size_t index, Clock::time_point now)
{
    Question& question = m_questions[index];
    question.answer = question.unverified;
    if (question.answer.accessibility == Tessal::Accessibility::Controlled) {
        askNext(index, Step::ControlledBy, gvcp::Register::PrimaryApplicationIp, now);
    } else {
        settle(question, question.answer);
    }
}

void UnicastProbe::askNext(std::size_t index, Step step, std::uint32_t address, Clock::time_point now)
{
    Question& question = m_questions[index];
    clearInFlight(question);
    question.step = step;
    question.request = Request::readRegister(address);
    question.repeating = true;
    question.wasSent = false;
    question.failures = 0;
    question.sent = static_cast<std::size_t>(std::ranges::find(question.adapters, question.heardThrough) -
                                             question.adapters.begin());
    m_byRequestId.emplace(question.request.id(), index);
    queueOf(question).waiting.push_front(index);
    sendDue(now);
}

Clock::time_point UnicastProbe::nextSend() const
{
    const bool canSend = std::ranges::any_of(m_queues, [](const auto& entry) {
        return !entry.second.waiting.empty() && entry.second.inFlight < maxInFlight;
    });
    const auto repeat = m_repeats.empty() ? m_start + m_pace.deadline : m_repeats.top().at;
    return canSend ? std::min(repeat, m_pausedUntil) : repeat;
}

Clock::time_point UnicastProbe::end(Clock::time_point now) const
{
    Clock::time_point end = m_start + m_pace.window;
    if (now < end) {
        return end;
    }
    for (const Question& question : m_questions) {
        if (!question.settled) {
            end = std::max(end, question.openUntil);
        }
    }
    return end;
}

UnicastProbe::Answer UnicastProbe::answerOf(const Camera& camera) const
{
    const auto found = m_byCamera.find(camera);
    if (found == m_byCamera.end() || !m_questions[found->second].answer.heard) {
        return notReachable;
    }
    return m_questions[found->second].answer;
}

} // namespace gige
