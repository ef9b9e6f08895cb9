#include "support/otherprogram.h"
#include "support/packets.h"
#include "support/simulator.h"

#include "network/virtualnetwork.h"
#include "scene/scene.h"
#include "wire/frames.h"

#include <QDir>
#include <QProcess>
#include <QTest>

#include <fstream>

namespace {

constexpr net::MacAddress hostMac{{0x02, 0, 0, 0, 0xAD, 0}};
constexpr net::MacAddress cameraMac{{0x02, 0x5E, 0x41, 0, 0, 1}};
constexpr net::Ipv4 hostIp{0xC0A80A01};   // 192.168.10.1
constexpr net::Ipv4 cameraIp{0xC0A80A15}; // 192.168.10.21
constexpr net::Ipv4 everybody = net::limitedBroadcast;

constexpr net::Ipv4 classC{0xFFFFFF00};
constexpr net::MacAddress otherMac{{0x02, 0x5E, 0x41, 0, 0, 2}};

namespace reg = gvcp::Register;
using packets::readRegister;
using packets::writeRegister;

const QByteArray readPrivilege = readRegister(reg::ControlChannelPrivilege);
const QByteArray takeControl = packets::takeControl();
const QByteArray takeExclusive = writeRegister(reg::ControlChannelPrivilege, gvcp::Privilege::Exclusive);
const QByteArray writeMode = writeRegister(reg::IpConfigCurrent, gvcp::IpConfig::Persistent);
const QByteArray writeIp = writeRegister(reg::PersistentIp, 0x01020304);
const QByteArray restart = packets::forceIp(cameraMac, {}, {});
const QByteArray forceIp = packets::forceIp(cameraMac, {0xC0A80A63}, classC); // to 192.168.10.99

QByteArray store(const net::MacAddress& camera = cameraMac)
{
    return packets::broadcastIpConfig(camera, gvcp::IpConfig::Dhcp, {0x0A000001}, {0xFF000000}, {0x0A0000FE},
                                      "ab");
}

/// One camera at 192.168.10.21/24; `more` adds to what the scene says of it, or says it otherwise.
std::string sceneText(const QByteArray& more, const QByteArray& network = {})
{
    auto scene = nlohmann::json::parse(std::ifstream(SCENES "/cameras-1.json"));
    scene["adapters"][0]["cameras"][0].update(nlohmann::json::parse("{" + more.toStdString() + "}"));
    scene["network"] = nlohmann::json::parse("{" + network.toStdString() + "}");
    return scene.dump();
}

/// One thing that happens to a camera: a message comes, or time passes.
struct Step
{
    enum class Kind { Unicast, Broadcast, FromAnotherApplication, Again, Wait };

    Kind kind;
    QByteArray message = {};
    sim::Duration time = {};
};
using Steps = QList<Step>;

Step send(const QByteArray& message)
{
    return {Step::Kind::Unicast, message};
}
Step broadcast(const QByteArray& message)
{
    return {Step::Kind::Broadcast, message};
}
Step fromAnotherApplication(const QByteArray& message)
{
    return {Step::Kind::FromAnotherApplication, message};
}
/// The latest message once more, as one that was not answered is repeated.
Step again()
{
    return {Step::Kind::Again};
}
Step wait(int milliseconds)
{
    return {Step::Kind::Wait, {}, sim::Duration(milliseconds)};
}

/// One camera on its wire. What it sends is kept, and so are events.
struct Bench
{
    explicit Bench(const QByteArray& camera = {}, const QByteArray& line = {})
        : network(
              sim::parseScene(sceneText(camera, line), "."), now, [this](auto, auto frame) { keep(frame); },
              [this](const sim::EventLine& event) { events += QString::fromStdString(event.text()); })
    {
        ways.clear();
    }

