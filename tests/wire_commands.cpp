#include "support/cameralayer.h"
#include "support/columns.h"
#include "support/simulator.h"
#include "support/trace.h"

#include "tessal/devicechoice.h"

#include <QRegularExpression>
#include <QTest>

#include <optional>

/// What becomes of commands that name their camera by its MAC address, and of questions about their control.
class CommandsTest : public QObject
{
    Q_OBJECT

    void search()
    {
        Tessal::DeviceInfoList found;
        (*m_layer)->EnumerateDevicesAnySubnet(found, false);
        QVERIFY(!found.empty());
    }
    void start(const QString& scene)
    {
        m_simulator.emplace(scene);
        search();
    }

    int accessibilityOf(const std::string& mac, const std::string& address)
    {
        Tessal::CDeviceInfo record; // with nothing else of what a search knows
        record.SetPropertyValue(Tessal::Key::IpAddress, address);
        record.SetPropertyValue(Tessal::Key::MacAddress, mac);
        int accessibility = -1;
        const bool isOk =
            (*m_layer)->QueryDeviceAccessibility(record, Tessal::EDeviceAccessMode::Control, &accessibility);
        return isOk == (accessibility == Tessal::Accessibility::Ok) ? accessibility : -2;
    }

    static QStringList warnings(const TraceCapture& trace)
    {
        return trace.texts("Lanvic.Camera.Requests").filter(QRegularExpression("^warning "));
    }

    std::optional<Simulator> m_simulator;
    std::optional<CameraLayer> m_layer;

private slots:
    void init() { m_layer.emplace(); }
    void cleanup()
    {
        m_layer.reset();
        m_simulator.reset();
    }

    void aTemporaryAddressCountsWhereTheCameraIsSeenWithIt_data()
    {
        const auto row = addColumns<std::string, std::string, QString>("mac", "wanted", "told");
        const QString tryAgain = " Try again, or choose another temporary address.";
        row("taken at once", "02A317000001", "192.168.10.131", "no failure");
        row("taken later than acknowledged", "02A317000002", "192.168.10.132", "no failure");
        row("acknowledged and not taken", "02A317000003", "192.168.10.133",
            "The camera 02:A3:17:00:00:03 was given the address 192.168.10.133 but has 192.168.10.23." +
                tryAgain);
        row("another address taken", "02A317000004", "192.168.10.134",
            "The camera 02:A3:17:00:00:04 was given the address 192.168.10.134 but has 192.168.10.77." +
                tryAgain);
        row("the address of another camera", "02A317000001", "192.168.10.24",
            "The address 192.168.10.24, which was given to the camera 02:A3:17:00:00:01, is also that of the "
            "camera 02:A3:17:00:00:04. Choose another temporary address.");
        row("no camera of that MAC address", "02A317000044", "192.168.10.136", "no failure");
        row("refused for another application", "02A317000005", "192.168.10.135",
            "The camera 02:A3:17:00:00:05 is controlled by another application. Close the connection there, "
            "then try again.");
    }

    void aTemporaryAddressCountsWhereTheCameraIsSeenWithIt()
    {
        QFETCH(std::string, mac);
        QFETCH(std::string, wanted);
        start("test-commands");
        QTEST(failureOf([&] { (*m_layer)->ForceIp(mac, wanted, "255.255.255.0", "0.0.0.0"); }), "told");
    }

    void accessibilityIsThatOfTheCameraMeant_data()
    {
        using namespace Tessal::Accessibility;
        const auto row = addColumns<std::string, std::string, int>("mac", "address", "expected");
        row("the camera", "025E41000001", "192.168.10.21", Ok);
        row("any camera", "", "192.168.10.21", Ok);
        row("another camera", "025E41000002", "192.168.10.21", NotReachable);
        row("another camera, which is in use", "025E41000001", "192.168.10.35", NotReachable);
        row("in use", "025E4100000F", "192.168.10.35", Controlled);
        row("in exclusive use, which hides its MAC address", "025E41000010", "192.168.10.36",
            ControlledExclusively);
        row("refuses to say", "025E41000012", "192.168.10.38", Unknown);
        row("of a foreign subnet", "025E41000003", "172.16.4.9", NotReachable);
    }

    void accessibilityIsThatOfTheCameraMeant()
    {
        QFETCH(std::string, mac);
        QFETCH(std::string, address);
        m_simulator.emplace("test-discovery");
        QTEST(accessibilityOf(mac, address), "expected");
    }

