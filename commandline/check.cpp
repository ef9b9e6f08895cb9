#include "plan.h"

#include "qtbase/formatting.h"
#include "tessal/transportlayer.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace cli {

namespace {

bool givesAddress(const Wanted& wanted)
{
    return wanted.mode == Mode::Static || wanted.mode == Mode::Temporary;
}

/// The part of `wanted` that the camera does not report yet.
Change changeOf(const Camera& camera, const Wanted& wanted)
{
    Change change{.camera = camera, .wanted = wanted};
    change.writesMode =
        wanted.mode != Mode::Unknown && wanted.mode != Mode::Temporary && wanted.mode != camera.mode;
    change.writesAddresses =
        givesAddress(wanted) && (change.writesMode || wanted.address != camera.address ||
                                 wanted.mask != camera.mask || wanted.gateway != camera.gateway);
    if (wanted.mode == Mode::AutoIp && !isLinkLocal(camera.address)) { // Set, but not restarted since.
        change.writesMode = true;
    }
    // A list replaces control characters; a name copied from it is not a change.
    change.writesName =
        wanted.name && *wanted.name != camera.name && *wanted.name != displayText(camera.name);
    return change;
}

/// Whether --force overrides the advice: it concerns the present network, not an impossible address.
bool canBeForced(advice::Kind kind)
{
    using enum advice::Kind;
    constexpr std::array kinds{NetworkAddress, BroadcastAddress, OutsideAdapter, OutsideComputer,
                               OtherMask,      GatewayOutside,   GatewayOfCamera};
    return std::ranges::find(kinds, kind) != kinds.end();
}

Column columnOf(advice::Field field)
{
    if (field == advice::Field::Mask) {
        return Column::Mask;
    }
    return field == advice::Field::Gateway ? Column::Gateway : Column::Address;
}

/// Chooses the cameras that give up their addresses first: one in each cycle of cameras that wait for each
/// other's addresses, and every few cameras in a long chain, which would otherwise restart one by one.
void chooseRoomMakers(std::vector<Change>& changes)
{
    constexpr int inARow = 4;
    std::map<net::Ipv4, Change*> holders;
    std::map<net::Ipv4, Change*> takers;
    for (Change& change : changes) {
        if (change.writesAddresses && change.destination() != change.camera.address) {
            holders.emplace(change.camera.address, &change);
            takers.emplace(change.destination(), &change);
        }
    }
    std::set<const Change*> seen;
    for (const auto& [address, taker] : takers) {
        if (seen.contains(taker)) {
            continue;
        }
        Change* first = taker; // Of the row; in a circle, where the way back ends.
        for (auto before = holders.find(address); before != holders.end() && before->second != taker;
             before = holders.find(first->destination())) {
            first = before->second;
        }
        int waiting = holders.contains(first->destination()) ? inARow : 0;
        for (auto next = takers.find(first->camera.address);
             next != takers.end() && seen.insert(first).second; next = takers.find(first->camera.address)) {
            first->makesRoom = waiting >= inARow;
            waiting = first->makesRoom ? 1 : waiting + 1;
            first = next->second;
        }
        seen.insert(first);
    }
}

class PlanCheck
{
public:
    PlanCheck(const std::vector<PlanRow>& rows, const Network& network)
        : m_network(network), m_surroundings(network.surroundings)
    {
        for (const PlanRow& row : rows) {
            if (const auto camera = cameraOf(row)) {
                m_lines.emplace(camera->mac, row.places.at(Column::Mac).line);
                m_rows.push_back(&row);
                m_checked.changes.push_back(changeOf(*camera, row.wanted));
            }
            m_taken.insert({row.wanted.address, row.wanted.gateway}); // Also if the camera is missing.
        }
    }

    CheckedPlan check()
    {
        for (const Change& change : m_checked.changes) { // Advice assumes the planned addresses.
            for (advice::Camera& camera : m_surroundings.cameras) {
                camera.address = camera.mac == change.camera.mac ? change.destination() : camera.address;
            }
        }
        for (std::size_t i = 0; i < m_rows.size(); ++i) {
            if (m_checked.changes[i].writesAddresses) {
                advise(*m_rows[i], m_checked.changes[i]);
            }
        }
        if (std::ranges::all_of(m_checked.findings, &Finding::canBeForced)) { // So no address is meant twice.
            chooseRoomMakers(m_checked.changes);
            chooseTemporaryAddresses();
        }
        return std::move(m_checked);
    }

private:
    void report(FilePosition place, const QString& text, bool canBeForced = false)
    {
        m_checked.findings.push_back({place, text, canBeForced});
    }

    std::optional<Camera> cameraOf(const PlanRow& row)
    {
        const FilePosition place = row.places.at(row.mac ? Column::Mac : Column::Serial);
        const QString what = row.mac ? QStringLiteral("the MAC address ") + text(*row.mac)
                                     : QStringLiteral("the serial number ") + row.serial;
        std::optional<Camera> found;
        for (const Camera& camera : m_network.cameras) {
            if (row.mac ? camera.mac != *row.mac : camera.serial != row.serial) {
                continue;
            }
            if (camera.isMacShared || (found && found->mac != camera.mac)) {
                report(place, QStringLiteral("several cameras have ") + what);
                return std::nullopt;
            }
            found = found ? found : camera;
        }
        const bool isListed = found.has_value();
        if (!isListed && row.mac && row.wanted.mode == Mode::Temporary) {
            found = Camera{.mac = *row.mac}; // It may receive the command although no search found it.
            m_surroundings.cameras.push_back({.name = {}, .model = {}, .mac = *row.mac, .address = {}});
        }
        if (!found) {
            report(place, QStringLiteral("no camera was found that has ") + what, true);
        } else if (isListed && !row.serial.isEmpty() && found->serial != row.serial) {
            report(row.places.at(Column::Serial),
                   QStringLiteral("the camera %1 has the serial number %2").arg(text(*found), found->serial));
        } else if (m_lines.contains(found->mac)) {
            report(place, QStringLiteral("line %1 refers to the same camera").arg(m_lines.at(found->mac)));
        } else {
            return found;
        }
        return std::nullopt;
    }

