#pragma once

#include "camera/message.h"
#include "camera/time.h"
#include "gvcp/gvcp.h"

namespace sim {

/// Which application controls the camera, and until when. Applications are told apart by address and port.
class ControlChannel
{
public:
    /// Gives control to another application, which sends nothing, until `until`.
    void occupy(std::uint32_t privilege, Endpoint by, Instant until);

    /// A write of the privilege register. InvalidParameter for unknown bits, AccessDenied while another
    /// application has control.
    [[nodiscard]] gvcp::Status write(Endpoint from, std::uint32_t value, Instant now, Duration timeout);

    /// Every command of the holder renews its control.
    void keepAlive(Endpoint from, Instant now, Duration timeout);

    /// Releases control if its time is over; true if it did.
    [[nodiscard]] bool expireIfDue(Instant now);
    void release();

    [[nodiscard]] std::uint32_t privilege() const { return m_privilege; }
    [[nodiscard]] bool isHeld() const { return m_privilege != gvcp::Privilege::Open; }
    [[nodiscard]] bool isHeldBy(Endpoint endpoint) const { return isHeld() && m_holder == endpoint; }
    [[nodiscard]] bool isHeldByOtherThan(Endpoint endpoint) const { return isHeld() && m_holder != endpoint; }
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
