#include "attempts.h"

#include <algorithm>

namespace gige {

namespace {

constexpr std::chrono::milliseconds transitTime{500}; // for the late answer itself to arrive

} // namespace

Attempts::Attempts(const RetryPlan& plan, Clock::time_point start, Clock::time_point limit)
    : m_plan(plan),
      m_start(start),
      m_limit(std::min(start + MaxWait, limit)),
      m_deadline(std::min(start + plan.giveUpAfter, m_limit))
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
    m_deadline = std::min(std::max(m_deadline, now + more + transitTime), m_limit);
}

void Attempts::conclude(std::chrono::milliseconds rest, Clock::time_point now)
{
    m_sent = m_plan.sendAt.size();
    m_deadline = std::min(now + rest, m_limit);
}

} // namespace gige
