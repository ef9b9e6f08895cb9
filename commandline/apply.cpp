#include "apply.h"

#include "DeviceLister.h"
#include "confirmation.h"
#include "writer.h"

#include "qtbase/failuretexts.h"
#include "qtbase/formatting.h"
#include "tessal/transportlayer.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace cli {

namespace {

using namespace std::chrono_literals;

// A camera found sooner may not have restarted yet, unless its new address proves that it has.
constexpr auto restartsWithin = 2s;
// After this time, what a camera reports is the final result of its restart.
constexpr auto settlesWithin = 10s;
// Between searches that bring nothing new, so that the network is not filled with questions.
constexpr auto pause = 500ms;

QByteArray ascii(net::Ipv4 address)
{
    return net::formatIpv4(address).c_str();
}

/// The values that differ from what was requested, in one line; empty if there are none.
QString deviations(const Change& change, const Tessal::COrvikGigEDeviceInfo& reported)
{
    const Wanted& wanted = change.wanted;
    const Camera camera = cameraOf(reported);
    SentConfiguration sent;
    if (change.writesMode) {
        sent.mode = AddressingMode{.persistentIp = wanted.mode == Mode::Static,
                                   .dhcp = wanted.mode == Mode::Dhcp,
                                   .autoIp = wanted.mode == Mode::AutoIp};
    }
    if (change.writesAddresses) {
        sent.settings = IpSettings{.ipAddress = ascii(wanted.address),
                                   .subnetMask = ascii(wanted.mask),
                                   .defaultGateway = ascii(wanted.gateway)};
    }
    if (change.writesName) {
        sent.name = wanted.name;
    }
    GenICam::gcstring other;
    if (reported.GetPropertyValue(Tessal::Key::SameAddressMac, other)) {
        return QStringLiteral("The camera with the MAC address %1 has the same address.").arg(other.c_str());
    }
    const bool hasLeft = wanted.mode == Mode::AutoIp
                             ? isLinkLocal(camera.address)
                             : !change.writesAddresses || camera.address == wanted.address;
    const QString text = deviationsFrom(sent, reported).replace(QLatin1Char('\n'), QLatin1Char(' '));
    return text.isEmpty() && !hasLeft
               ? QStringLiteral("It has the address %1.").arg(cli::text(camera.address))
               : displayText(text);
}

} // namespace

Apply::Apply(DeviceLister& lister, const std::vector<Change>& changes, ApplyHooks hooks,
             std::chrono::seconds patience)
    : m_lister(lister), m_hooks(std::move(hooks)), m_patience(patience)
{
    for (const Change& change : changes) {
        m_jobs.push_back({.change = change});
    }
    noteAddresses();
}

void Apply::run()
{
    for (Job& job : m_jobs) {
        if (job.change.isNothing()) {
            finish(job, Outcome::AsPlanned, {});
        } else {
            finishIfInUse(job);
        }
    }
    makeRoom();
    for (bool hasBegun = beginReady(); count(State::Restarting) > 0; hasBegun = beginReady()) {
        const int restarting = count(State::Restarting);
        look();
        if (!hasBegun && count(State::Restarting) == restarting) {
            std::this_thread::sleep_for(pause);
        }
    }
    finishWaiting();
}

/// Gives temporary addresses to cameras whose present addresses others need.
void Apply::makeRoom()
{
    for (Job& job : m_jobs) {
        if (!job.change.makesRoom || job.state == State::Finished || m_hooks.isInterrupted()) {
            continue;
        }
        if (!helpsToMakeRoom(job)) {
            job.change.makesRoom = false;
            if (job.change.camera.accessibility != Tessal::Accessibility::NotReachable) {
                job.change.temporary.reset();
            }
            continue;
        }
        const auto& [address, mask] = *job.change.temporary;
        try {
            forceAddress(job.change.camera.mac, address, mask, {});
            m_addresses[job.change.camera.mac] = address;
        } catch (const std::exception& exception) {
            finish(job, Outcome::Failed, sentenceOf(exception));
        }
    }
}

/// Whether another camera can take over the address, and all that the camera itself waits for can move on.
bool Apply::helpsToMakeRoom(const Job& first) const
{
    const bool isTakerFinished = std::ranges::any_of(m_jobs, [&first](const Job& job) {
        return job.state == State::Finished && job.change.writesAddresses &&
               job.change.destination() == first.change.camera.address;
    });
    if (isTakerFinished) {
        return false;
    }
    for (auto holder = holderOfDestination(first.change); holder && *holder != first.change.camera.mac;) {
        const auto next = std::ranges::find_if(
            m_jobs, [&holder](const Job& job) { return job.change.camera.mac == *holder; });
        if (next == m_jobs.end() || next->state == State::Finished) {
            return false;
        }
        holder = holderOfDestination(next->change);
    }
    return true;
}

