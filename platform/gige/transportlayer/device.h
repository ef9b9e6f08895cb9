#pragma once

#include "cameraport.h"
#include "tessal/transportlayer.h"

#include <functional>
#include <memory>
#include <optional>

namespace gige {

/// One camera. While it is open, this host has its control channel but does not keep it alive: nothing is
/// sent between two operations, so that a camera closes the channel after its heartbeat timeout (3 s by
/// default). Callers open, write and close; a write after the timeout throws AccessException.
class Device final : public Tessal::ITessalGigEDevice
{
public:
    /// Called by Open() before it contacts the camera, and again when it knows which camera answers there.
    /// Returns the index of the adapter to use, 0 for any; throws if the address must not be used.
    using CheckAddress = std::function<int(net::Ipv4, const std::optional<net::MacAddress>& answered)>;

    Device(Tessal::CDeviceInfo info, CheckAddress checkAddress);
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    Device(Device&&) = delete;
    Device& operator=(Device&&) = delete;
    /// Gives control back if the device is open; a failure is only logged.
    ~Device() override;

    /// Takes control for every set of modes, because settings cannot be written without. Takes at most
    /// MaxOperationTime, and leaves the camera free if it fails. Throws InvalidArgumentException if the
    /// record has no address, RuntimeException if that is 0.0.0.0 or the wrong camera's, AccessException if
    /// another application has control, LogicalErrorException if the camera was reached but cannot be opened:
    /// another address would not help. Any other exception means that the camera could not be reached.
    void Open(const Tessal::AccessModeSet& modes) override;
    void Close() override;
    [[nodiscard]] bool IsOpen() const override { return m_port != nullptr; }
    [[nodiscard]] const Tessal::CDeviceInfo& GetDeviceInfo() const override { return m_info; }
    [[nodiscard]] GenApi::INodeMap* GetNodeMap() override;
    /// Both throw LogicalErrorException if the device is not open, and RuntimeException if the camera
    /// acknowledged a value but does not report it. Their failures list the settings that the camera has
    /// stored since it was opened.
    void SetIpConfigMode(bool enablePersistentIp, bool enableDhcp) override;
    void SetPersistentIp(const GenICam::gcstring& ipAddress, const GenICam::gcstring& subnetMask,
                         const GenICam::gcstring& defaultGateway) override;

private:
    [[nodiscard]] CameraPort& port();
    struct Write
    {
        Tessal::Setting setting = Tessal::Setting::None;
        std::uint32_t address = 0;
        std::uint32_t value = 0;
        std::uint32_t comparedBits = ~std::uint32_t{0}; // the bits that must match when it is read back
    };
    void writeChecked(const Write& write);
    /// Limits the total time of all writes, and adds the settings already stored to their failures.
    void configure(const std::function<void()>& writeAll);

    Tessal::CDeviceInfo m_info;
    CheckAddress m_checkAddress;
    std::unique_ptr<CameraPort> m_port;          // null while closed
    std::vector<Tessal::Setting> m_kept;         // written since it was opened, in order
    std::unique_ptr<GenApi::INodeMap> m_nodeMap; // reads through m_port
};

} // namespace gige
