#pragma once

#include "plan.h"

#include <chrono>
#include <functional>
#include <map>

class DeviceLister;

namespace cli {

enum class Outcome { AsPlanned, Done, Failed, NotBegun };

/// Callbacks for the progress of a plan, and for its interruption.
struct ApplyHooks
{
    std::function<void(const Camera&, Outcome, const QString& text)> finished;
    std::function<void(int finished, int restarting, int all)> progressed;
    std::function<bool()> isInterrupted; // If true, no further camera is started.
};

/// Carries changes out: writes those that wait for no other camera's address, has the cameras restart side by
/// side, and looks for all of them at once.
class Apply
{
public:
    using Clock = std::chrono::steady_clock;

    /// `patience` is how long a camera may take to come back. The lister has just searched.
    Apply(DeviceLister& lister, const std::vector<Change>& changes, ApplyHooks hooks,
          std::chrono::seconds patience);

    /// Returns when every camera has been reported as finished.
    void run();

private:
    enum class State { Waiting, Restarting, Finished };
    struct Job
    {
        Change change;
        State state = State::Waiting;
        Clock::time_point restarted{};
    };

    void makeRoom();
    [[nodiscard]] bool helpsToMakeRoom(const Job& first) const;
    bool beginReady();
    void begin(Job& job);
    void finishIfInUse(Job& job) const;
    void look();
    void judge(Job& job, const Tessal::COrvikGigEDeviceInfo* found);
    void finishWaiting();
    void finish(Job& job, Outcome outcome, const QString& text) const;
    void noteAddresses();
    [[nodiscard]] int count(State state) const;
    [[nodiscard]] std::optional<net::MacAddress> holderOfDestination(const Change& change) const;

    DeviceLister& m_lister;
    ApplyHooks m_hooks;
    std::chrono::seconds m_patience;
    std::vector<Job> m_jobs;
    QString m_searchFailure;                          // Of the latest search that failed.
    std::map<net::MacAddress, net::Ipv4> m_addresses; // Where each camera was heard last.
};

} // namespace cli