    void keep(std::span<const std::uint8_t> bytes)
    {
        const auto frame = wire::parseEthernet(bytes);
        if (const auto arp = wire::parseArp(*frame)) {
            ways += QString("arp ") + net::formatIpv4(arp->targetIp).c_str();
            return;
        }
        const auto packet = wire::parseIpv4(*frame).value();
        ways += QString::fromStdString(net::formatMac(frame->to) + " " + net::formatIpv4(packet.from) + ">" +
                                       net::formatIpv4(packet.to));
        const auto payload = wire::parseUdp(packet).value().payload;
        const QByteArray answer(reinterpret_cast<const char*>(payload.data()), std::ssize(payload));
        answers += packets::describe(answer, id);
    }

    /// What comes back: "MAC IP>IP" for each datagram, "arp IP" for a request.
    QStringList send(net::Ipv4 from, net::Ipv4 to, const QByteArray& command,
                     const net::MacAddress& toMac = wire::broadcastMac, std::uint16_t port = 1000)
    {
        const std::vector<std::uint8_t> payload(command.begin(), command.end());
        const wire::Frame frame = wire::buildUdp(toMac, hostMac, {from, to, wire::Protocol::Udp, {}},
                                                 {port, gvcp::Port, payload}, 1);
        network.receive(0, frame.all(), now);
        return std::exchange(ways, {});
    }

    /// What the camera answers to that, and what happens in time that passes.
    QStringList take(const Step& step)
    {
        constexpr std::uint16_t otherPort = 2000;
        events.clear();
        if (step.kind == Step::Kind::Wait) {
            now += step.time;
            network.advance(now);
            return std::exchange(answers, {}) + events;
        }
        if (step.kind != Step::Kind::Again) {
            latest = step;
            latest.message = packets::withId(step.message, ++id);
        }
        if (latest.kind == Step::Kind::Broadcast) {
            send(hostIp, everybody, latest.message);
        } else {
            const bool isOther = latest.kind == Step::Kind::FromAnotherApplication;
            send(hostIp, cameraIp, latest.message, cameraMac, isOther ? otherPort : 1000);
        }
        return std::exchange(answers, {});
    }

    std::uint16_t id = 0; // of the latest message
    Step latest{};
    sim::Instant now{};
    QStringList ways;
    QStringList answers;
    QStringList events;
    sim::VirtualNetwork network;
};

/// Exit code and complaint of a simulator that does not start.
QByteArray refusal(const QString& scene)
{
    QProcess process;
    process.start(SIMULATOR, {scene});
    process.waitForFinished();
    return QByteArray::number(process.exitCode()) + ' ' + process.readAllStandardError().trimmed();
}

} // namespace

/// The simulated cameras as such: what they answer, whom they hear, and how scenes describe them. At last the
/// program itself: start, events, end, and when it declines to start.
class SimulatorTest : public QObject
{
    Q_OBJECT

    /// Cases of one camera: what the scene says of it and of its line, what happens, and what comes back
    /// last.
    static void addCase()
    {
        QTest::addColumn<QByteArray>("camera");
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<QStringList>("answers");
    }

