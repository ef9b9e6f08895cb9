#include "support/simulator.h"

#include "genicam/nodemap.h"
#include "tessal/failure.h"
#include "tessal/transportlayer.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QTest>

#include <functional>
#include <optional>

namespace {

/// One camera that is faulty as the JSON says, on one adapter.
class FaultyCamera
{
public:
    explicit FaultyCamera(const QByteArray& fault, const QByteArray& enabled = R"("persistent")")
    {
        m_scene.open();
        m_scene.write(R"({"adapters": [{"name": "lab0", "addresses": ["192.168.10.1/24"], "cameras": [{
            "name": "faulty", "mac": "02-A3-17-00-00-01", "vendor": "Belunar", "model": "BX-1", "serial": "1",
            "persistent": {"ip": "192.168.10.21", "mask": "255.255.255.0"}, "userId": "old",
            "heartbeatTimeoutMs": 600000, "enabled": [)" +
                      enabled + "], " + fault + "}]}]}");
        m_scene.close();
        m_simulator.emplace(m_scene.fileName());
    }
    [[nodiscard]] Simulator& simulator() { return *m_simulator; }
    /// What it has stored and who controls it.
    [[nodiscard]] QString state() { return m_simulator->states().join("").section(" enabled=", 1); }

private:
    QTemporaryFile m_scene{"scene-XXXXXX.json"};
    std::optional<Simulator> m_simulator;
};

QString nameOf(Tessal::FailureKind kind)
{
    using enum Tessal::FailureKind;
    static const QMap<Tessal::FailureKind, QString> names{{NoAnswer, "no answer"},
                                                          {UnusableAnswers, "unusable answers"},
                                                          {AskedForMoreTime, "asked for more time"},
                                                          {Refused, "refused"},
                                                          {Busy, "busy"},
                                                          {NotKept, "not kept"},
                                                          {ControlledElsewhere, "controlled elsewhere"}};
    return names.value(kind, "another kind");
}

QString nameOf(Tessal::Setting setting)
{
    using enum Tessal::Setting;
    static const QMap<Tessal::Setting, QString> names{
        {Control, "control"},       {Identity, "identity"},    {Name, "name"},
        {IpConfigMode, "mode"},     {IpAddress, "IP address"}, {SubnetMask, "subnet mask"},
        {DefaultGateway, "gateway"}};
    return names.value(setting, "nothing in particular");
}

/// What an exception tells, as "not kept: gateway 192.168.0.1, is 0.0.0.0, has mode, IP address".
QString told(const std::exception& exception)
{
    const auto* const failed = dynamic_cast<const Tessal::IFailure*>(&exception);
    if (failed == nullptr) {
        return exception.what();
    }
    const Tessal::Failure& failure = failed->failure();
    QString text = nameOf(failure.kind) + ": " + nameOf(failure.setting);
    text += failure.wanted.empty() ? "" : ' ' + QString::fromStdString(failure.wanted);
    text += failure.actual.empty() ? "" : ", is " + QString::fromStdString(failure.actual);
    for (const Tessal::Setting kept : failure.kept) {
        text += (kept == failure.kept.front() ? ", has " : ", ") + nameOf(kept);
    }
    return text;
}

/// What an operation that fails tells of it; "none" when it does not fail.
QString failureOf(const std::function<void()>& operation)
{
    try {
        operation();
        return "none";
    } catch (const GenICam::GenericException& exception) {
        return told(exception);
    }
}

} // namespace

/// What single cameras answer to single requests, and what the camera layer makes of it.
class RequestsTest : public QObject
{
    Q_OBJECT

    Tessal::ITessalGigEDevice& opened()
    {
        Tessal::CDeviceInfo info = m_layer->CreateDeviceInfo();
        info.SetPropertyValue(Tessal::Key::IpAddress, "192.168.10.21");
        auto& device = dynamic_cast<Tessal::ITessalGigEDevice&>(*m_layer->CreateDevice(info));
        device.Open(Tessal::EDeviceAccessMode::Control);
        return device;
    }
    static void configure(Tessal::ITessalGigEDevice& device)
    {
        GenApi::CPointer<GenApi::IString>(device.GetNodeMap()->GetNode("DeviceUserID"))->SetValue("gate");
        device.SetIpConfigMode(true, true);
        device.SetPersistentIp("192.168.10.31", "255.255.0.0", "192.168.0.1");
        device.Close();
    }

    Tessal::IGigETransportLayer* m_layer = nullptr;

private slots:
    void init()
    {
        m_layer = dynamic_cast<Tessal::IGigETransportLayer*>(
            Tessal::CTlFactory::GetInstance().CreateTl(Tessal::GigEDeviceClass));
        QVERIFY(m_layer != nullptr);
    }
    void cleanup() { Tessal::CTlFactory::GetInstance().ReleaseTl(m_layer); }

    void aCameraIsFoundOpenedAndConfigured_data()
    {
        QTest::addColumn<QByteArray>("fault");
        QTest::addColumn<QStringList>("refused");
        const QStringList nothing;
        QTest::newRow("with bytes behind what its answers announce")
            << QByteArray(R"("answerWith": "surplus")") << nothing;
        QTest::newRow("with answers longer than needed")
            << QByteArray(R"("answerWith": "longPayload")") << nothing;
        QTest::newRow("with a description that ends in a single word")
            << QByteArray(R"("description": {"kind": "word-tail"})") << nothing;
        QTest::newRow("whose description gives the place of its name by a formula")
            << QByteArray(R"("description": {"kind": "formula-user-id"})") << nothing;
        QTest::newRow("that says it has written, and not how much")
            << QByteArray(R"("emptyWriteAcks": true)") << nothing;
        QTest::newRow("that grants WRITEMEM and refuses it")
            << QByteArray(R"("refuse": {"WRITEMEM": "8001"})") << QStringList{"WRITEMEM"};
        QTest::newRow("that grants WRITEMEM and denies it")
            << QByteArray(R"("refuse": {"WRITEMEM": "8006"})") << QStringList{"WRITEMEM"};
        QTest::newRow("that does not know WRITEMEM") << QByteArray(R"("knowsWriteMem": false)") << nothing;
    }

