#include "opening.h"

#include "errors.h"

#include <algorithm>
#include <vector>

namespace gige {

namespace {

using Candidates = std::vector<const FoundCamera*>;

Candidates camerasAt(std::span<const FoundCamera> found, net::Ipv4 address)
{
    Candidates candidates;
    for (const FoundCamera& camera : found) {
        if (camera.identity.ip == address) {
            candidates.push_back(&camera);
        }
    }
    return candidates;
}

/// Keeps only the candidates that meet the condition, if there are any.
template <typename Condition>
void prefer(Candidates& candidates, const Condition& condition)
{
    if (std::ranges::any_of(candidates, condition)) {
        std::erase_if(candidates, [&](const FoundCamera* camera) { return !condition(camera); });
    }
}

[[noreturn]] void raiseContested(net::Ipv4 address, const net::MacAddress& one, const net::MacAddress& other)
{
    raise<GenICam::RuntimeException>({.kind = Tessal::FailureKind::AddressContested,
                                      .address = net::formatIpv4(address),
                                      .mac = net::formatMac(one),
                                      .other = net::formatMac(other)},
                                     "Two cameras have the address " + net::formatIpv4(address) + ", MAC " +
                                         net::formatMac(one) + " and MAC " + net::formatMac(other) +
                                         "; one of them needs another address first");
}

[[noreturn]] void raiseAnotherAnswers(net::Ipv4 address, const net::MacAddress& expected,
                                      const net::MacAddress& answered)
{
    raise<GenICam::RuntimeException>({.kind = Tessal::FailureKind::AnotherCameraAnswers,
                                      .address = net::formatIpv4(address),
                                      .mac = net::formatMac(expected),
                                      .other = net::formatMac(answered)},
                                     "The address " + net::formatIpv4(address) +
                                         " was that of the camera with MAC " + net::formatMac(expected) +
                                         " and is now that of the one with MAC " + net::formatMac(answered));
}

} // namespace

int adapterForOpening(std::span<const FoundCamera> found, net::Ipv4 address,
                      const std::optional<net::MacAddress>& expected)
{
    Candidates candidates = camerasAt(found, address);
    if (candidates.empty()) {
        return 0;
    }
    prefer(candidates, [&](const FoundCamera* camera) { return camera->identity.mac == expected; });
    prefer(candidates, [](const FoundCamera* camera) { return camera->answersUnicast; });
    prefer(candidates, [&](const FoundCamera* camera) {
        return net::inSameSubnet(camera->heardBy.address, address, camera->heardBy.mask);
    });
    const FoundCamera& chosen = *candidates.front();
    if (chosen.sameAddress) {
        raiseContested(address, chosen.identity.mac, chosen.sameAddress->mac);
    }
    for (const FoundCamera* const other : candidates) {
        if (other->identity.mac != chosen.identity.mac) {
            raiseContested(address, chosen.identity.mac, other->identity.mac);
        }
    }
    return chosen.heardBy.adapterIndex;
}

int adapterThatHeard(std::span<const FoundCamera> found, net::Ipv4 address,
                     const std::optional<net::MacAddress>& mac)
{
    Candidates candidates = camerasAt(found, address);
    prefer(candidates, [&](const FoundCamera* camera) { return camera->identity.mac == mac; });
    prefer(candidates, [](const FoundCamera* camera) { return camera->answersUnicast; });
    return candidates.empty() ? 0 : candidates.front()->heardBy.adapterIndex;
}

void checkAnswered(std::span<const FoundCamera> found, net::Ipv4 address, int adapterIndex,
                   const std::optional<net::MacAddress>& expected, const net::MacAddress& answered)
{
    if (expected) {
        if (*expected != answered) {
            raiseAnotherAnswers(address, *expected, answered);
        }
        return;
    }
    Candidates candidates = camerasAt(found, address);
    std::erase_if(candidates,
                  [&](const FoundCamera* camera) { return camera->heardBy.adapterIndex != adapterIndex; });
    if (candidates.empty() || std::ranges::any_of(candidates, [&](const FoundCamera* camera) {
            return camera->identity.mac == answered;
        })) {
        return;
    }
    raiseAnotherAnswers(address, candidates.front()->identity.mac, answered);
}

} // namespace gige
