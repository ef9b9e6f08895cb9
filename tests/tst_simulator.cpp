#include "support/otherprogram.h"
#include "support/packets.h"
#include "support/simulator.h"

#include "network/virtualnetwork.h"
#include "scene/scene.h"
#include "wire/frames.h"

#include <QDir>
#include <QJsonDocument>
#include <QProcess>
#include <QTest>

namespace {

constexpr net::MacAddress hostMac{{0x02, 0, 0, 0, 0xAD, 0}};
constexpr net::MacAddress cameraMac{{0x02, 0x5E, 0x41, 0, 0, 1}};
constexpr net::MacAddress otherMac{{0x02, 0x5E, 0x41, 0, 0, 2}};
constexpr net::Ipv4 hostIp{0xC0A80A01};        // 192.168.10.1
constexpr net::Ipv4 foreignHostIp{0x0A090001}; // 10.9.0.1
constexpr net::Ipv4 cameraIp{0xC0A80A15};      // 192.168.10.21
constexpr net::Ipv4 classC{0xFFFFFF00};

namespace reg = gvcp::Register;
using packets::Reply;

const QByteArray readPrivilege = packets::readRegister(reg::ControlChannelPrivilege);
const QByteArray takeExclusive =
    packets::writeRegister(reg::ControlChannelPrivilege, gvcp::Privilege::Exclusive);
const QByteArray writeIp = packets::writeRegister(reg::PersistentIp, 0x01020304);

QByteArray store(const net::MacAddress& camera)
{
    return packets::broadcastIpConfig(camera, gvcp::IpConfig::Dhcp, {0x0A000001}, {0xFF000000}, {}, "ab");
}

QJsonObject settings(const char* ip, const char* mask, const char* gateway)
{
    return {{"ip", ip}, {"mask", mask}, {"gateway", gateway}};
}

/// One camera at 192.168.10.21/24; `camera` adds to what the scene says of it, or says it otherwise.
std::string sceneText(const QJsonObject& camera, const QJsonObject& line = {})
{
    const QJsonArray adapters = behindOneAdapter({simulatedCamera(1, "camera", "192.168.10.21", camera)});
    return QJsonDocument(QJsonObject{{"adapters", adapters}, {"network", line}}).toJson().toStdString();
}

/// One camera on its wire.
class Bench
{
public:
    explicit Bench(const QJsonObject& camera = {}, const QJsonObject& line = {})
        : m_network(
              sim::parseScene(sceneText(camera, line), "."), m_now, [this](auto, auto frame) { keep(frame); },
              [this](const sim::EventLine& event) { m_events += QString::fromStdString(event.text()); })
    {
        m_ways.clear();
    }

    /// What the camera answers at once, as packets::describe() says it.
    QStringList ask(const QByteArray& message, std::uint16_t port = 1000)
    {
        send(hostIp, cameraIp, packets::withId(message, ++m_id), port);
        return std::exchange(m_answers, {});
    }
    /// What it answers until that time has passed.
    QStringList wait(int milliseconds)
    {
        m_now += sim::Duration(milliseconds);
        m_network.advance(m_now);
        return std::exchange(m_answers, {});
    }
    QStringList takeEvents() { return std::exchange(m_events, {}); }

    /// Sends the camera a message. The destinations of its answers, and the addresses that it asks for by
    /// ARP.
    QStringList send(net::Ipv4 from, net::Ipv4 to, const QByteArray& message, std::uint16_t port = 1000)
    {
        const std::vector<std::uint8_t> payload(message.begin(), message.end());
        const net::MacAddress& mac = to == cameraIp ? cameraMac : wire::broadcastMac;
        const wire::Frame frame =
            wire::buildUdp(mac, hostMac, {from, to, wire::Protocol::Udp, {}}, {port, gvcp::Port, payload}, 1);
        m_network.receive(0, frame.all(), m_now);
        return std::exchange(m_ways, {});
    }

private:
    void keep(std::span<const std::uint8_t> bytes)
    {
        const auto frame = wire::parseEthernet(bytes);
        if (const auto arp = wire::parseArp(*frame)) {
            m_ways += QString("asks for ") + net::formatIpv4(arp->targetIp).c_str();
            return;
        }
        const auto packet = wire::parseIpv4(*frame).value();
        m_ways += QString("to ") + net::formatIpv4(packet.to).c_str();
        const auto payload = wire::parseUdp(packet).value().payload;
        m_answers +=
            packets::describe({reinterpret_cast<const char*>(payload.data()), std::ssize(payload)}, m_id);
    }

