#include "arguments.h"
#include "errors.h"
#include "gigetransportlayer.h"
#include "log.h"

#include <algorithm>

namespace gige {

namespace {

using namespace std::chrono_literals;
using Tessal::Failure;
using Tessal::FailureKind;
using Tessal::Setting;

// Some cameras acknowledge a temporary address first and apply it later; only a camera that still has another
// address after this time has ignored the command.
constexpr auto addressChangeTime = 2s;

std::string nameOf(const net::MacAddress& mac)
{
    return "Camera MAC=" + net::formatMac(mac);
}

FailureKind kindOf(gvcp::Status refusal)
{
    switch (refusal) {
    case gvcp::Status::AccessDenied:
        return FailureKind::ControlledElsewhere;
    case gvcp::Status::Busy:
        return FailureKind::Busy;
    default:
        return FailureKind::Refused;
    }
}

/// The address that the camera was heard with instead of the one that it was given; nullopt if it has that
/// one or was not heard.
std::optional<net::Ipv4> addressInstead(const std::vector<FoundCamera>& found,
                                        const gvcp::AddressAssignment& assignment)
{
    std::optional<net::Ipv4> instead;
    for (const FoundCamera& camera : found) {
        if (camera.identity.mac != assignment.mac) {
            continue;
        }
        if (camera.identity.ip == assignment.ip) {
            return std::nullopt;
        }
        instead = camera.identity.ip;
    }
    return instead;
}

/// Another camera that has the assigned address and was heard by the same adapter.
std::optional<net::MacAddress> rival(const std::vector<FoundCamera>& found,
                                     const gvcp::AddressAssignment& assignment)
{
    const auto hasAddress = [&](const FoundCamera& camera) { return camera.identity.ip == assignment.ip; };
    for (const FoundCamera& camera : found) {
        if (camera.identity.mac != assignment.mac || !hasAddress(camera)) {
            continue;
        }
        const auto other = std::ranges::find_if(found, [&](const FoundCamera& candidate) {
            return hasAddress(candidate) && candidate.identity.mac != assignment.mac &&
                   candidate.heardBy.adapterIndex == camera.heardBy.adapterIndex;
        });
        if (other != found.end()) {
            return other->identity.mac;
        }
    }
    return std::nullopt;
}

/// Whether cameras accept the address: it is not 127.0.0.1, multicast or reserved.
bool isForCameras(net::Ipv4 address)
{
    constexpr net::Ipv4 loopback{0x7F000001};
    constexpr net::Ipv4 firstMulticast{0xE0000000};
    return address != loopback && address < firstMulticast;
}

} // namespace

ExpectedSources GigETransportLayer::expectedSources(const net::MacAddress& mac) const
{
    ExpectedSources sources;
    for (const FoundCamera& camera : m_found) {
        (camera.identity.mac == mac ? sources.camera : sources.others).insert(camera.identity.ip);
    }
    if (const auto orvik = m_orvikCameras.find(mac);
        sources.camera.empty() && orvik != m_orvikCameras.end()) {
        sources.camera.insert(orvik->second.ip); // not heard by the latest search
    }
    return sources;
}

void GigETransportLayer::assign(const gvcp::AddressAssignment& assignment, const char* operation,
                                const RetryPlan& plan)
{
    invalidateCache();
    ExpectedSources sources = expectedSources(assignment.mac);
    if (!sources.camera.empty()) {
        sources.camera.insert(assignment.ip);
    }
    const bool isRestart = assignment.ip == net::Ipv4{};
    Failure failure{.mac = net::formatMac(assignment.mac)};
    if (!isRestart) {
        failure.setting = Setting::TemporaryAddress;
        failure.wanted = net::formatIpv4(assignment.ip);
    }
    const auto status = broadcastCommand(Request::forceIp(assignment), sources, plan, failure);
    const std::string prefix = nameOf(assignment.mac) + ", " + operation + ": ";
    if (!status) {
        logRequest(ozlog::LogLevel::Info, "%hsnot acknowledged.", prefix.c_str());
    } else if (*status == gvcp::Status::Busy && isRestart) {
        logRequest(ozlog::LogLevel::Info, "%hsthe camera is busy, perhaps already doing so.", prefix.c_str());
    } else if (*status != gvcp::Status::Success) {
        failure.kind = kindOf(*status);
        failure.status = describeStatus(*status);
        const std::string text = prefix + failure.status;
        raise<RefusalException>(std::move(failure), text);
    }
}

void GigETransportLayer::checkAssigned(const gvcp::AddressAssignment& assignment)
{
    const auto lastLook = Clock::now() + addressChangeTime;
    searchAll();
    auto instead = addressInstead(m_found, assignment);
    while (instead && Clock::now() < lastLook) {
        searchAll();
        instead = addressInstead(m_found, assignment);
    }
    Failure failure{.setting = Setting::TemporaryAddress,
                    .mac = net::formatMac(assignment.mac),
                    .wanted = net::formatIpv4(assignment.ip)};
    const std::string given = nameOf(assignment.mac) + " was given the address " + failure.wanted;
    if (instead) {
        failure.kind = FailureKind::AddressNotTaken;
        failure.actual = net::formatIpv4(*instead);
        const std::string text = given + " and has " + failure.actual;
        raise<GenICam::RuntimeException>(std::move(failure), text);
    }
    if (const auto other = rival(m_found, assignment)) {
        failure.kind = FailureKind::AddressOfAnotherCamera;
        failure.other = net::formatMac(*other);
        const std::string text = given + ", which is also that of the camera with MAC " + failure.other;
        raise<GenICam::RuntimeException>(std::move(failure), text);
    }
}

void GigETransportLayer::ForceIp(const GenICam::gcstring& mac, const GenICam::gcstring& ipAddress,
                                 const GenICam::gcstring& subnetMask, const GenICam::gcstring& defaultGateway)
{
    const gvcp::AddressAssignment assignment{.mac = macArgument(mac),
                                             .ip = addressArgument(ipAddress, Setting::TemporaryAddress),
                                             .mask = addressArgument(subnetMask, Setting::SubnetMask),
                                             .gateway =
                                                 addressArgument(defaultGateway, Setting::DefaultGateway)};
    assign(assignment, "assigning a temporary address", acknowledgedPlan());
    if (assignment.ip != net::Ipv4{}) { // 0.0.0.0 makes the camera look for an address of its own
        checkAssigned(assignment);
    }
}

void GigETransportLayer::RestartIpConfig(const GenICam::gcstring& mac)
{
    assign({.mac = macArgument(mac), .ip = {}, .mask = {}, .gateway = {}}, "restarting its IP configuration",
           restartPlan());
}

std::string_view GigETransportLayer::nameToStore(const net::MacAddress& mac, std::string_view name) const
{
    const gvcp::Identity& known = m_orvikCameras.at(mac);
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
    if (!m_orvikCameras.contains(camera)) {
        return false;
    }
    gvcp::StoredConfiguration configuration{
        .mac = camera,
        .ipConfig = LinkLocal | (enablePersistentIp ? Persistent : 0) | (enableDhcp ? Dhcp : 0),
        .ip = storedAddressArgument(ipAddress, Setting::IpAddress, enablePersistentIp),
        .mask = storedAddressArgument(subnetMask, Setting::SubnetMask, enablePersistentIp),
        .gateway = storedAddressArgument(defaultGateway, Setting::DefaultGateway, enablePersistentIp),
        .userDefinedName = nameToStore(camera, nameArgument(userDefinedName))};
    if (!isForCameras(configuration.ip)) {
        if (enablePersistentIp) {
            logRequest(ozlog::LogLevel::Warning,
                       "%hs was not sent the broadcast configuration: no camera can have the address %hs.",
                       nameOf(camera).c_str(), net::formatIpv4(configuration.ip).c_str());
            return false;
        }
        configuration.ip = {}; // so that a later switch to static mode does not apply it
    }
    invalidateCache();
    const auto status = broadcastCommand(Request::broadcastIpConfig(configuration), expectedSources(camera),
                                         acknowledgedPlan(), {.mac = net::formatMac(camera)});
    if (status == gvcp::Status::Success) {
        return true;
    }
    logRequest(ozlog::LogLevel::Warning, "%hs did not take the broadcast configuration: %hs.",
               nameOf(camera).c_str(), status ? describeStatus(*status).c_str() : "no answer");
    return false;
}

} // namespace gige
