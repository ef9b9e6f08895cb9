#include "search.h"

#include "adaptersearch.h"
#include "findings.h"
#include "log.h"
#include "obstacles.h"
#include "unicastprobe.h"

#include <algorithm>
#include <iterator>

namespace gige {

namespace {

constexpr std::size_t batch = 64;            // datagrams of one socket before the clock is checked
constexpr std::size_t maxLateAnswers = 4096; // of one socket

/// Whether a camera that the latest search did not hear has answered since.
bool hasLateAnswers(const SearchHistory& history)
{
    bool late = false;
    for (std::size_t i = 0; history.asked && i < history.asked->channelCount(); ++i) {
        const int adapterIndex = history.asked->host(i).adapterIndex;
        history.asked->receive(i, maxLateAnswers, [&](const Datagram& datagram) {
            const auto request =
                std::ranges::find(history.requests, requestIdOf(datagram.bytes),
                                  [](const Request& sent) { return std::optional(sent.id()); });
            if (request != history.requests.end()) {
                const auto identity = identityFrom(*request, datagram);
                late = late || (identity && !history.heard.contains({adapterIndex, identity->mac}));
            }
        });
    }
    return late;
}

class Search
{
public:
    Search();
    std::vector<FoundCamera> run(SearchHistory& history);

private:
    void sendRounds(Clock::time_point now);
    void listen(Clock::time_point now);
    void receive(std::size_t channel, const Datagram& datagram);
    void switchToSlowPace();
    [[nodiscard]] bool hasHeardAny() const;
    void remember(SearchHistory& history);

    Clock::time_point m_start = Clock::now();
    SearchPace m_pace = Pace::Quick;
    // Constructed before the broadcaster, which opens one socket per host address but can do with fewer.
    UnicastProbe m_probe{m_pace, m_start};
    std::unique_ptr<Broadcaster> m_broadcaster = std::make_unique<Broadcaster>();
    std::vector<AdapterSearch> m_adapters;
    std::vector<std::size_t> m_adapterOfChannel;
    Clock::time_point m_nextRound = m_start;
    bool m_isSlow = false;
    bool m_hasLateCamera = false;
};

Search::Search()
{
    for (std::size_t channel = 0; channel < m_broadcaster->channelCount(); ++channel) {
        const HostAddress& host = m_broadcaster->host(channel);
        auto adapter = std::ranges::find(m_adapters, host.adapterIndex, &AdapterSearch::adapterIndex);
        if (adapter == m_adapters.end()) {
            m_probe.addAdapter(host.adapterIndex);
            m_adapters.emplace_back(host.adapterIndex, host.adapter);
            adapter = std::prev(m_adapters.end());
        }
        adapter->addChannel(channel);
        m_adapterOfChannel.push_back(static_cast<std::size_t>(adapter - m_adapters.begin()));
    }
}

std::vector<FoundCamera> Search::run(SearchHistory& history)
{
    if (history.slowSearches > 0) {
        switchToSlowPace();
    }
    for (AdapterSearch& adapter : m_adapters) {
        adapter.expect(history.heard);
    }
    for (auto now = m_start; now < m_probe.end(now); now = Clock::now()) {
        if (now >= m_start + Pace::SlowAfter && !hasHeardAny()) { // all cameras may be slow
            switchToSlowPace();
        }
        sendRounds(now);
        if (!m_broadcaster->hasSent() && !m_broadcaster->canSend()) {
            break; // no camera was asked, so none will answer
        }
        m_probe.sendDue(now);
        listen(now);
    }
    remember(history);
    std::vector<FoundCamera> cameras = summarize(m_adapters, *m_broadcaster, m_probe);
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_start);
    logSearch(ozlog::LogLevel::Info, "Found %u cameras through %u host addresses in %u ms.",
              static_cast<unsigned>(cameras.size()), static_cast<unsigned>(m_broadcaster->channelCount()),
              static_cast<unsigned>(took.count()));
    history.asked = history.slowSearches > 0 ? nullptr : std::move(m_broadcaster);
    return cameras;
}

void Search::remember(SearchHistory& history)
{
    history.requests.clear();
    history.heard.clear();
    for (const AdapterSearch& adapter : m_adapters) {
        std::ranges::copy(adapter.requests(), std::back_inserter(history.requests));
        for (const auto& [mac, camera] : adapter.cameras()) {
            history.heard.emplace(adapter.adapterIndex(), mac);
        }
    }
    history.obstacles = findObstacles(*m_broadcaster);
    history.slowSearches = m_hasLateCamera ? Pace::SlowSearches : std::max(0, history.slowSearches - 1);
}

void Search::sendRounds(Clock::time_point now)
{
    if (now < m_nextRound) {
        return;
    }
    for (AdapterSearch& adapter : m_adapters) {
        if (!adapter.needsRound(m_pace, now, now - m_start)) {
            continue;
        }
        const bool includesSubnet = adapter.includesSubnet();
        const Request& request = adapter.beginRound(now);
        for (const std::size_t channel : adapter.channels()) {
            m_broadcaster->send(channel, request.packet(), includesSubnet);
        }
    }
    m_nextRound = now + Pace::RoundInterval;
}

bool Search::hasHeardAny() const
{
    return std::ranges::any_of(m_adapters,
                               [](const AdapterSearch& adapter) { return !adapter.cameras().empty(); });
}

void Search::switchToSlowPace()
{
    if (!m_isSlow) {
        m_isSlow = true;
        m_pace = Pace::Slow;
        m_probe.switchTo(m_pace);
    }
}

void Search::listen(Clock::time_point now)
{
    std::vector<pollfd> sockets{{.fd = m_probe.descriptor(), .events = POLLIN, .revents = 0}};
    const auto windowEnd = m_start + m_pace.window;
    if (now < windowEnd) { // later answers are ignored
        m_broadcaster->appendTo(sockets);
    }
    const auto nextRound = now < m_start + m_pace.lastRound ? m_nextRound : Clock::time_point::max();
    waitReadable(sockets, std::min({m_probe.end(now), m_probe.nextSend(), nextRound}));
    if (sockets.front().revents != 0) {
        m_probe.receive(batch, Clock::now());
    }
    for (std::size_t i = 1; i < sockets.size(); ++i) {
        if (sockets[i].revents != 0) {
            m_broadcaster->receive(i - 1, batch, [&](const Datagram& datagram) { receive(i - 1, datagram); });
        }
    }
}

void Search::receive(std::size_t channel, const Datagram& datagram)
{
    const auto now = Clock::now();
    AdapterSearch& adapter = m_adapters[m_adapterOfChannel[channel]];
    const auto heard = adapter.receive(channel, datagram, now);
    if (!heard) {
        return;
    }
    const AdapterSearch::Camera& camera = *heard->camera;
    if (heard->isNew && camera.lateness >= Pace::SlowAfter) {
        m_hasLateCamera = true;
        switchToSlowPace();
    }
    if (heard->hasNewAddress || camera.lateness > m_pace.unicastPatience / 2) {
        m_probe.ask({camera.identity.mac, camera.identity.ip}, adapter.adapterIndex(), camera.lateness, now);
    }
}

} // namespace

std::vector<FoundCamera> searchCameras(SearchHistory& history)
{
    if (hasLateAnswers(history)) {
        history.slowSearches = Pace::SlowSearches;
    }
    history.asked.reset(); // frees its sockets before the search opens as many
    return Search().run(history);
}

} // namespace gige
