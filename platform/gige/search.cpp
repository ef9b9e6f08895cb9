#include "gige/search.h"

#include "gige/attempts.h"
#include "gige/broadcaster.h"
#include "gige/reversepath.h"
#include "gige/trace.h"
#include "gige/unicastprobe.h"
#include "tessal/transportlayer.h"

#include <algorithm>
#include <map>
#include <set>

namespace gige {

namespace {

using namespace std::chrono_literals;

// Six rounds of two questions each. The window hears a camera that takes 300 ms for its answer out, even when
// all but the last rounds were lost to it.
constexpr int rounds = 6;
constexpr auto roundInterval = 30ms;
constexpr auto window = 460ms;
constexpr auto longestSearch = 700ms;

// A camera of a foreign subnet hears only one of the two questions. Where every fifth packet is lost either
// way it would stay unfound once in 500 searches; asked twelve times, once in 200,000.
constexpr int roundsOnLossyLines = 12;

// Who is heard for the first time so late shows that there are slow cameras, and that others may be yet to
// come. (By the standard a camera may wait for up to a second before it answers; most answer at once.)
constexpr auto slowAfter = rounds * roundInterval + 100ms;
constexpr int roundsOnSlowLines = 18;
constexpr auto windowOnSlowLines = 1000ms;
constexpr auto longestSearchOnSlowLines = 1500ms;

constexpr int searchesForSlow = 3; // who was heard late may have been starting, and be quick from then on

constexpr std::size_t crowd = 128;       // cameras whose answers need no more questions to fill the line
constexpr std::size_t maxCameras = 4096; // a flood of invented cameras must not eat the memory
constexpr std::size_t batch = 64;        // datagrams of one socket before the clock is looked at

/// Who answers the question of that id; nothing for any other packet.
std::optional<gvcp::Identity> answerTo(std::uint16_t requestId, const Datagram& datagram)
{
    const auto acknowledge = gvcp::decodeAcknowledge(datagram.bytes);
    if (!acknowledge || acknowledge->code != gvcp::Ack::Discovery || acknowledge->requestId != requestId ||
        acknowledge->isRefusal()) {
        return std::nullopt;
    }
    return gvcp::decodeIdentity(acknowledge->payload);
}

/// Whether a camera has answered since the search was over that it had not heard.
bool leftSomeoneOut(const SearchHistory& history)
{
    bool late = false;
    for (std::size_t i = 0; history.asked && i < history.asked->channelCount(); ++i) {
        history.asked->receive(i, maxCameras, [&](const Datagram& datagram) {
            const auto identity = answerTo(history.requestId, datagram);
            late = late || (identity && !history.heard.contains(identity->mac));
        });
    }
    return late;
}

class Search
{
public:
    std::vector<FoundCamera> run(SearchHistory& history);

private:
    void sendRounds(Clock::time_point now);
    void listen(Clock::time_point now);
    void handle(std::size_t channel, const Datagram& datagram);
    bool isLossy() const;
    void askOn(int wantedRounds);
    void takeTime();
    std::vector<FoundCamera> conclude();
    std::set<net::Ipv4> contestedAddresses() const;

    struct Heard
    {
        gvcp::Identity identity;
        int answers = 1;
    };