    static void checkCase()
    {
        QFETCH(const QByteArray, camera);
        QFETCH(const QByteArray, line);
        QFETCH(const Steps, steps);
        QFETCH(const QStringList, answers);
        Bench bench(camera, line);
        QStringList seen;
        for (const Step& step : steps) {
            seen = bench.take(step);
        }
        QCOMPARE(seen, answers);
    }

private slots:
    void commandsGetTheirAnswers_data()
    {
        addCase();
        const QByteArray none;
        const auto row = [&](const char* name, const Steps& steps, const QStringList& answers) {
            QTest::newRow(name) << none << none << steps << answers;
        };
        row("an unaligned register", {send(readRegister(0x26))}, {"READREG bad alignment"});
        row("an odd number of bytes", {send(packets::readMemory(reg::FirstUrl, 6))},
            {"READMEM bad alignment"});
        row("memory that is not there", {send(packets::readMemory(0x600, 8))}, {"READMEM invalid address"});
        row("a register read by broadcast", {broadcast(readPrivilege)}, {});
        row("a temporary address that is multicast",
            {broadcast(packets::forceIp(cameraMac, {0xE0000001}, classC))}, {"FORCEIP invalid parameter"});
        row("a temporary address for another camera",
            {broadcast(packets::forceIp(otherMac, {0xC0A80A63}, classC))}, {});

        row("a write without control", {send(writeMode)}, {"WRITEREG access denied 00000000"});
        row("a mode that no camera has", {send(takeControl), send(writeRegister(reg::IpConfigCurrent, 8))},
            {"WRITEREG invalid parameter 00000000"});
        row("several writes up to one that is refused",
            {send(takeControl),
             send(packets::writeRegisters({{reg::HeartbeatTimeout, 1000}, {reg::CurrentIp, 0}}))},
            {"WRITEREG write protected 00000001"});
        row("a temporary address while another application has control",
            {send(takeControl), fromAnotherApplication(forceIp)}, {"FORCEIP access denied"});
        row("the privilege while another application has exclusive access",
            {send(takeExclusive), fromAnotherApplication(readPrivilege)}, {"READREG success 00000001"});
        row("any other register while another application has exclusive access",
            {send(takeExclusive), fromAnotherApplication(readRegister(reg::CurrentIp))},
            {"READREG access denied"});
        row("control that another application has",
            {send(takeExclusive), fromAnotherApplication(takeControl)}, {"WRITEREG access denied 00000000"});
        row("control is kept by any command",
            {send(takeExclusive), wait(2999), send(readPrivilege), wait(2999)}, {});
        row("control lapses in silence",
            {send(takeExclusive), wait(2999), fromAnotherApplication(readPrivilege), wait(1)},
            {"controlled camera=camera by=192.168.10.1 privilege=none reason=heartbeat"});
        row("a restart ends control",
            {send(takeExclusive), send(restart), wait(300), fromAnotherApplication(takeControl)},
            {"WRITEREG success 00000001"});

        row("the broadcast command for another camera", {broadcast(store(otherMac))}, {});
        QTest::newRow("the broadcast command with a mode that the camera lacks")
            << QByteArray(R"("supported": ["persistent"])") << none << Steps{broadcast(store())}
            << QStringList{"BROADCAST_IPCONFIG invalid parameter 0000025E41000001"};
        QTest::newRow("the broadcast command switched off")
            << QByteArray(R"("broadcastCommand": false)") << none << Steps{broadcast(store())}
            << QStringList{"BROADCAST_IPCONFIG not implemented 0000025E41000001"};
        QTest::newRow("a name where the camera has none")
            << QByteArray(R"("description": {"kind": "no-user-id"})") << none
            << Steps{send(takeControl), send(writeRegister(reg::UserDefinedName, 0x41414141))}
            << QStringList{"WRITEREG write protected 00000000"};
    }

    void commandsGetTheirAnswers() { checkCase(); }

