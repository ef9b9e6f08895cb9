#include "support/simulator.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QByteArray scene = R"({"adapters": [{"name": "lab0", "addresses": ["192.168.10.1/24", "10.9.0.1/16"],
    "cameras": [{"name": "a", "mac": "025E41000001", "vendor": "Orvik", "model": "km", "serial": "1",
    "enabled": ["persistent"], "persistent": {"ip": "192.168.10.21", "mask": "255.255.255.0"}}]}]})";

int ip(const QString& arguments)
{
    return QProcess::execute("ip", arguments.split(' '));
}

} // namespace

/// The program itself: start, events, end, and when it declines to start.
class SimulatorProcessTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_directory;

    QString fileWith(const QByteArray& text)
    {
        QFile file(m_directory.filePath("scene.json"));
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() ? file.fileName() : "";
    }

    /// Exit code and complaint of one that does not start.
    QByteArray refusal(const QByteArray& text)
    {
        QProcess second;
        second.start(qEnvironmentVariable("GIGE_SIMULATOR"), {fileWith(text)});
        second.waitForFinished();
        return QByteArray::number(second.exitCode()) + ' ' + second.readAllStandardError().trimmed();
    }

private slots:
    void runsUntilToldToEnd()
    {
        {
            Simulator simulator(fileWith(scene));
            QUdpSocket host;
            QVERIFY(host.bind(QHostAddress("10.9.0.1"), 4000));
            host.writeDatagram(QByteArray::fromHex("4211000200000002"), QHostAddress::Broadcast, 3956);
            QVERIFY(simulator.await("found camera=a mac=025E41000001 from=10.9.0.1:4000"));
            QCOMPARE(simulator.state("a", "persistent-ip"), "192.168.10.21");
        }
        QVERIFY(ip("link show lab0") != 0);
    }

    void declinesToStart()
    {
        const QByteArray wrong = refusal("{}");
        QVERIFY2(wrong.startsWith("2 gige-simulator: /") &&
                     wrong.endsWith("/scene.json: adapters: needs at least one adapter"),
                 wrong);
        {
            const Simulator simulator(fileWith(scene));
            QCOMPARE(refusal(scene), "3 gige-simulator: there is already an adapter lab0");
        }
        QCOMPARE(ip("tuntap add eth9 mode tun"), 0);
        const QByteArray unsafe = refusal(scene);
        QCOMPARE(ip("link delete eth9"), 0);
        QVERIFY2(unsafe.startsWith('3') && unsafe.contains("holds the adapter eth9"), unsafe);
    }
};

QTEST_GUILESS_MAIN(SimulatorProcessTest)
#include "tst_simulatorprocess.moc"
