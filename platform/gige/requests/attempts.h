#pragma once

#include "socket.h"

#include <chrono>
#include <span>

namespace gige {

/// When a request is sent again and when it is given up, counted from its start.
struct RetryPlan
{
    std::span<const std::chrono::milliseconds> sendAt; // ascending; the first is 0
    std::chrono::milliseconds giveUpAfter;
};

/// The schedule of one request: when to send it and when to stop waiting. All times are absolute, so that a
/// flood of other packets cannot stretch them.
class Attempts
{
public:
    /// Ends at `limit` at the latest, whatever the plan and the camera ask for.
    Attempts(const RetryPlan& plan, Clock::time_point start,
             Clock::time_point limit = Clock::time_point::max());

    [[nodiscard]] bool isSendDue(Clock::time_point now) const;
    void countSent() { ++m_sent; }
    [[nodiscard]] bool isOver(Clock::time_point now) const { return now >= m_deadline; }
    /// When isSendDue() or isOver() next changes.
    [[nodiscard]] Clock::time_point nextEvent() const;
    [[nodiscard]] bool wasExtended() const { return m_extended; }
    /// For a camera that asks for more time: waits longer, up to MaxWait for the request, and stops sending.
    void extend(std::chrono::milliseconds more, Clock::time_point now);
    /// Stops sending and waits only this much longer.
    void conclude(std::chrono::milliseconds rest, Clock::time_point now);

    static constexpr std::chrono::seconds MaxWait{10}; // less than MaxOperationTime, so that time is left

private:
    RetryPlan m_plan;
    Clock::time_point m_start;
    Clock::time_point m_limit;
    Clock::time_point m_deadline;
    std::size_t m_sent = 0;
    bool m_extended = false;
};

} // namespace gige