    void restartsRunTheIpConfigurationCycle_data()
    {
        addCase();
        const QByteArray lease =
            R"(, "dhcp": {"ip": "10.0.0.7", "mask": "255.0.0.0", "gateway": "10.0.0.1"})";
        const QString began = "restarted camera=camera mode=";
        const QString isStatic = began + "static ip=192.168.10.21 mask=255.255.255.0 gateway=192.168.10.1";
        const auto row = [](const char* name, const QByteArray& camera, int time, const QString& event) {
            QTest::newRow(name) << camera << QByteArray() << Steps{broadcast(restart), wait(time)}
                                << QStringList{event};
        };
        row("a static address", "", 300, isStatic);
        row("static before DHCP", R"("enabled": ["dhcp", "persistent"])" + lease, 300, isStatic);
        row("a temporary address is forgotten", R"("forced": {"ip": "10.1.1.1", "mask": "255.0.0.0"})", 300,
            isStatic);
        row("DHCP where the static address is zero",
            R"("enabled": ["persistent", "dhcp"], "persistent": {"ip": "0.0.0.0", "mask": "0.0.0.0"})" +
                lease,
            300, began + "dhcp ip=10.0.0.7 mask=255.0.0.0 gateway=10.0.0.1");
        row("link-local where no server answers", R"("enabled": ["dhcp"], "linkLocal": "169.254.9.9")", 2300,
            began + "linklocal ip=169.254.9.9 mask=255.255.0.0 gateway=0.0.0.0");
        row("link-local where nothing else is enabled", R"("enabled": [])" + lease, 300,
            began + "linklocal ip=169.254.1.1 mask=255.255.0.0 gateway=0.0.0.0");
        const auto plain = [](const char* name, const Steps& steps) {
            QTest::newRow(name) << QByteArray() << QByteArray() << steps << QStringList();
        };
        plain("deaf meanwhile, and not begun anew by a repeat",
              {broadcast(restart), wait(200), again(), wait(99), send(packets::discovery())});
        plain("a late repeat does nothing", {broadcast(restart), wait(300), again(), wait(300)});
    }

    void restartsRunTheIpConfigurationCycle() { checkCase(); }