    std::uint16_t m_id = 0; // of the latest message
    sim::Instant m_now{};
    QStringList m_ways;
    QStringList m_answers;
    QStringList m_events;
    sim::VirtualNetwork m_network;
};

/// Which application says something: one of a free camera, the one that controls it, or another one.
enum class Speaker { Any, Controlling, Excluded };

/// Exit code and complaint of a simulator that does not start.
QByteArray refusal()
{
    QProcess process;
    process.start(SIMULATOR, {QDir(SCENES).filePath("cameras-1.json")});
    process.waitForFinished();
    return QByteArray::number(process.exitCode()) + ' ' + process.readAllStandardError().trimmed();
}

} // namespace

/// The simulated cameras where the other tests would not notice that one is more lenient than real cameras,
/// or better than its scene says; and that the program runs where it can do no harm.
class SimulatorTest : public QObject
{
    Q_OBJECT

private slots:
    void commandsGetTheirAnswers_data()
    {
        using enum Speaker;
        QTest::addColumn<Speaker>("speaker");
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QStringList>("answers");
        QTest::addColumn<QJsonObject>("camera");
        const auto row = [](const char* name, Speaker speaker, const QByteArray& message,
                            const QStringList& answers, const QJsonObject& camera = {}) {
            QTest::newRow(name) << speaker << message << answers << camera;
        };
        const QStringList silence;
        row("an unaligned register", Any, packets::readRegister(0x26), {"READREG bad alignment"});
        row("an odd number of bytes", Any, packets::readMemory(reg::FirstUrl, 6), {"READMEM bad alignment"});
        row("memory that is not there", Any, packets::readMemory(0x600, 8), {"READMEM invalid address"});
        row("a temporary address that is multicast", Any, packets::forceIp(cameraMac, {0xE0000001}, classC),
            {"FORCEIP invalid parameter"});
        row("a temporary address for another camera", Any, packets::forceIp(otherMac, {0xC0A80A63}, classC),
            silence);
        row("a temporary address while another application has control", Excluded,
            packets::forceIp(cameraMac, {0xC0A80A63}, classC), {"FORCEIP access denied"});
        row("a write without control", Any, writeIp, {"WRITEREG access denied 00000000"});
        row("a mode that no camera has", Controlling, packets::writeRegister(reg::IpConfigCurrent, 8),
            {"WRITEREG invalid parameter 00000000"});
        row("several writes up to one that is refused", Controlling,
            packets::writeRegisters({{reg::HeartbeatTimeout, 1000}, {reg::CurrentIp, 0}}),
            {"WRITEREG write protected 00000001"});
        row("a name where the camera has none", Controlling,
            packets::writeRegister(reg::UserDefinedName, 0x41414141), {"WRITEREG write protected 00000000"},
            {{"description", QJsonObject{{"kind", "no-user-id"}}}});
        row("the privilege while another application has exclusive access", Excluded, readPrivilege,
            {"READREG success 00000001"});
        row("another register then", Excluded, packets::readRegister(reg::CurrentIp),
            {"READREG access denied"});
        row("control that another application has", Excluded, packets::takeControl(),
            {"WRITEREG access denied 00000000"});
        row("the broadcast command for another camera", Any, store(otherMac), silence);
        row("the broadcast command with a mode that the camera lacks", Any, store(cameraMac),
            {"BROADCAST_IPCONFIG invalid parameter 0000025E41000001"},
            {{"supported", QJsonArray{"persistent"}}});
    }

    void commandsGetTheirAnswers()
    {
        QFETCH(const Speaker, speaker);
        QFETCH(const QByteArray, message);
        QFETCH(const QJsonObject, camera);
        Bench bench(camera);
        if (speaker != Speaker::Any) {
            QCOMPARE(bench.ask(takeExclusive), QStringList{packets::done});
        }
        QTEST(bench.ask(message, speaker == Speaker::Excluded ? 2000 : 1000), "answers");
    }

    void controlLapsesInSilence()
    {
        Bench bench;
        bench.ask(takeExclusive);
        bench.wait(2999);
        bench.ask(readPrivilege); // any command keeps it
        bench.takeEvents();
        bench.wait(2999);
        bench.ask(readPrivilege, 2000); // but not one of another application
        QCOMPARE(bench.takeEvents().filter("controlled "), QStringList());
        bench.wait(1);
        QCOMPARE(bench.takeEvents(),
                 QStringList{"controlled camera=camera by=192.168.10.1 privilege=none reason=heartbeat"});
    }

