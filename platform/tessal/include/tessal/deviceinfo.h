#pragma once

#include "genicam/gcstring.h"

#include <map>
#include <string_view>
#include <vector>

namespace Tessal {

/// The device class of every record, and of the transport layer that makes it.
inline constexpr char GigEDeviceClass[] = "OrvikGigE";

/// Names of the properties that the SDK sets in a record. All values are text.
namespace Key {
inline constexpr char DeviceClass[] = "DeviceClass";           // always GigEDeviceClass
inline constexpr char VendorName[] = "VendorName";             // at most 32 bytes
inline constexpr char ModelName[] = "ModelName";               // at most 32 bytes
inline constexpr char DeviceVersion[] = "DeviceVersion";       // at most 32 bytes
inline constexpr char ManufacturerInfo[] = "ManufacturerInfo"; // at most 48 bytes
inline constexpr char SerialNumber[] = "SerialNumber";         // at most 16 bytes
inline constexpr char UserDefinedName[] = "UserDefinedName";   // at most 16 bytes of UTF-8
inline constexpr char FriendlyName[] = "FriendlyName";         // user ID, else model, then " (serial number)"
inline constexpr char MacAddress[] = "MacAddress";             // twelve upper-case hexadecimal digits
inline constexpr char Interface[] = "Interface";               // the host address that asked
inline constexpr char IpAddress[] = "IpAddress";               // dotted quad, as are the next two
inline constexpr char SubnetMask[] = "SubnetMask";
inline constexpr char DefaultGateway[] = "DefaultGateway";
inline constexpr char IpConfigOptions[] =
    "IpConfigOptions"; // supported modes, decimal; bits as IpConfigCurrent
inline constexpr char IpConfigCurrent[] =
    "IpConfigCurrent";                       // decimal bit set: 1 static, 2 DHCP, 4 link-local
inline constexpr char PortNr[] = "PortNr";   // the camera's control port, decimal
inline constexpr char Address[] = "Address"; // IpAddress ":" PortNr
// Only where the search learned them:
inline constexpr char ControlledBy[] =
    "ControlledBy"; // address of the computer whose application has control
// The FriendlyName of another camera that the same adapter heard with the same address, and its MAC address.
inline constexpr char SameAddressName[] = "SameAddressName";
inline constexpr char SameAddressMac[] = "SameAddressMac";
// The FriendlyName of another camera with the same MAC address, and its IP address.
inline constexpr char SameMacName[] = "SameMacName";
inline constexpr char SameMacIp[] = "SameMacIp";
} // namespace Key

/// Named text properties.
class IProperties
{
public:
    /// Replaces `names` with the names of all properties, in byte order.
    virtual void GetPropertyNames(GenICam::gcstring_vector& names) const = 0;
    [[nodiscard]] virtual bool GetPropertyAvailable(const GenICam::gcstring& name) const = 0;
    /// Fills `value` and returns true if the property exists; otherwise leaves it unchanged and returns
    /// false.
    virtual bool GetPropertyValue(const GenICam::gcstring& name, GenICam::gcstring& value) const = 0;
    /// Creates or replaces the property.
    virtual void SetPropertyValue(const GenICam::gcstring& name, const GenICam::gcstring& value) = 0;
    /// Whether every property of `subset` exists here with the same value.
    [[nodiscard]] virtual bool IsSubset(const IProperties& subset) const = 0;
    /// Whether the record does not come from an enumeration: it has no device class.
    [[nodiscard]] virtual bool IsUserProvided() const = 0;
    virtual ~IProperties() = default;

protected:
    IProperties() = default;
    IProperties(const IProperties&) = default;
    IProperties(IProperties&&) = default;
    IProperties& operator=(const IProperties&) = default;
    IProperties& operator=(IProperties&&) = default;
};

/// The properties as a value: copyable, equal when all names and values are.
class CInfoBase : public IProperties
{
public:
    void GetPropertyNames(GenICam::gcstring_vector& names) const override;
    [[nodiscard]] bool GetPropertyAvailable(const GenICam::gcstring& name) const override;
    bool GetPropertyValue(const GenICam::gcstring& name, GenICam::gcstring& value) const override;
    void SetPropertyValue(const GenICam::gcstring& name, const GenICam::gcstring& value) override;
    [[nodiscard]] bool IsSubset(const IProperties& subset) const override;
    [[nodiscard]] bool IsUserProvided() const override;

