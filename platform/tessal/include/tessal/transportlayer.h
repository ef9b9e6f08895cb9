#pragma once

#include "genicam/nodemap.h"
#include "tessal/deviceinfo.h"

#include <set>

namespace Tessal {

/// What an application wants of a camera.
enum class EDeviceAccessMode : int {
    Control = 1,
    Stream = 3,
    Event = 4,
};

/// All that one application wants of a camera at the same time.
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

/// One camera, open or not. Failures of any operation are GenICam exceptions: AccessException when another
/// application holds the camera, TimeoutException when it does not answer, RuntimeException when it refuses
/// or when this host cannot send.
class IDevice
{
public:
    IDevice() = default;
    IDevice(const IDevice&) = delete;
    IDevice& operator=(const IDevice&) = delete;

    /// Takes control of the camera. Does nothing when it is open already.
    virtual void Open(const AccessModeSet& modes) = 0;
    /// Gives control back. Does nothing when it is not open; closed afterwards even when it throws.
    virtual void Close() = 0;
    [[nodiscard]] virtual bool IsOpen() const = 0;
    /// Once opened, the record that the camera itself gives; before, the one that the device was made from.
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
    /// Stores which modes the camera tries at its next IP configuration cycle. Link-local is always on.
    virtual void SetIpConfigMode(bool enablePersistentIp, bool enableDhcp) = 0;
    /// Stores the address of the static mode, three dotted quads, and reads them back. While the mode is not
    /// static, a mask or gateway that is no dotted quad counts as 0.0.0.0, since an editor may hold half of
    /// one.
    virtual void SetPersistentIp(const GenICam::gcstring& ipAddress, const GenICam::gcstring& subnetMask,
                                 const GenICam::gcstring& defaultGateway) = 0;
};

/// Finds cameras and makes devices for them.
class IDeviceFactory
{
public:
    IDeviceFactory() = default;
    IDeviceFactory(const IDeviceFactory&) = delete;
    IDeviceFactory& operator=(const IDeviceFactory&) = delete;

    /// Fills `list` with the cameras that this host can reach at their present address; with `append`, adds
    /// them. Returns how many were added. Raises RuntimeException when the host's adapters cannot be listed
    /// or no socket is to be had.
    virtual int EnumerateDevices(DeviceInfoList& list, bool append) = 0;
    /// A device for the described camera, which needs no more than an IP address, or null. Sends nothing;
    /// what is no address is found out by opening it.
    virtual ITessalDevice* CreateDevice(const CDeviceInfo& info) = 0;
    /// Destroys a device that CreateDevice made, giving back control if it is open. Null is allowed; a device
    /// that was not made here raises LogicalErrorException.
    virtual void DestroyDevice(ITessalDevice* device) = 0;
    /// Writes an Accessibility code to `*accessibility` if that is not null; returns whether the camera can
    /// be opened. For any `modes`, since each needs control. Of a record that names a MAC address only the
    /// camera with that one is meant: another one at its address does not count.
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

/// GigE Vision. The MAC address of a camera is given as twelve hexadecimal digits; a text that is none, or an
/// address that is no dotted quad, raises InvalidArgumentException. When no adapter of the host can send, the
/// commands to a camera raise RuntimeException.
class IGigETransportLayer : public ITransportLayer
{
public:
    /// Fills `list` with every camera that answers discovery on any adapter, whatever its address; one record
    /// for each host address that asked. With `append`, adds to it. Returns how many were added; raises as
    /// EnumerateDevices().
    virtual int EnumerateDevicesAnySubnet(DeviceInfoList& list, bool append) = 0;
    /// Gives the camera an address until its next restart, and searches for it. Raises RuntimeException when
    /// the camera refuses, is seen with another address for two seconds, or is seen beside another camera
    /// with the same address. A camera that is not seen may still be changing its address; only later
    /// searches tell.
    virtual void ForceIp(const GenICam::gcstring& mac, const GenICam::gcstring& ipAddress,
                         const GenICam::gcstring& subnetMask, const GenICam::gcstring& defaultGateway) = 0;
    /// Makes the camera run its IP configuration cycle again.
    virtual void RestartIpConfig(const GenICam::gcstring& mac) = 0;
    /// Stores mode, address and name on a camera that knows the manufacturer's broadcast command; true when
    /// the camera acknowledged it. False, without a packet, for a camera whose latest record
    /// does not name the maker; false also when the camera refused or did not answer. Without the static mode
    /// an address that is no dotted quad counts as 0.0.0.0, since an editor may hold half of one. So does
    /// 127.0.0.1 or one from 224.0.0.0 up, which no camera can have; in the static mode these give false,
    /// without a packet. A name of more than 16 bytes raises InvalidArgumentException.
    virtual bool BroadcastIpConfig(const GenICam::gcstring& mac, bool enablePersistentIp, bool enableDhcp,
                                   const GenICam::gcstring& ipAddress, const GenICam::gcstring& subnetMask,
                                   const GenICam::gcstring& defaultGateway,
                                   const GenICam::gcstring& userDefinedName) = 0;
};

/// Makes and takes back transport layers. What stands behind it is chosen by the library that the program
/// links.
class CTlFactory
{
public:
    [[nodiscard]] static CTlFactory& GetInstance();

    /// The transport layer of that device class (GigEDeviceClass), or null for another one.
    [[nodiscard]] ITransportLayer* CreateTl(const GenICam::gcstring& deviceClass);
    /// Takes back what CreateTl made; devices that are still open are released. Null is allowed.
    void ReleaseTl(const ITransportLayer* transportLayer);

private:
    CTlFactory() = default;
};

/// Once at start, before anything else here; throws a GenICam exception when the SDK cannot work.
void TessalInitialize();
/// Once at the end, when no transport layer is left.
/// The log needs no shutting down here: the argument makes no difference.
void TessalTerminate(bool shutDownLogging);

} // namespace Tessal
