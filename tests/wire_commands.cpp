#include "support/simulator.h"

#include "tessal/failure.h"
#include "tessal/transportlayer.h"

#include <QTemporaryFile>
#include <QTest>

/// What becomes of commands that name their camera by its MAC address, and of the question who controls it.
class CommandsTest : public QObject
{
    Q_OBJECT

    void start(const QString& scene)
    {
        m_simulator.emplace(scene);
        Tessal::DeviceInfoList found;
        m_layer->EnumerateDevicesAnySubnet(found, false);
        QVERIFY(!found.empty());
    }

    std::optional<Simulator> m_simulator;
    Tessal::IGigETransportLayer* m_layer = nullptr;

private slots:
    void init()
    {
        m_layer = dynamic_cast<Tessal::IGigETransportLayer*>(
            Tessal::CTlFactory::GetInstance().CreateTl(Tessal::GigEDeviceClass));
        QVERIFY(m_layer != nullptr);
    }
    void cleanup()
    {
        Tessal::CTlFactory::GetInstance().ReleaseTl(m_layer);
        m_simulator.reset();
    }

    void aTemporaryAddressCountsWhereTheCameraIsSeenWithIt_data()
    {
        using enum Tessal::FailureKind;
        QTest::addColumn<std::string>("mac");
        QTest::addColumn<std::string>("wanted");
        QTest::addColumn<std::optional<Tessal::Failure>>("expected");
        const auto row = [](const char* name, const char* mac, const char* wanted,
                            const std::optional<Tessal::Failure>& expected = {}) {
            QTest::newRow(name) << std::string(mac) << std::string(wanted) << expected;
        };
        row("taken at once", "02A317000001", "192.168.10.131");
        row("taken later than acknowledged", "02A317000002", "192.168.10.132");
        row("acknowledged and not taken", "02A317000003", "192.168.10.133",
            Tessal::Failure{.kind = AddressNotTaken, .actual = "192.168.10.23"});
        row("another address taken", "02A317000004", "192.168.10.134",
            Tessal::Failure{.kind = AddressNotTaken, .actual = "192.168.10.77"});
        row("the address of another camera", "02A317000001", "192.168.10.24",
            Tessal::Failure{.kind = AddressOfAnotherCamera, .other = "02A317000004"});
        row("refused for another application", "02A317000005", "192.168.10.135",
            Tessal::Failure{.kind = ControlledElsewhere});
    }

    void aTemporaryAddressCountsWhereTheCameraIsSeenWithIt()
    {
        QFETCH(std::string, mac);
        QFETCH(std::string, wanted);
        QFETCH(std::optional<Tessal::Failure>, expected);
        start("test-commands");
        try {
            m_layer->ForceIp(mac, wanted, "255.255.255.0", "0.0.0.0");
            QVERIFY2(!expected, "no failure");
        } catch (const Tessal::IFailure& raised) {
            const Tessal::Failure& failure = raised.failure();
            QVERIFY2(expected, dynamic_cast<const GenICam::GenericException&>(raised).GetDescription());
            QCOMPARE(failure.kind, expected->kind);
            QVERIFY(failure.setting == Tessal::Setting::TemporaryAddress);
            QCOMPARE(failure.mac, mac);
            QCOMPARE(failure.wanted, wanted);
            QCOMPARE(failure.actual, expected->actual);
            QCOMPARE(failure.other, expected->other);
        }
    }

    void accessibilityIsThatOfTheCameraMeant_data()
    {
        using namespace Tessal::Accessibility;
        QTest::addColumn<std::string>("mac");
        QTest::addColumn<std::string>("address");
        QTest::addColumn<int>("expected");
        const auto row = [](const char* name, const char* mac, const char* address, int expected) {
            QTest::newRow(name) << std::string(mac) << std::string(address) << expected;
        };
        row("the camera", "02A317000001", "192.168.10.21", Ok);
        row("any camera", "", "192.168.10.21", Ok);
        row("another camera", "02A317000001", "192.168.10.24", NotReachable);
        row("another camera, which is in use", "02A317000001", "192.168.10.25", NotReachable);
        row("in use", "02A317000005", "192.168.10.25", Controlled);
        row("in exclusive use, which hides its MAC address", "02A317000006", "192.168.10.26",
            ControlledExclusively);
    }