    void aCameraIsAskedThroughTheAdapterThatHeardIt()
    {
        m_simulator.emplace(QJsonArray{
            simulatedAdapter("lab0", {"192.168.10.1/24"}, {simulatedCamera(1, "one", "192.168.10.21")}),
            simulatedAdapter("lab1", {"192.168.10.2/24"}, {simulatedCamera(2, "two", "192.168.10.21")})});
        search();
        QCOMPARE(accessibilityOf("025E41000001", "192.168.10.21"), Tessal::Accessibility::Ok);
        QCOMPARE(accessibilityOf("025E41000002", "192.168.10.21"), Tessal::Accessibility::Ok);
        const auto opened = [&](const char* mac) {
            dynamic_cast<Tessal::IDeviceChoice&>(**m_layer).SetExpectedMac(mac);
            Tessal::CDeviceInfo record;
            record.SetPropertyValue(Tessal::Key::IpAddress, "192.168.10.21");
            Tessal::ITessalDevice& device = *(*m_layer)->CreateDevice(record);
            const QString failure = failureOf([&] { device.Open(Tessal::EDeviceAccessMode::Control); });
            return failure + ", serial number " + device.GetDeviceInfo().GetSerialNumber().c_str();
        };
        QCOMPARE(opened("025E41000001"), "no failure, serial number 1");
        QCOMPARE(opened("025E41000002"), "no failure, serial number 2");
        QVERIFY(opened("").startsWith("Two cameras have the address 192.168.10.21, "));
    }

    void aStaticAddressThatNoCameraCanHaveIsNotSent_data()
    {
        // stored: nothing if the command is not sent
        const auto row = addColumns<bool, std::string, QString>("isStatic", "address", "stored");
        row("static, the loopback address", true, "127.0.0.1", "");
        row("static, multicast", true, "224.0.0.0", "");
        row("static, the last possible", true, "223.255.255.255", "223.255.255.255");
        row("static, none", true, "0.0.0.0", "0.0.0.0");
        row("Auto IP, the loopback address", false, "127.0.0.1", "0.0.0.0");
        row("Auto IP, an address for later", false, "192.168.10.131", "192.168.10.131");
    }

    void aStaticAddressThatNoCameraCanHaveIsNotSent()
    {
        QFETCH(bool, isStatic);
        QFETCH(std::string, address);
        QFETCH(QString, stored);
        start("test-commands");
        const TraceCapture trace;
        QCOMPARE((*m_layer)->BroadcastIpConfig("025E41000007", isStatic, false, address, "255.255.255.0",
                                               "0.0.0.0", "sixteen bytes..."),
                 !stored.isEmpty());
        const QStringList events = m_simulator->takeEvents();
        QCOMPARE(events.value(0).section("persistent-ip=", 1).section(' ', 0, 0), stored);
        const QString refused = "warning Camera MAC=025E41000007 was not sent the broadcast configuration: "
                                "no camera can have the address %1.";
        QCOMPARE(warnings(trace),
                 stored.isEmpty() ? QStringList{refused.arg(address.c_str())} : QStringList());
    }

    void onlyTheCameraItselfAcknowledges_data()
    {
        // refusal: nothing if the command is accepted
        const auto row = addColumns<QJsonObject, QString, QString>("camera", "otherAcknowledges", "refusal");
        const auto refuses = [](const char* status) {
            return QJsonObject{{"refuse", QJsonObject{{"BROADCAST_IPCONFIG", status}}},
                               {"answerDelayMs", 50}};
        };
        const QJsonObject late{{"answerDelayMs", 50}};
        row("the camera does, after a device without a name", late, "nameless", "");
        row("the camera does, after a device with another name", late, "as-itself", "");
        row("the camera is busy, and a device without a name does", refuses("8007"), "nameless",
            "the camera is busy (8007)");
        row("the camera is busy, and a device with another name does", refuses("8007"), "as-itself",
            "the camera is busy (8007)");
        row("the camera refuses after a device in its name did", refuses("8006"), "as-that-camera",
            "access is denied (8006)");
    }

    void onlyTheCameraItselfAcknowledges()
    {
        QFETCH(QJsonObject, camera);
        QFETCH(QString, otherAcknowledges);
        QFETCH(QString, refusal);
        const QJsonObject other{{"muteToDiscovery", true}, {"acknowledgeOthers", otherAcknowledges}};
        m_simulator.emplace(behindOneAdapter({simulatedCamera(1, "camera", "192.168.10.21", camera),
                                              simulatedCamera(2, "device", "192.168.10.22", other)}));
        search();
        const TraceCapture trace;
        QCOMPARE(
            (*m_layer)->BroadcastIpConfig("025E41000001", false, true, "0.0.0.0", "0.0.0.0", "0.0.0.0", ""),
            refusal.isEmpty());
        QCOMPARE(m_simulator->takeEvents().filter("configured ").isEmpty(), !refusal.isEmpty());
        const QString told = "warning Camera MAC=025E41000001 did not take the broadcast configuration: %1.";
        QCOMPARE(warnings(trace).join(""), refusal.isEmpty() ? QString() : told.arg(refusal));
    }
};

QTEST_GUILESS_MAIN(CommandsTest)
#include "wire_commands.moc"
