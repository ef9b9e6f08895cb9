#include "support/columns.h"
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
constexpr net::Ipv4 hostIp{0xC0A80A01};        // 192.168.10.1
constexpr net::Ipv4 foreignHostIp{0x0A090001}; // 10.9.0.1
constexpr net::Ipv4 cameraIp{0xC0A80A15};      // 192.168.10.21

namespace reg = gvcp::Register;

const QByteArray readPrivilege = packets::readRegister(reg::ControlChannelPrivilege);
const QByteArray takeExclusive =
    packets::writeRegister(reg::ControlChannelPrivilege, gvcp::Privilege::Exclusive);

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
        m_arpRequests.clear();
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

    /// Sends the camera a message. The addresses that it then asks for by ARP.
    QStringList send(net::Ipv4 from, net::Ipv4 to, const QByteArray& message, std::uint16_t port = 1000)
    {
        const std::vector<std::uint8_t> payload(message.begin(), message.end());
        const net::MacAddress& mac = to == cameraIp ? cameraMac : wire::broadcastMac;
        const wire::Frame frame =
            wire::buildUdp(mac, hostMac, {from, to, wire::Protocol::Udp, {}}, {port, gvcp::Port, payload}, 1);
        m_network.receive(0, frame.all(), m_now);
        return std::exchange(m_arpRequests, {});
    }

    /// What the camera sends once the gateway has told its MAC address.
    QStringList answerArp(net::Ipv4 gateway)
    {
        const wire::Arp arp{.operation = wire::ArpOperation::Reply,
                            .senderMac = hostMac,
                            .senderIp = gateway,
                            .targetMac = cameraMac,
                            .targetIp = cameraIp};
        m_network.receive(0, wire::buildArp(cameraMac, arp).all(), m_now);
        return std::exchange(m_answers, {});
    }

private:
    void keep(std::span<const std::uint8_t> bytes)
    {
        const auto frame = wire::parseEthernet(bytes);
        if (const auto arp = wire::parseArp(*frame)) {
            m_arpRequests += QString::fromStdString(net::formatIpv4(arp->targetIp));
            return;
        }
        const auto payload = wire::parseUdp(wire::parseIpv4(*frame).value()).value().payload;
        m_answers +=
            packets::describe({reinterpret_cast<const char*>(payload.data()), std::ssize(payload)}, m_id);
    }

    std::uint16_t m_id = 0; // of the latest message
    sim::Instant m_now{};
    QStringList m_arpRequests;
    QStringList m_answers;
    QStringList m_events;
    sim::VirtualNetwork m_network;
};

