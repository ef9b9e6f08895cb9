#pragma once

#include <QProcess>
#include <QStringList>
#include <QUdpSocket>

/// The simulated cameras of one scene, running while this object lives.
class Simulator
{
public:
    /// Starts simulator/scenes/NAME.json, or the file of that path, and returns when its cameras are up. Ends
    /// the test program when they do not come.
    explicit Simulator(const QString& scene);
    Q_DISABLE_COPY_MOVE(Simulator)
    ~Simulator();

    /// Reads on to a line that begins so. False when none comes within ten seconds.
    [[nodiscard]] bool await(const QString& beginning);
    /// What happened since the last call, apart from searches.
    [[nodiscard]] QStringList takeEvents();
    /// What the cameras of that name, or all, are like now: the `state` line of each.
    [[nodiscard]] QStringList states(const QString& camera = {});

private:
    QProcess m_process;
    QStringList m_events;
    QStringList m_states;
};

/// Asks cameras as another program would: packets written out by hand, none of the code under test.
class OtherProgram
{
public:
    /// Sends a request, in hexadecimal digits, to the control port; gives the answer in the same form, or
    /// nothing when none comes.
    [[nodiscard]] QByteArray ask(const QString& camera, const QByteArray& request);

private:
    QUdpSocket m_socket;
};