    void advise(const PlanRow& row, const Change& change)
    {
        const bool isElsewhereToo = std::ranges::any_of(m_network.cameras, [&](const Camera& camera) {
            return camera.mac == change.camera.mac && camera.adapter != change.camera.adapter;
        });
        m_surroundings.cameraAdapter = isElsewhereToo ? QString() : change.camera.adapter;
        const bool isStatic = change.wanted.mode == Mode::Static;
        const auto all = adviceOn({.purpose = isStatic ? advice::Purpose::Static : advice::Purpose::Temporary,
                                   .mac = text(change.camera.mac),
                                   .address = text(change.wanted.address),
                                   .mask = text(change.wanted.mask),
                                   .gateway = text(change.wanted.gateway)},
                                  m_surroundings);
        for (const advice::Advice& one : all) {
            const auto line = m_lines.find(one.camera.mac);
            const bool isPlanned = one.kind == advice::Kind::AddressOfCamera && line != m_lines.end();
            report(row.places.at(columnOf(one.field)),
                   sentence(one) + (isPlanned ? QStringLiteral(" (Line %1.)").arg(line->second) : QString()),
                   canBeForced(one.kind));
        }
    }

    void chooseTemporaryAddresses()
    {
        m_taken.insert(m_network.gateways.begin(), m_network.gateways.end());
        for (const Camera& camera : m_network.cameras) {
            m_taken.insert({camera.address, camera.gateway});
        }
        for (const advice::Adapter& adapter : m_surroundings.adapters) {
            for (const auto& subnet : adapter.subnets) {
                m_taken.insert(subnet.address);
            }
        }
        for (std::size_t i = 0; i < m_rows.size(); ++i) {
            Change& change = m_checked.changes[i];
            const bool isCutOff = change.camera.accessibility == Tessal::Accessibility::NotReachable;
            if (change.makesRoom || (isCutOff && !change.isNothing())) {
                change.temporary = temporaryAddressFor(change);
            }
            if (change.makesRoom && !change.temporary) {
                report(m_rows[i]->places.at(Column::Address),
                       QStringLiteral(
                           "cameras wait for each other's addresses, and no temporary address is free"));
            }
        }
    }

    /// A free one from the top of the adapter's network, where devices are fewest. The highest, which often
    /// is a router's, comes last. The planned address would look like a kept one if the run ended early.
    std::optional<TemporaryAddress> temporaryAddressFor(const Change& change)
    {
        for (const advice::Adapter& adapter : m_surroundings.adapters) {
            if (adapter.name != change.camera.adapter) {
                continue;
            }
            for (const auto& [own, mask] : adapter.subnets) {
                const auto isOfHost = [&own = own, &mask = mask](net::Ipv4 address) {
                    return (address.value & ~mask.value) != 0 && net::inSameSubnet(own, address, mask);
                };
                const net::Ipv4 highest{net::subnetBroadcast(own, mask).value - 1};
                net::Ipv4 free{highest.value - 1};
                while (isOfHost(free) && m_taken.contains(free)) {
                    --free.value;
                }
                free = isOfHost(free) ? free : highest;
                if (isOfHost(free) && m_taken.insert(free).second) {
                    return TemporaryAddress{free, mask};
                }
            }
        }
        return std::nullopt;
    }

    const Network& m_network;
    advice::Surroundings m_surroundings;
    CheckedPlan m_checked;
    std::vector<const PlanRow*> m_rows;             // Of the changes.
    std::map<net::MacAddress, std::size_t> m_lines; // Where the plan means that camera.
    std::set<net::Ipv4> m_taken;                    // Some device's, now or later.
};

QString addressing(Mode mode, net::Ipv4 address, net::Ipv4 mask, net::Ipv4 gateway)
{
    return text(mode) + QLatin1Char(' ') + text(address, mask) +
           (gateway == net::Ipv4{} ? QString() : QStringLiteral(" gateway ") + text(gateway));
}

} // namespace

net::Ipv4 Change::destination() const
{
    if (writesAddresses) {
        return wanted.address;
    }
    return writesMode ? net::Ipv4{} : camera.address;
}

CheckedPlan checkPlan(const std::vector<PlanRow>& rows, const Network& network)
{
    return PlanCheck(rows, network).check();
}

QString text(const Change& change)
{
    const Camera& camera = change.camera;
    const Wanted& wanted = change.wanted;
    QStringList parts;
    if (change.writesMode || change.writesAddresses) {
        parts += addressing(camera.mode, camera.address, camera.mask, camera.gateway) +
                 QStringLiteral(" -> ") +
                 (givesAddress(wanted) ? addressing(wanted.mode, wanted.address, wanted.mask, wanted.gateway)
                                       : text(wanted.mode));
    }
    if (change.makesRoom && change.temporary) {
        parts += QStringLiteral("temporarily ") + text(change.temporary->address);
    }
    if (change.writesName) {
        parts +=
            QStringLiteral("name \"%1\" -> \"%2\"").arg(displayText(camera.name), displayText(*wanted.name));
    }
    return parts.join(QStringLiteral(", "));
}

} // namespace cli
