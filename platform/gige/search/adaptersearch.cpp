#include "adaptersearch.h"

#include "log.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace gige {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t maxCameras = 4096; // a flood of invented cameras must not exhaust the memory

// An answer counts as missing after this many times the longest that the camera has taken so far, plus a
// margin.
constexpr int overdueFactor = 3;
constexpr auto overdueMargin = 20ms;

static_assert(std::max(Pace::Quick.maxRounds, Pace::Slow.maxRounds) <= 32, "a bit for each round");

/// Stores how a camera describes itself now. It may change its address during a search; but a camera that has
/// its former address again, or another serial number, is in fact two.
void update(AdapterSearch::Camera& camera, gvcp::Identity identity)
{
    const bool isBack = camera.former && *camera.former == identity;
    const bool hasOtherSerial = camera.identity.serialNumber != identity.serialNumber;
    camera.isTwoCameras =
        camera.isTwoCameras || (areDifferentCameras(camera.identity, identity) && (isBack || hasOtherSerial));
    camera.former = std::exchange(camera.identity, std::move(identity));
}

} // namespace

std::optional<gvcp::Identity> identityFrom(const Request& request, const Datagram& datagram)
{
    const Reply reply = request.judge(datagram.bytes);
    return reply.kind == Reply::Kind::Done ? gvcp::decodeIdentity(reply.payload) : std::nullopt;
}

bool areDifferentCameras(const gvcp::Identity& left, const gvcp::Identity& right)
{
    return left.serialNumber != right.serialNumber || left.ip != right.ip;
}

void AdapterSearch::expect(const std::set<std::pair<int, net::MacAddress>>& cameras)
{
    for (const auto& [adapterIndex, mac] : cameras) {
        if (adapterIndex == m_adapterIndex) {
            m_expected.push_back(mac);
        }
    }
}

std::size_t AdapterSearch::usualRounds() const
{
    const std::size_t channels = std::max<std::size_t>(m_channels.size(), 1);
    return std::max(Pace::MinRounds, (Pace::MinQuestions + channels - 1) / channels);
}

bool AdapterSearch::needsRound(const SearchPace& pace, Clock::time_point now, Clock::duration age) const
{
    if (m_rounds.size() < usualRounds()) {
        return true;
    }
    const bool isCrowded = m_cameras.size() > Pace::MaxCamerasForRepeats;
    if (m_rounds.size() >= (isCrowded ? Pace::RoundsForManyCameras : pace.maxRounds) ||
        age > pace.lastRound) {
        return false;
    }
    return lacksAnswers(now) || (age >= Pace::MissingAfter && lacksCamera());
}

bool AdapterSearch::includesSubnet() const
{
    return m_rounds.size() < Pace::RoundsToSubnet || m_rounds.size() >= usualRounds();
}

const Request& AdapterSearch::beginRound(Clock::time_point now)
{
    m_rounds.push_back({Request::discovery(), now});
    return m_rounds.back().request;
}

bool AdapterSearch::lacksCamera() const
{
    return m_cameras.empty() || std::ranges::any_of(m_expected, [this](const net::MacAddress& mac) {
               return !m_cameras.contains(mac);
           });
}

bool AdapterSearch::lacksAnswers(Clock::time_point now) const
{
    return std::ranges::any_of(m_cameras, [&](const auto& entry) {
        const Camera& camera = entry.second;
        return std::ranges::any_of(camera.answeredRounds, [&](const auto& channel) {
            return lacksAnswers(camera, channel.second, now);
        });
    });
}

bool AdapterSearch::lacksAnswers(const Camera& camera, std::uint32_t answered, Clock::time_point now) const
{
    const auto answeredTo = static_cast<std::size_t>(std::bit_width(answered));
    if (static_cast<std::size_t>(std::popcount(answered)) < answeredTo) {
        return true; // cameras answer rounds in their order
    }
    return answeredTo < m_rounds.size() &&
           m_rounds[answeredTo].sentAt + overdueFactor * camera.lateness + overdueMargin < now;
}

AdapterSearch::Camera& AdapterSearch::note(gvcp::Identity identity, Heard& heard)
{
    const auto [entry, isNew] = m_cameras.try_emplace(identity.mac);
    Camera& camera = entry->second;
    heard = {.camera = &camera, .isNew = isNew, .hasNewAddress = isNew || camera.identity.ip != identity.ip};
    if (isNew) {
        camera.identity = std::move(identity);
    } else if (camera.identity != identity) {
        update(camera, std::move(identity));
    }
    return camera;
}

std::optional<AdapterSearch::Heard> AdapterSearch::receive(std::size_t channel, const Datagram& datagram,
                                                           Clock::time_point now)
{
    const auto id = requestIdOf(datagram.bytes);
    const auto round =
        std::ranges::find_if(m_rounds, [&](const Round& sent) { return id == sent.request.id(); });
    if (round == m_rounds.end()) {
        return std::nullopt;
    }
    auto identity = identityFrom(round->request, datagram);
    if (!identity) {
        return std::nullopt;
    }
    if (m_cameras.size() >= maxCameras && !m_cameras.contains(identity->mac)) {
        if (!std::exchange(m_isFull, true)) {
            logSearch(ozlog::LogLevel::Warning,
                      "More than %u cameras answered through adapter %hs; the others are left out.",
                      static_cast<unsigned>(maxCameras), m_adapter.c_str());
        }
        return std::nullopt;
    }
    Heard heard;
    Camera& camera = note(std::move(*identity), heard);
    camera.lateness = std::max(camera.lateness, now - round->sentAt);
    camera.answeredRounds[channel] |= 1U << (round - m_rounds.begin());
    return heard;
}

std::vector<Request> AdapterSearch::requests() const
{
    std::vector<Request> requests;
    std::ranges::transform(m_rounds, std::back_inserter(requests), &Round::request);
    return requests;
}

} // namespace gige
