#include "support/simulator.h"

#include "network/virtualnetwork.h"
#include "scene/scene.h"
#include "wire/frames.h"

#include <QDir>
#include <QTest>

#include <fstream>

namespace {

constexpr net::MacAddress hostMac{{0x02, 0, 0, 0, 0xAD, 0}};
constexpr net::MacAddress cameraMac{{0x02, 0x5E, 0x41, 0, 0, 1}};
constexpr net::Ipv4 hostIp{0xC0A80A01};   // 192.168.10.1
constexpr net::Ipv4 cameraIp{0xC0A80A15}; // 192.168.10.21
constexpr net::Ipv4 everybody = net::limitedBroadcast;

const QByteArray gap(24, '0');
const QByteArray forceIp = "42110004003800090000025E41000001" + gap + "C0A80A63" + gap + "FFFFFF00" + gap +
                           "00000000"; // to 192.168.10.99
const QByteArray restart = "42010004003800080000025E41000001" + QByteArray(96, '0');
const QByteArray discovery = "4211000200000001";
const QByteArray ask = "420100800004000100000A00"; // the privilege
const QByteArray good = "000000810004000100000000";
const QByteArray takeControl = "420100820008000200000A0000000002";
const QByteArray takeAll = "420100820008000200000A0000000001";
const QByteArray writeMode = "42010082000800050000001400000001";
const QByteArray writeIp = "42010082000800060000064C01020304";
const QByteArray written = "000000830004000600000001";
const QByteArray store = "B42118010002800050000025E41000001000000020A000001FF0000000A0000FE6122620A" + gap;

/// One camera at 192.168.10.21/24; `more` adds to what the scene says of it, or says it otherwise.
std::string sceneText(const QByteArray& more, const QByteArray& network = {})
{
    auto scene = nlohmann::json::parse(std::ifstream(SCENES "/cameras-1.json"));
    scene["adapters"][0]["cameras"][0].update(nlohmann::json::parse("{" + more.toStdString() + "}"));
    scene["network"] = nlohmann::json::parse("{" + network.toStdString() + "}");
    return scene.dump();
}

/// One camera on its wire. What it sends is kept, and so are events.
struct Bench
{
    explicit Bench(const QByteArray& camera = {}, const QByteArray& line = {})
        : network(
              sim::parseScene(sceneText(camera, line), "."), now, [this](auto, auto frame) { keep(frame); },
              [this](const sim::EventLine& event) { events += QByteArray::fromStdString(event.text()); })
    {
        ways.clear();
    }

    void keep(std::span<const std::uint8_t> bytes)
    {
        const auto frame = wire::parseEthernet(bytes);
        if (const auto arp = wire::parseArp(*frame)) {
            ways += QByteArray("arp ") + net::formatIpv4(arp->targetIp).c_str();
            return;
        }
        const auto packet = wire::parseIpv4(*frame).value();
        ways += QByteArray::fromStdString(net::formatMac(frame->to) + " " + net::formatIpv4(packet.from) +
                                          ">" + net::formatIpv4(packet.to));
        const auto payload = wire::parseUdp(packet).value().payload;
        answers +=
            QByteArray(reinterpret_cast<const char*>(payload.data()), std::ssize(payload)).toHex().toUpper();
    }

    /// What comes back: "MAC IP>IP" for each datagram, "arp IP" for a request.
    QByteArrayList send(net::Ipv4 from, net::Ipv4 to, const QByteArray& command,
                        const net::MacAddress& toMac = wire::broadcastMac, std::uint16_t port = 1000)
    {
        const QByteArray bytes = QByteArray::fromHex(command);
        const std::vector<std::uint8_t> payload(bytes.begin(), bytes.end());
        const wire::Frame frame = wire::buildUdp(toMac, hostMac, {from, to, wire::Protocol::Udp, {}},
                                                 {port, gvcp::Port, payload}, 1);
        network.receive(0, frame.all(), now);
        return std::exchange(ways, {});
    }

