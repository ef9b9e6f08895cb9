#pragma once

#include "cameraport.h"
#include "tessal/transportlayer.h"

#include <functional>
#include <memory>
#include <optional>

namespace gige {

/// One camera. While it is open this host holds its control channel, but does not keep that alive: nothing is
/// sent between two operations, so a camera left alone for its heartbeat timeout (3 s by default) takes
/// control back. A caller opens, writes and closes; a later write then meets an AccessException.
class Device final : public Tessal::ITessalGigEDevice
{
public:
    /// Called by an opening, before it speaks to the camera and again when it knows which camera answers
    /// there. Gives the index of the adapter to speak through, 0 for any; throws when the address must not be
    /// used.
    using CheckAddress = std::function<int(net::Ipv4, const std::optional<net::MacAddress>& answered)>;

    Device(Tessal::CDeviceInfo info, CheckAddress checkAddress);
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    Device(Device&&) = delete;
    Device& operator=(Device&&) = delete;
    /// Gives control back if the device is open; a camera that has dropped us is only traced.
    ~Device() override;

    /// Takes control for every set of modes: nothing less lets a setting be written. Takes no longer than
    /// MaxOperationTime, and leaves the camera free when it fails. Throws InvalidArgumentException when the
    /// record names no address, RuntimeException when that is 0.0.0.0 or the wrong camera's, AccessException
    /// when another application holds the camera, LogicalErrorException when the camera was reached and
    /// cannot be opened all the same: another address would not help. What else is thrown means that it could
    /// not be reached.
    void Open(const Tessal::AccessModeSet& modes) override;
    void Close() override;
    [[nodiscard]] bool IsOpen() const override { return m_port != nullptr; }
    [[nodiscard]] const Tessal::CDeviceInfo& GetDeviceInfo() const override { return m_info; }
    [[nodiscard]] GenApi::INodeMap* GetNodeMap() override;
    /// Both throw LogicalErrorException when the device is not open, and RuntimeException when the camera
    /// acknowledged the value but does not give it back. Their failures tell what the camera has kept of this
    /// opening's settings.
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
        std::uint32_t judged = ~std::uint32_t{0}; // the bits that must be there when it is read back
    };
    void writeChecked(const Write& write);
    /// Limits the time of all writes together, and adds what the camera has taken already to their failures.
    void configure(const std::function<void()>& writeAll);

    Tessal::CDeviceInfo m_info;
    CheckAddress m_checkAddress;
    std::unique_ptr<CameraPort> m_port;          // null while closed
    std::vector<Tessal::Setting> m_kept;         // written since it was opened, in that order
    std::unique_ptr<GenApi::INodeMap> m_nodeMap; // reads through m_port
};

} // namespace gige
