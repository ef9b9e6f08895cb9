#include "support/cameralayer.h"
#include "support/columns.h"
#include "support/lines.h"
#include "support/simulator.h"
#include "support/trace.h"

#include "DeviceLister.h"

#include "net/routes.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <memory>

namespace {

/// A camera found, as search() says it.
QString found(const QString& name, const QString& what = "free", const QString& adapter = "lab0")
{
    return name + " behind " + adapter + ": " + what;
}

/// A line for each camera that a search finds: its device user ID, its adapter, its accessibility and what
/// else was learned.
QStringList search()
{
    static const QStringList accessibilities{"unknown", "free", "controlled", "exclusively controlled",
                                             "not reachable"};
    DeviceLister lister;
    lister.discoverAllDevices();
    QStringList lines;
    for (const Tessal::COrvikGigEDeviceInfo& record : lister.m_devices) {
        const auto value = [&record](const char* key) {
            GenICam::gcstring text;
            record.GetPropertyValue(key, text);
            return QString(text.c_str());
        };
        QString what = accessibilities.value(value(ListerKey::Accessible).toInt());
        for (const auto& [key, text] : {std::pair{Tessal::Key::ControlledBy, " by "},
                                        {Tessal::Key::SameAddressName, ", same address as "},
                                        {Tessal::Key::SameAddressMac, " with MAC "},
                                        {Tessal::Key::SameMacName, ", same MAC as "},
                                        {Tessal::Key::SameMacIp, " at "}}) {
            what += value(key).isEmpty() ? QString() : text + value(key);
        }
        lines << found(value(Tessal::Key::UserDefinedName), what, value(ListerKey::InterfaceName));
    }
    return lines;
}

QString open(const char* address)
{
    Tessal::CDeviceInfo record; // which no search knows
    record.SetPropertyValue(Tessal::Key::IpAddress, address);
    return failureOf(
        [&] { DeviceLister::s_pTl->CreateDevice(record)->Open(Tessal::EDeviceAccessMode::Control); });
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
        const QStringList cameras{
            found("plain"),
            found("second-subnet"),
            found("foreign", "not reachable"),
            found("late"),
            found("late-always"),
            found("hard-of-hearing"),
            found("stammering"),
            found("twin-1", "not reachable, same address as twin-2 (13) with MAC 025E4100000D"),
            found("twin-2", "not reachable, same address as twin-1 (12) with MAC 025E4100000C"),
            found("on-both"),
            found("watched", "controlled by 192.168.10.77"),
            found("taken", "exclusively controlled"),
            found("denying", "exclusively controlled"),
            found("odd", "unknown"),
            found("latest"),
            found("on-both", "free", "lab1")};
        QCOMPARE(difference(search(), cameras), "");
        Tessal::DeviceInfoList reachable; // by both addresses, all but the foreign one and the twins
        QCOMPARE(DeviceLister::s_pTl->EnumerateDevices(reachable, false), 25);

        QVERIFY(open("192.168.10.32").startsWith("Two cameras have the address 192.168.10.32, "));
        QCOMPARE(open("192.168.10.35"),
                 "The camera 192.168.10.35 is controlled by another application, on the computer "
                 "192.168.10.77. Close the connection there, then try again.");
        QCOMPARE(open("0.0.0.0"), "The camera has no IP address yet.");
        // A camera is not asked through a router.
        QCOMPARE(QProcess::execute("ip", {"route", "add", "default", "via", "192.168.10.99"}), 0);
        QVERIFY(net::gateways() == std::vector<net::Ipv4>{{0xC0A80A63}});
        QVERIFY(open("172.31.0.9").startsWith("This computer cannot reach the address 172.31.0.9 "));
        QCOMPARE(open("192.168.10.21"), "no failure");
        QVERIFY(simulator.states("plain").join("").endsWith(" control=control"));
        transportLayer.reset(); // gives back what is open
        QVERIFY(simulator.states("plain").join("").endsWith(" control=none"));
    }

    void findsManyCamerasWithinASecond()
    {
        const Simulator simulator("cameras-64");
        qint64 fastest = 60'000; // ms; of several, because the computer may have other things to do
        for (int i = 0; i < 3; ++i) {
            QElapsedTimer watch;
            watch.start();
            QCOMPARE(difference(search(), QStringList(64, found(""))), "");
            fastest = std::min(fastest, watch.elapsed());
        }
#ifndef __SANITIZE_ADDRESS__
        QVERIFY2(fastest < 1000, qPrintable(QString("%1 ms").arg(fastest)));
#endif
    }

    void findsSlowAndLonelyCameras()
    {
        const Simulator simulator("test-slow");
        const QString slow = found("slow");
        const QStringList others{found("quick", "free", "lab1"), found("lonely", "not reachable", "lab2")};
        const auto somethingWaits = [] {
            QFile sockets("/proc/net/udp"); // "... tx_queue:rx_queue ..."
            return sockets.open(QIODevice::ReadOnly) &&
                   QString(sockets.readAll()).contains(QRegularExpression(" 00000000:(?!0{8})[0-9A-F]{8} "));
        };
        {
            const DeviceLister window; // keeps what is known from search to search
            QCOMPARE(difference(search(), others), "");
            QTRY_VERIFY(somethingWaits()); // the slow camera's answer
            QCOMPARE(difference(search(), QStringList(slow) + others), "");
            QCOMPARE(difference(search(), QStringList(slow) + others), "");
        }
        for (const char* const adapter : {"lab1", "lab2"}) {
            QCOMPARE(QProcess::execute("ip", {"link", "set", adapter, "down"}), 0);
        }
        QCOMPARE(difference(search(), QStringList(slow)), "");
    }

