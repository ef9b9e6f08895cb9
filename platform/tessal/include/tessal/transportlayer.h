#pragma once

#include "genicam/nodemap.h"
#include "tessal/deviceinfo.h"

#include <set>

namespace Tessal {

/// What an application wants from a camera.
enum class EDeviceAccessMode : int {
    Control = 1,
    Stream = 3,
    Event = 4,
};

/// Everything that one application wants from a camera at the same time.
class AccessModeSet
{
public:
    AccessModeSet() = default;
    AccessModeSet(EDeviceAccessMode mode) : m_modes{mode} {}

    [[nodiscard]] bool contains(EDeviceAccessMode mode) const { return m_modes.contains(mode); }
    friend bool operator==(const AccessModeSet&, const AccessModeSet&) = default;
    friend AccessModeSet operator|(const AccessModeSet& modes, EDeviceAccessMode mode)
    {
        AccessModeSet joined = modes;
        joined.m_modes.insert(mode);
        return joined;
    }

private:
    std::set<EDeviceAccessMode> m_modes;
};

[[nodiscard]] inline AccessModeSet operator|(EDeviceAccessMode left, EDeviceAccessMode right)
{
    return AccessModeSet(left) | right;
}

/// Whether a camera can be opened. Code 4 stands for a camera that cannot be asked or does not answer.
namespace Accessibility {
inline constexpr int Unknown = 0;
inline constexpr int Ok = 1;
inline constexpr int Controlled = 2;
inline constexpr int ControlledExclusively = 3;
inline constexpr int NotReachable = 4;
} // namespace Accessibility

/// One camera, open or not. Failures of any operation are GenICam exceptions: AccessException if another
/// application has control, TimeoutException if the camera does not answer, RuntimeException if it refuses or
/// if this host cannot send.
class IDevice
{
public:
    IDevice() = default;
    IDevice(const IDevice&) = delete;
    IDevice& operator=(const IDevice&) = delete;

    /// Takes control of the camera. Does nothing if it is already open.
    virtual void Open(const AccessModeSet& modes) = 0;
    /// Gives control back. Does nothing if it is not open; it is closed afterwards even if this throws.
    virtual void Close() = 0;
    [[nodiscard]] virtual bool IsOpen() const = 0;
    /// Once opened, the record that the camera itself gives; before, the one that the device was created
    /// from.
    [[nodiscard]] virtual const CDeviceInfo& GetDeviceInfo() const = 0;
    virtual ~IDevice() = default;
};

class ITessalDevice : public IDevice
{
public:
    /// The camera's features, owned by the device; null while it is closed.
    [[nodiscard]] virtual GenApi::INodeMap* GetNodeMap() = 0;
};

class ITessalGigEDevice : public ITessalDevice
{
public:
    /// Stores which modes the camera tries in its next IP configuration cycle. Link-local is always on.
    virtual void SetIpConfigMode(bool enablePersistentIp, bool enableDhcp) = 0;
    /// Stores the address of the static mode, three dotted quads, and reads them back. While the mode is not
    /// static, a mask or gateway that is not a dotted quad counts as 0.0.0.0, because it may be half typed.
    virtual void SetPersistentIp(const GenICam::gcstring& ipAddress, const GenICam::gcstring& subnetMask,
                                 const GenICam::gcstring& defaultGateway) = 0;
};

/// Finds cameras and creates devices for them.
class IDeviceFactory
{
public:
    IDeviceFactory() = default;
    IDeviceFactory(const IDeviceFactory&) = delete;
    IDeviceFactory& operator=(const IDeviceFactory&) = delete;