    void faultsHappenAsTheSceneSays_data()
    {
        QTest::addColumn<QJsonObject>("camera");
        QTest::addColumn<QJsonObject>("line");
        QTest::addColumn<QStringList>("atOnce");
        QTest::addColumn<QStringList>("later");
        const QString good = "READREG success 00000000";
        const QString bad = "no acknowledge";
        const auto camera = [](const char* name, const QJsonObject& fault, const QStringList& atOnce,
                               const QStringList& later) {
            QTest::newRow(name) << fault << QJsonObject() << atOnce << later;
        };
        const auto line = [](const char* fault, const QStringList& atOnce, const QStringList& later) {
            QTest::newRow(fault) << QJsonObject() << QJsonObject{{fault, 100}} << atOnce << later;
        };
        camera("the first packet is lost", {{"losePackets", QJsonArray{1}}}, {}, {});
        camera("answers are repeated", {{"repeatAnswers", 2}}, {good, good, good}, {});
        camera("answers are late", {{"answerDelayMs", 20}}, {}, {good});
        line("garbagePercent", {bad}, {});
        line("truncatePercent", {bad}, {});
        line("lossPercent", {}, {});
        line("reorderPercent", {}, {good});
        line("duplicatePercent", {good, good, good, good}, {});
        line("delayMs", {}, {good});
    }

    void faultsHappenAsTheSceneSays()
    {
        QFETCH(const QJsonObject, camera);
        QFETCH(const QJsonObject, line);
        Bench bench(camera, line);
        QTEST(bench.ask(readPrivilege) + bench.wait(19), "atOnce");
        QTEST(bench.wait(281), "later");
    }

    void camerasHearAndReachOnlyWhatRealOnesWould_data()
    {
        QTest::addColumn<QString>("gateway");
        QTest::addColumn<net::Ipv4>("from");
        QTest::addColumn<net::Ipv4>("to");
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QStringList>("ways");
        const QByteArray ask = packets::discovery(Reply::Unicast);
        const auto row = [](const char* name, const char* gateway, net::Ipv4 from, net::Ipv4 to,
                            const QByteArray& message, const QStringList& ways = {}) {
            QTest::newRow(name) << QString(gateway) << from << to << message << ways;
        };
        row("a register read by broadcast", "192.168.10.1", hostIp, net::limitedBroadcast, readPrivilege);
        row("asked at another address", "192.168.10.1", hostIp, net::Ipv4{0xC0A80A16}, ask);
        row("asked from a foreign subnet, the answer may be broadcast", "192.168.10.1", foreignHostIp,
            net::limitedBroadcast, packets::discovery(), {"to 255.255.255.255"});
        row("otherwise it has to go through the gateway", "192.168.10.1", foreignHostIp,
            net::limitedBroadcast, ask, {"asks for 192.168.10.1"});
        row("which a gateway of another subnet cannot be", "192.168.20.1", foreignHostIp,
            net::limitedBroadcast, ask);
        row("nor is there a way without a gateway", "0.0.0.0", foreignHostIp, net::limitedBroadcast, ask);
    }

    void camerasHearAndReachOnlyWhatRealOnesWould()
    {
        QFETCH(const QString, gateway);
        QFETCH(const net::Ipv4, from);
        QFETCH(const net::Ipv4, to);
        QFETCH(const QByteArray, message);
        Bench bench({{"persistent", settings("192.168.10.21", "255.255.255.0", qPrintable(gateway))}});
        QTEST(bench.send(from, to, message), "ways");
    }

    void eventsHoldNoControlCharacters()
    {
        Bench bench;
        bench.ask(takeExclusive);
        bench.ask(packets::writeRegisters({{reg::UserDefinedName, 0x611B5B0A}})); // "a", ESC, "[", line feed
        const QString events = bench.takeEvents().join('\n');
        QVERIFY2(events.endsWith("name=\"a\\x1B[\\x0Ara\""), qPrintable(events));
    }

    void aMistypedFaultIsRefused()
    {
        try {
            (void)sim::parseScene(sceneText({{"losePacket", QJsonArray{1}}}), ".");
            QFAIL("accepted");
        } catch (const sim::SceneError& error) {
            QCOMPARE(error.what(), "adapters[0].cameras[0].losePacket: is no known key");
        }
    }

    void theProgramRunsOnlyWhereNoRealCameraIs()
    {
        auto simulator = std::make_unique<Simulator>("cameras-1");
        QVERIFY(!OtherProgram().ask("192.168.10.255", packets::discovery()).isEmpty());
        QVERIFY(simulator->await("found camera=camera mac=025E41000001 from=192.168.10.1:"));
        QCOMPARE(refusal(), "3 gige-simulator: there is already an adapter lab0");
        simulator.reset();
        QVERIFY(QProcess::execute("ip", {"link", "show", "lab0"}) != 0);
        QCOMPARE(QProcess::execute("ip", {"tuntap", "add", "eth9", "mode", "tun"}), 0);
        const QByteArray unsafe = refusal();
        QCOMPARE(QProcess::execute("ip", {"link", "delete", "eth9"}), 0);
        QVERIFY2(unsafe.startsWith("3 ") && unsafe.contains("holds the adapter eth9, which may"), unsafe);
    }
};

QTEST_GUILESS_MAIN(SimulatorTest)
#include "tst_simulator.moc"