    void aCameraIsFoundOpenedAndConfigured()
    {
        QFETCH(const QByteArray, fault);
        FaultyCamera camera(fault);
        Tessal::DeviceInfoList found;
        m_layer->EnumerateDevices(found, false);
        QCOMPARE(found.size(), 1);
        QCOMPARE(failureOf([&] { configure(opened()); }), "none");
        QCOMPARE(camera.state(), "persistent,dhcp persistent-ip=192.168.10.31 persistent-mask=255.255.0.0 "
                                 "persistent-gateway=192.168.0.1 name=\"gate\" control=none");
        QStringList refused = camera.simulator().takeEvents().filter("refused ");
        refused.replaceInStrings(QRegularExpression(".*command=(\\S+).*"), "\\1");
        QTEST(refused, "refused");
    }

    void anOpeningFails_data()
    {
        QTest::addColumn<QByteArray>("fault");
        QTest::addColumn<QString>("exception");
        const char* const message = "LogicalErrorException, "; // which the window shows
        const char* const offer = "TimeoutException, ";        // upon which it offers a temporary address
        const auto fault = [](const char* name, const QByteArray& json, const char* type, const char* tells) {
            QTest::newRow(name) << json << QString(type) + tells;
        };
        fault("no answer to anything", R"("muteToUnicast": true)", offer, "no answer: identity");
        fault("answers to other requests only", R"("answerWith": "wrongId")", message,
              "unusable answers: identity");
        fault("its address may not be read", R"("refuse": {"READMEM": "8003", "read:0x0024": "8001"})",
              message, "refused: identity");
        fault("control refused as an error", R"("refuse": {"register:0x0A00": "8FFF"})", message,
              "refused: control");
        fault("no time to give control", R"("refuse": {"register:0x0A00": "8007"})", message,
              "busy: control");
        fault("control given, and said to be busy", R"("misreport": {"0x0A00": "8007"})", message,
              "busy: control");
        fault("control given, and said to be denied", R"("misreport": {"0x0A00": "8006"})",
              "AccessException, ", "controlled elsewhere: control");
        fault("control given without a word", R"("misreport": {"0x0A00": "nothing"})", message,
              "no answer: control");
        fault("asks for another minute again and again", R"("onlyPendingMs": {"WRITEREG": 60000})", message,
              "asked for more time: control");
    }

    void anOpeningFails()
    {
        QFETCH(const QByteArray, fault);
        FaultyCamera camera(fault);
        QElapsedTimer watch;
        watch.start();
        QString exception = "none";
        try {
            opened();
        } catch (const GenICam::LogicalErrorException& failure) {
            exception = "LogicalErrorException, " + told(failure);
        } catch (const GenICam::TimeoutException& failure) {
            exception = "TimeoutException, " + told(failure);
        } catch (const GenICam::AccessException& failure) {
            exception = "AccessException, " + told(failure);
        } catch (const GenICam::GenericException& failure) {
            exception = "another, " + told(failure);
        }
        QTEST(exception, "exception");
        QVERIFY2(watch.elapsed() < 15'000, qPrintable(QString::number(watch.elapsed())));
        QCOMPARE(camera.state().section(' ', -1), "control=none");
    }

    void aSettingFails_data()
    {
        QTest::addColumn<QByteArray>("fault");
        QTest::addColumn<QString>("failure");
        QTest::newRow("the name is forgotten")
            << QByteArray(R"("forget": ["0x00E8"])") << "not kept: name gate, is old";
        QTest::newRow("the mode is forgotten")
            << QByteArray(R"("forget": ["0x0014"])") << "not kept: mode 7, is 5";
        QTest::newRow("the mask is refused") << QByteArray(R"("refuse": {"register:0x065C": "8002"})")
                                             << "refused: subnet mask 255.255.0.0, has mode, IP address";
        QTest::newRow("the gateway is forgotten")
            << QByteArray(R"("forget": ["0x066C"])")
            << "not kept: gateway 192.168.0.1, is 0.0.0.0, has mode, IP address, subnet mask";
    }

    void aSettingFails()
    {
        QFETCH(const QByteArray, fault);
        const FaultyCamera camera(fault);
        Tessal::ITessalGigEDevice& device = opened();
        const QString failure = failureOf([&] { configure(device); });
        QTEST(failure, "failure");
    }

    void whatElseTheModeHoldsSurvives()
    {
        FaultyCamera camera(
            R"("togglesPause": true, "supported": ["persistent", "dhcp", "pause-reception", "pause-generation"])",
            R"("persistent", "pause-reception")");
        Tessal::ITessalGigEDevice& device = opened();
        QCOMPARE(failureOf([&] { device.SetIpConfigMode(false, true); }), "none");
        device.Close();
        QCOMPARE(camera.state().section(' ', 0, 0), "dhcp,pause-reception,pause-generation");
    }
};

QTEST_GUILESS_MAIN(RequestsTest)
#include "wire_requests.moc"