    /// The answers to a command, separated by blanks. "B..." is sent to everybody, "O..." by another
    /// application; "+N" lets N milliseconds pass and gives what happens in them as well.
    QByteArray tell(const QByteArray& command)
    {
        events.clear();
        if (command.startsWith('+')) {
            now += sim::Duration(command.toInt());
            network.advance(now);
            answers += events;
        } else if (command.startsWith('B')) {
            send(hostIp, everybody, command.mid(1));
        } else if (command.startsWith('O')) {
            send(hostIp, cameraIp, command.mid(1), cameraMac, 2000);
        } else {
            send(hostIp, cameraIp, command, cameraMac);
        }
        return std::exchange(answers, {}).join(' ');
    }

    sim::Instant now{};
    QByteArrayList ways;
    QByteArrayList answers;
    QByteArrayList events;
    sim::VirtualNetwork network;
};

/// A conversation with one camera, and what a scene adds to it and to its line.
struct Row
{
    QByteArrayList commands;
    QByteArray answer; // to the last of them
    QByteArray camera = {};
    QByteArray network = {};
};
const QByteArray late = R"("answerDelayMs": 20)";
const QByteArray later = R"("delayMs": 10)";
const QByteArray deafAtTimes = R"("losePackets": [1, 3])";
const QByteArray slow = R"("pendingAckMs": 50)";
const QByteArray fading = R"("refuse": {"register:0x0014": "8004"}, "vanishAfterWrites": 1)";
const QByteArray gone = R"("vanishAfterRestart": true, "restartAck": true)";
const QByteArray swapped = R"("reorderPercent": 100)";
const QByteArray nameless = R"("description": {"kind": "no-user-id"})";
const QByteArray lease = R"(, "dhcp": {"ip": "10.0.0.7", "mask": "255.0.0.0", "gateway": "10.0.0.1"})";
const QByteArray mode = "restarted camera=camera mode=";
const QByteArray persistent = mode + "static ip=192.168.10.21 mask=255.255.255.0 gateway=192.168.10.1";
const std::vector<Row> dialogues{
    {{"42010080000C00030000001400000934000009FC"}, "800300810008000300000005C0000003"},
    {{"420100800004000100000026"}, "8005008100000001"},         // unaligned
    {{"42010084000800040000020000000006"}, "8005008500000004"}, // 6 bytes
    {{"42010084000800040000060000000008"}, "8003008500000004"}, // into nothing
    {{"B4201123400000009"}, ""},
    {{"B" + ask}, ""},
    {{"B" + QByteArray(forceIp).replace("C0A80A63", "E0000001")}, "8002000500000009"},
    {{"B" + QByteArray(forceIp).replace("025E41000001", "025E41000002")}, ""},
    // control
    {{writeMode}, "800600830004000500000000"},
    {{takeControl, "420100820018000500000938000003E8000000240000000000000938000007D0"},
     "800400830004000500000001"},
    {{takeControl, "42010082000800060000001400000008"}, "800200830004000600000000"},
    {{takeControl, "O" + forceIp}, "8006000500000009"},
    {{takeAll, "O" + ask}, "000000810004000100000001"},
    {{takeAll, "O420100800004000100000024"}, "8006008100000001"},
    {{takeAll, "O" + takeControl}, "800600830004000200000000"},
    {{takeAll, "+2999", ask, "+2999"}, ""},
    {{takeAll, "+2999", "O" + ask, "+1"},
     "controlled camera=camera by=192.168.10.1 privilege=none reason=heartbeat"},
    {{takeAll, restart, "+300", "O" + takeControl}, "000000830004000200000001"},
    // the manufacturer's command
    {{QByteArray(store).replace("025E41000001", "025E41000002")}, ""},
    {{QByteArray(store).replace("0028", "0024").chopped(8)}, "8002801100000005"},
    {{store}, "8002801100000005", R"("supported": ["persistent"])"},
    {{store}, "8001801100000005", R"("broadcastCommand": false)"},
    // the IP configuration cycle, which a second copy of the command does not begin anew
    {{"B" + restart, "+200", "B" + restart, "+99", discovery}, ""},
    {{"B" + restart, "+300"}, persistent},
    {{"B" + restart, "+300", "B" + restart, "+300"}, ""},
    {{"B" + restart, "+300"}, persistent, R"("enabled": ["dhcp", "persistent"])" + lease},
    {{"B" + restart, "+300"}, persistent, R"("forced": {"ip": "10.1.1.1", "mask": "255.0.0.0"})"},
    {{"B" + restart, "+300"},
     mode + "dhcp ip=10.0.0.7 mask=255.0.0.0 gateway=10.0.0.1",
     R"("enabled": ["persistent", "dhcp"], "persistent": {"ip": "0.0.0.0", "mask": "0.0.0.0"})" + lease},
    {{"B" + restart, "+2300"},
     mode + "linklocal ip=169.254.9.9 mask=255.255.0.0 gateway=0.0.0.0",
     R"("enabled": ["dhcp"], "linkLocal": "169.254.9.9")"},
    {{"B" + restart, "+300"},
     mode + "linklocal ip=169.254.1.1 mask=255.255.0.0 gateway=0.0.0.0",
     R"("enabled": [])" + lease},
    // cameras and lines with faults
    {{ask}, "", deafAtTimes},
    {{ask, ask}, good, deafAtTimes},
    {{ask}, good + ' ' + good + ' ' + good, R"("repeatAnswers": 2)"},
    {{ask}, "000000810004000200000000", R"("answerWith": "wrongId")"},
    {{ask}, "000000810008000100000000", R"("answerWith": "wrongLength")"},
    {{ask}, "25EB8C48FF89CB854FC09081", R"("answerWith": "garbage")"},
    {{ask}, "00", R"("answerWith": "truncated")"},
    {{ask}, "EB8C48FF89CB854FC09081CC", "", R"("garbagePercent": 100)"},
    {{ask}, "000000", "", R"("truncatePercent": 100, "seed": 2)"},
    {{ask}, "", "", R"("lossPercent": 100)"},
    {{ask}, "", R"("muteToUnicast": true)"},
    {{"B" + discovery}, "", R"("muteToDiscovery": true)"},
    {{ask, "+29"}, "", late, later},
    {{ask, "+30"}, good, late, later},
    {{ask}, "", "", swapped},
    {{ask, "+20"}, good, "", swapped},
    {{ask}, good + ' ' + good + ' ' + good + ' ' + good, "", R"("duplicatePercent": 100)"},
    {{takeControl, writeIp}, "000000890004000600000032", slow},
    {{takeControl, writeIp, "+20", writeIp}, "00000089000400060000001E", slow}, // once more
    {{takeControl, writeIp, "+49"}, "", slow},
    {{takeControl, writeIp, "+50"}, written, slow},
    {{takeControl, writeMode, writeIp}, written, fading},
    {{takeControl, writeMode, writeIp, ask}, "", fading},
    {{restart}, "0000000500000008", gone},
    {{restart, "+100000", ask}, "", gone},
    {{takeControl, "4201008200080005000000E841414141"}, "800400830004000500000000", nameless},
};

/// Exit code and complaint of a simulator that does not start.
QByteArray refusal(const QString& scene)
{
    QProcess process;
    process.start(qEnvironmentVariable("GIGE_SIMULATOR"), {scene});
    process.waitForFinished();
    return QByteArray::number(process.exitCode()) + ' ' + process.readAllStandardError().trimmed();
}

} // namespace