/// Exit code and complaint of a simulator that does not start.
QByteArray refusal(const QStringList& arguments = {QDir(SCENES).filePath("cameras-1.json")})
{
    QProcess process;
    process.start(SIMULATOR, arguments);
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
    void commandsAreRefused_data()
    {
        const auto row = addColumns<QByteArray>("message"); // each named by what is told of it
        using gvcp::Command;
        using packets::command;
        row(R"(DISCOVERY status=800E reason="wrong key or length")", packets::discovery() + "x");
        row(R"(DISCOVERY status=8002 reason="a discovery has no payload")", command(Command::Discovery, "x"));
        row(R"(FORCEIP status=8002 reason="not an address for a camera")",
            packets::forceIp(cameraMac, {0xE0000001}, {0xFFFFFF00}));
        row(R"(READREG status=8002 reason="wrong length")", command(Command::ReadReg, {}));
        row(R"(READREG status=8003 reason="the address is memory, not a register")",
            packets::readRegister(sim::DescriptionAddress));
        row(R"(READREG status=8001 reason="the scene refuses this register")", packets::readRegister(0x0904));
        row(R"(READMEM status=8002 reason="wrong number of bytes")", packets::readMemory(reg::FirstUrl, 516));
        row(R"(READMEM status=8005 reason="address and length must be multiples of four")",
            packets::readMemory(reg::FirstUrl, 6));
        row(R"(READMEM status=8003 reason="no such register")", packets::readMemory(0x600, 8));
        row(R"(WRITEREG status=8002 reason="wrong length")", command(Command::WriteReg, "x"));
        row(R"(WRITEREG status=8005 reason="the address is not a multiple of four")",
            packets::writeRegister(0x0A01, 1));
        row(R"(WRITEREG status=8004 reason="the register is read-only")",
            packets::writeRegister(reg::Model, 1));
        row(R"(WRITEREG status=8006 reason="the sender does not have control")",
            packets::writeRegister(reg::PersistentIp, 1));
        row(R"(WRITEREG status=8002 reason="invalid value")",
            packets::writeRegister(reg::ControlChannelPrivilege, 8));
        row(R"(WRITEMEM status=8005 reason="the length is not a multiple of four")",
            command(Command::WriteMem, "longer"));
        row(R"(00AB status=8001 reason="unknown command")", command(Command{0x00AB}, {}));
    }

    void commandsAreRefused()
    {
        QFETCH(const QByteArray, message);
        Bench bench({{"refuse", QJsonObject{{"read:0x0904", "8001"}}}});
        QCOMPARE(bench.ask(message).size(), 1);
        QCOMPARE(bench.takeEvents(),
                 QStringList{QString("refused camera=camera command=") + QTest::currentDataTag()});
    }

    void controlExcludesOthersAndLapsesInSilence()
    {
        Bench bench;
        QCOMPARE(bench.ask(takeExclusive), QStringList{packets::done});
        bench.wait(2999);
        bench.ask(readPrivilege); // any command keeps it
        bench.wait(2999);
        QCOMPARE(bench.takeEvents(),
                 QStringList{"controlled camera=camera by=192.168.10.1 privilege=exclusive reason=written"});
        bench.ask(packets::writeRegister(reg::NetworkInterfaceCount, 2));
        QCOMPARE(bench.takeEvents().join("").section("status=", 1),
                 "8004 reason=\"the register is read-only\"");
        bench.ask(packets::writeRegister(reg::HeartbeatTimeout, 6000)); // from now on
        bench.wait(5999);
        QCOMPARE(bench.ask(packets::readRegister(reg::CurrentIp), 2000), // but not one of another application
                 QStringList{"READREG access denied"});
        QCOMPARE(bench.takeEvents(), QStringList{"refused camera=camera command=READREG status=8006 "
                                                 "reason=\"another application has exclusive access\""});
        bench.wait(1);
        QCOMPARE(bench.takeEvents(),
                 QStringList{"controlled camera=camera by=192.168.10.1 privilege=none reason=heartbeat"});
    }

    void faultsHappenAsTheSceneSays_data()
    {
        const auto row = addColumns<QJsonObject, QJsonObject, QStringList, QStringList>("camera", "line",
                                                                                        "atOnce", "later");
        const QString good = "READREG success 00000000";
        const QString bad = "no acknowledge";
        row("the first packet is lost", {{"losePackets", QJsonArray{1}}}, {}, {}, {});
        row("answers are repeated", {{"repeatAnswers", 2}}, {}, {good, good, good}, {});
        row("answers are late", {{"answerDelayMs", 20}}, {}, {}, {good});
        row("the line spoils bytes", {}, {{"garbagePercent", 100}}, {bad}, {});
        row("the line cuts packets off", {}, {{"truncatePercent", 100}}, {bad}, {});
        row("the line loses packets", {}, {{"lossPercent", 100}}, {}, {});
        row("the line reorders packets", {}, {{"reorderPercent", 100}}, {}, {good});
        row("the line doubles packets", {}, {{"duplicatePercent", 100}}, {good, good, good, good}, {});
        row("the line is slow", {}, {{"delayMs", 100}}, {}, {good});
    }

    void faultsHappenAsTheSceneSays()
    {
        QFETCH(const QJsonObject, camera);
        QFETCH(const QJsonObject, line);
        Bench bench(camera, line);
        QTEST(bench.ask(readPrivilege) + bench.wait(19), "atOnce");
        QTEST(bench.wait(281), "later");
    }

    void aForeignSubnetIsAnsweredThroughTheGateway_data()
    {
        const auto row = addColumns<QString, QByteArray, QStringList>("gateway", "message", "arpRequests");
        const QByteArray ask = packets::discovery();
        row("of its own network", "192.168.10.1", ask, QStringList{"192.168.10.1"});
        row("of another subnet", "192.168.20.1", ask, QStringList());
        row("but not that which is no discovery", "192.168.10.1", readPrivilege, QStringList());
    }

    void aForeignSubnetIsAnsweredThroughTheGateway()
    {
        QFETCH(const QString, gateway);
        QFETCH(const QByteArray, message);
        const QJsonObject address{{"ip", "192.168.10.21"}, {"mask", "255.255.255.0"}, {"gateway", gateway}};
        Bench bench({{"persistent", address}});
        const QStringList asked = bench.send(foreignHostIp, net::limitedBroadcast, message);
        QTEST(asked, "arpRequests");
        QCOMPARE(bench.answerArp({0xC0A80A01}).size(), asked.size());
    }

    void eventsHoldNoControlCharacters()
    {
        Bench bench;
        bench.ask(takeExclusive);
        bench.ask(
            packets::writeRegisters({{reg::UserDefinedName, 0x617F220A}})); // "a", DEL, a quote, line feed
        const QString events = bench.takeEvents().join('\n');
        QVERIFY2(events.endsWith(R"(name="a\x7F\"\x0Ara")"), qPrintable(events));
        Bench named({{"name", "two words"}});
        named.ask(takeExclusive);
        QCOMPARE(named.takeEvents().join("").section(' ', 1, 2), "camera=\"two words\"");
    }

    void aMistakeInASceneIsNamed_data()
    {
        const auto row = addColumns<QJsonObject, QString>("camera", "told");
        row("a mistyped fault", {{"losePacket", QJsonArray{1}}}, "losePacket: is no known key");
        row("an unknown word", {{"description", QJsonObject{{"kind", "cbor"}}}},
            "description.kind: must be one of ");
        row("a file that is not there", {{"description", QJsonObject{{"kind", "plain"}, {"file", "a.xml"}}}},
            "description.file: cannot be read (No such file or directory)");
        row("a mask with a gap", {{"persistent", QJsonObject{{"ip", "10.0.0.1"}, {"mask", "255.0.255.0"}}}},
            "persistent.mask: is not a subnet mask");
        row("a refusal that is none", {{"refuse", QJsonObject{{"FORCEIP", "7"}}}},
            "refuse.FORCEIP: must be a status from 8001 to FFFF");
        row("a refused command that is none", {{"refuse", QJsonObject{{"FORCE", "8007"}}}},
            "refuse.FORCE: is neither a command nor register:ADDRESS nor read:ADDRESS");
        row("no heartbeat", {{"heartbeatTimeoutMs", 0}}, "heartbeatTimeoutMs: must not be 0");
        row("a user without use", {{"inUseBy", "10.0.0.2"}}, "inUseBy: needs inUse");
        row("an adapter that is not there", {{"alsoOn", QJsonArray{"lab7"}}},
            "alsoOn[0]: is not an adapter of this scene");
        row("many with the same number", {{"count", 2}, {"serial", "none"}},
            "serial: must end in a number, which count increments");
        row("a number in words", {{"restartMs", "soon"}}, "restartMs: must be a whole number from 0 to ");
        row("without a name", {{"name", ""}}, "name: is empty");
        row("settings in a number", {{"persistent", 1}}, "persistent: must be an object");
        row("a vendor in a number", {{"vendor", 1}}, "vendor: must be a text");
        row("no mask", {{"persistent", QJsonObject{{"ip", "10.0.0.1"}}}}, "persistent.mask: is missing");
        row("a long model", {{"model", QString(33, 'm')}}, "model: is longer than 32 bytes");
        row("a flag in a number", {{"sharesMac", 1}}, "sharesMac: must be true or false");
        row("modes in a text", {{"enabled", "dhcp"}}, "enabled: must be a list");
        row("the packet before the first", {{"losePackets", QJsonArray{0}}},
            "losePackets[0]: must be a whole number from 1 to 1000000");
        row("a multicast MAC address", {{"mac", "01-00-5E-00-00-01"}},
            "mac: is not the MAC address of a single device");
        row("the adapter's MAC address", {{"mac", "02-00-00-00-AD-00"}},
            "mac: is also the MAC address of another device");
        row("half a register", {{"forget", QJsonArray{"0x0015"}}},
            "forget[0]: is not the address of a register");
        row("a mode that is not supported", {{"supported", QJsonArray{"dhcp"}}},
            "enabled: holds a mode that is not supported");
        row("a link-local address that is none", {{"linkLocal", "169.255.0.1"}}, "linkLocal: is not within ");
        row("an adapter twice", {{"alsoOn", QJsonArray{"lab0"}}},
            "alsoOn[0]: is an adapter that the camera is already on");
    }

    void aMistakeInASceneIsNamed()
    {
        QFETCH(const QJsonObject, camera);
        QFETCH(const QString, told);
        try {
            (void)sim::parseScene(sceneText(camera), ".");
            QFAIL("accepted");
        } catch (const sim::SceneError& error) {
            const QString expected = "adapters[0].cameras[0]." + told;
            const bool goesOn = told.endsWith(' '); // with words and numbers of no interest
            QCOMPARE(QString(error.what()).left(goesOn ? expected.size() : -1), expected);
        }
    }

    void theProgramRunsOnlyWhereNoRealCameraIs()
    {
        auto simulator = std::make_unique<Simulator>("cameras-1");
        QVERIFY(OtherProgram().ask("192.168.10.255", packets::discovery()).startsWith("DISCOVERY success "));
        QVERIFY(simulator->await("found camera=camera mac=025E41000001 from=192.168.10.1:"));
        QCOMPARE(refusal(), "3 gige-simulator: there is already an adapter lab0");
        QVERIFY2(refusal({}).startsWith("2 usage: gige-simulator "), refusal({}));
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
