#include "gige/gigetransportlayer.h"

#include "gige/arguments.h"
#include "gige/broadcastcommand.h"
#include "gige/errors.h"
#include "gige/record.h"
#include "gige/trace.h"
#include "gige/unicastprobe.h"

#include <algorithm>

namespace gige {

namespace {

using namespace std::chrono_literals;

constexpr auto freshFor = 1s;
constexpr std::size_t maxRemembered = 8192; // cameras; a flood of invented ones must not eat the memory

/// Empty when the record has none.
GenICam::gcstring property(const Tessal::CDeviceInfo& info, const char* name)
{
    GenICam::gcstring value;
    info.GetPropertyValue(name, value);
    return value;
}

/// Asks the camera itself who controls it.
int askAccessibility(net::Ipv4 address)
{
    if (address == net::Ipv4{}) { // for the kernel this computer itself
        return Tessal::Accessibility::NotReachable;
    }
    try {
        CameraPort port(address);
        port.setPlan(quickPlan());
        return accessibilityOf(port.readRegister(gvcp::Register::ControlChannelPrivilege));
    } catch (const GenICam::AccessException&) {
        return Tessal::Accessibility::ControlledExclusively;
    } catch (const RefusalException&) {
        return Tessal::Accessibility::Unknown;
    } catch (const GenICam::GenericException& failure) {
        trace::requests(ozlog::LogLevel::Info, "%hs", failure.GetDescription());
        return Tessal::Accessibility::NotReachable;
    }
}

std::string_view nameArgument(const GenICam::gcstring& userDefinedName)
{
    if (userDefinedName.size() > gvcp::BroadcastIpConfig::UserDefinedNameSize) {
        raise<GenICam::InvalidArgumentException>(
            "The device user ID \"" + std::string(userDefinedName.view()) + "\" is longer than 16 bytes");
    }
    return userDefinedName.view();
}

} // namespace

void GigETransportLayer::search()
{
    forgetFreshness();
    m_found = searchCameras(m_searches);
    m_foundIndex.clear();
    if (m_makersOwn.size() > maxRemembered) {
        m_makersOwn.clear();
    }
    for (std::size_t i = 0; i < m_found.size(); ++i) {
        const FoundCamera& camera = m_found[i];
        m_foundIndex.emplace(HeardAs(camera.identity.mac, camera.identity.ip, camera.heardBy.address), i);
        if (Tessal::IsSupportedDevice(makeRecord(camera.identity, camera.heardBy.address), false)) {
            m_makersOwn.insert_or_assign(camera.identity.mac, camera.identity);
        } else {
            m_makersOwn.erase(camera.identity.mac);
        }
    }
    m_freshUntil = Clock::now() + freshFor;
}

bool GigETransportLayer::useFresh()
{
    const auto now = Clock::now();
    if (now >= m_freshUntil) {
        return false;
    }
    m_freshUntil = now + freshFor;
    return true;
}

int GigETransportLayer::list(Tessal::DeviceInfoList& list, bool append, bool onlyUnicast) const
{
    if (!append) {
        list.clear();
    }
    int added = 0;
    for (const FoundCamera& camera : m_found) {
        if (camera.answersUnicast || !onlyUnicast) {
            list.push_back(makeRecord(camera.identity, camera.heardBy.address));
            ++added;
        }
    }
    return added;
}

int GigETransportLayer::EnumerateDevicesAnySubnet(Tessal::DeviceInfoList& found, bool append)
{
    search();
    return list(found, append, false);
}

int GigETransportLayer::EnumerateDevices(Tessal::DeviceInfoList& found, bool append)
{
    if (!useFresh()) {
        search();
    }
    return list(found, append, true);
}

Tessal::CDeviceInfo GigETransportLayer::CreateDeviceInfo()
{
    return {};
}

Tessal::ITessalDevice* GigETransportLayer::CreateDevice(const Tessal::CDeviceInfo& info)
{
    if (!info.GetPropertyAvailable(Tessal::Key::IpAddress)) {
        return nullptr;
    }
    m_devices.push_back(std::make_unique<Device>(
        info, [this](net::Ipv4 opening, const std::optional<net::MacAddress>& answered) {
            forgetFreshness();
            checkUncontested(opening);
            if (answered) {
                checkStillThere(opening, *answered);
            }
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

void GigETransportLayer::checkUncontested(net::Ipv4 address) const
{
    const FoundCamera* first = nullptr;
    for (const FoundCamera& camera : m_found) {
        if (camera.identity.ip != address) {
            continue;
        }
        if (first != nullptr && first->identity.mac != camera.identity.mac) {
            raise<GenICam::RuntimeException>("Two cameras have the address " + net::formatIpv4(address) +
                                             ", MAC " + net::formatMac(first->identity.mac) + " and MAC " +
                                             net::formatMac(camera.identity.mac) +
                                             "; one of them needs another address first");
        }
        first = &camera;
    }
}

void GigETransportLayer::checkStillThere(net::Ipv4 address, const net::MacAddress& answered) const
{
    for (const FoundCamera& camera : m_found) {
        if (camera.identity.ip == address && camera.identity.mac != answered) {
            raise<GenICam::RuntimeException>(
                "The address " + net::formatIpv4(address) + " was that of the camera with MAC " +
                net::formatMac(camera.identity.mac) + " and is now that of the one with MAC " +
                net::formatMac(answered));
        }
    }
}

const FoundCamera* GigETransportLayer::findFresh(const Tessal::CDeviceInfo& info)
{
    const auto mac = net::parseMac(property(info, Tessal::Key::MacAddress).view());
    const auto address = net::parseIpv4(property(info, Tessal::Key::IpAddress).view());
    // Records that callers have joined name several host addresses; each knows the answer.
    const GenICam::gcstring hosts = property(info, Tessal::Key::Interface);
    const auto host = net::parseIpv4(hosts.view().substr(0, hosts.view().find(';')));
    if (!mac || !address || !host || !useFresh()) {
        return nullptr;
    }
    const auto found = m_foundIndex.find(HeardAs(*mac, *address, *host));
    return found == m_foundIndex.end() ? nullptr : &m_found[found->second];
}

bool GigETransportLayer::QueryDeviceAccessibility(const Tessal::CDeviceInfo& info,
                                                  const Tessal::AccessModeSet&, int* accessibility)
{
    int code = Tessal::Accessibility::NotReachable;
    if (const FoundCamera* known = findFresh(info)) {
        code = known->accessibility;
    } else if (const auto address = net::parseIpv4(property(info, Tessal::Key::IpAddress).view())) {
        code = askAccessibility(*address);
    }
    if (accessibility != nullptr) {
        *accessibility = code;
    }
    return code == Tessal::Accessibility::Ok;
}

Answerers GigETransportLayer::answerersFor(const net::MacAddress& mac) const
{
    Answerers answerers;
    for (const FoundCamera& camera : m_found) {
        (camera.identity.mac == mac ? answerers.camera : answerers.others).insert(camera.identity.ip);
    }
    if (const auto own = m_makersOwn.find(mac); answerers.camera.empty() && own != m_makersOwn.end()) {
        answerers.camera.insert(own->second.ip); // not heard by the latest search
    }
    return answerers;
}

void GigETransportLayer::assign(const gvcp::AddressAssignment& assignment, const char* operation,
                                const RetryPlan& plan)
{
    forgetFreshness();
    Answerers answerers = answerersFor(assignment.mac);
    if (!answerers.camera.empty()) {
        answerers.camera.insert(assignment.ip);
    }
    const std::uint16_t id = nextRequestId();
    const auto status =
        broadcastCommand(id, gvcp::encodeForceIp(id, assignment), gvcp::Ack::ForceIp, answerers, plan);
    const std::string camera = "Camera MAC=" + net::formatMac(assignment.mac) + ", " + operation + ": ";
    if (!status) {
        trace::requests(ozlog::LogLevel::Info, "%hsnot acknowledged.", camera.c_str());
    } else if (*status == gvcp::Status::Busy && assignment.ip == net::Ipv4{}) {
        trace::requests(ozlog::LogLevel::Info, "%hsthe camera is busy, perhaps with that already.",
                        camera.c_str());
    } else if (*status != gvcp::Status::Success) {
        raise<RefusalException>(camera + describeStatus(*status));
    }
}

void GigETransportLayer::ForceIp(const GenICam::gcstring& mac, const GenICam::gcstring& ipAddress,
                                 const GenICam::gcstring& subnetMask, const GenICam::gcstring& defaultGateway)
{
    assign({.mac = macArgument(mac),
            .ip = addressArgument(ipAddress, "IP address"),
            .mask = addressArgument(subnetMask, "subnet mask"),
            .gateway = addressArgument(defaultGateway, "default gateway")},
           "assigning a temporary address", acknowledgedPlan());
}

void GigETransportLayer::RestartIpConfig(const GenICam::gcstring& mac)
{
    assign({.mac = macArgument(mac), .ip = {}, .mask = {}, .gateway = {}}, "restarting its IP configuration",
           restartPlan());
}

std::string_view GigETransportLayer::nameToStore(const net::MacAddress& mac, std::string_view name) const
{
    const gvcp::Identity& known = m_makersOwn.at(mac);
    return known.userDefinedName == name ? known.storedUserDefinedName : name;
}

bool GigETransportLayer::BroadcastIpConfig(const GenICam::gcstring& mac, bool enablePersistentIp,
                                           bool enableDhcp, const GenICam::gcstring& ipAddress,
                                           const GenICam::gcstring& subnetMask,
                                           const GenICam::gcstring& defaultGateway,
                                           const GenICam::gcstring& userDefinedName)
{
    using namespace gvcp::IpConfig;
    const net::MacAddress camera = macArgument(mac);
    if (!m_makersOwn.contains(camera)) {
        return false;
    }
    const gvcp::StoredConfiguration configuration{
        .mac = camera,
        .ipConfig = LinkLocal | (enablePersistentIp ? Persistent : 0) | (enableDhcp ? Dhcp : 0),
        .ip = storedAddressArgument(ipAddress, "IP address", enablePersistentIp),
        .mask = storedAddressArgument(subnetMask, "subnet mask", enablePersistentIp),
        .gateway = storedAddressArgument(defaultGateway, "default gateway", enablePersistentIp),
        .userDefinedName = nameToStore(camera, nameArgument(userDefinedName))};
    forgetFreshness();
    const std::uint16_t id = nextRequestId();
    const auto status =
        broadcastCommand(id, gvcp::encodeBroadcastIpConfig(id, configuration), gvcp::Ack::BroadcastIpConfig,
                         answerersFor(configuration.mac), acknowledgedPlan());
    if (status == gvcp::Status::Success) {
        return true;
    }
    trace::requests(ozlog::LogLevel::Warning, "Camera MAC=%hs did not take the broadcast configuration: %hs.",
                    net::formatMac(configuration.mac).c_str(),
                    status ? describeStatus(*status).c_str() : "no answer");
    return false;
}

} // namespace gige
