#include "findings.h"

#include "log.h"
#include "tessal/transportlayer.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

namespace gige {

namespace {

using gvcp::Identity;

constexpr std::size_t maxTracedTwins = 10; // a flood of invented cameras must not fill the trace

/// A camera that is listed, and those that may be mistaken for it.
struct Finding
{
    const Identity* camera = nullptr;
    const Identity* sameMac = nullptr;
    const Identity* sameAddress = nullptr; // behind the same adapter
};

using Findings = std::map<std::pair<int, net::MacAddress>, Finding>; // by adapter index and MAC address

/// Of two cameras with one MAC address, always lists the same one.
Finding findingOf(const AdapterSearch::Camera& camera)
{
    Finding finding{.camera = &camera.identity};
    if (camera.isTwoCameras) {
        const auto order = [](const Identity& identity) {
            return std::tie(identity.serialNumber, identity.ip);
        };
        finding.sameMac = &*camera.former;
        if (order(*finding.sameMac) < order(*finding.camera)) {
            std::swap(finding.camera, finding.sameMac);
        }
    }
    return finding;
}

/// One camera may be connected to several networks; with another serial number or address, it is another
/// camera.
void compareAdapters(Findings& findings)
{
    std::map<net::MacAddress, Finding*> firsts;
    for (auto& [key, finding] : findings) {
        const auto& [entry, isFirst] = firsts.try_emplace(key.second, &finding);
        Finding& first = *entry->second;
        if (!isFirst && areDifferentCameras(*first.camera, *finding.camera)) {
            finding.sameMac = finding.sameMac == nullptr ? first.camera : finding.sameMac;
            first.sameMac = first.sameMac == nullptr ? finding.camera : first.sameMac;
        }
    }
}

/// Marks the cameras behind the adapter whose address another one there has too. Returns these addresses.
std::set<net::Ipv4> compareAddresses(Findings& findings, int adapterIndex)
{
    std::map<net::Ipv4, std::vector<Finding*>> claims;
    std::set<net::Ipv4> contested;
    for (auto& [key, finding] : findings) {
        if (key.first != adapterIndex || finding.camera->ip == net::Ipv4{}) { // has no address yet
            continue;
        }
        auto& claimants = claims[finding.camera->ip];
        claimants.push_back(&finding);
        if (finding.sameMac != nullptr && finding.sameMac->ip == finding.camera->ip) {
            finding.sameAddress = finding.sameMac;
            contested.insert(finding.camera->ip);
        }
    }
    for (const auto& [address, claimants] : claims) {
        for (Finding* const claimant : claimants) {
            if (claimants.size() > 1) {
                claimant->sameAddress = claimants[claimant == claimants[0] ? 1 : 0]->camera;
                contested.insert(address);
            }
        }
    }
    return contested;
}

/// Control characters in a camera's texts must not start lines of their own.
std::string printable(std::string text)
{
    std::ranges::replace_if(
        text, [](unsigned char byte) { return byte < ' ' || byte == 0x7F; }, '?');
    return text;
}

void traceSharedMacs(const Findings& findings)
{
    std::set<net::MacAddress> logged;
    for (const auto& [key, finding] : findings) {
        if (finding.sameMac == nullptr || logged.size() >= maxTracedTwins ||
            !logged.insert(key.second).second) {
            continue;
        }
        logSearch(
            ozlog::LogLevel::Warning,
            "The MAC address %hs answers as two cameras: serial number %hs at %hs, and serial number %hs "
            "at %hs.",
            net::formatMac(key.second).c_str(), printable(finding.camera->serialNumber).c_str(),
            net::formatIpv4(finding.camera->ip).c_str(), printable(finding.sameMac->serialNumber).c_str(),
            net::formatIpv4(finding.sameMac->ip).c_str());
    }
}

void traceContested(const std::set<net::Ipv4>& contested, const std::string& adapter)
{
    if (!contested.empty()) {
        logSearch(ozlog::LogLevel::Warning,
                  "%u addresses are claimed by more than one camera behind adapter %hs: %hs%hs",
                  static_cast<unsigned>(contested.size()), adapter.c_str(),
                  net::formatIpv4(*contested.begin()).c_str(), contested.size() > 1 ? " and others" : "");
    }
}

Findings compare(const std::vector<AdapterSearch>& adapters)
{
    Findings findings;
    for (const AdapterSearch& adapter : adapters) {
        for (const auto& [mac, camera] : adapter.cameras()) {
            findings.emplace(std::pair(adapter.adapterIndex(), mac), findingOf(camera));
        }
    }
    compareAdapters(findings);
    for (const AdapterSearch& adapter : adapters) {
        traceContested(compareAddresses(findings, adapter.adapterIndex()), adapter.adapter());
    }
    traceSharedMacs(findings);
    return findings;
}

FoundCamera foundCamera(const Finding& finding, const HostAddress& heardBy, const UnicastProbe& probe)
{
    FoundCamera found;
    found.identity = *finding.camera;
    found.heardBy = heardBy;
    found.accessibility = Tessal::Accessibility::NotReachable;
    if (finding.sameMac != nullptr) {
        found.sameMac = *finding.sameMac;
    }
    if (finding.sameAddress != nullptr) {
        found.sameAddress = *finding.sameAddress;
        return found;
    }
    const UnicastProbe::Answer answer = probe.answerOf({finding.camera->mac, finding.camera->ip});
    found.answersUnicast = answer.heard;
    found.accessibility = answer.accessibility;
    found.controlledBy = answer.controlledBy;
    return found;
}

} // namespace

std::vector<FoundCamera> summarize(const std::vector<AdapterSearch>& adapters, const Broadcaster& broadcaster,
                                   const UnicastProbe& probe)
{
    const Findings findings = compare(adapters);
    std::vector<FoundCamera> cameras;
    for (std::size_t channel = 0; channel < broadcaster.channelCount(); ++channel) {
        const HostAddress& host = broadcaster.host(channel);
        const auto adapter = std::ranges::find(adapters, host.adapterIndex, &AdapterSearch::adapterIndex);
        for (const auto& [mac, camera] : adapter->cameras()) {
            if (camera.answeredRounds.contains(channel)) {
                cameras.push_back(foundCamera(findings.at({host.adapterIndex, mac}), host, probe));
            }
        }
    }
    return cameras;
}

} // namespace gige