/// The simulated cameras as such: what they answer, whom they hear, and how scenes describe them. At last the
/// program itself: start, events, end, and when it declines to start.
class SimulatorTest : public QObject
{
    Q_OBJECT

private slots:
    void commandsGetTheirAnswers()
    {
        for (const auto& [commands, expected, camera, network] : dialogues) {
            Bench bench(camera, network);
            QByteArray answer;
            for (const QByteArray& command : commands) {
                answer = bench.tell(command);
            }
            QVERIFY2(answer == expected, camera + network + commands.join(' ') + " gives " + answer);
        }
    }

    void camerasHearAndReachOnlyWhatRealOnesWould()
    {
        const QByteArray quiet = "4201000200000001"; // without leave to broadcast
        const QByteArray near = "02000000AD00 192.168.10.21>192.168.10.1";
        const net::Ipv4 foreign{0x0A090001};
        Bench bench;
        const std::tuple<net::Ipv4, net::Ipv4, net::MacAddress, QByteArray, QByteArray> rows[] = {
            {hostIp, everybody, wire::broadcastMac, quiet, near},
            {hostIp, {0xC0A80AFF}, wire::broadcastMac, quiet, near},
            {hostIp, cameraIp, cameraMac, quiet, near},
            {hostIp, {0xC0A80A16}, wire::broadcastMac, quiet, ""},
            {hostIp, cameraIp, hostMac, quiet, ""},
            {foreign, everybody, wire::broadcastMac, discovery, "FFFFFFFFFFFF 192.168.10.21>255.255.255.255"},
            // without that leave the answer has to find its way through the gateway
            {foreign, everybody, wire::broadcastMac, quiet, "arp 192.168.10.1"},
        };
        for (const auto& [from, to, mac, command, way] : rows) {
            QCOMPARE(bench.send(from, to, command, mac).join(), way);
        }
        const wire::Arp reply{wire::ArpOperation::Reply, {{2, 9, 9, 9, 9, 9}}, hostIp, cameraMac, cameraIp};
        bench.network.receive(0, wire::buildArp(cameraMac, reply).all(), bench.now);
        QCOMPARE(std::exchange(bench.ways, {}), QByteArrayList{"020909090909 192.168.10.21>10.9.0.1"});
        // a new address is announced
        QCOMPARE(bench.send(hostIp, everybody, forceIp),
                 (QByteArrayList{"arp 192.168.10.99", "02000000AD00 192.168.10.99>192.168.10.1"}));

        const QByteArray elsewhere = R"("persistent": {"ip": "172.16.0.5", "mask": "255.255.0.0"})";
        QCOMPARE(Bench(elsewhere).tell("B" + quiet), "");
        QCOMPARE(Bench(R"("ignoreBroadcastAckFlag": true, )" + elsewhere).tell("B" + discovery), "");
    }

