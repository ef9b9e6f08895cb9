#pragma once

#include "errors.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <span>

namespace gige {

/// No camera holds the window longer by one operation, such as being opened or taking an address.
inline constexpr std::chrono::seconds MaxOperationTime{15};

/// Access to the register space of one camera. Failures arrive as GenICam exceptions: AccessException when
/// the camera refuses for want of privilege, RefusalException for any other refusal, TimeoutException when it
/// does not answer, another RuntimeException when this host cannot send.
class RegisterPort
{
public:
    RegisterPort() = default;
    RegisterPort(const RegisterPort&) = delete;
    RegisterPort& operator=(const RegisterPort&) = delete;
    virtual ~RegisterPort() = default;

    using TimePoint = std::chrono::steady_clock::time_point;

    /// Fills `to` with the bytes from `address` on. Any address and any length; the port aligns and splits.
    virtual void read(std::uint32_t address, std::span<std::uint8_t> to) = 0;
    /// The same for what is memory and no register: a single word is asked for as memory, too. Cameras refuse
    /// to read such a word as a register, or turn its bytes round.
    virtual void readMemory(std::uint32_t address, std::span<std::uint8_t> to) = 0;
    /// Writes `from` at `address`; both must be multiples of 4, else InvalidArgumentException.
    virtual void write(std::uint32_t address, std::span<const std::uint8_t> from) = 0;

    /// From then on a request counts as not answered.
    [[nodiscard]] TimePoint deadline() const { return m_deadline; }
    void setDeadline(TimePoint deadline) { m_deadline = deadline; }

    /// What is left of MaxOperationTime for the use of a feature: to find out where it is may have taken
    /// long.
    [[nodiscard]] std::chrono::milliseconds featureTime() const
    {
        return MaxOperationTime - m_spentOnFeatures;
    }
    void setSpentOnFeatures(std::chrono::milliseconds spent)
    {
        m_spentOnFeatures = std::min<std::chrono::milliseconds>(spent, MaxOperationTime);
    }

private:
    std::chrono::milliseconds m_spentOnFeatures{};
    TimePoint m_deadline = TimePoint::max();
};

/// Limits the time of all requests through a port together, while it lives.
class TimeLimit
{
public:
    TimeLimit(RegisterPort& port, std::chrono::milliseconds time) : m_port(port), m_before(port.deadline())
    {
        port.setDeadline(std::min(m_before, std::chrono::steady_clock::now() + time));
    }
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;
    ~TimeLimit() { m_port.setDeadline(m_before); }

    [[nodiscard]] bool isOver() const { return std::chrono::steady_clock::now() >= m_port.deadline(); }

private:
    RegisterPort& m_port;
    RegisterPort::TimePoint m_before;
};

} // namespace gige
