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
    void start(QJsonObject fault)
    {
        fault.insert("userId", "old");
        fault.insert("heartbeatTimeoutMs", 600000);
        m_simulator.emplace(behindOneAdapter({simulatedCamera(1, "faulty", "192.168.10.21", fault)}));
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
        row("with bytes behind what its answers announce", {{"answerWith", "surplus"}}, 0);
        row("with answers longer than needed", {{"answerWith", "longPayload"}}, 0);
        row("with a description that ends in a single word",
            {{"description", QJsonObject{{"kind", "word-tail"}}}}, 0);
        row("whose description gives the place of its name by a formula",
            {{"description", QJsonObject{{"kind", "formula-user-id"}}}}, 0);
        row("that says it has written, and not how much", {{"emptyWriteAcks", true}}, 0);
        row("that grants WRITEMEM and refuses it", {{"refuse", QJsonObject{{"WRITEMEM", "8001"}}}}, 1);
        row("that grants WRITEMEM and denies it", {{"refuse", QJsonObject{{"WRITEMEM", "8006"}}}}, 1);
        row("that does not know WRITEMEM", {{"knowsWriteMem", false}}, 0);
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
        // Upon a timeout the window offers a temporary address.
        const auto row = addColumns<QString, QJsonObject, QString>("exception", "fault", "told");
        const char* const logical = "LogicalErrorException";
        row("no answer to anything", "TimeoutException", {{"muteToUnicast", true}}, "did not answer.");
        row("answers to other requests only", logical, {{"answerWith", "wrongId"}}, "gave no usable answer.");
        row("its address may not be read", logical,
            {{"refuse", QJsonObject{{"READMEM", "8003"}, {"read:0x0024", "8001"}}}},
            "refused to give information about itself.");
        row("control refused as an error", logical, {{"refuse", QJsonObject{{"register:0x0A00", "8FFF"}}}},
            "refused to be controlled by this program.");
        const QString busy = "is busy and cannot be controlled at the moment. Wait a moment, then try again.";
        row("no time to give control", logical, {{"refuse", QJsonObject{{"register:0x0A00", "8007"}}}}, busy);
        row("control given, and said to be busy", logical, {{"misreport", QJsonObject{{"0x0A00", "8007"}}}},
            busy);
        row("control given, and said to be denied", "AccessException",
            {{"misreport", QJsonObject{{"0x0A00", "8006"}}}},
            "is controlled by another application. Close the connection there, then try again.");
        row("control given without a word", logical, {{"misreport", QJsonObject{{"0x0A00", "nothing"}}}},
            "did not answer when this program asked for control.");
        row("asks for another minute again and again", logical,
            {{"onlyPendingMs", QJsonObject{{"WRITEREG", 60000}}}},
            "kept asking for more time and never granted control. Wait a moment, then try again.");
    }

    void anOpeningFails()
    {
        QFETCH(const QJsonObject, fault);
        QFETCH(const QString, told);
        start(fault);
        QString exception;
        QElapsedTimer watch;
        watch.start();
        const QString failure = failureOf([&] {
            try {
                opened();
            } catch (const GenICam::GenericException& thrown) { // names its type before its place
                exception = QString(thrown.what()).section(" thrown (", 0, 0).section(' ', -1);
                throw;
            }
        });
        QCOMPARE(failure, camera + told);
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
        row("the name is refused", {{"refuse", QJsonObject{{"register:0x00E8", "8004"}}}},
            camera + "refused the new device user ID.");
        row("the mode is forgotten", forgets("0x0014"),
            camera + "confirmed the new IP configuration DHCP but reports Static IP.");
        row("the mode is written without a word", {{"misreport", QJsonObject{{"0x0014", "nothing"}}}},
            camera + "did not answer when it was given the new IP configuration DHCP. Check whether it is "
                     "still connected, then try again.");
        row("the mask is refused", {{"refuse", QJsonObject{{"register:0x065C", "8002"}}}},
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
