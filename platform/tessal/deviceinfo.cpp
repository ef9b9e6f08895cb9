#include "tessal/deviceinfo.h"

#include <algorithm>
#include <charconv>

namespace Tessal {

void CInfoBase::GetPropertyNames(GenICam::gcstring_vector& names) const
{
    names.clear();
    names.reserve(m_properties.size());
    for (const auto& [name, value] : m_properties) {
        names.push_back(name);
    }
}

bool CInfoBase::GetPropertyAvailable(const GenICam::gcstring& name) const
{
    return m_properties.contains(name);
}

bool CInfoBase::GetPropertyValue(const GenICam::gcstring& name, GenICam::gcstring& value) const
{
    const auto found = m_properties.find(name);
    if (found == m_properties.end()) {
        return false;
    }
    value = found->second;
    return true;
}

void CInfoBase::SetPropertyValue(const GenICam::gcstring& name, const GenICam::gcstring& value)
{
    m_properties.insert_or_assign(name, value);
}

bool CInfoBase::IsSubset(const IProperties& subset) const
{
    GenICam::gcstring_vector names;
    subset.GetPropertyNames(names);
    return std::ranges::all_of(names, [&](const GenICam::gcstring& name) {
        GenICam::gcstring theirs;
        GenICam::gcstring ours;
        return subset.GetPropertyValue(name, theirs) && GetPropertyValue(name, ours) && ours == theirs;
    });
}

bool CInfoBase::IsUserProvided() const
{
    return !GetPropertyAvailable(Key::DeviceClass);
}

GenICam::gcstring CInfoBase::valueOf(const char* name) const
{
    GenICam::gcstring value;
    GetPropertyValue(name, value);
    return value;
}

unsigned int IpConfig::fromText(std::string_view decimal)
{
    unsigned int bits = 0;
    const char* const end = decimal.data() + decimal.size();
    const auto [parsedTo, error] = std::from_chars(decimal.data(), end, bits);
    return error == std::errc{} && parsedTo == end ? bits : 0;
}

bool COrvikGigEDeviceInfo::IsPersistentIpActive() const
{
    return (IpConfig::fromText(GetIpConfigCurrent().view()) & IpConfig::Persistent) != 0;
}

bool COrvikGigEDeviceInfo::IsDhcpActive() const
{
    return (IpConfig::fromText(GetIpConfigCurrent().view()) & IpConfig::Dhcp) != 0;
}

bool COrvikGigEDeviceInfo::IsAutoIpActive() const
{
    return (IpConfig::fromText(GetIpConfigCurrent().view()) & IpConfig::LinkLocal) != 0;
}

bool IsSupportedVendor(std::string_view vendorName)
{
    return vendorName == "Orvik";
}

bool IsSupportedDevice(const CDeviceInfo& info, bool)
{
    return IsSupportedVendor(info.GetVendorName().view());
}

} // namespace Tessal
