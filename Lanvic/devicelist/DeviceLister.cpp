#include "DeviceLister.h"

#include "NetworkAdapter.h"

#include "genicam/exceptions.h"
#include "qtbase/failuretexts.h"
#include "qtbase/formatting.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

using GenICam::gcstring;
using Tessal::COrvikGigEDeviceInfo;
using Tessal::DeviceInfoList;

std::atomic<std::int32_t> DeviceLister::s_ref{0};
Tessal::IGigETransportLayer* DeviceLister::s_pTl = nullptr;

namespace {

constexpr char partSeparator[] = ";";

/// Distinct records and the positions of those with the same MAC address. Only these are compared with each
/// other, so that a thousand cameras need only a thousand look-ups.
struct UniqueRecords
{
    DeviceInfoList records;
    std::map<gcstring, std::vector<std::size_t>> positionsOfMac;
};

UniqueRecords withoutIdenticalRecords(const DeviceInfoList& found)
{
    UniqueRecords unique;
    for (const COrvikGigEDeviceInfo& record : found) {
        std::vector<std::size_t>& positions = unique.positionsOfMac[record.GetMacAddress()];
        const auto isSame = [&](std::size_t position) { return unique.records.at(position) == record; };
        if (std::ranges::none_of(positions, isSame)) {
            positions.push_back(unique.records.size());
            unique.records.push_back(record);
        }
    }
    return unique;
}

void nameAdapters(DeviceInfoList& records)
{
    const QList<CNetworkAdapter> adapters =
        CNetworkAdapter::allNetworkAdapters(LiveAdapter, QNetworkInterface::IsLoopBack);
    for (COrvikGigEDeviceInfo& record : records) {
        gcstring address;
        if (!record.GetPropertyValue(Tessal::Key::Interface, address)) {
            continue;
        }
        const CNetworkAdapter* const adapter =
            CNetworkAdapter::findByIpAddress(adapters, addressFromText(QString::fromLatin1(address.c_str())));
        if (adapter != nullptr) {
            record.SetPropertyValue(ListerKey::InterfaceName, adapter->name().toLocal8Bit().constData());
        }
    }
}

/// Merges the later records of a camera into its first one on the same adapter and empties their MAC address.
/// `positions` are those of the records with one MAC address.
void mergeDuplicatesOfCamera(DeviceInfoList& records, const std::vector<std::size_t>& positions)
{
    static const GenICam::gcstring_vector mergedNames{Tessal::Key::Interface, ListerKey::InterfaceName};
    for (auto first = positions.begin(); first != positions.end(); ++first) {
        COrvikGigEDeviceInfo& target = records.at(*first);
        gcstring adapter;
        target.GetPropertyValue(ListerKey::InterfaceName, adapter);
        if (target.GetMacAddress().empty() || adapter.empty()) {
            continue;
        }
        for (auto later = std::next(first); later != positions.end(); ++later) {
            COrvikGigEDeviceInfo& source = records.at(*later);
            gcstring sourceAdapter;
            if (!source.GetMacAddress().empty() &&
                source.GetPropertyValue(ListerKey::InterfaceName, sourceAdapter) &&
                sourceAdapter == adapter) {
                DeviceLister::mergeProperties(target, source, partSeparator, mergedNames, false);
                source.SetPropertyValue(Tessal::Key::MacAddress, "");
            }
        }
    }
}

int queryAccessibility(const COrvikGigEDeviceInfo& record)
{
    int code = Tessal::Accessibility::Unknown;
    DeviceLister::s_pTl->QueryDeviceAccessibility(record, Tessal::EDeviceAccessMode::Control, &code);
    return code;
}

void setAccessibility(COrvikGigEDeviceInfo& record, int code)
{
    record.SetPropertyValue(ListerKey::Accessible, std::to_string(code));
}

} // namespace

DeviceLister::DeviceLister()
{
    ++s_ref;
}

DeviceLister::~DeviceLister()
{
    if (--s_ref == 0 && s_pTl != nullptr) {
        Tessal::CTlFactory::GetInstance().ReleaseTl(s_pTl);
        s_pTl = nullptr;
    }
}

