#include "support/cameralayer.h"
#include "support/columns.h"
#include "support/simulator.h"
#include "support/trace.h"

#include "genicam/nodemap.h"

#include <QElapsedTimer>
#include <QTest>

#include <optional>

namespace {

const QString camera = "The camera 192.168.10.21 ";

} // namespace

/// What single cameras answer to single requests, and what the camera layer makes of it.
class RequestsTest : public QObject
{
    Q_OBJECT

    /// Starts one camera that is faulty as these fields of its scene say.
    void start(const QJsonObject& fault)
    {
        QJsonObject fields{{"userId", "old"}, {"heartbeatTimeoutMs", 600000}};
        for (auto field = fault.begin(); field != fault.end(); ++field) {
            fields.insert(field.key(), field.value());
        }
        m_simulator.emplace(behindOneAdapter({simulatedCamera(1, "faulty", "192.168.10.21", fields)}));
        m_layer.emplace();
    }
    Tessal::ITessalGigEDevice& opened()
    {
        Tessal::CDeviceInfo info = (*m_layer)->CreateDeviceInfo();
        info.SetPropertyValue(Tessal::Key::IpAddress, "192.168.10.21");
        auto& device = dynamic_cast<Tessal::ITessalGigEDevice&>(*(*m_layer)->CreateDevice(info));
        device.Open(Tessal::EDeviceAccessMode::Control);
        return device;
    }
    void configure()
    {
        Tessal::ITessalGigEDevice& device = opened();
        GenApi::CPointer<GenApi::IString>(device.GetNodeMap()->GetNode("DeviceUserID"))->SetValue("gate");
        device.SetIpConfigMode(false, true);
        device.SetPersistentIp("192.168.10.31", "255.255.0.0", "192.168.0.1");
        device.Close();
    }
    /// What the camera has stored, and its control privilege.
    QString state() { return m_simulator->states().join("").section(" enabled=", 1); }

    std::optional<Simulator> m_simulator;
    std::optional<CameraLayer> m_layer;

private slots:
    void cleanup()
    {
        m_layer.reset();
        m_simulator.reset();
    }

    void aCameraIsFoundOpenedAndConfigured_data()
    {
        const auto row = addColumns<QJsonObject, int>("fault", "refusals");
        row("with bytes behind what its answers announce", QJsonObject{{"answerWith", "surplus"}}, 0);
        row("with answers longer than needed", QJsonObject{{"answerWith", "longPayload"}}, 0);
        row("with a description that ends in a single word",
            QJsonObject{{"description", QJsonObject{{"kind", "word-tail"}}}}, 0);
        row("whose description gives the place of its name by a formula",
            QJsonObject{{"description", QJsonObject{{"kind", "formula-user-id"}}}}, 0);
        row("that says it has written, and not how much", QJsonObject{{"emptyWriteAcks", true}}, 0);
        row("that grants WRITEMEM and refuses it", QJsonObject{{"refuse", QJsonObject{{"WRITEMEM", "8001"}}}},
            1);
        row("that grants WRITEMEM and denies it", QJsonObject{{"refuse", QJsonObject{{"WRITEMEM", "8006"}}}},
            1);
        row("that does not know WRITEMEM", QJsonObject{{"knowsWriteMem", false}}, 0);
    }

    void aCameraIsFoundOpenedAndConfigured()
    {
        QFETCH(const QJsonObject, fault);
        start(fault);
        Tessal::DeviceInfoList found;
        (*m_layer)->EnumerateDevices(found, false);
        QCOMPARE(found.size(), 1);
        const TraceCapture trace;
        QCOMPARE(failureOf([&] { configure(); }), "no failure");
        // Without a line about the standard register, the one of the description was used.
        const bool isFormula = fault["description"].toObject()["kind"] == "formula-user-id";
        QCOMPARE(trace.lines("Lanvic.Camera.NodeMap").size(), isFormula ? 1 : 0);
        QCOMPARE(state(), "dhcp persistent-ip=192.168.10.31 persistent-mask=255.255.0.0 "
                          "persistent-gateway=192.168.0.1 name=\"gate\" control=none");
        QTEST(static_cast<int>(m_simulator->takeEvents().filter("refused ").size()), "refusals");
    }

