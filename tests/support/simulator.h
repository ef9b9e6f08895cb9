#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryFile>

/// A camera of a scene: with this number in its MAC address and for its serial number, and a static address.
/// What `more` says is added, or said otherwise.
[[nodiscard]] QJsonObject simulatedCamera(int number, const QString& name, const QString& ip,
                                          const QJsonObject& more = {});
[[nodiscard]] QJsonObject simulatedAdapter(const QString& name, const QJsonArray& addresses,
                                           const QJsonArray& cameras);
/// The adapter lab0 with the address 192.168.10.1/24, alone.
[[nodiscard]] QJsonArray behindOneAdapter(const QJsonArray& cameras);

/// The simulated cameras of one scene, running while this object lives.
class Simulator
{
public:
    /// Starts simulator/scenes/NAME.json, or the file of that path, and returns when its cameras are up.
    /// Throws std::runtime_error if they do not come.
    explicit Simulator(const QString& scene);
    explicit Simulator(const QJsonArray& adapters, const QJsonObject& network = {});
    Q_DISABLE_COPY_MOVE(Simulator)
    ~Simulator();

    /// Reads on to a line that begins so. False if none comes within ten seconds.
    [[nodiscard]] bool await(const QString& beginning);
    /// What happened since the last call, apart from searches.
    [[nodiscard]] QStringList takeEvents();
    /// What the cameras of that name, or all, are like now: the `state` line of each.
    [[nodiscard]] QStringList states(const QString& camera = {});

private:
    void start(const QString& sceneFile);
    /// The next line of its output; empty if there is none yet.
    [[nodiscard]] QString takeLine();

    QTemporaryFile m_output; // not a pipe: the simulator would wait for a reader when that is full
    QByteArray m_begun;      // a line that has not ended yet
    QProcess m_process;
    QStringList m_events;
    QStringList m_states;
};
