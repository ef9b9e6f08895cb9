#include "tessal/deviceinfo.h"

#include <algorithm>
#include <charconv>

namespace Tessal {

namespace {

bool hasIpConfigBit(const GenICam::gcstring& decimal, unsigned int bit)
{
    unsigned int bits = 0;
    const std::string_view text = decimal.view();
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), bits);
    return error == std::errc{} && end == text.data() + text.size() && (bits & bit) != 0;
}

} // namespace

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

bool COrvikGigEDeviceInfo::IsPersistentIpActive() const
{
    return hasIpConfigBit(GetIpConfigCurrent(), IpConfig::Persistent);
}

bool COrvikGigEDeviceInfo::IsDhcpActive() const
{
    return hasIpConfigBit(GetIpConfigCurrent(), IpConfig::Dhcp);
}

bool COrvikGigEDeviceInfo::IsAutoIpActive() const
{
    return hasIpConfigBit(GetIpConfigCurrent(), IpConfig::LinkLocal);
}

bool IsSupportedDevice(const CDeviceInfo& info, bool)
{
    return info.GetVendorName() == "Orvik";
}

} // namespace Tessal