/// Starts every job that need not wait. Returns whether there was one.
bool Apply::beginReady()
{
    bool hasBegun = false;
    for (Job& job : m_jobs) {
        if (job.state == State::Waiting && !m_hooks.isInterrupted() && !holderOfDestination(job.change)) {
            begin(job);
            hasBegun = true;
            m_hooks.progressed(count(State::Finished), count(State::Restarting),
                               static_cast<int>(m_jobs.size()));
        }
    }
    return hasBegun;
}

/// Reports the camera as failed if another application has it. First of all, because others may wait for it.
void Apply::finishIfInUse(Job& job) const
{
    const Camera& camera = job.change.camera;
    using namespace Tessal::Accessibility;
    if (camera.accessibility == Controlled || camera.accessibility == ControlledExclusively) {
        finish(job, Outcome::Failed,
               describeFailure({.kind = Tessal::FailureKind::ControlledElsewhere,
                                .address = net::formatIpv4(camera.address),
                                .other = camera.controlledBy.toStdString()}));
    }
}

void Apply::begin(Job& job)
{
    try {
        writeChange(job.change, m_addresses[job.change.camera.mac]);
        job.restarted = Clock::now();
        job.state = State::Restarting;
    } catch (const std::exception& exception) {
        finish(job, Outcome::Failed, sentenceOf(exception));
    }
}

void Apply::look()
{
    try {
        m_lister.discoverAllDevices();
    } catch (const std::exception& exception) {
        // Counts as a search that found nothing; the cameras in progress are still reported.
        m_lister.m_devices.clear();
        m_searchFailure = sentenceOf(exception);
    }
    noteAddresses();
    for (Job& job : m_jobs) {
        if (job.state == State::Restarting) {
            const std::string mac = net::formatMac(job.change.camera.mac);
            const auto found = std::ranges::find_if(
                m_lister.m_devices, [&](const auto& record) { return record.GetMacAddress().view() == mac; });
            judge(job, found != m_lister.m_devices.end() ? &*found : nullptr);
        }
    }
    m_hooks.progressed(count(State::Finished), count(State::Restarting), static_cast<int>(m_jobs.size()));
}

void Apply::judge(Job& job, const Tessal::COrvikGigEDeviceInfo* found)
{
    const auto since = Clock::now() - job.restarted;
    if (found == nullptr) {
        if (since >= m_patience || (m_hooks.isInterrupted() && since >= settlesWithin)) {
            finish(job, Outcome::Failed,
                   (QStringLiteral("It was written, and has not been found since. ") + m_searchFailure)
                       .trimmed());
        }
        return;
    }
    const bool moves = job.change.writesAddresses && job.change.destination() != job.change.camera.address;
    const QString deviating = deviations(job.change, *found);
    if (deviating.isEmpty() && (moves || since >= restartsWithin)) {
        finish(job, Outcome::Done, text(job.change));
    } else if (!deviating.isEmpty() && since >= settlesWithin) {
        finish(job, Outcome::Failed, deviating);
    }
}

/// Reports the jobs that could not be started.
void Apply::finishWaiting()
{
    for (Job& job : m_jobs) {
        if (job.state != State::Waiting) {
            continue;
        }
        const Change& change = job.change;
        const auto holder = holderOfDestination(change);
        QString why = holder && !m_hooks.isInterrupted()
                          ? QStringLiteral("The address %1 is still that of the camera %2.")
                                .arg(text(change.destination()), text(*holder))
                          : QStringLiteral("Interrupted.");
        if (m_addresses[change.camera.mac] != change.camera.address) {
            why += QStringLiteral(" It has the address %1 until it restarts.")
                       .arg(text(m_addresses[change.camera.mac]));
        }
        finish(job, Outcome::NotBegun, why);
    }
}

void Apply::finish(Job& job, Outcome outcome, const QString& text) const
{
    job.state = State::Finished;
    m_hooks.finished(job.change.camera, outcome, text);
}

void Apply::noteAddresses()
{
    for (const Tessal::COrvikGigEDeviceInfo& record : m_lister.m_devices) {
        const Camera camera = cameraOf(record);
        m_addresses[camera.mac] = camera.address;
    }
}

int Apply::count(State state) const
{
    return static_cast<int>(std::ranges::count(m_jobs, state, &Job::state));
}

/// The other camera that has the address which the camera is to get.
std::optional<net::MacAddress> Apply::holderOfDestination(const Change& change) const
{
    for (const auto& [mac, address] : m_addresses) {
        if (change.writesAddresses && address == change.destination() && mac != change.camera.mac) {
            return mac;
        }
    }
    return std::nullopt;
}

} // namespace cli