void DeviceLister::createTransportLayer()
{
    if (s_pTl != nullptr) {
        return;
    }
    Tessal::CTlFactory& factory = Tessal::CTlFactory::GetInstance();
    Tessal::ITransportLayer* const created = factory.CreateTl(Tessal::GigEDeviceClass);
    s_pTl = dynamic_cast<Tessal::IGigETransportLayer*>(created);
    if (s_pTl == nullptr) {
        factory.ReleaseTl(created);
        throw Translated(GenICam::ExceptionReporter<GenICam::RuntimeException>("DeviceLister", __LINE__,
                                                                               "RuntimeException")
                             .Report("Failed to create transport layer object"),
                         QObject::tr("Failed to create transport layer object"));
    }
}

void DeviceLister::discoverAllDevices()
{
    createTransportLayer();

    DeviceInfoList found;
    s_pTl->EnumerateDevicesAnySubnet(found, false);
    m_devices.clear();
    if (found.empty()) {
        return;
    }
    auto [records, positionsOfMac] = withoutIdenticalRecords(found);
    nameAdapters(records);
    for (const auto& [mac, positions] : positionsOfMac) {
        mergeDuplicatesOfCamera(records, positions);
    }
    for (const COrvikGigEDeviceInfo& record : records) {
        if (!record.GetMacAddress().empty()) {
            m_devices.push_back(record);
        }
    }

    DeviceInfoList reachable;
    s_pTl->EnumerateDevices(reachable, false);
    std::set<gcstring> reachableMacs;
    for (const COrvikGigEDeviceInfo& record : reachable) {
        reachableMacs.insert(record.GetMacAddress());
    }
    for (COrvikGigEDeviceInfo& record : m_devices) {
        int code = queryAccessibility(record);
        if (code == Tessal::Accessibility::Ok && !reachableMacs.contains(record.GetMacAddress())) {
            code = Tessal::Accessibility::NotReachable;
        }
        setAccessibility(record, code);
    }
}

int DeviceLister::updateDeviceInfo(const char* macAddress, const char* ipConfigCurrent, const char* ipAddress,
                                   const char* subnetMask, const char* defaultGateway,
                                   bool updateAccessibility)
{
    if (macAddress == nullptr || (ipConfigCurrent == nullptr && ipAddress == nullptr &&
                                  subnetMask == nullptr && defaultGateway == nullptr)) {
        return 0;
    }
    int patched = 0;
    for (COrvikGigEDeviceInfo& record : m_devices) {
        if (!(record.GetMacAddress() == macAddress)) {
            continue;
        }
        if (ipAddress != nullptr) {
            record.SetIpAddress(ipAddress);
            record.SetAddress(gcstring(ipAddress) + ":" + record.GetPortNr());
        }
        if (subnetMask != nullptr) {
            record.SetSubnetMask(subnetMask);
        }
        if (defaultGateway != nullptr) {
            record.SetDefaultGateway(defaultGateway);
        }
        if (ipConfigCurrent != nullptr) {
            record.SetIpConfigCurrent(ipConfigCurrent);
        }
        if (updateAccessibility && patched == 0) {
            setAccessibility(record, queryAccessibility(record));
        }
        ++patched;
    }
    return patched;
}

int DeviceLister::mergeProperties(Tessal::IProperties& target, const Tessal::IProperties& source,
                                  const char* separator, const GenICam::gcstring_vector& names,
                                  bool allowDuplicates)
{
    int written = 0;
    for (const gcstring& name : names) {
        gcstring sourceValue;
        gcstring targetValue;
        if (!source.GetPropertyValue(name, sourceValue)) {
            continue;
        }
        if (target.GetPropertyValue(name, targetValue)) {
            if (!allowDuplicates && ValExistsInMultipartPropertyValue(targetValue, sourceValue, separator)) {
                continue;
            }
            sourceValue = targetValue + gcstring(separator) + sourceValue;
        }
        target.SetPropertyValue(name, sourceValue);
        ++written;
    }
    return written;
}

int DeviceLister::mergeProperties(Tessal::IProperties& target, const Tessal::IProperties& source,
                                  const char* separator, bool allowDuplicates)
{
    GenICam::gcstring_vector names;
    target.GetPropertyNames(names);
    return mergeProperties(target, source, separator, names, allowDuplicates);
}

bool DeviceLister::ValExistsInMultipartPropertyValue(const gcstring& multipartValue, const gcstring& value,
                                                     const char* separator)
{
    if (separator == nullptr || *separator == '\0' || multipartValue.empty() || value.empty() ||
        value.view().find(separator) != std::string_view::npos) {
        return false;
    }
    return (multipartValue + separator).view().find((value + separator).view()) != std::string_view::npos;
}
