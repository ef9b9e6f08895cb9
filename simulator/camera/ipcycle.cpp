#include "camera/ipcycle.h"

namespace sim {

namespace {

constexpr net::Ipv4 linkLocalMask{0xFFFF0000};

bool usesPersistent(const StoredIpConfig& stored)
{
    return (stored.enabled & gvcp::IpConfig::Persistent) != 0 && stored.persistent.ip.value != 0;
}

bool usesDhcp(const StoredIpConfig& stored)
{
    return (stored.enabled & gvcp::IpConfig::Dhcp) != 0;
}

} // namespace

const char* modeName(AddressMode mode)
{
    switch (mode) {
    case AddressMode::Static:
        return "static";
    case AddressMode::Dhcp:
        return "dhcp";
    case AddressMode::LinkLocal:
        return "linklocal";
    case AddressMode::Forced:
        break;
    }
    return "forced";
}

IpCycle::IpCycle(const CameraConfig& config, const StoredIpConfig& stored)
    : m_lease(config.lease),
      m_linkLocal(config.linkLocal),
      m_restart(config.restart),
      m_dhcpTimeout(config.dhcpTimeout)
{
    if (config.forced) {
        force(*config.forced);
    } else if (usesPersistent(stored)) {
        settle(AddressMode::Static, stored.persistent);
    } else if (usesDhcp(stored) && m_lease) {
        settle(AddressMode::Dhcp, *m_lease);
    } else {
        settle(AddressMode::LinkLocal, linkLocal());
    }
}

void IpCycle::restart(Instant now)
{
    m_current = {};
    m_waitsForLease = false;
    m_until = now + m_restart;
}

void IpCycle::force(const Ipv4Settings& settings)
{
    settle(AddressMode::Forced, settings);
}

bool IpCycle::advance(Instant now, const StoredIpConfig& stored)
{
    if (!isRunning() || now < m_until) {
        return false;
    }
    if (!m_waitsForLease && usesPersistent(stored)) {
        settle(AddressMode::Static, stored.persistent);
    } else if (!m_waitsForLease && usesDhcp(stored) && m_lease) {
        settle(AddressMode::Dhcp, *m_lease);
    } else if (!m_waitsForLease && usesDhcp(stored)) {
        m_waitsForLease = true;
        m_until += m_dhcpTimeout;
        return advance(now, stored);
    } else {
        settle(AddressMode::LinkLocal, linkLocal());
    }
    return true;
}

void IpCycle::settle(AddressMode mode, const Ipv4Settings& settings)
{
    m_mode = mode;
    m_current = settings;
    m_waitsForLease = false;
    m_until = never;
}

Ipv4Settings IpCycle::linkLocal() const
{
    return {m_linkLocal, linkLocalMask, {}};
}

} // namespace sim
