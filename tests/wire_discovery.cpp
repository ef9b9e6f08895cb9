#include "support/simulator.h"
#include "support/trace.h"

#include "DeviceLister.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace {

/// A camera with this last byte of its MAC address and this serial number. It is known by its name.
QJsonObject camera(int number, const QString& name, const QString& ip, const QJsonObject& more = {})
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

QJsonObject adapter(const QString& name, const QJsonArray& addresses, const QJsonArray& cameras)
{
    return {{"name", name}, {"addresses", addresses}, {"cameras", cameras}};
}

/// "USER-ID ADAPTER HOST-ADDRESSES ACCESSIBILITY" of each camera found, followed by what else was learned.
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
        for (const auto& [key, text] : {std::pair{Tessal::Key::ControlledBy, "controlled by "},
                                        {Tessal::Key::SameAddressName, "same address as "},
                                        {Tessal::Key::SameAddressMac, "with MAC "},
                                        {Tessal::Key::SameMacName, "same MAC as "},
                                        {Tessal::Key::SameMacIp, "at "}}) {
            GenICam::gcstring value;
            if (record.GetPropertyValue(key, value)) {
                line << text + QString(value.c_str());
            }
        }
        lines << line.join(' ');
    }
    return lines;
}

/// Starts simulated cameras behind these adapters.
std::unique_ptr<Simulator> simulate(const QJsonArray& adapters)
{
    const QTemporaryDir directory;
    QFile file(directory.filePath("scene.json"));
    if (!file.open(QFile::WriteOnly) ||
        file.write(QJsonDocument(QJsonObject{{"adapters", adapters}}).toJson()) < 0) {
        throw std::runtime_error("the scene cannot be written");
    }
    file.close();
    return std::make_unique<Simulator>(file.fileName());
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
                              "stammering" + both + '1',
                              "twin-1" + both + "4 same address as twin-2 (13) with MAC 025E4100000D",
                              "twin-2" + both + "4 same address as twin-1 (12) with MAC 025E4100000C",
                              "on-both" + both + '1', "watched" + both + "2 controlled by 192.168.10.77",
                              "taken" + both + '3', "denying" + both + '3', "odd" + both + '0',
                              "latest" + both + '1', "on-both lab1 192.168.20.1 1"}));
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

    void peculiarCamerasAreFoundAsWhatTheyAre_data()
    {
        QTest::addColumn<QJsonArray>("adapters");
        QTest::addColumn<QList<QStringList>>("found"); // by one search after another
        const QString lab0 = " lab0 192.168.10.1 ";
        const auto behindOne = [](const QJsonArray& cameras) {
            return QJsonArray{adapter("lab0", {"192.168.10.1/24"}, cameras)};
        };
        const auto row = [](const char* name, const QJsonArray& adapters, const QStringList& found) {
            QTest::newRow(name) << adapters << QList<QStringList>{found};
        };
        const QJsonObject good = camera(1, "good", "192.168.10.21");
        row("a camera of another network claims the address of a good one",
            {adapter("lab0", {"192.168.10.1/24"}, {good}),
             adapter("lab1", {"192.168.20.1/24"}, {camera(2, "stray", "192.168.10.21")})},
            {"good" + lab0 + "1", "stray lab1 192.168.20.1 4"});
        row("two networks with the same addresses",
            {adapter("lab0", {"192.168.10.1/24"}, {good}),
             adapter("lab1", {"192.168.10.2/24"}, {camera(2, "double", "192.168.10.21")})},
            {"good" + lab0 + "1", "double lab1 192.168.10.2 1"});
        row("two cameras with one address", behindOne({good, camera(2, "twin", "192.168.10.21")}),
            {"good" + lab0 + "4 same address as twin (2) with MAC 025E41000002",
             "twin" + lab0 + "4 same address as good (1) with MAC 025E41000001"});
        row("two cameras with one MAC address",
            behindOne({good, camera(1, "twin", "192.168.10.22", {{"serial", "2"}, {"sharesMac", true}})}),
            {"good" + lab0 + "1 same MAC as twin (2) at 192.168.10.22"});
        row("one camera that answers with two addresses",
            behindOne({good, camera(1, "good", "192.168.10.22", {{"name", "again"}, {"sharesMac", true}})}),
            {"good" + lab0 + "1 same MAC as good (1) at 192.168.10.22"});
        row("two networks with one MAC address",
            {adapter("lab0", {"192.168.10.1/24"}, {good}),
             adapter("lab1", {"192.168.20.1/24"},
                     {camera(1, "twin", "192.168.20.21", {{"serial", "2"}, {"sharesMac", true}})})},
            {"good" + lab0 + "1 same MAC as twin (2) at 192.168.20.21",
             "twin lab1 192.168.20.1 1 same MAC as good (1) at 192.168.10.21"});
        row("every answer 900 ms late",
            behindOne(
                {camera(1, "late", "192.168.10.21", {{"discoveryDelayMs", 900}, {"answerDelayMs", 900}})}),
            {"late" + lab0 + "1"});
        row("another device answers at the camera's address",
            behindOne({camera(9, "device", "192.168.10.21", {{"muteToDiscovery", true}}),
                       camera(1, "mute", "192.168.10.21", {{"muteToUnicast", true}})}),
            {"mute" + lab0 + "4"});
        row("a camera whose packets come from another MAC address than it says",
            behindOne({camera(1, "bonded", "192.168.10.21", {{"interfaceMac", "02-00-00-00-00-77"}})}),
            {"bonded" + lab0 + "1"});
        row("a camera that another application controls",
            behindOne(
                {camera(1, "taken", "192.168.10.21", {{"inUse", "control"}, {"inUseBy", "192.168.10.77"}})}),
            {"taken" + lab0 + "2 controlled by 192.168.10.77"});
        const QString both = " lab0 192.168.10.1;10.9.0.1 ";
        QTest::newRow("a camera that works off one request after another, search after search")
            << QJsonArray{adapter("lab0", {"192.168.10.1/24", "10.9.0.1/16"},
                                  {camera(1, "simple", "192.168.10.21", {{"workMs", 60}})}),
                          adapter("lab1", {"192.168.20.1/24"}, {})}
            << QList<QStringList>(4, {"simple" + both + "1"});
        QTest::newRow("a camera that misses all questions but one, and later all that are usual")
            << behindOne({good, camera(2, "deaf", "192.168.10.22",
                                       {{"losePackets", QJsonArray{1, 2, 3, 4, 6, 7, 8, 9, 10}}})})
            << QList<QStringList>(2, {"good" + lab0 + "1", "deaf" + lab0 + "1"});
    }

    void peculiarCamerasAreFoundAsWhatTheyAre()
    {
        QFETCH(const QJsonArray, adapters);
        QFETCH(const QList<QStringList>, found);
        const auto simulator = simulate(adapters);
        const DeviceLister window; // keeps what is known from search to search
        for (const QStringList& cameras : found) {
            const TraceCapture trace;
            QCOMPARE(search(), cameras);
            const auto warnings =
                std::ranges::count_if(trace.lines("Lanvic.Camera.Search"), [](const auto& line) {
                    return line.text.startsWith(
                        "The MAC address 025E41000001 answers as two cameras: serial number 1");
                });
            QCOMPARE(warnings, cameras.join("").contains("same MAC") ? 1 : 0);
        }
    }

    void aCameraIsAskedThroughTheAdapterThatHeardIt()
    {
        const auto simulator =
            simulate({adapter("lab0", {"192.168.10.1/24"}, {camera(1, "one", "192.168.10.21")}),
                      adapter("lab1", {"192.168.10.2/24"}, {camera(2, "two", "192.168.10.21")})});
        const DeviceLister window;
        search();
        for (const char* const mac : {"025E41000001", "025E41000002"}) {
            Tessal::CDeviceInfo record = cameraAt("192.168.10.21");
            record.SetPropertyValue(Tessal::Key::MacAddress, mac);
            int accessibility = -1;
            DeviceLister::s_pTl->QueryDeviceAccessibility(record, Tessal::EDeviceAccessMode::Control,
                                                          &accessibility);
            QCOMPARE(accessibility, Tessal::Accessibility::Ok);
        }
    }

    void saysOnceWhenTheSystemHidesCameras()
    {
        const Simulator simulator("test-discovery");
        const QString foreign = "foreign lab0 192.168.10.1;10.9.0.1 4";
        const TraceCapture trace;
        const auto warnings = [&] {
            return std::ranges::count_if(trace.lines("Lanvic.Camera.Search"), [](const auto& line) {
                return line.level == QtWarningMsg && line.text.contains("lab0: the strict");
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
