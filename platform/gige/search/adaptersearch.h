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

/// How the camera describes itself that answers the request; nothing for any other packet.
[[nodiscard]] std::optional<gvcp::Identity> identityFrom(const Request& request, const Datagram& datagram);

/// Whether descriptions with one MAC address are those of two cameras, rather than of one that was given
/// another name.
[[nodiscard]] bool areDifferentCameras(const gvcp::Identity& left, const gvcp::Identity& right);

/// What one search has asked and heard through one adapter. Cameras that have answered are not asked again
/// without need: the rounds end early unless answers are missing.
class AdapterSearch
{
public:
    struct Camera
    {
        gvcp::Identity identity;                             // as it was heard last
        std::optional<gvcp::Identity> former;                // as it was heard before that
        bool isTwo = false;                                  // both of these answer, each for itself
        Clock::duration lateness{};                          // the longest time that it took for an answer
        std::map<std::size_t, std::uint32_t> answeredRounds; // by channel, a bit for each round
    };
    struct Heard
    {
        const Camera* camera = nullptr;
        bool isNew = false;         // for the first time in this search
        bool hasNewAddress = false; // for the first time with this address, or again with it
    };

    AdapterSearch(int adapterIndex, std::string adapter)
        : m_adapterIndex(adapterIndex), m_adapter(std::move(adapter))
    {}

    /// The cameras that the latest search heard, by adapter: while one is missing all are asked again.
    void expect(const std::set<std::pair<int, net::MacAddress>>& cameras);
    /// One of the adapter's host addresses, as the broadcaster counts them.
    void addChannel(std::size_t channel) { m_channels.push_back(channel); }
    [[nodiscard]] const std::vector<std::size_t>& channels() const { return m_channels; }
    [[nodiscard]] int adapterIndex() const { return m_adapterIndex; }
    [[nodiscard]] const std::string& adapter() const { return m_adapter; }

    /// Whether the cameras should be asked once more. `age` is that of the search.
    [[nodiscard]] bool wantsRound(const SearchPace& pace, Clock::time_point now, Clock::duration age) const;
    /// Whether the next round goes to the subnet's own broadcast address as well, for a camera that hears
    /// only that.
    [[nodiscard]] bool asksSubnet() const;
    /// The question of the next round, to be sent now; holds until the one after.
    [[nodiscard]] const Request& beginRound(Clock::time_point now);

    /// Takes in an answer to one of the rounds; nothing for any other packet, nor for a further camera where
    /// there are more than any network holds.
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
    [[nodiscard]] bool missesCamera() const;
    [[nodiscard]] bool missesAnswers(Clock::time_point now) const;
    [[nodiscard]] bool missesAnswers(const Camera& camera, std::uint32_t answered,
                                     Clock::time_point now) const;
    /// The camera, as it describes itself now; `heard` says what is new about it.
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
