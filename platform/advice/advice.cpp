#include "advice/advice.h"

#include <algorithm>

namespace advice {

namespace {

constexpr net::Ipv4 none{};
constexpr std::uint32_t firstMulticast = 224; // first octet; from here on no address is a device's
constexpr std::uint32_t loopback = 127;       // first octet
constexpr std::uint32_t exactLoopback = 0x7F000001;

std::optional<net::Ipv4> parse(const QString& text)
{
    return net::parseIpv4(text.toStdString());
}

bool isNone(const QString& text)
{
    return text.isEmpty() || parse(text) == none;
}

bool isMask(net::Ipv4 mask)
{
    return mask != none && net::isContiguousMask(mask);
}

bool isSpecial(net::Ipv4 address)
{
    const std::uint32_t first = address.value >> 24;
    return first == 0 || first == loopback || first >= firstMulticast;
}

/// Which reserved address it is under the mask, if its host part is all zeros or all ones.
std::optional<Kind> reservedUnder(net::Ipv4 mask, net::Ipv4 address)
{
    const std::uint32_t hostBits = ~mask.value;
    if (hostBits <= 1) { // a network of one or two devices reserves none
        return std::nullopt;
    }
    if ((address.value & hostBits) == 0) {
        return Kind::NetworkAddress;
    }
    return (address.value & hostBits) == hostBits ? std::optional(Kind::BroadcastAddress) : std::nullopt;
}

/// The adapters through which the camera can be reached, as far as is known.
std::vector<Adapter> adaptersOfCamera(const Surroundings& surroundings)
{
    const auto own = std::ranges::find(surroundings.adapters, surroundings.cameraAdapter, &Adapter::name);
    return own != surroundings.adapters.end() ? std::vector<Adapter>{*own} : surroundings.adapters;
}

struct Place
{
    QString adapter;
    Adapter::Subnet subnet;
};

/// The network of the camera's adapter in which the address lies.
std::optional<Place> placeOf(net::Ipv4 address, const Surroundings& surroundings)
{
    for (const Adapter& adapter : adaptersOfCamera(surroundings)) {
        for (const Adapter::Subnet& subnet : adapter.subnets) {
            if (net::inSameSubnet(address, subnet.address, subnet.mask)) {
                return Place{adapter.name, subnet};
            }
        }
    }
    return std::nullopt;
}

std::optional<Advice> ownerOf(net::Ipv4 address, const QString& mac, const Surroundings& surroundings)
{
    for (const Adapter& adapter : surroundings.adapters) {
        if (std::ranges::find(adapter.subnets, address, &Adapter::Subnet::address) != adapter.subnets.end()) {
            return Advice{.kind = Kind::OwnAddress, .adapter = adapter.name};
        }
    }
    const auto self = net::parseMac(mac.toStdString());
    for (const Camera& camera : surroundings.cameras) {
        if (camera.address == address && self != camera.mac) {
            return Advice{.kind = Kind::AddressOfCamera, .camera = camera};
        }
    }
    return std::nullopt;
}

std::optional<Advice> reserved(net::Ipv4 address, std::optional<net::Ipv4> mask,
                               const std::optional<Place>& place)
{
    for (const auto& judged : {mask, place ? std::optional(place->subnet.mask) : std::nullopt}) {
        const auto kind = judged && isMask(*judged) ? reservedUnder(*judged, address) : std::nullopt;
        if (kind) {
            return Advice{.kind = *kind, .other = *judged};
        }
    }
    return std::nullopt;
}

std::optional<Advice> outside(const std::optional<Place>& place, const Surroundings& surroundings)
{
    const std::vector<Adapter> adapters = adaptersOfCamera(surroundings);
    if (place || adapters.empty()) {
        return std::nullopt;
    }
    if (surroundings.cameraAdapter != adapters.front().name) {
        return Advice{.kind = Kind::OutsideComputer};
    }
    return Advice{.kind = Kind::OutsideAdapter, .adapter = surroundings.cameraAdapter};
}

std::optional<Advice> onAddress(const Entry& entry, const Surroundings& surroundings)
{
    if (entry.purpose == Purpose::Temporary && isNone(entry.address)) {
        return Advice{.kind = Kind::RestartsConfiguration};
    }
    if (entry.address.isEmpty()) {
        return Advice{.kind = Kind::Missing};
    }
    const auto address = parse(entry.address);
    if (!address) {
        return Advice{.kind = Kind::Incomplete};
    }
    if (isSpecial(*address)) {
        return Advice{.kind = Kind::SpecialAddress};
    }
    if (auto owned = ownerOf(*address, entry.mac, surroundings)) {
        return owned;
    }
    const auto place = placeOf(*address, surroundings);
    if (auto useless = reserved(*address, parse(entry.mask), place)) {
        return useless;
    }
    return outside(place, surroundings);
}

std::optional<Advice> onMask(const Entry& entry, const Surroundings& surroundings)
{
    const bool isNeeded = entry.purpose == Purpose::Static || !isNone(entry.address);
    if (entry.mask.isEmpty()) {
        return isNeeded ? std::optional(Advice{.kind = Kind::Missing}) : std::nullopt;
    }
    const auto mask = parse(entry.mask);
    if (!mask) {
        return Advice{.kind = Kind::Incomplete};
    }
    if (!isNeeded) {
        return std::nullopt;
    }
    if (!isMask(*mask)) {
        return Advice{.kind = Kind::NoMask};
    }
    const auto address = parse(entry.address);
    const auto place = address ? placeOf(*address, surroundings) : std::nullopt;
    if (place && place->subnet.mask != *mask) {
        return Advice{.kind = Kind::OtherMask, .other = place->subnet.mask, .adapter = place->adapter};
    }
    return std::nullopt;
}

std::optional<Advice> onGateway(const Entry& entry)
{
    if (isNone(entry.gateway)) {
        return std::nullopt;
    }
    const auto gateway = parse(entry.gateway);
    if (!gateway) {
        return Advice{.kind = Kind::Incomplete};
    }
    const auto address = parse(entry.address);
    const auto mask = parse(entry.mask);
    if (!address || *address == none || !mask || !isMask(*mask)) {
        return std::nullopt;
    }
    if (*gateway == *address) {
        return Advice{.kind = Kind::GatewayOfCamera};
    }
    if (!net::inSameSubnet(*gateway, *address, *mask)) {
        return Advice{.kind = Kind::GatewayOutside};
    }
    return reserved(*gateway, mask, std::nullopt);
}

/// What is left in the address field is sent to the camera along with another mode, and a camera refuses what
/// is not an address.
std::optional<Advice> onLeftOver(const Entry& entry)
{
    const auto address = parse(entry.address);
    const bool isUsable = address ? address->value != exactLoopback && address->value >> 24 < firstMulticast
                                  : entry.address.trimmed().isEmpty();
    return isUsable ? std::nullopt : std::optional(Advice{.kind = Kind::LeftOverAddress});
}

std::optional<Advice> onMac(const Entry& entry)
{
    if (entry.purpose != Purpose::Temporary || net::parseMac(entry.mac.toStdString())) {
        return std::nullopt;
    }
    return Advice{.kind = Kind::Incomplete};
}

} // namespace

std::vector<Advice> adviceOn(const Entry& entry, const Surroundings& surroundings)
{
    std::vector<Advice> all;
    const auto add = [&all](Field field, const QString& text, std::optional<Advice> one) {
        if (one) {
            one->field = field;
            one->value = parse(text).value_or(none);
            all.push_back(*std::move(one));
        }
    };
    if (entry.purpose == Purpose::LeftOver) {
        add(Field::Address, entry.address, onLeftOver(entry));
        return all;
    }
    add(Field::MacAddress, entry.mac, onMac(entry));
    add(Field::Address, entry.address, onAddress(entry, surroundings));
    add(Field::Mask, entry.mask, onMask(entry, surroundings));
    add(Field::Gateway, entry.gateway, onGateway(entry));
    return all;
}

std::optional<Advice> adviceFor(Field field, const std::vector<Advice>& all)
{
    const auto found = std::ranges::find(all, field, &Advice::field);
    return found != all.end() ? std::optional(*found) : std::nullopt;
}

bool isUnfinished(const Advice& advice)
{
    return advice.kind == Kind::Missing || advice.kind == Kind::Incomplete;
}

bool isWarning(const Advice& advice)
{
    return !isUnfinished(advice) && advice.kind != Kind::RestartsConfiguration;
}

std::optional<Camera> cameraOf(const QString& mac, const Surroundings& surroundings)
{
    const auto wanted = net::parseMac(mac.toStdString());
    const auto found = std::ranges::find_if(surroundings.cameras,
                                            [&](const Camera& camera) { return camera.mac == wanted; });
    return wanted && found != surroundings.cameras.end() ? std::optional(*found) : std::nullopt;
}

} // namespace advice