    void accessibilityIsThatOfTheCameraMeant()
    {
        QFETCH(std::string, mac);
        QFETCH(std::string, address);
        start("test-commands");
        Tessal::CDeviceInfo record; // as no search knows it
        record.SetPropertyValue(Tessal::Key::IpAddress, address);
        record.SetPropertyValue(Tessal::Key::MacAddress, mac);
        int accessibility = -1;
        m_layer->QueryDeviceAccessibility(record, Tessal::EDeviceAccessMode::Control, &accessibility);
        QTEST(accessibility, "expected");
    }

    void aStaticAddressThatNoCameraCanHaveIsNotSent_data()
    {
        QTest::addColumn<bool>("isStatic");
        QTest::addColumn<std::string>("address");
        QTest::addColumn<QString>("stored");
        const QString nothing;
        QTest::newRow("static, the loopback address") << true << std::string("127.0.0.1") << nothing;
        QTest::newRow("static, multicast") << true << std::string("224.0.0.0") << nothing;
        QTest::newRow("static, broadcast") << true << std::string("255.255.255.255") << nothing;
        QTest::newRow("static, the last possible")
            << true << std::string("223.255.255.255") << "223.255.255.255";
        QTest::newRow("static, none") << true << std::string("0.0.0.0") << "0.0.0.0";
        QTest::newRow("Auto IP, the loopback address") << false << std::string("127.0.0.1") << "0.0.0.0";
        QTest::newRow("Auto IP, an address for later")
            << false << std::string("192.168.10.131") << "192.168.10.131";
    }

    void aStaticAddressThatNoCameraCanHaveIsNotSent()
    {
        QFETCH(bool, isStatic);
        QFETCH(std::string, address);
        QFETCH(QString, stored);
        start("test-commands");
        const bool accepted = m_layer->BroadcastIpConfig("025E41000007", isStatic, false, address,
                                                         "255.255.255.0", "0.0.0.0", "gate");
        QCOMPARE(accepted, !stored.isEmpty());
        const QStringList events = m_simulator->takeEvents();
        QCOMPARE(events.isEmpty() ? QString()
                                  : events.first().section("persistent-ip=", 1).section(' ', 0, 0),
                 stored);
    }

    void onlyTheCameraItselfAcknowledges_data()
    {
        QTest::addColumn<QByteArray>("camera");
        QTest::addColumn<QByteArray>("otherDevice");
        QTest::addColumn<bool>("accepted");
        const QByteArray nameless = R"("acknowledgeOthers": "nameless")";
        const QByteArray asItself = R"("acknowledgeOthers": "as-itself")";
        const QByteArray asTheCamera = R"("acknowledgeOthers": "as-that-camera")";
        const QByteArray busy = R"("refuse": {"BROADCAST_IPCONFIG": "8007"})";
        const QByteArray refuses = R"("refuse": {"BROADCAST_IPCONFIG": "8006"})";
        const QByteArray late = R"("answerDelayMs": 50)";
        QTest::newRow("the camera does, after a device without a name") << late << nameless << true;
        QTest::newRow("the camera does, after a device with another name") << late << asItself << true;
        QTest::newRow("the camera is busy, and a device without a name does") << busy << nameless << false;
        QTest::newRow("the camera is busy, and a device with another name does") << busy << asItself << false;
        QTest::newRow("the camera refuses after a device in its name did")
            << refuses + ", " + late << asTheCamera << false;
    }

    void onlyTheCameraItselfAcknowledges()
    {
        QFETCH(QByteArray, camera);
        QFETCH(QByteArray, otherDevice);
        QFETCH(bool, accepted);
        QTemporaryFile scene("scene-XXXXXX.json");
        QVERIFY(scene.open());
        scene.write(R"({"adapters": [{"name": "lab0", "addresses": ["192.168.10.1/24"], "cameras": [
            {"name": "camera", "mac": "02-5E-41-00-00-01", "vendor": "Orvik", "model": "km-1", "serial": "1",
             "linkLocal": "169.254.1.1", )" +
                    camera + R"(},
            {"name": "device", "mac": "02-5E-41-00-00-02", "vendor": "Orvik", "model": "km-2", "serial": "2",
             "muteToDiscovery": true, )" +
                    otherDevice + "}]}]}");
        scene.close();
        start(scene.fileName());
        QCOMPARE(m_layer->BroadcastIpConfig("025E41000001", false, true, "0.0.0.0", "0.0.0.0", "0.0.0.0", ""),
                 accepted);
        QCOMPARE(m_simulator->takeEvents().filter("configured camera=camera ").isEmpty(), !accepted);
    }
};

QTEST_GUILESS_MAIN(CommandsTest)
#include "wire_commands.moc"