    void peculiarCamerasAreFoundAsWhatTheyAre_data()
    {
        const auto row = addColumns<QJsonArray, QStringList, int>("adapters", "cameras", "searches");
        const QJsonObject good = simulatedCamera(1, "good", "192.168.10.21");
        const auto withOther = [&](const char* address, const QJsonObject& camera) {
            return behindOneAdapter({good}) + QJsonValue(simulatedAdapter("lab1", {address}, {camera}));
        };
        const QJsonObject again{{"name", "again"}, {"serial", "2"}, {"sharesMac", true}};
        row("a camera of another network claims the address of a good one",
            withOther("192.168.20.1/24", simulatedCamera(2, "stray", "192.168.10.21")),
            {found("good"), found("stray", "not reachable", "lab1")}, 1);
        row("two networks with the same addresses",
            withOther("192.168.10.2/24", simulatedCamera(2, "double", "192.168.10.21")),
            {found("good"), found("double", "free", "lab1")}, 1);
        row("two cameras with one MAC address",
            behindOneAdapter({good, simulatedCamera(1, "twin", "192.168.10.22", again)}),
            {found("good", "free, same MAC as twin (2) at 192.168.10.22")}, 1);
        row("one camera that answers with two addresses",
            behindOneAdapter({good, simulatedCamera(1, "good", "192.168.10.22",
                                                    {{"name", "again"}, {"sharesMac", true}})}),
            {found("good", "free, same MAC as good (1) at 192.168.10.22")}, 1);
        row("two networks with one MAC address",
            withOther("192.168.20.1/24", simulatedCamera(1, "twin", "192.168.20.21", again)),
            {found("good", "free, same MAC as twin (2) at 192.168.20.21"),
             found("twin", "free, same MAC as good (1) at 192.168.10.21", "lab1")},
            1);
        row("every answer 900 ms late",
            behindOneAdapter({simulatedCamera(1, "late", "192.168.10.21",
                                              {{"discoveryDelayMs", 900}, {"answerDelayMs", 900}})}),
            {found("late")}, 1);
        row("another device answers at the camera's address",
            behindOneAdapter({simulatedCamera(9, "device", "192.168.10.21", {{"muteToDiscovery", true}}),
                              simulatedCamera(1, "mute", "192.168.10.21", {{"muteToUnicast", true}})}),
            {found("mute", "not reachable")}, 1);
        row("a camera whose packets come from another MAC address than it says",
            behindOneAdapter(
                {simulatedCamera(1, "bonded", "192.168.10.21", {{"interfaceMac", "02-00-00-00-00-77"}})}),
            {found("bonded")}, 1);
        row("a good camera behind more that stay silent than are asked at once",
            behindOneAdapter({simulatedCamera(1, "", "192.168.10.21",
                                              {{"name", "mute"}, {"count", 140}, {"muteToUnicast", true}}),
                              simulatedCamera(200, "good", "192.168.10.200")}),
            QStringList(140, found("", "not reachable")) + QStringList{found("good")}, 1);
        row("a camera that works off one request after another",
            {simulatedAdapter("lab0", {"192.168.10.1/24", "10.9.0.1/16"},
                              {simulatedCamera(1, "simple", "192.168.10.21", {{"workMs", 60}})}),
             simulatedAdapter("lab1", {"192.168.20.1/24"}, {})},
            {found("simple")}, 4);
        row("a camera that misses all questions but one, and later all that are usual",
            behindOneAdapter(
                {good, simulatedCamera(2, "deaf", "192.168.10.22",
                                       {{"losePackets", QJsonArray{1, 2, 3, 4, 6, 7, 8, 9, 10}}})}),
            {found("good"), found("deaf")}, 2);
    }

    void peculiarCamerasAreFoundAsWhatTheyAre()
    {
        QFETCH(const QJsonArray, adapters);
        QFETCH(const QStringList, cameras);
        QFETCH(const int, searches);
        const Simulator simulator(adapters);
        const DeviceLister window; // keeps what is known from search to search
        for (int i = 0; i < searches; ++i) {
            const TraceCapture trace;
            QCOMPARE(difference(search(), cameras), "");
            const QStringList twins =
                trace.texts("Lanvic.Camera.Search")
                    .filter("warning The MAC address 025E41000001 answers as two cameras: serial number 1");
            QCOMPARE(twins.size(), cameras.join("").contains("same MAC") ? 1 : 0);
        }
    }

    void saysOnceWhenTheSystemHidesCameras()
    {
        const Simulator simulator("test-discovery");
        const QString foreign = found("foreign", "not reachable");
        const TraceCapture trace;
        const auto warnings = [&](const QString& filter = "lab0: the strict") {
            const QRegularExpression pattern("^warning .*" + filter);
            return trace.texts("Lanvic.Camera.Search").filter(pattern).size();
        };
        QVERIFY(search().contains(foreign));
        QCOMPARE(warnings(), 0);
        QFile setting("/proc/sys/net/ipv4/conf/lab0/rp_filter");
        QVERIFY(setting.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && setting.write("1") == 1);
        QVERIFY(!search().contains(foreign) && !search().contains(foreign));
        QCOMPARE(warnings(), 1);
        QVERIFY(setting.seek(0) && setting.write("2") == 1 && !search().isEmpty());
        QCOMPARE(warnings("lab0: the loose"), 1);
    }
};

QTEST_GUILESS_MAIN(DiscoveryTest)
#include "wire_discovery.moc"
