#include "gige/attempts.h"

#include <algorithm>
#include <random>

namespace gige {

namespace {

constexpr std::chrono::milliseconds transitTime{500}; // for the late answer itself to arrive

} // namespace

Attempts::Attempts(const RetryPlan& plan, Clock::time_point start)
    : m_plan(plan), m_start(start), m_deadline(start + plan.giveUpAfter)
{}

bool Attempts::isSendDue(Clock::time_point now) const
{
    return m_sent < m_plan.sendAt.size() && now >= m_start + m_plan.sendAt[m_sent];
}

Clock::time_point Attempts::nextEvent() const
{
    return m_sent < m_plan.sendAt.size() ? std::min(m_deadline, m_start + m_plan.sendAt[m_sent]) : m_deadline;
}

void Attempts::extend(std::chrono::milliseconds more, Clock::time_point now)
{
    m_extended = true;
    m_sent = m_plan.sendAt.size();
    m_deadline = std::min(std::max(m_deadline, now + more + transitTime), m_start + MaxWait);
}

std::uint16_t nextRequestId()
{
    // A random start keeps a late answer to an earlier run of the program from fitting.
    static std::uint16_t last = static_cast<std::uint16_t>(std::random_device{}());
    ++last;
    if (last == 0) {
        ++last;
    }
    return last;
}

} // namespace gige
