#pragma once

#include "errors.h"
#include "net/addresses.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <span>

namespace gige {

/// The longest time that one operation on a camera, such as opening it, may block the window.
inline constexpr std::chrono::seconds MaxOperationTime{15};

/// Access to the register space of one camera. Failures arrive as GenICam exceptions: AccessException if the
/// camera refuses for lack of privilege, RefusalException for any other refusal, TimeoutException if it does
/// not answer, another RuntimeException if this host cannot send.
class RegisterPort
{
public:
    RegisterPort() = default;
    RegisterPort(const RegisterPort&) = delete;
    RegisterPort& operator=(const RegisterPort&) = delete;
    virtual ~RegisterPort() = default;

    using TimePoint = std::chrono::steady_clock::time_point;

    /// Fills `to` with the bytes from `address` on. Any address and any length are allowed: the port aligns
    /// and splits.
    virtual void read(std::uint32_t address, std::span<std::uint8_t> to) = 0;
    /// The same for memory other than registers: even a single word is read as memory. Read as a register,
    /// cameras refuse such a word or swap its bytes.
    virtual void readMemory(std::uint32_t address, std::span<std::uint8_t> to) = 0;
    /// Writes `from` at `address`. Throws InvalidArgumentException unless address and length are multiples of
    /// 4.
    virtual void write(std::uint32_t address, std::span<const std::uint8_t> from) = 0;

    /// Of the camera, for what failures say.
    [[nodiscard]] virtual net::Ipv4 address() const = 0;

    /// The time at which any request counts as unanswered.
    [[nodiscard]] TimePoint deadline() const { return m_deadline; }
    void setDeadline(TimePoint deadline) { m_deadline = deadline; }

    /// What is left of MaxOperationTime for using a feature, after the time that it took to find it.
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

/// While it exists, limits the total time of all requests through a port.
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
