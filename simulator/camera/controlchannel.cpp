#include "camera/controlchannel.h"

namespace sim {

void ControlChannel::occupy(std::uint32_t privilege, Endpoint by, Instant until)
{
    m_privilege = privilege;
    m_holder = by;
    m_until = until;
}

gvcp::Status ControlChannel::write(Endpoint from, std::uint32_t value, Instant now, Duration timeout)
{
    if ((value & ~(gvcp::Privilege::Exclusive | gvcp::Privilege::Control)) != 0) {
        return gvcp::Status::InvalidParameter;
    }
    if (isHeldByOtherThan(from)) {
        return gvcp::Status::AccessDenied;
    }
    if (value == gvcp::Privilege::Open) {
        release();
    } else {
        occupy(value, from, now + timeout);
    }
    return gvcp::Status::Success;
}

void ControlChannel::keepAlive(Endpoint from, Instant now, Duration timeout)
{
    if (isHeldBy(from)) {
        m_until = now + timeout;
    }
}

bool ControlChannel::expireIfDue(Instant now)
{
    if (!isHeld() || now < m_until) {
        return false;
    }
    release();
    return true;
}

void ControlChannel::release()
{
    occupy(gvcp::Privilege::Open, {}, never);
}

const char* privilegeName(std::uint32_t privilege)
{
    if ((privilege & gvcp::Privilege::Exclusive) != 0) {
        return "exclusive";
    }
    return (privilege & gvcp::Privilege::Control) != 0 ? "control" : "none";
}

} // namespace sim
