#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QUdpSocket>

#include <csignal>

namespace {

const QByteArray scene = R"({"adapters": [{"name": "lab0", "addresses": ["192.168.10.1/24", "10.9.0.1/16"],
    "cameras": [{"name": "a b", "mac": "025E41000001", "vendor": "Orvik", "model": "km", "serial": "1",
    "enabled": ["persistent"], "persistent": {"ip": "192.168.10.21", "mask": "255.255.255.0"}}]}]})";

QString simulator()
{
    return qEnvironmentVariable("GIGE_SIMULATOR");
}

} // namespace

/// The program itself: start, events, signals, end, and when it declines to start.
class SimulatorProcessTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void runsUntilToldToEnd();
    void survivesTheLossOfItsAdapter();
    void declinesToStart();

private:
    [[nodiscard]] QByteArray nextLine();
    void start();
    int refusal(const QString& file, QByteArray& complaint);

    QTemporaryDir m_directory;
    QString m_scene = m_directory.filePath(QStringLiteral("scene.json"));
    QProcess m_simulator;
};

void SimulatorProcessTest::initTestCase()
{
    QVERIFY(!simulator().isEmpty());
    QFile file(m_scene);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(scene);
}

void SimulatorProcessTest::cleanup()
{
    m_simulator.terminate();
    m_simulator.waitForFinished();
}

QByteArray SimulatorProcessTest::nextLine()
{
    while (!m_simulator.canReadLine()) {
        if (!m_simulator.waitForReadyRead(10000)) {
            return "nothing: " + m_simulator.readAllStandardError();
        }
    }
    return m_simulator.readLine().trimmed();
}

void SimulatorProcessTest::start()
{
    m_simulator.start(simulator(), {m_scene});
    QCOMPARE(nextLine(), "ready adapters=1 cameras=1");
}

int SimulatorProcessTest::refusal(const QString& file, QByteArray& complaint)
{
    QProcess second;
    second.start(simulator(), {file});
    second.waitForFinished();
    complaint = second.readAllStandardError().trimmed();
    return second.exitCode();
}

void SimulatorProcessTest::runsUntilToldToEnd()
{
    start();
    QUdpSocket host;
    QVERIFY(host.bind(QHostAddress(QStringLiteral("10.9.0.1")), 4000));
    host.writeDatagram(QByteArray::fromHex("4211000200000001"), QHostAddress(QStringLiteral("10.9.255.255")),
                       3956);
    host.writeDatagram(QByteArray::fromHex("4211000200000002"), QHostAddress::Broadcast, 3956);
    // the camera is no member of the first broadcast's subnet
    QCOMPARE(nextLine(), R"(found camera="a b" mac=025E41000001 from=10.9.0.1:4000)");
    ::kill(static_cast<pid_t>(m_simulator.processId()), SIGUSR1);
    const QByteArray state =
        R"(state camera="a b" mac=025E41000001 ip=192.168.10.21 mask=255.255.255.0 gateway=0.0.0.0 mode=static)"
        R"( enabled=persistent persistent-ip=192.168.10.21 persistent-mask=255.255.255.0)"
        R"( persistent-gateway=0.0.0.0 name="" control=none)";
    QCOMPARE(nextLine(), state);
    QCOMPARE(nextLine(), "end");
    m_simulator.terminate();
    QCOMPARE(nextLine(), state);
    QCOMPARE(nextLine(), "end");
    QVERIFY(m_simulator.state() == QProcess::NotRunning || m_simulator.waitForFinished());
    QCOMPARE(m_simulator.exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_simulator.exitCode(), 0);
    QVERIFY(QProcess::execute(QStringLiteral("ip"), {"link", "show", "lab0"}) != 0);
}

void SimulatorProcessTest::survivesTheLossOfItsAdapter()
{
    start();
    QCOMPARE(QProcess::execute(QStringLiteral("ip"), {"link", "delete", "lab0"}), 0);
    QCOMPARE(nextLine(), "gone adapter=lab0");
    QCOMPARE(m_simulator.state(), QProcess::Running);
}

void SimulatorProcessTest::declinesToStart()
{
    QByteArray complaint;
    QFile wrong(m_directory.filePath(QStringLiteral("wrong.json")));
    QVERIFY(wrong.open(QIODevice::WriteOnly));
    wrong.write("{}");
    wrong.close();
    QCOMPARE(refusal(wrong.fileName(), complaint), 2);
    QCOMPARE(complaint,
             "gige-simulator: " + wrong.fileName().toUtf8() + ": adapters: needs at least one adapter");
    start();
    QCOMPARE(refusal(m_scene, complaint), 3);
    QCOMPARE(complaint, "gige-simulator: there is already an adapter lab0");
    cleanup();
    QCOMPARE(QProcess::execute(QStringLiteral("ip"), {"tuntap", "add", "eth9", "mode", "tun"}), 0);
    QCOMPARE(refusal(m_scene, complaint), 3);
    QVERIFY2(complaint.contains("holds the adapter eth9"), complaint);
    QCOMPARE(QProcess::execute(QStringLiteral("ip"), {"link", "delete", "eth9"}), 0);
}

QTEST_GUILESS_MAIN(SimulatorProcessTest)
#include "tst_simulatorprocess.moc"