    void faultsHappenAsTheSceneSays_data()
    {
        addCase();
        const QString good = "READREG success 00000000";
        const QByteArray none;
        const auto camera = [&](const char* name, const QByteArray& fault, const Steps& steps,
                                const QStringList& answers) {
            QTest::newRow(name) << fault << none << steps << answers;
        };
        const auto line = [&](const char* name, const QByteArray& fault, const Steps& steps,
                              const QStringList& answers) {
            QTest::newRow(name) << none << fault << steps << answers;
        };
        const Steps ask{send(readPrivilege)};
        camera("the first packet is lost", R"("losePackets": [1, 3])", ask, {});
        camera("the second is not", R"("losePackets": [1, 3])", {send(readPrivilege), again()}, {good});
        camera("answers are repeated", R"("repeatAnswers": 2)", ask, {good, good, good});
        camera("a wrong id", R"("answerWith": "wrongId")", ask, {"an acknowledge of another request"});
        camera("a wrong length", R"("answerWith": "wrongLength")", ask, {"no acknowledge"});
        camera("garbage", R"("answerWith": "garbage")", ask, {"no acknowledge"});
        camera("truncated", R"("answerWith": "truncated")", ask, {"no acknowledge"});
        camera("mute to unicast", R"("muteToUnicast": true)", ask, {});
        camera("mute to discovery", R"("muteToDiscovery": true)", {broadcast(packets::discovery())}, {});
        line("garbage on the line", R"("garbagePercent": 100)", ask, {"no acknowledge"});
        line("truncated on the line", R"("truncatePercent": 100, "seed": 2)", ask, {"no acknowledge"});
        line("lost on the line", R"("lossPercent": 100)", ask, {});
        line("out of order on the line", R"("reorderPercent": 100)", ask, {});
        line("but not for long", R"("reorderPercent": 100)", {send(readPrivilege), wait(20)}, {good});
        line("doubled either way", R"("duplicatePercent": 100)", ask, {good, good, good, good});
        for (const auto& [name, time, answers] : {std::tuple("not yet after both delays", 29, QStringList{}),
                                                  {"after both delays", 30, {good}}}) {
            QTest::newRow(name) << QByteArray(R"("answerDelayMs": 20)") << QByteArray(R"("delayMs": 10)")
                                << Steps{send(readPrivilege), wait(time)} << answers;
        }
        const QByteArray slow = R"("pendingAckMs": 50)";
        const Steps write{send(takeControl), send(writeIp)};
        camera("a slow write is announced", slow, write, {"PENDING success 00000032"});
        camera("its repeat too", slow, write + Steps{wait(20), again()}, {"PENDING success 0000001E"});
        camera("not done too early", slow, write + Steps{wait(49)}, {});
        camera("done in time", slow, write + Steps{wait(50)}, {"WRITEREG success 00000001"});
        const QByteArray fading = R"("refuse": {"register:0x0014": "8004"}, "vanishAfterWrites": 1)";
        const Steps refusedThenDone{send(takeControl), send(writeMode), send(writeIp)};
        camera("the last write before it vanishes", fading, refusedThenDone, {"WRITEREG success 00000001"});
        camera("vanished after a write", fading, refusedThenDone + ask, {});
        const QByteArray gone = R"("vanishAfterRestart": true, "restartAck": true)";
        camera("a restart that is acknowledged", gone, {send(restart)}, {"FORCEIP success"});
        camera("vanished at its restart", gone, {send(restart), wait(100'000), send(readPrivilege)}, {});
    }

    void faultsHappenAsTheSceneSays() { checkCase(); }

    void camerasHearAndReachOnlyWhatRealOnesWould_data()
    {
        using packets::Reply;
        const net::Ipv4 foreign{0x0A090001};
        QTest::addColumn<net::Ipv4>("from");
        QTest::addColumn<net::Ipv4>("to");
        QTest::addColumn<net::MacAddress>("toMac");
        QTest::addColumn<Reply>("reply");
        QTest::addColumn<QStringList>("ways");
        const QStringList back{"02000000AD00 192.168.10.21>192.168.10.1"};
        QTest::newRow("limited broadcast")
            << hostIp << everybody << wire::broadcastMac << Reply::Unicast << back;
        QTest::newRow("its subnet's broadcast")
            << hostIp << net::Ipv4{0xC0A80AFF} << wire::broadcastMac << Reply::Unicast << back;
        QTest::newRow("its own address") << hostIp << cameraIp << cameraMac << Reply::Unicast << back;
        QTest::newRow("another address")
            << hostIp << net::Ipv4{0xC0A80A16} << wire::broadcastMac << Reply::Unicast << QStringList();
        QTest::newRow("another hardware address")
            << hostIp << cameraIp << hostMac << Reply::Unicast << QStringList();
        QTest::newRow("asked from a foreign subnet, the answer may be broadcast")
            << foreign << everybody << wire::broadcastMac << Reply::MayBeBroadcast
            << QStringList{"FFFFFFFFFFFF 192.168.10.21>255.255.255.255"};
        QTest::newRow("otherwise it has to go through the gateway")
            << foreign << everybody << wire::broadcastMac << Reply::Unicast
            << QStringList{"arp 192.168.10.1"};
    }

    void camerasHearAndReachOnlyWhatRealOnesWould()
    {
        QFETCH(const net::Ipv4, from);
        QFETCH(const net::Ipv4, to);
        QFETCH(const net::MacAddress, toMac);
        QFETCH(const packets::Reply, reply);
        QTEST(Bench().send(from, to, packets::discovery(reply), toMac), "ways");
    }

    void answersFindTheirWayThroughTheGateway()
    {
        Bench bench;
        bench.send({0x0A090001}, everybody, packets::discovery(packets::Reply::Unicast));
        const wire::Arp reply{wire::ArpOperation::Reply, {{2, 9, 9, 9, 9, 9}}, hostIp, cameraMac, cameraIp};
        bench.network.receive(0, wire::buildArp(cameraMac, reply).all(), bench.now);
        QCOMPARE(bench.ways, QStringList{"020909090909 192.168.10.21>10.9.0.1"});
    }

    void aNewAddressIsAnnounced()
    {
        QCOMPARE(Bench().send(hostIp, everybody, forceIp),
                 (QStringList{"arp 192.168.10.99", "02000000AD00 192.168.10.99>192.168.10.1"}));
    }

    void aCameraOfAForeignSubnetIsSilentUnlessItMayBroadcast()
    {
        const QByteArray elsewhere = R"("persistent": {"ip": "172.16.0.5", "mask": "255.255.0.0"})";
        QCOMPARE(Bench(elsewhere).take(broadcast(packets::discovery(packets::Reply::Unicast))),
                 QStringList());
        QCOMPARE(
            Bench(R"("ignoreBroadcastAckFlag": true, )" + elsewhere).take(broadcast(packets::discovery())),
            QStringList());
    }

    void wrongScenesAreRefusedWithPlaceAndReason_data()
    {
        QTest::addColumn<QByteArray>("scene");
        QTest::addColumn<QByteArray>("complaint");
        const auto camera = [](const char* name, const QByteArray& more, const QByteArray& complaint) {
            QTest::newRow(name) << QByteArray::fromStdString(sceneText(more))
                                << "adapters[0].cameras[0]." + complaint;
        };
        QTest::newRow("no adapter") << QByteArray(R"({"adapters": []})")
                                    << QByteArray("adapters: needs at least one adapter");
        QTest::newRow("the loopback adapter") << QByteArray(R"({"adapters": [{"name": "lo"}]})")
                                              << QByteArray("adapters[0].name: is no name for an adapter");
        QTest::newRow("an address without prefix")
            << QByteArray(R"({"adapters": [{"name": "a", "addresses": ["10.0.0.1"]}]})")
            << QByteArray("adapters[0].addresses[0]: must be an IPv4 address and a prefix length, as "
                          "192.168.10.1/24");
        camera("an unknown key", R"("restartMS": 2)", "restartMS: is no known key");
        camera("a MAC address twice", R"("mac": "02000000AD00")",
               "mac: is the MAC address of another device, too");
        camera("an unknown mode", R"("enabled": ["bootp"])",
               "enabled[0]: must be one of persistent, dhcp, pause-reception, pause-generation");
        camera("a status that is none", R"("refuse": {"FORCEIP": "7"})",
               "refuse.FORCEIP: must be a status from 8001 to FFFF");
    }

    void wrongScenesAreRefusedWithPlaceAndReason()
    {
        QFETCH(const QByteArray, scene);
        QFETCH(const QByteArray, complaint);
        try {
            (void)sim::parseScene(scene.toStdString(), ".");
            QFAIL("accepted");
        } catch (const sim::SceneError& error) {
            QCOMPARE(QByteArray(error.what()), complaint);
        }
    }

    void shippedScenesAreAccepted_data()
    {
        QTest::addColumn<QString>("file");
        for (const QFileInfo& shipped : QDir(SCENES).entryInfoList({"*.json"})) {
            QTest::newRow(qPrintable(shipped.fileName())) << shipped.filePath();
        }
    }

    void shippedScenesAreAccepted()
    {
        QFETCH(const QString, file);
        (void)sim::loadScene(file.toStdString());
    }

    void theProgramRunsInAPrivateNetworkUntilToldToEnd()
    {
        const QString scene = QDir(SCENES).filePath("cameras-1.json");
        auto simulator = std::make_unique<Simulator>(scene);
        QCOMPARE(refusal("/dev/null"), "2 gige-simulator: /dev/null: line 1 column 1: is not valid JSON");
        QVERIFY(!OtherProgram().ask("192.168.10.255", packets::discovery()).isEmpty());
        QVERIFY(simulator->await("found camera=camera mac=025E41000001 from=192.168.10.1:"));
        QCOMPARE(refusal(scene), "3 gige-simulator: there is already an adapter lab0");
        simulator.reset();
        QVERIFY(QProcess::execute("ip", {"link", "show", "lab0"}) != 0);
        QCOMPARE(QProcess::execute("ip", {"tuntap", "add", "eth9", "mode", "tun"}), 0);
        const QByteArray unsafe = refusal(scene);
        QCOMPARE(QProcess::execute("ip", {"link", "delete", "eth9"}), 0);
        QVERIFY2(unsafe.startsWith("3 ") && unsafe.contains("holds the adapter eth9, which may"), unsafe);
    }
};

QTEST_GUILESS_MAIN(SimulatorTest)
#include "tst_simulator.moc"
