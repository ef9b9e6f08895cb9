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

/// GigE Vision on this host's networks. Remembers what the latest search learned: the enumerations and
/// queries of one refresh, each made within a second of the one before, share one search, and commands by MAC
/// know which camera they go to.
class GigETransportLayer final : public Tessal::IGigETransportLayer,
                                 public Tessal::ISearchReport,
                                 public Tessal::IDeviceChoice
{
public:
    int EnumerateDevices(Tessal::DeviceInfoList& list, bool append) override;
    Tessal::ITessalDevice* CreateDevice(const Tessal::CDeviceInfo& info) override;
    /// Throws LogicalErrorException for a device that this layer did not make or has destroyed; null is
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
    void search();
    /// Whether what the latest search learned still holds; if so, it does for another second from now.
    [[nodiscard]] bool renewCache();
    /// What is known of the cameras' state is about to change.
    void invalidateCache() { m_cachedUntil = {}; }
    /// Lists what the latest search found, all of it or what answers over unicast. Returns how many.
    int list(Tessal::DeviceInfoList& list, bool append, bool onlyUnicast) const;
    [[nodiscard]] const FoundCamera* findCached(const Tessal::CDeviceInfo& info);
    [[nodiscard]] ExpectedSources expectedSources(const net::MacAddress& mac) const;
    /// For a camera of the maker: its own bytes where `name` is how its present name is shown; a name that is
    /// no UTF-8 is not to be changed by a save of an address.
    [[nodiscard]] std::string_view nameToStore(const net::MacAddress& mac, std::string_view name) const;
    void assign(const gvcp::AddressAssignment& assignment, const char* operation, const RetryPlan& plan);
    /// Searches for the camera. Throws RuntimeException when it is seen with another address, or beside
    /// another camera with the same one. One that is not seen is content: it may still be at it.
    void checkAssigned(const gvcp::AddressAssignment& assignment);

    using HeardAs =
        std::tuple<net::MacAddress, net::Ipv4, net::Ipv4>; // MAC, address, host address that heard it

    SearchHistory m_searches;
    std::vector<FoundCamera> m_found;            // by the latest search
    std::map<HeardAs, std::size_t> m_foundIndex; // into m_found
    std::map<net::MacAddress, gvcp::Identity>
        m_orvikCameras; // the latest record of each; know the broadcast command
    Clock::time_point m_cachedUntil;
    std::optional<net::MacAddress> m_expectedMac; // of the next device to be opened
    std::vector<std::unique_ptr<Device>> m_devices;
};

} // namespace gige
