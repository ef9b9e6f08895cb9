#include "gigetransportlayer.h"

#include "errors.h"
#include "log.h"
#include "obstacles.h"
#include "opening.h"
#include "record.h"
#include "unicastprobe.h"

namespace gige {

namespace {

using namespace std::chrono_literals;

constexpr auto cachedFor = 1s;
constexpr std::size_t maxRemembered = 8192; // cameras; a flood of invented ones must not exhaust the memory

/// The value of the property; empty if the record has none.
GenICam::gcstring property(const Tessal::CDeviceInfo& info, const char* name)
{
    GenICam::gcstring value;
    info.GetPropertyValue(name, value);
    return value;
}

net::MacAddress readMac(CameraPort& port)
{
    const std::uint32_t high = port.readRegister(gvcp::Register::MacHigh);
    return gvcp::decodeMac(high, port.readRegister(gvcp::Register::MacLow));
}

/// Asks the camera itself whether it is controlled, through the adapter with that index, 0 for any. A camera
/// with another MAC address than `mac` is not the one that is meant; one that does not let its MAC address be
/// read may be, but never counts as free.
int askAccessibility(net::Ipv4 address, int adapterIndex, const std::optional<net::MacAddress>& mac)
{
    if (address == net::Ipv4{}) { // which the kernel takes for this computer
        return Tessal::Accessibility::NotReachable;
    }
    try {
        CameraPort port(address, adapterIndex);
        port.setPlan(quickPlan());
        const TimeLimit limit(port, 2s); // for all questions together, however much time the camera asks for
        if (mac && readMac(port) != *mac) {
            return Tessal::Accessibility::NotReachable;
        }
        return accessibilityOf(port.readRegister(gvcp::Register::ControlChannelPrivilege));
    } catch (const GenICam::AccessException&) {
        return Tessal::Accessibility::ControlledExclusively;
    } catch (const RefusalException&) {
        return Tessal::Accessibility::Unknown;
    } catch (const GenICam::GenericException& failure) {
        logRequest(ozlog::LogLevel::Info, "%hs", failure.GetDescription());
        const Tessal::Failure* const values = failureOf(failure);
        const bool hasAnswered = values != nullptr && values->kind == Tessal::FailureKind::AskedForMoreTime;
        return hasAnswered ? Tessal::Accessibility::Unknown : Tessal::Accessibility::NotReachable;
    }
}

} // namespace

void GigETransportLayer::searchAll()
{
    invalidateCache();
    m_found = searchCameras(m_searches);
    m_foundIndex.clear();
    if (m_orvikCameras.size() > maxRemembered) {
        m_orvikCameras.clear();
    }
    for (std::size_t i = 0; i < m_found.size(); ++i) {
        const FoundCamera& camera = m_found[i];
        m_foundIndex.emplace(HeardAs(camera.identity.mac, camera.identity.ip, camera.heardBy.address), i);
        if (Tessal::IsSupportedVendor(camera.identity.manufacturer)) {
            m_orvikCameras.insert_or_assign(camera.identity.mac, camera.identity);
        } else {
            m_orvikCameras.erase(camera.identity.mac);
        }
    }
    m_cachedUntil = Clock::now() + cachedFor;
}

bool GigETransportLayer::renewCache()
{
    const auto now = Clock::now();
    if (now >= m_cachedUntil) {
        return false;
    }
    m_cachedUntil = now + cachedFor;
    return true;
}

int GigETransportLayer::copyFound(Tessal::DeviceInfoList& list, bool append, bool onlyUnicast) const
{
    if (!append) {
        list.clear();
    }
    int added = 0;
    for (const FoundCamera& camera : m_found) {
        if (camera.answersUnicast || !onlyUnicast) {
            list.push_back(makeRecord(camera));
            ++added;
        }
    }
    return added;
}

int GigETransportLayer::EnumerateDevicesAnySubnet(Tessal::DeviceInfoList& found, bool append)
{
    searchAll();
    return copyFound(found, append, false);
}

int GigETransportLayer::EnumerateDevices(Tessal::DeviceInfoList& found, bool append)
{
    if (!renewCache()) {
        searchAll();
    }
    return copyFound(found, append, true);
}

Tessal::CDeviceInfo GigETransportLayer::CreateDeviceInfo()
{
    return {};
}

void GigETransportLayer::SetExpectedMac(const GenICam::gcstring& mac)
{
    m_expectedMac = net::parseMac(mac.view());
}

Tessal::ITessalDevice* GigETransportLayer::CreateDevice(const Tessal::CDeviceInfo& info)
{
    if (!info.GetPropertyAvailable(Tessal::Key::IpAddress)) {
        return nullptr;
    }
    m_devices.push_back(std::make_unique<Device>(
        info,
        [this, expected = m_expectedMac](net::Ipv4 opening, const std::optional<net::MacAddress>& answered) {
            invalidateCache();
            const int adapterIndex = adapterForOpening(m_found, opening, expected);
            if (answered) {
                checkAnswered(m_found, opening, adapterIndex, expected, *answered);
            }
            return adapterIndex;
        }));
    return m_devices.back().get();
}

void GigETransportLayer::DestroyDevice(Tessal::ITessalDevice* device)
{
    if (device == nullptr) {
        return;
    }
    const auto destroyed = std::erase_if(m_devices, [&](const auto& owned) { return owned.get() == device; });
    if (destroyed == 0) {
        raise<GenICam::LogicalErrorException>("The device was not made by this transport layer");
    }
}

const FoundCamera* GigETransportLayer::findCached(const Tessal::CDeviceInfo& info)
{
    const auto mac = net::parseMac(property(info, Tessal::Key::MacAddress).view());
    const auto address = net::parseIpv4(property(info, Tessal::Key::IpAddress).view());
    // Records that callers have merged name several host addresses; any of them leads to the answer.
    const GenICam::gcstring hosts = property(info, Tessal::Key::Interface);
    const auto host = net::parseIpv4(hosts.view().substr(0, hosts.view().find(';')));
    if (!mac || !address || !host || !renewCache()) {
        return nullptr;
    }
    const auto found = m_foundIndex.find(HeardAs(*mac, *address, *host));
    return found == m_foundIndex.end() ? nullptr : &m_found[found->second];
}

bool GigETransportLayer::QueryDeviceAccessibility(const Tessal::CDeviceInfo& info,
                                                  const Tessal::AccessModeSet&, int* accessibility)
{
    int code = Tessal::Accessibility::NotReachable;
    if (const FoundCamera* known = findCached(info)) {
        code = known->accessibility;
    } else if (const auto address = net::parseIpv4(property(info, Tessal::Key::IpAddress).view())) {
        const auto mac = net::parseMac(property(info, Tessal::Key::MacAddress).view());
        code = askAccessibility(*address, adapterThatHeard(m_found, *address, mac), mac);
    }
    if (accessibility != nullptr) {
        *accessibility = code;
    }
    return code == Tessal::Accessibility::Ok;
}

} // namespace gige
