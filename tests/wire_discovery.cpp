#include "support/simulator.h"
#include "support/trace.h"

#include "Lanvic/DeviceLister.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

namespace {

/// "USER-ID ADAPTER HOST-ADDRESSES ACCESSIBILITY" of each camera found.
QStringList search()
{
    DeviceLister lister;
    lister.discoverAllDevices();
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

Tessal::CDeviceInfo cameraAt(const char* address)
{
    Tessal::CDeviceInfo record; // which no search knows
    record.SetPropertyValue(Tessal::Key::IpAddress, address);
    return record;
}

/// Opens the camera at an address; says why not when that fails.
QString open(const char* address)
{
    try {
        DeviceLister::s_pTl->CreateDevice(cameraAt(address))->Open(Tessal::EDeviceAccessMode::Control);
        return "opened";
    } catch (const GenICam::GenericException& failure) {
        return failure.GetDescription();
    }
}

} // namespace

/// The search for cameras, on good and on bad networks, and what the camera layer does with those found.
class DiscoveryTest : public QObject
{
    Q_OBJECT

private slots:
    void findsEveryCameraThatAnswersAndOpensOnlyWhatItMay()
    {
        Simulator simulator("test-discovery");
        auto transportLayer = std::make_unique<DeviceLister>(); // keeps it
        const QString both = " lab0 192.168.10.1;10.9.0.1 ";
        QCOMPARE(search(),
                 (QStringList{"plain" + both + '1', "second-subnet" + both + '1', "foreign" + both + '4',
                              "late" + both + '1', "late-always" + both + '1', "hard-of-hearing" + both + '1',
                              "stammering" + both + '1', "twin-1" + both + '4', "twin-2" + both + '4',
                              "on-both" + both + '1', "watched" + both + '2', "taken" + both + '3',
                              "denying" + both + '3', "odd" + both + '0', "latest" + both + '1',
                              "on-both lab1 192.168.20.1 1"}));
        QList<int> codes; // of those that are asked one by one
        for (const char* const address : {"192.168.10.21", "192.168.10.35", "192.168.10.36", "192.168.10.37",
                                          "192.168.10.38", "172.16.4.9"}) {
            DeviceLister::s_pTl->QueryDeviceAccessibility(
                cameraAt(address), Tessal::EDeviceAccessMode::Control, &codes.emplaceBack());
        }
        QCOMPARE(codes, (QList<int>{1, 2, 3, 3, 0, 4}));
        Tessal::DeviceInfoList reachable; // by both addresses, all but the foreign one and the twins
        QCOMPARE(DeviceLister::s_pTl->EnumerateDevices(reachable, false), 25);

        QCOMPARE(open("192.168.10.32").section(',', 0, 0), "Two cameras have the address 192.168.10.32");
        QCOMPARE(open("192.168.10.35"),
                 "Camera 192.168.10.35 is controlled by another application (on 192.168.10.77)");
        QCOMPARE(open("0.0.0.0"), "The camera has no IP address yet");
        QCOMPARE(open("192.168.10.21"), "opened");
        QVERIFY(simulator.states("plain").join("").endsWith(" control=control"));
        transportLayer.reset(); // gives back what is open
        QVERIFY(simulator.states("plain").join("").endsWith(" control=none"));
    }

    void findsManyCamerasWithinASecondAndOnANoisyLineAll()
    {
        {
            const Simulator noisy("test-noise");
            QCOMPARE(search(), QStringList(18, " lab0 192.168.10.1 1"));
        }
        const Simulator simulator("cameras-64");
        qint64 fastest = 60'000; // ms; of several, because the computer may have other things to do
        for (int i = 0; i < 3; ++i) {
            QElapsedTimer watch;
            watch.start();
            QCOMPARE(search(), QStringList(64, " lab0 192.168.10.1 1"));
            fastest = std::min(fastest, watch.elapsed());
        }
#ifndef __SANITIZE_ADDRESS__
        QVERIFY(fastest < 1000);
#endif
    }

    void findsWhoIsSlowAndWhoIsLonely()
    {
        const Simulator simulator("test-slow");
        const QString slow = "slow lab0 192.168.10.1 1";
        const QStringList others{"quick lab1 192.168.20.1 1", "lonely lab2 192.168.30.1 4"};
        const auto somethingWaits = [] {
            QFile sockets("/proc/net/udp"); // "... tx_queue:rx_queue ..."
            return sockets.open(QIODevice::ReadOnly) &&
                   QString(sockets.readAll()).contains(QRegularExpression(" 00000000:(?!0{8})[0-9A-F]{8} "));
        };
        {
            const DeviceLister window; // keeps what is known from search to search
            QCOMPARE(search(), others);
            QTRY_VERIFY(somethingWaits()); // the slow camera's answer
            QCOMPARE(search(), QStringList(slow) + others);
            QCOMPARE(search(), QStringList(slow) + others);
        }
        for (const char* const adapter : {"lab1", "lab2"}) {
            QCOMPARE(QProcess::execute("ip", {"link", "set", adapter, "down"}), 0);
        }
        QCOMPARE(search(), QStringList{slow});
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
