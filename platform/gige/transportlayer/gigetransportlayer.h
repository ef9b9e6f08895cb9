#pragma once

#include "broadcastcommand.h"
#include "device.h"
#include "search.h"
#include "tessal/devicechoice.h"
#include "tessal/searchreport.h"
#include "tessal/transportlayer.h"

#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <tuple>
#include <vector>

namespace gige {

/// GigE Vision on this host's networks. Remembers the results of the latest search: the enumerations and
/// queries of one refresh, each within a second of the one before, share one search, and commands by MAC
/// address know which camera they go to.
class GigETransportLayer final : public Tessal::IGigETransportLayer,
                                 public Tessal::ISearchReport,
                                 public Tessal::IDeviceChoice
{
public:
    int EnumerateDevices(Tessal::DeviceInfoList& list, bool append) override;
    Tessal::ITessalDevice* CreateDevice(const Tessal::CDeviceInfo& info) override;
    /// Throws LogicalErrorException for a device that this layer did not create or has destroyed; null is
    /// allowed.
    void DestroyDevice(Tessal::ITessalDevice* device) override;
    bool QueryDeviceAccessibility(const Tessal::CDeviceInfo& info, const Tessal::AccessModeSet& modes,
                                  int* accessibility) override;
    [[nodiscard]] Tessal::CDeviceInfo CreateDeviceInfo() override;
    int EnumerateDevicesAnySubnet(Tessal::DeviceInfoList& list, bool append) override;
    void ForceIp(const GenICam::gcstring& mac, const GenICam::gcstring& ipAddress,
                 const GenICam::gcstring& subnetMask, const GenICam::gcstring& defaultGateway) override;
    void RestartIpConfig(const GenICam::gcstring& mac) override;
    bool BroadcastIpConfig(const GenICam::gcstring& mac, bool enablePersistentIp, bool enableDhcp,
                           const GenICam::gcstring& ipAddress, const GenICam::gcstring& subnetMask,
                           const GenICam::gcstring& defaultGateway,
                           const GenICam::gcstring& userDefinedName) override;

    [[nodiscard]] std::vector<Tessal::AdapterObstacle> GetObstacles() const override
    {
        return m_searches.obstacles;
    }
    void SetExpectedMac(const GenICam::gcstring& mac) override;

private:
    void searchAll();
    /// Whether the results of the latest search are still valid; if so, they are for another second from now.
    [[nodiscard]] bool renewCache();
    /// For commands that are about to change the state of cameras.
    void invalidateCache() { m_cachedUntil = {}; }
    /// Fills the list with the cameras that the latest search found, all or only those that answer over
    /// unicast. Returns how many.
    int copyFound(Tessal::DeviceInfoList& list, bool append, bool onlyUnicast) const;
    [[nodiscard]] const FoundCamera* findCached(const Tessal::CDeviceInfo& info);
    [[nodiscard]] ExpectedSources expectedSources(const net::MacAddress& mac) const;
    /// For the maker's cameras: the stored bytes of the name if `name` is how they are shown, so that saving
    /// an address does not change a name that is not valid UTF-8.
    [[nodiscard]] std::string_view nameToStore(const net::MacAddress& mac, std::string_view name) const;
    void assign(const gvcp::AddressAssignment& assignment, const char* operation, const RetryPlan& plan);
    /// Searches for the camera. Throws RuntimeException if it is found with another address, or together with
    /// another camera that has the same one. Not finding it is no failure: it may still be changing its
    /// address.
    void checkAssigned(const gvcp::AddressAssignment& assignment);

    using HeardAs =
        std::tuple<net::MacAddress, net::Ipv4, net::Ipv4>; // MAC address, address, host address that heard it

    SearchHistory m_searches;
    std::vector<FoundCamera> m_found;            // by the latest search
    std::map<HeardAs, std::size_t> m_foundIndex; // into m_found
    std::map<net::MacAddress, gvcp::Identity>
        m_orvikCameras; // latest records; these know the broadcast command
    Clock::time_point m_cachedUntil;
    std::optional<net::MacAddress> m_expectedMac; // of the next device to be opened
    std::vector<std::unique_ptr<Device>> m_devices;
};

} // namespace gige
