#include "support/simulator.h"
#include "support/trace.h"

#include "Lanvic/DeviceLister.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <algorithm>
#include <future>

namespace {

/// "USER-ID ADAPTER HOST-ADDRESSES ACCESSIBILITY" of each camera found.
QStringList found(const DeviceLister& lister)
{
    QStringList lines;
    for (const Tessal::COrvikGigEDeviceInfo& record : lister.m_devices) {
        QStringList line;
        for (const char* const key : {Tessal::Key::UserDefinedName, ListerKey::InterfaceName,
                                      Tessal::Key::Interface, ListerKey::Accessible}) {
            GenICam::gcstring value("-");
            record.GetPropertyValue(key, value);
            line << value.c_str();
        }
        lines << line.join(' ');
    }
    return lines;
}

QStringList search()
{
    DeviceLister lister;
    lister.discoverAllDevices();
    return found(lister);
}

} // namespace

/// The search for cameras, on good and on bad networks.
class DiscoveryTest : public QObject
{
    Q_OBJECT

private slots:
    void findsEveryCameraThatAnswers()
    {
        const Simulator simulator("test-discovery");
        const QString both = " lab0 192.168.10.1;10.9.0.1 ";
        QCOMPARE(search(),
                 (QStringList{"plain" + both + '1', "second-subnet" + both + '1', "foreign" + both + '4',
                              "late" + both + '1', "late-always" + both + '1', "hard-of-hearing" + both + '1',
                              "stammering" + both + '1', "twin-1" + both + '4', "twin-2" + both + '4',
                              "on-both" + both + '1', "on-both lab1 192.168.20.1 1"}));
    }

    void tellsWhoCannotBeOpenedAndWhy()
    {
        const Simulator simulator("demo");
        DeviceLister lister;
        lister.discoverAllDevices();
        const QStringList heard = found(lister);
        for (const auto& [address, line, expected] :
             {std::tuple{"192.168.10.21", "Front left lab0 192.168.10.1 1", 1},
              {"192.168.10.25", "Conveyor lab0 192.168.10.1 2", 2},
              {"192.168.10.26", "Robot arm lab0 192.168.10.1 3", 3},
              {"172.16.4.9", "Gate lab0 192.168.10.1 4", 4}}) {
            QVERIFY2(heard.contains(line), qPrintable(heard.join('\n')));
            Tessal::CDeviceInfo info; // which no search knows, so the camera itself is asked
            info.SetPropertyValue(Tessal::Key::IpAddress, address);
            int code = 0;
            DeviceLister::s_pTl->QueryDeviceAccessibility(info, Tessal::EDeviceAccessMode::Control, &code);
            QCOMPARE(code, expected);
        }
    }

    void losesNoCameraOnANoisyLine()
    {
        const Simulator simulator("test-noise");
        QCOMPARE(search(), QStringList(16, " lab0 192.168.10.1 1"));
    }

    void findsManyCamerasWithinASecond()
    {
        const Simulator simulator("cameras-64");
        qint64 fastest = 60'000; // ms; of several, because the computer may have other things to do
        for (int i = 0; i < 3; ++i) {
            QElapsedTimer watch;
            watch.start();
            QCOMPARE(search(), QStringList(64, " lab0 192.168.10.1 1"));
            fastest = std::min(fastest, watch.elapsed());
        }
        qInfo("64 cameras are found in %lld ms", static_cast<long long>(fastest));
#ifndef __SANITIZE_ADDRESS__
        QVERIFY(fastest < 1000);
#endif
    }

    void survivesTheLossOfAnAdapter()
    {
        Simulator simulator("test-discovery");
        auto searching = std::async(std::launch::async, search);
        QVERIFY(simulator.await("found camera=on-both"));
        QCOMPARE(QProcess::execute("ip", {"link", "set", "lab1", "down"}), 0);
        QVERIFY(searching.get().contains("plain lab0 192.168.10.1;10.9.0.1 1"));
        QCOMPARE(search().filter("lab1"), QStringList());
        // back again
        QCOMPARE(QProcess::execute("ip", {"link", "set", "lab1", "up"}), 0);
        QTRY_VERIFY(search().contains("on-both lab1 192.168.20.1 1"));
    }

    void saysOnceWhenTheSystemHidesCameras()
    {
        const Simulator simulator("test-discovery");
        const QString foreign = "foreign lab0 192.168.10.1;10.9.0.1 4";
        const TraceCapture trace;
        const auto warnings = [&] {
            return std::ranges::count_if(trace.lines("Lanvic.Camera.Search"), [](const auto& line) {
                return line.level == QtWarningMsg && line.text.contains("lab0: the system's strict");
            });
        };
        QVERIFY(search().contains(foreign));
        QCOMPARE(warnings(), 0);
        QFile setting("/proc/sys/net/ipv4/conf/lab0/rp_filter");
        QVERIFY(setting.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && setting.write("1") == 1);
        QVERIFY(!search().contains(foreign) && !search().contains(foreign));
        QCOMPARE(warnings(), 1);
    }
};

QTEST_GUILESS_MAIN(DiscoveryTest)
#include "wire_discovery.moc"
