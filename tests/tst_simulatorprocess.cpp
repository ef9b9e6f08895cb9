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

int ip(const QString& arguments)
{
    return QProcess::execute("ip", arguments.split(' '));
}

} // namespace

/// The program itself: start, events, signals, end, and when it declines to start.
class SimulatorProcessTest : public QObject
{
    Q_OBJECT

    const QString m_program = qEnvironmentVariable("GIGE_SIMULATOR");
    QTemporaryDir m_directory;
    QProcess m_simulator;

    QString fileWith(const QByteArray& text)
    {
        QFile file(m_directory.filePath("scene.json"));
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() ? file.fileName() : "";
    }

    QByteArray nextLine()
    {
        while (!m_simulator.canReadLine()) {
            if (!m_simulator.waitForReadyRead(10000)) {
                return "nothing: " + m_simulator.readAllStandardError();
            }
        }
        return m_simulator.readLine().trimmed();
    }

    void start()
    {
        m_simulator.start(m_program, {fileWith(scene)});
        QCOMPARE(nextLine(), "ready adapters=1 cameras=1");
    }

    /// Exit code and complaint of one that does not start.
    QByteArray refusal(const QByteArray& text)
    {
        QProcess second;
        second.start(m_program, {fileWith(text)});
        second.waitForFinished();
        return QByteArray::number(second.exitCode()) + ' ' + second.readAllStandardError().trimmed();
    }

private slots:
    void cleanup()
    {
        m_simulator.terminate();
        m_simulator.waitForFinished();
    }

    void runsUntilToldToEnd()
    {
        start();
        QUdpSocket host;
        QVERIFY(host.bind(QHostAddress("10.9.0.1"), 4000));
        host.writeDatagram(QByteArray::fromHex("4211000200000001"), QHostAddress("10.9.255.255"), 3956);
        host.writeDatagram(QByteArray::fromHex("4211000200000002"), QHostAddress::Broadcast, 3956);
        // the camera is no member of the first broadcast's subnet
        QCOMPARE(nextLine(), R"(found camera="a b" mac=025E41000001 from=10.9.0.1:4000)");
        ::kill(static_cast<pid_t>(m_simulator.processId()), SIGUSR1);
        const QByteArray state = nextLine();
        QCOMPARE(state, R"(state camera="a b" mac=025E41000001 ip=192.168.10.21 mask=255.255.255.0)"
                        " gateway=0.0.0.0 mode=static enabled=persistent persistent-ip=192.168.10.21"
                        " persistent-mask=255.255.255.0 persistent-gateway=0.0.0.0 name=\"\" control=none");
        QCOMPARE(nextLine(), "end");
        m_simulator.terminate();
        QCOMPARE(nextLine(), state);
        QCOMPARE(nextLine(), "end");
        QVERIFY(m_simulator.state() == QProcess::NotRunning || m_simulator.waitForFinished());
        QCOMPARE(m_simulator.exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_simulator.exitCode(), 0);
        QVERIFY(ip("link show lab0") != 0);
    }

    void declinesToStart()
    {
        const QByteArray wrong = refusal("{}");
        QVERIFY2(wrong.startsWith("2 gige-simulator: /") &&
                     wrong.endsWith("/scene.json: adapters: needs at least one adapter"),
                 wrong);
        start();
        QCOMPARE(refusal(scene), "3 gige-simulator: there is already an adapter lab0");
        cleanup();
        QCOMPARE(ip("tuntap add eth9 mode tun"), 0);
        const QByteArray unsafe = refusal(scene);
        QCOMPARE(ip("link delete eth9"), 0);
        QVERIFY2(unsafe.startsWith('3') && unsafe.contains("holds the adapter eth9"), unsafe);
    }
};

QTEST_GUILESS_MAIN(SimulatorProcessTest)
#include "tst_simulatorprocess.moc"