    void anOpeningFails_data()
    {
        QTest::addColumn<QJsonObject>("fault");
        QTest::addColumn<QString>("told");
        QTest::addColumn<QString>("exception"); // upon a timeout the window offers a temporary address
        const auto row = [](const char* name, const QJsonObject& fault, const QString& told) {
            QTest::newRow(name) << fault << camera + told << "LogicalErrorException";
        };
        QTest::newRow("no answer to anything")
            << QJsonObject{{"muteToUnicast", true}} << camera + "did not answer."
            << "TimeoutException";
        row("answers to other requests only", {{"answerWith", "wrongId"}}, "gave no usable answer.");
        row("its address may not be read",
            {{"refuse", QJsonObject{{"READMEM", "8003"}, {"read:0x0024", "8001"}}}},
            "refused to give information about itself.");
        row("control refused as an error", {{"refuse", QJsonObject{{"register:0x0A00", "8FFF"}}}},
            "refused to be controlled by this program.");
        const QString busy = "is busy and cannot be controlled at the moment. Wait a moment, then try again.";
        row("no time to give control", {{"refuse", QJsonObject{{"register:0x0A00", "8007"}}}}, busy);
        row("control given, and said to be busy", {{"misreport", QJsonObject{{"0x0A00", "8007"}}}}, busy);
        QTest::newRow("control given, and said to be denied")
            << QJsonObject{{"misreport", QJsonObject{{"0x0A00", "8006"}}}}
            << camera + "is controlled by another application. Close the connection there, then try again."
            << "AccessException";
        row("control given without a word", {{"misreport", QJsonObject{{"0x0A00", "nothing"}}}},
            "did not answer when this program asked for control.");
        row("asks for another minute again and again", {{"onlyPendingMs", QJsonObject{{"WRITEREG", 60000}}}},
            "kept asking for more time and never granted control. Wait a moment, then try again.");
    }

    void anOpeningFails()
    {
        QFETCH(const QJsonObject, fault);
        start(fault);
        QString exception;
        QElapsedTimer watch;
        watch.start();
        const QString told = failureOf([&] {
            try {
                opened();
            } catch (const GenICam::TimeoutException&) {
                exception = "TimeoutException";
                throw;
            } catch (const GenICam::AccessException&) {
                exception = "AccessException";
                throw;
            } catch (const GenICam::LogicalErrorException&) {
                exception = "LogicalErrorException";
                throw;
            }
        });
        QTEST(told, "told");
        QTEST(exception, "exception");
        QVERIFY2(watch.elapsed() < 15'000, qPrintable(QString::number(watch.elapsed())));
        QCOMPARE(state().section(' ', -1), "control=none");
    }

    void aSettingFails_data()
    {
        const auto row = addColumns<QJsonObject, QString>("fault", "told");
        const auto forgets = [](const char* address) { return QJsonObject{{"forget", QJsonArray{address}}}; };
        row("the name is forgotten", forgets("0x00E8"),
            camera + "confirmed the new device user ID “gate” but reports “old”.");
        row("the name is refused", QJsonObject{{"refuse", QJsonObject{{"register:0x00E8", "8004"}}}},
            camera + "refused the new device user ID.");
        row("the mode is forgotten", forgets("0x0014"),
            camera + "confirmed the new IP configuration DHCP but reports Static IP.");
        row("the mode is written without a word",
            QJsonObject{{"misreport", QJsonObject{{"0x0014", "nothing"}}}},
            camera + "did not answer when it was given the new IP configuration DHCP. Check whether it is "
                     "still connected, then try again.");
        row("the mask is refused", QJsonObject{{"refuse", QJsonObject{{"register:0x065C", "8002"}}}},
            camera + "refused the new subnet mask 255.255.0.0. It already has the new IP configuration "
                     "and the new IP address.");
        row("the gateway is forgotten", forgets("0x066C"),
            camera + "confirmed the new gateway 192.168.0.1 but reports 0.0.0.0. It already has the new "
                     "IP configuration, the new IP address and the new subnet mask.");
    }

    void aSettingFails()
    {
        QFETCH(const QJsonObject, fault);
        start(fault);
        QTEST(failureOf([&] { configure(); }), "told");
    }

    void otherBitsOfTheModeArePreserved()
    {
        start({{"togglesPause", true},
               {"supported", QJsonArray{"persistent", "dhcp", "pause-reception", "pause-generation"}},
               {"enabled", QJsonArray{"persistent", "pause-reception"}}});
        Tessal::ITessalGigEDevice& device = opened();
        QCOMPARE(failureOf([&] { device.SetIpConfigMode(false, true); }), "no failure");
        device.Close();
        QCOMPARE(state().section(' ', 0, 0), "dhcp,pause-reception,pause-generation");
    }
};

QTEST_GUILESS_MAIN(RequestsTest)
#include "wire_requests.moc"