    Clock::time_point m_start = Clock::now();
    Clock::time_point m_windowEnd = m_start + window;
    // Before the broadcaster, which needs as many sockets as there are addresses and does with fewer.
    UnicastProbe m_probe{m_windowEnd, m_start + longestSearch};
    std::unique_ptr<Broadcaster> m_broadcaster = std::make_unique<Broadcaster>();
    std::uint16_t m_requestId = nextRequestId();
    int m_roundsWanted = rounds;
    int m_roundsSent = 0;
    Clock::time_point m_nextRound = m_start;
    std::map<std::pair<std::size_t, net::MacAddress>, Heard> m_found; // by channel and camera
    bool m_someoneWasLate = false;
    bool m_full = false;
};

std::vector<FoundCamera> Search::run(SearchHistory& history)
{
    if (history.slowSearches > 0) {
        takeTime();
    }
    for (auto now = m_start; now < m_probe.end(); now = Clock::now()) {
        if (m_found.empty() && now >= m_start + slowAfter) { // who is slow may be all there is
            takeTime();
            askOn(roundsOnSlowLines);
        }
        sendRounds(now);
        if (m_roundsSent >= m_roundsWanted && !m_broadcaster->hasSent()) {
            break; // nobody was asked, so nobody will answer
        }
        m_probe.sendDue(now);
        listen(now);
    }
    history.requestId = m_requestId;
    history.heard.clear();
    for (const auto& [key, heard] : m_found) {
        history.heard.insert(key.second);
    }
    history.slowSearches = m_someoneWasLate ? searchesForSlow : std::max(0, history.slowSearches - 1);
    std::vector<FoundCamera> cameras = conclude();
    history.asked = history.slowSearches > 0 ? nullptr : std::move(m_broadcaster);
    return cameras;
}

void Search::sendRounds(Clock::time_point now)
{
    if (now < m_nextRound) {
        return;
    }
    if (m_roundsSent == rounds && isLossy()) {
        askOn(roundsOnLossyLines);
    }
    m_nextRound = now + roundInterval;
    if (m_roundsSent < m_roundsWanted) {
        m_broadcaster->send(gvcp::encodeDiscovery(m_requestId));
        m_roundsSent = m_broadcaster->canSend() ? m_roundsSent + 1 : m_roundsWanted;
    } else {
        m_nextRound = Clock::time_point::max();
    }
}

/// Whether somebody seems to have missed questions: more than the last of each kind that he should have
/// heard, or, on an adapter through which nobody is heard, perhaps all of them.
bool Search::isLossy() const
{
    std::set<std::size_t> channelsHeard;
    for (const auto& [key, heard] : m_found) {
        const HostAddress& host = m_broadcaster->host(key.first);
        const bool isForeign = !net::inSameSubnet(heard.identity.ip, host.address, host.mask);
        if (heard.answers < (isForeign ? 1 : 2) * (rounds - 1)) {
            return true;
        }
        channelsHeard.insert(key.first);
    }
    return channelsHeard.size() < m_broadcaster->channelCount();
}

void Search::askOn(int wantedRounds)
{
    if (m_found.size() <= crowd && m_roundsWanted < wantedRounds) {
        m_roundsWanted = wantedRounds;
        m_nextRound = m_start;
    }
}

void Search::takeTime()
{
    if (m_windowEnd == m_start + windowOnSlowLines) {
        return;
    }
    m_windowEnd = m_start + windowOnSlowLines;
    m_probe.extend(m_windowEnd, m_start + longestSearchOnSlowLines);
}

void Search::listen(Clock::time_point now)
{
    std::vector<pollfd> sockets{{.fd = m_probe.descriptor(), .events = POLLIN, .revents = 0}};
    if (now < m_windowEnd) { // what is only heard later is not taken up
        m_broadcaster->appendTo(sockets);
    }
    waitReadable(sockets, std::min({m_probe.end(), m_probe.nextSend(), m_nextRound}));
    if (sockets.front().revents != 0) {
        m_probe.receive(batch);
    }
    for (std::size_t i = 1; i < sockets.size(); ++i) {
        if (sockets[i].revents != 0) {
            m_broadcaster->receive(i - 1, batch, [&](const Datagram& datagram) { handle(i - 1, datagram); });
        }
    }
}

void Search::handle(std::size_t channel, const Datagram& datagram)
{
    auto identity = answerTo(m_requestId, datagram);
    if (!identity) {
        return;
    }
    const std::pair key(channel, identity->mac);
    const auto known = m_found.find(key);
    if (known != m_found.end() && known->second.identity == *identity) {
        ++known->second.answers;
        return;
    }
    if (known == m_found.end() && m_found.size() >= maxCameras) {
        if (!m_full) {
            trace::search(ozlog::LogLevel::Warning, "More than %u cameras answered; the others are left out.",
                          static_cast<unsigned>(maxCameras));
        }
        m_full = true;
        return;
    }
    const auto now = Clock::now();
    if (now >= m_start + slowAfter) {
        m_someoneWasLate = m_someoneWasLate || known == m_found.end();
        takeTime();
        askOn(roundsOnSlowLines);
    }
    m_probe.ask(identity->mac, identity->ip, m_broadcaster->host(channel).adapterIndex, now);
    m_found.insert_or_assign(key, Heard{std::move(*identity)});
}

std::set<net::Ipv4> Search::contestedAddresses() const
{
    std::map<net::Ipv4, net::MacAddress> owners;
    std::set<net::Ipv4> contested;
    for (const auto& [key, heard] : m_found) {
        const gvcp::Identity& identity = heard.identity;
        if (identity.ip == net::Ipv4{}) {
            continue; // still without an address
        }
        const auto [owner, isFirst] = owners.try_emplace(identity.ip, identity.mac);
        if (!isFirst && owner->second != identity.mac) {
            contested.insert(identity.ip);
        }
    }
    if (!contested.empty()) {
        trace::search(ozlog::LogLevel::Warning, "%u addresses are claimed by more than one camera: %hs%hs",
                      static_cast<unsigned>(contested.size()), net::formatIpv4(*contested.begin()).c_str(),
                      contested.size() > 1 ? " and others" : "");
    }
    return contested;
}

std::vector<FoundCamera> Search::conclude()
{
    const std::set<net::Ipv4> contested = contestedAddresses();
    std::vector<FoundCamera> cameras;
    cameras.reserve(m_found.size());
    for (auto& [key, heard] : m_found) {
        gvcp::Identity& identity = heard.identity;
        UnicastProbe::Answer answer = m_probe.answerOf(identity.mac, identity.ip);
        if (contested.contains(identity.ip)) {
            answer = {.heard = false, .accessibility = Tessal::Accessibility::NotReachable};
        }
        cameras.push_back({.identity = std::move(identity),
                           .heardBy = m_broadcaster->host(key.first),
                           .answersUnicast = answer.heard,
                           .accessibility = answer.accessibility});
    }
    for (std::size_t i = 0; i < m_broadcaster->channelCount(); ++i) {
        warnOfReversePathFilter(m_broadcaster->host(i).adapter);
    }
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_start);
    trace::search(ozlog::LogLevel::Info, "Found %u cameras through %u host addresses in %u ms.",
                  static_cast<unsigned>(cameras.size()), static_cast<unsigned>(m_broadcaster->channelCount()),
                  static_cast<unsigned>(took.count()));
    return cameras;
}

} // namespace

std::vector<FoundCamera> searchCameras(SearchHistory& history)
{
    if (leftSomeoneOut(history)) {
        history.slowSearches = searchesForSlow;
    }
    history.asked.reset(); // before the search needs as many sockets
    return Search().run(history);
}

} // namespace gige
