#pragma once

#include <QStringList>

#include <condition_variable>
#include <mutex>
#include <thread>

#include <sys/types.h>

/// The simulated cameras of one scene, running while this object lives.
class Simulator
{
public:
    /// Starts simulator/scenes/NAME.json, or the file of that path, and returns when its cameras are up.
    /// Throws std::runtime_error if they do not come.
    explicit Simulator(const QString& scene);
    Q_DISABLE_COPY_MOVE(Simulator)
    ~Simulator();

    /// Reads on to a line that begins so. False if none comes within ten seconds.
    [[nodiscard]] bool await(const QString& beginning);
    /// What happened since the last call, apart from searches.
    [[nodiscard]] QStringList takeEvents();
    /// What the cameras of that name, or all, are like now: the `state` line of each.
    [[nodiscard]] QStringList states(const QString& camera = {});

private:
    void readLines();
    [[nodiscard]] bool hasLine() const { return !m_lines.isEmpty() || m_ended; }

    pid_t m_process = -1;
    int m_output = -1; // the read end of its standard output
    std::mutex m_mutex;
    std::condition_variable m_arrived;
    QStringList m_lines; // read and not yet looked at
    bool m_ended = false;
    std::thread
        m_reader; // the simulator waits while nothing reads its lines, also in a program without events
    QStringList m_events;
    QStringList m_states;
};