    /// Fills `list` with the cameras that this host can reach at their present address; with `append`, adds
    /// them. Returns how many were added. Throws RuntimeException if the host's adapters cannot be listed or
    /// no socket can be opened.
    virtual int EnumerateDevices(DeviceInfoList& list, bool append) = 0;
    /// Creates a device for the described camera, or returns null if the record has no IP address. Sends
    /// nothing; an invalid address makes Open() fail.
    virtual ITessalDevice* CreateDevice(const CDeviceInfo& info) = 0;
    /// Destroys a device made by CreateDevice, giving control back if it is open. Null is allowed. Throws
    /// LogicalErrorException for any other device.
    virtual void DestroyDevice(ITessalDevice* device) = 0;
    /// Writes an Accessibility code to `*accessibility` if that is not null; returns whether the camera can
    /// be opened. The same for all `modes`, since each needs control. A record with a MAC address means only
    /// the camera that has it: another camera at its IP address does not count.
    virtual bool QueryDeviceAccessibility(const CDeviceInfo& info, const AccessModeSet& modes,
                                          int* accessibility) = 0;
    virtual ~IDeviceFactory() = default;
};

class ITransportLayer : public IDeviceFactory
{
public:
    /// An empty record of this transport layer, for the caller to complete.
    [[nodiscard]] virtual CDeviceInfo CreateDeviceInfo() = 0;
};

/// GigE Vision. The MAC address of a camera is given as twelve hexadecimal digits; any other text, or an
/// address that is not a dotted quad, causes an InvalidArgumentException. If no adapter of the host can send,
/// the commands to a camera throw RuntimeException.
class IGigETransportLayer : public ITransportLayer
{
public:
    /// Fills `list` with every camera that answers discovery on any adapter, whatever its address; one record
    /// for each host address that asked. With `append`, adds to it. Returns how many were added; throws like
    /// EnumerateDevices().
    virtual int EnumerateDevicesAnySubnet(DeviceInfoList& list, bool append) = 0;
    /// Gives the camera an address until its next restart, and searches for it. Throws RuntimeException if
    /// the camera refuses, still has another address after two seconds, or is found together with another
    /// camera that has the same address. A camera that is not found may still be changing its address; only
    /// later searches tell.
    virtual void ForceIp(const GenICam::gcstring& mac, const GenICam::gcstring& ipAddress,
                         const GenICam::gcstring& subnetMask, const GenICam::gcstring& defaultGateway) = 0;
    /// Makes the camera run its IP configuration cycle again.
    virtual void RestartIpConfig(const GenICam::gcstring& mac) = 0;
    /// Stores mode, address and name on a camera that supports the manufacturer's broadcast command; true if
    /// the camera acknowledged it. False, without sending a packet, for a camera whose latest record does not
    /// name the maker; false also if the camera refused or did not answer. Without static mode, an address
    /// that is not a dotted quad counts as 0.0.0.0, because it may be half typed. So does 127.0.0.1 or one
    /// from 224.0.0.0 up, which no camera can have; in static mode these return false, without sending a
    /// packet. Throws InvalidArgumentException for a name of more than 16 bytes.
    virtual bool BroadcastIpConfig(const GenICam::gcstring& mac, bool enablePersistentIp, bool enableDhcp,
                                   const GenICam::gcstring& ipAddress, const GenICam::gcstring& subnetMask,
                                   const GenICam::gcstring& defaultGateway,
                                   const GenICam::gcstring& userDefinedName) = 0;
};

/// Creates and releases transport layers. Implemented by the library that the program links.
class CTlFactory
{
public:
    [[nodiscard]] static CTlFactory& GetInstance();

    /// A transport layer of that device class (GigEDeviceClass), or null for any other class.
    [[nodiscard]] ITransportLayer* CreateTl(const GenICam::gcstring& deviceClass);
    /// Destroys what CreateTl made, closing devices that are still open. Null is allowed.
    void ReleaseTl(const ITransportLayer* transportLayer);

private:
    CTlFactory() = default;
};

/// Call once at start, before anything else here. Throws a GenICam exception if the SDK cannot work.
void TessalInitialize();
/// Call once at the end, when no transport layer is left. The log needs no shutdown: the argument is not
/// used.
void TessalTerminate(bool shutDownLogging);

} // namespace Tessal
