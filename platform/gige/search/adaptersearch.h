#pragma once

#include "request.h"
#include "searchpace.h"
#include "socket.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace gige {

/// How the camera that answers the request describes itself; nullopt for any other packet.
[[nodiscard]] std::optional<gvcp::Identity> identityFrom(const Request& request, const Datagram& datagram);

/// Whether two descriptions with the same MAC address are those of two cameras, rather than of one that was
/// renamed.
[[nodiscard]] bool areDifferentCameras(const gvcp::Identity& left, const gvcp::Identity& right);

/// What one search has sent and received through one adapter. The rounds end early unless answers are
/// missing, so that cameras that have answered are not asked again without need.
class AdapterSearch
{
public:
    struct Camera
    {
        gvcp::Identity identity;                             // the latest one
        std::optional<gvcp::Identity> former;                // the one before that
        bool isTwoCameras = false;                           // these are the identities of two cameras
        Clock::duration lateness{};                          // the longest time that an answer took
        std::map<std::size_t, std::uint32_t> answeredRounds; // by channel, a bit for each round
    };
    struct Heard
    {
        const Camera* camera = nullptr;
        bool isNew = false;         // for the first time in this search
        bool hasNewAddress = false; // new, or with another address than before
    };

    AdapterSearch(int adapterIndex, std::string adapter)
        : m_adapterIndex(adapterIndex), m_adapter(std::move(adapter))
    {}

    /// The cameras that the latest search heard, with the indices of their adapters: while one is missing,
    /// all are asked again.
    void expect(const std::set<std::pair<int, net::MacAddress>>& cameras);
    /// Adds one of the adapter's host addresses, by its channel of the broadcaster.
    void addChannel(std::size_t channel) { m_channels.push_back(channel); }
    [[nodiscard]] const std::vector<std::size_t>& channels() const { return m_channels; }
    [[nodiscard]] int adapterIndex() const { return m_adapterIndex; }
    [[nodiscard]] const std::string& adapter() const { return m_adapter; }

    /// Whether the cameras should be asked once more. `age` is that of the search.
    [[nodiscard]] bool needsRound(const SearchPace& pace, Clock::time_point now, Clock::duration age) const;
    /// Whether the next round goes to the subnet's own broadcast address as well, for cameras that receive
    /// only that.
    [[nodiscard]] bool includesSubnet() const;
    /// Starts the next round and returns its request, to be sent now; the reference is valid until the round
    /// after.
    [[nodiscard]] const Request& beginRound(Clock::time_point now);

    /// Records an answer to one of the rounds. Returns nullopt for any other packet, and for further cameras
    /// if there are more than any network holds.
    [[nodiscard]] std::optional<Heard> receive(std::size_t channel, const Datagram& datagram,
                                               Clock::time_point now);

    [[nodiscard]] const std::map<net::MacAddress, Camera>& cameras() const { return m_cameras; }
    [[nodiscard]] std::vector<Request> requests() const;

private:
    struct Round
    {
        Request request;
        Clock::time_point sentAt;
    };

    [[nodiscard]] std::size_t usualRounds() const;
    [[nodiscard]] bool lacksCamera() const;
    [[nodiscard]] bool lacksAnswers(Clock::time_point now) const;
    [[nodiscard]] bool lacksAnswers(const Camera& camera, std::uint32_t answered,
                                    Clock::time_point now) const;
    /// Records how the camera describes itself now; `heard` says what is new about it.
    [[nodiscard]] Camera& note(gvcp::Identity identity, Heard& heard);

    int m_adapterIndex;
    std::string m_adapter;
    std::vector<std::size_t> m_channels;
    std::vector<Round> m_rounds;
    std::vector<net::MacAddress> m_expected;
    std::map<net::MacAddress, Camera> m_cameras;
    bool m_isFull = false;
};

} // namespace gige