    friend bool operator==(const CInfoBase& left, const CInfoBase& right)
    {
        return left.m_properties == right.m_properties;
    }

protected:
    /// The value, or the empty text if the property is missing.
    [[nodiscard]] GenICam::gcstring valueOf(const char* name) const;

private:
    std::map<GenICam::gcstring, GenICam::gcstring> m_properties;
};

/// The record of one camera.
class CDeviceInfo : public CInfoBase
{
public:
    [[nodiscard]] GenICam::gcstring GetModelName() const { return valueOf(Key::ModelName); }
    [[nodiscard]] GenICam::gcstring GetSerialNumber() const { return valueOf(Key::SerialNumber); }
    [[nodiscard]] GenICam::gcstring GetVendorName() const { return valueOf(Key::VendorName); }
};

/// The record of a GigE Vision camera. Getters give the empty text for a missing property.
class COrvikGigEDeviceInfo : public CDeviceInfo
{
public:
    COrvikGigEDeviceInfo() = default;
    COrvikGigEDeviceInfo(const CDeviceInfo& info) : CDeviceInfo(info) {}

    [[nodiscard]] GenICam::gcstring GetMacAddress() const { return valueOf(Key::MacAddress); }
    [[nodiscard]] GenICam::gcstring GetIpAddress() const { return valueOf(Key::IpAddress); }
    [[nodiscard]] GenICam::gcstring GetSubnetMask() const { return valueOf(Key::SubnetMask); }
    [[nodiscard]] GenICam::gcstring GetDefaultGateway() const { return valueOf(Key::DefaultGateway); }
    [[nodiscard]] GenICam::gcstring GetIpConfigCurrent() const { return valueOf(Key::IpConfigCurrent); }
    [[nodiscard]] GenICam::gcstring GetPortNr() const { return valueOf(Key::PortNr); }

    /// The three bits of GetIpConfigCurrent(), each on its own; none is set if the text is not a number.
    [[nodiscard]] bool IsPersistentIpActive() const;
    [[nodiscard]] bool IsDhcpActive() const;
    [[nodiscard]] bool IsAutoIpActive() const;

    void SetIpAddress(const GenICam::gcstring& value) { SetPropertyValue(Key::IpAddress, value); }
    void SetSubnetMask(const GenICam::gcstring& value) { SetPropertyValue(Key::SubnetMask, value); }
    void SetDefaultGateway(const GenICam::gcstring& value) { SetPropertyValue(Key::DefaultGateway, value); }
    void SetIpConfigCurrent(const GenICam::gcstring& value) { SetPropertyValue(Key::IpConfigCurrent, value); }
    void SetAddress(const GenICam::gcstring& value) { SetPropertyValue(Key::Address, value); }
};

/// Bits of the IP configuration, as used in registers, in discovery records and, in decimal, in
/// IpConfigCurrent.
namespace IpConfig {
inline constexpr unsigned int Persistent = 1;
inline constexpr unsigned int Dhcp = 2;
inline constexpr unsigned int LinkLocal = 4;

/// The bit set from its decimal text; 0, which is no mode, if the text is not a number.
[[nodiscard]] unsigned int fromText(std::string_view decimal);
} // namespace IpConfig

/// What a TList<T> stores for each element: T, unless a more derived type is named here.
template <typename T>
struct TListElement
{
    using type = T;
};

/// Every record of this SDK is a GigE record, so an element may be used as one.
template <>
struct TListElement<CDeviceInfo>
{
    using type = COrvikGigEDeviceInfo;
};

/// An ordered, growable list of values. References and iterators hold until the list grows or is cleared.
template <typename T>
class TList
{
public:
    using Element = typename TListElement<T>::type;
    using iterator = typename std::vector<Element>::iterator;
    using const_iterator = typename std::vector<Element>::const_iterator;

    TList() = default;
    TList(const TList&) = default;
    TList(TList&&) noexcept = default;
    TList& operator=(const TList&) = default;
    TList& operator=(TList&&) noexcept = default;
    virtual ~TList() = default;

    virtual void clear() { m_elements.clear(); }
    [[nodiscard]] virtual iterator begin() { return m_elements.begin(); }
    [[nodiscard]] virtual iterator end() { return m_elements.end(); }
    [[nodiscard]] virtual const_iterator begin() const { return m_elements.begin(); }
    [[nodiscard]] virtual const_iterator end() const { return m_elements.end(); }
    [[nodiscard]] virtual bool empty() const { return m_elements.empty(); }
    [[nodiscard]] virtual std::size_t size() const { return m_elements.size(); }
    virtual void push_back(const T& value) { m_elements.push_back(value); }
    /// Throws std::out_of_range beyond the end.
    [[nodiscard]] virtual Element& at(std::size_t index) { return m_elements.at(index); }
    [[nodiscard]] virtual const Element& at(std::size_t index) const { return m_elements.at(index); }

private:
    std::vector<Element> m_elements;
};

using DeviceInfoList = TList<CDeviceInfo>;

/// Whether the vendor name of a camera is that of this SDK's maker.
[[nodiscard]] bool IsSupportedVendor(std::string_view vendorName);

/// Whether the SDK supports the camera, which is so if it supports the vendor. The flag is not used.
[[nodiscard]] bool IsSupportedDevice(const CDeviceInfo& info, bool);

} // namespace Tessal
