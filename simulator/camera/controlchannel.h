#pragma once

#include "camera/message.h"
#include "camera/time.h"
#include "gvcp/gvcp.h"

namespace sim {

/// Who controls a camera, and for how long. An application is known by its address and port.
class ControlChannel
{
public:
    /// Another application holds the camera without ever being heard: until `until`.
    void occupy(std::uint32_t privilege, Endpoint by, Instant until);

    /// A write of the privilege register. InvalidParameter for bits that no camera here knows, AccessDenied
    /// while another application holds control.
    [[nodiscard]] gvcp::Status write(Endpoint from, std::uint32_t value, Instant now, Duration timeout);

    /// Any command of the holder keeps its control alive.
    void keepAlive(Endpoint from, Instant now, Duration timeout);

    /// Whether control has just lapsed; it is free from then on.
    [[nodiscard]] bool expireIfDue(Instant now);
    void release();

    [[nodiscard]] std::uint32_t privilege() const { return m_privilege; }
    [[nodiscard]] bool isHeld() const { return m_privilege != gvcp::Privilege::Open; }
    [[nodiscard]] bool isHeldBy(Endpoint who) const { return isHeld() && m_holder == who; }
    [[nodiscard]] bool isHeldByOtherThan(Endpoint who) const { return isHeld() && m_holder != who; }
    /// The holder, or 0.0.0.0 port 0.
    [[nodiscard]] Endpoint holder() const { return m_holder; }
    [[nodiscard]] Instant deadline() const { return m_until; }

private:
    std::uint32_t m_privilege = gvcp::Privilege::Open;
    Endpoint m_holder;
    Instant m_until = never;
};

/// "none", "control" or "exclusive".
[[nodiscard]] const char* privilegeName(std::uint32_t privilege);

} // namespace sim
