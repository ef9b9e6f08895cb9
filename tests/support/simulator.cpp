#include "support/simulator.h"

#include <QDeadlineTimer>
#include <QDir>

#include <csignal>

#include <sys/prctl.h>

Simulator::Simulator(const QString& scene)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // It must not outlive a test program that is killed, and keep the pipe of its output open for ever.
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    m_process.start(qEnvironmentVariable("GIGE_SIMULATOR"),
                    {QDir(SCENES).filePath(scene.endsWith(".json") ? scene : scene + ".json")});
    if (!await("ready ")) {
        qFatal("the simulator does not start with %s", qPrintable(scene));
    }
    m_events.clear();
}

Simulator::~Simulator()
{
    m_process.terminate();
    m_process.waitForFinished();
}

bool Simulator::await(const QString& beginning)
{
    for (const QDeadlineTimer deadline(10'000); !deadline.hasExpired();) {
        if (!m_process.canReadLine()) {
            m_process.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
            continue;
        }
        const QString line = QString::fromUtf8(m_process.readLine()).trimmed();
        if (line.startsWith("state ")) {
            m_states << line;
        } else if (!line.startsWith("found ") && line != "end") {
            m_events << line;
        }
        if (line.startsWith(beginning)) {
            return true;
        }
    }
    return false;
}

QStringList Simulator::takeEvents()
{
    (void)states(); // reads all events up to now
    return std::exchange(m_events, {});
}

QStringList Simulator::states(const QString& camera)
{
    m_states.clear();
    ::kill(static_cast<pid_t>(m_process.processId()), SIGUSR1);
    if (!await("end")) {
        qFatal("the simulator does not tell its state");
    }
    return m_states.filter("state camera=" + camera);
}

QByteArray OtherProgram::ask(const QString& camera, const QByteArray& request)
{
    constexpr quint16 controlPort = 3956;
    m_socket.writeDatagram(QByteArray::fromHex(request), QHostAddress(camera), controlPort);
    QByteArray answer(1500, '\0');
    const bool isAnswered = m_socket.waitForReadyRead(3000);
    answer.truncate(isAnswered ? m_socket.readDatagram(answer.data(), answer.size()) : 0);
    return answer.toHex();
}
