#pragma once

#include "camera/cameraconfig.h"
#include "camera/time.h"

namespace sim {

enum class AddressMode { Static, Dhcp, LinkLocal, Forced };

/// "static", "dhcp", "linklocal" or "forced".
[[nodiscard]] const char* modeName(AddressMode mode);

/// What a camera keeps when it restarts.
struct StoredIpConfig
{
    std::uint32_t enabled = gvcp::IpConfig::LinkLocal;
    Ipv4Settings persistent;
};

/// How a camera gets its address: the persistent one if enabled, else a DHCP lease if enabled and a server
/// answers, else a link-local one. The camera is offline meanwhile.
class IpCycle
{
public:
    /// Starts with the cycle completed.
    IpCycle(const CameraConfig& config, const StoredIpConfig& stored);

    void restart(Instant now);
    /// Sets a temporary address, which takes effect at once and until the next restart.
    void force(const Ipv4Settings& settings);
    /// Continues a running cycle; true if it has just ended.
    [[nodiscard]] bool advance(Instant now, const StoredIpConfig& stored);

    [[nodiscard]] bool isRunning() const { return m_until != never; }
    [[nodiscard]] Instant deadline() const { return m_until; }
    /// 0.0.0.0 while the cycle runs.
    [[nodiscard]] const Ipv4Settings& current() const { return m_current; }
    [[nodiscard]] AddressMode mode() const { return m_mode; }

private:
    void settle(AddressMode mode, const Ipv4Settings& settings);
    [[nodiscard]] Ipv4Settings linkLocal() const;

    std::optional<Ipv4Settings> m_lease;
    net::Ipv4 m_linkLocal;
    Duration m_restart;
    Duration m_dhcpTimeout;
    Ipv4Settings m_current;
    AddressMode m_mode = AddressMode::LinkLocal;
    bool m_waitsForLease = false;
    Instant m_until = never;
};

} // namespace sim