    void wrongScenesAreRefusedWithPlaceAndReason()
    {
        const auto camera = [](const QByteArray& more, const QByteArray& complaint) {
            return std::pair(sceneText(more), "adapters[0].cameras[0]." + complaint);
        };
        const std::vector<std::pair<std::string, QByteArray>> rows{
            {R"({"adapters": []})", "adapters: needs at least one adapter"},
            {R"({"adapters": [{"name": "lo"}]})", "adapters[0].name: is no name for an adapter"},
            {R"({"adapters": [{"name": "a", "addresses": ["10.0.0.1"]}]})",
             "adapters[0].addresses[0]: must be an IPv4 address and a prefix length, as 192.168.10.1/24"},
            camera(R"("restartMS": 2)", "restartMS: is no known key"),
            camera(R"("mac": "02000000AD00")", "mac: is the MAC address of another device, too"),
            camera(R"("enabled": ["bootp"])", "enabled[0]: must be one of persistent, dhcp"),
            camera(R"("refuse": {"FORCEIP": "7"})", "refuse.FORCEIP: must be a status from 8001 to FFFF"),
        };
        for (const auto& [scene, complaint] : rows) {
            try {
                (void)sim::parseScene(scene, ".");
                QFAIL("accepted instead of " + complaint);
            } catch (const sim::SceneError& error) {
                QCOMPARE(QByteArray(error.what()), complaint);
            }
        }
        QCOMPARE(refusal("/dev/null"), "2 gige-simulator: /dev/null: line 1 column 1: is not valid JSON");
        for (const QFileInfo& shipped : QDir(SCENES).entryInfoList({"*.json"})) {
            QVERIFY_THROWS_NO_EXCEPTION((void)sim::loadScene(shipped.filePath().toStdString()));
        }
    }

    void theProgramRunsInAPrivateNetworkUntilToldToEnd()
    {
        const QString scene = QDir(SCENES).filePath("cameras-1.json");
        auto simulator = std::make_unique<Simulator>(scene);
        QVERIFY(!OtherProgram().ask("192.168.10.255", discovery).isEmpty());
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
