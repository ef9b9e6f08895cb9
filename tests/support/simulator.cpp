#include "support/simulator.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QJsonDocument>

#include <csignal>
#include <stdexcept>

#include <sys/prctl.h>

QJsonObject simulatedCamera(int number, const QString& name, const QString& ip, const QJsonObject& more)
{
    QJsonObject camera{{"name", name},
                       {"userId", name},
                       {"mac", QString("02-5E-41-00-00-%1").arg(number, 2, 16, QChar('0'))},
                       {"vendor", "Orvik"},
                       {"model", "km-1"},
                       {"serial", QString::number(number)},
                       {"enabled", QJsonArray{"persistent"}},
                       {"persistent", QJsonObject{{"ip", ip}, {"mask", "255.255.255.0"}}}};
    for (auto field = more.begin(); field != more.end(); ++field) {
        camera.insert(field.key(), field.value());
    }
    return camera;
}

QJsonObject simulatedAdapter(const QString& name, const QJsonArray& addresses, const QJsonArray& cameras)
{
    return {{"name", name}, {"addresses", addresses}, {"cameras", cameras}};
}

QJsonArray behindOneAdapter(const QJsonArray& cameras)
{
    return {simulatedAdapter("lab0", {"192.168.10.1/24"}, cameras)};
}

Simulator::Simulator(const QString& scene)
{
    start(QDir(SCENES).filePath(scene.endsWith(".json") ? scene : scene + ".json"));
}

Simulator::Simulator(const QJsonArray& adapters, const QJsonObject& network)
{
    QTemporaryFile file;
    const QByteArray scene =
        QJsonDocument(QJsonObject{{"adapters", adapters}, {"network", network}}).toJson();
    if (!file.open() || file.write(scene) != scene.size() || !file.flush()) {
        throw std::runtime_error("the scene cannot be written");
    }
    start(file.fileName());
}

void Simulator::start(const QString& sceneFile)
{
    if (!m_output.open()) {
        throw std::runtime_error("the simulator gets no file for its output");
    }
    m_process.setStandardOutputFile(m_output.fileName());
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // It must not outlive a program that is killed.
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    m_process.start(SIMULATOR, {sceneFile});
    if (!await("ready ")) {
        throw std::runtime_error("the simulator does not start with " + sceneFile.toStdString());
    }
    m_events.clear();
}

Simulator::~Simulator()
{
    m_process.terminate();
    m_process.waitForFinished();
}

QString Simulator::takeLine()
{
    m_begun += m_output.readLine();
    return m_begun.endsWith('\n') ? QString::fromUtf8(std::exchange(m_begun, {})).trimmed() : QString();
}

bool Simulator::await(const QString& beginning)
{
    const QDeadlineTimer deadline(10'000);
    for (bool ended = false; !ended && !deadline.hasExpired();) {
        ended = m_process.state() == QProcess::NotRunning;
        for (QString line = takeLine(); !line.isEmpty(); line = takeLine()) {
            if (line.startsWith("state ")) {
                m_states << line;
            } else if (!line.startsWith("found ") && line != "end") {
                m_events << line;
            }
            if (line.startsWith(beginning)) {
                return true;
            }
        }
        m_process.waitForFinished(1); // for a millisecond, unless it ends
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
