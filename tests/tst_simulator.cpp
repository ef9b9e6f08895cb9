#include "gige/description.h"
#include "gige/zipdescription.h"
#include "network/virtualnetwork.h"
#include "scene/scene.h"
#include "wire/frames.h"

#include <QDir>
#include <QTest>

using namespace std::chrono_literals;
using sim::Duration;
using sim::Instant;

namespace {

constexpr net::MacAddress hostMac{{0x02, 0, 0, 0, 0xAD, 0}};
constexpr net::MacAddress cameraMac{{0x02, 0x5E, 0x41, 0, 0, 1}};
constexpr net::Ipv4 hostIp{0xC0A80A01};   // 192.168.10.1
constexpr net::Ipv4 cameraIp{0xC0A80A15}; // 192.168.10.21
const QByteArray gap(24, '0');
const QByteArray forceIp = "42110004003800090000025E41000001" + gap + "C0A80A63" + gap + "FFFFFF00" + gap +
                           "00000000"; // to 192.168.10.99
const QByteArray restart = "42010004003800080000025E41000001" + QByteArray(96, '0');
const QByteArray discovery = "4211000200000001";
const QByteArray takeControl = "420100820008000200000A0000000002";
const QByteArray writeHeartbeat = "42010082000800050000093800000FA0";

QByteArray readRegister(const QByteArray& address)
{
    return "4201008000040001" + address;
}

std::vector<std::uint8_t> bytesOf(const QByteArray& hex)
{
    const QByteArray raw = QByteArray::fromHex(hex);
    return {raw.begin(), raw.end()};
}

QByteArray hexOf(std::span<const std::uint8_t> bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes)).toHex().toUpper();
}

/// A scene of one adapter and one camera at 192.168.10.21/24; `more` adds to the camera, or says it
/// otherwise.
std::string sceneText(const QByteArray& more, const QByteArray& network = "{}")
{
    auto scene = nlohmann::json::parse(R"({"adapters": [{"name": "lab0", "addresses": ["192.168.10.1/24"],
        "cameras": [{"name": "a", "mac": "025E41000001", "vendor": "Orvik", "model": "km-1300",
        "version": "2.4", "info": "sensor 7", "serial": "21000001", "userId": "Front left",
        "enabled": ["persistent"],
        "persistent": {"ip": "192.168.10.21", "mask": "255.255.255.0", "gateway": "192.168.10.9"}}]}]})");
    scene["adapters"][0]["cameras"][0].update(nlohmann::json::parse("{" + more.toStdString() + "}"));
    scene["network"] = nlohmann::json::parse(network.toStdString());
    return scene.dump();
}

/// One camera on its wire. Frames to the host are kept, and so are events.
struct Bench
{
    explicit Bench(const QByteArray& camera = {}, const QByteArray& line = "{}")
        : network(
              sim::parseScene(sceneText(camera, line), "."), now,
              [this](auto, auto frame) { frames.emplace_back(frame.begin(), frame.end()); },
              [this](const sim::EventLine& event) { events += QByteArray::fromStdString(event.text()); })
    {
        frames.clear();
    }

    void send(net::Ipv4 from, net::Ipv4 to, const QByteArray& command,
              const net::MacAddress& toMac = wire::broadcastMac, std::uint16_t port = 1000)
    {
        const auto payload = bytesOf(command);
        const wire::Frame frame = wire::buildUdp(toMac, hostMac, {from, to, wire::Protocol::Udp, {}},
                                                 {port, gvcp::Port, payload}, 1);
        network.receive(0, frame.all(), now);
    }

    /// What has come back since the last call: "MAC IP>IP payload" for each datagram, "arp IP" for a request.
    QByteArrayList heard()
    {
        QByteArrayList lines;
        for (const auto& bytes : frames) {
            const auto frame = wire::parseEthernet(bytes);
            if (const auto arp = wire::parseArp(*frame)) {
                lines += QByteArray("arp ") + net::formatIpv4(arp->targetIp).c_str();
            } else {
                const auto packet = wire::parseIpv4(*frame).value();
                lines +=
                    QByteArray::fromStdString(net::formatMac(frame->to) + " " + net::formatIpv4(packet.from) +
                                              ">" + net::formatIpv4(packet.to) + " ") +
                    hexOf(wire::parseUdp(packet).value().payload);
            }
        }
        frames.clear();
        return lines;
    }

    /// The answers to a command, separated by blanks. "B..." is sent to everybody, "O..." by another
    /// application; "+N" lets N milliseconds pass.
    QByteArray tell(const QByteArray& command)
    {
        if (command.startsWith('+')) {
            now += Duration(command.toInt());
            network.advance(now);
        } else if (command.startsWith('B')) {
            send(hostIp, net::limitedBroadcast, command.mid(1));
        } else {
            const bool isOther = command.startsWith('O');
            send(hostIp, cameraIp, command.mid(isOther ? 1 : 0), cameraMac, isOther ? 2000 : 1000);
        }
        QByteArrayList answers = heard();
        answers.removeIf([](const QByteArray& line) { return line.startsWith("arp"); });
        for (QByteArray& line : answers) {
            line.remove(0, line.lastIndexOf(' ') + 1);
        }
        return answers.join(' ');
    }

    Instant now{};
    std::vector<std::vector<std::uint8_t>> frames;
    QByteArrayList events;
    sim::VirtualNetwork network;
};

} // namespace

/// The simulated cameras as such: what they answer, whom they hear, and how scenes describe them.
class SimulatorTest : public QObject
{
    Q_OBJECT

private slots:
    void commandsGetTheirAnswers()
    {
        const std::vector<std::pair<QByteArrayList, QByteArray>> rows{
            {{"42010080000C00030000001400000934000009FC"}, "800300810008000300000005C0000003"},
            {{readRegister("00000026")}, "8005008100000001"},           // unaligned
            {{"42010084000800040000020000000006"}, "8005008500000004"}, // 6 bytes
            {{"42010084000800040000060000000008"}, "8003008500000004"}, // into nothing
            {{"42010084000800040000020000000204"}, "8002008500000004"}, // 516 bytes
            {{writeHeartbeat}, "800600830004000500000000"},
            {{takeControl, "420100820018000500000938000003E8000000240000000000000938000007D0"},
             "800400830004000500000001"},
            {{takeControl, "42010082000800060000001400000008"}, "800200830004000600000000"},
            {{"B4201123400000009"}, ""},
            {{"B420100800008000100000024"}, ""},
            {{"B" + QByteArray(forceIp).replace("C0A80A63", "E0000001")}, "8002000500000009"},
            {{"B" + QByteArray(forceIp).replace("025E41000001", "025E41000002")}, ""},
            {{takeControl, "O" + forceIp}, "8006000500000009"},
        };
        for (const auto& [commands, expected] : rows) {
            Bench bench;
            QByteArray answer;
            for (const QByteArray& command : commands) {
                answer = bench.tell(command);
            }
            QVERIFY2(answer == expected, commands.join(' ') + " gives " + answer);
        }
    }

    void controlIsTakenKeptAndLost()
    {
        Bench bench;
        const QByteArray privilege = readRegister("00000A00");
        bench.tell("420100820008000200000A0000000001"); // exclusive
        QCOMPARE(bench.tell("O" + privilege), "000000810004000100000001");
        QCOMPARE(bench.tell("O" + readRegister("00000024")), "8006008100000001");
        QCOMPARE(bench.tell("O" + takeControl), "800600830004000200000000");
        bench.tell("+2999");
        bench.tell(privilege); // the holder's heartbeat
        bench.tell("+2999");
        QCOMPARE(bench.tell("O" + privilege), "000000810004000100000001");
        bench.tell("+1");
        QCOMPARE(bench.tell("O" + takeControl), "000000830004000200000001");
        bench.tell(restart); // refused: the other application is in control
        bench.tell("O" + restart);
        bench.events.removeIf([](const QByteArray& event) { return !event.startsWith("controlled"); });
        const QByteArray controlled = "controlled camera=a by=192.168.10.1 privilege=";
        QCOMPARE(
            bench.events,
            (QByteArrayList{controlled + "exclusive reason=written", controlled + "none reason=heartbeat",
                            controlled + "control reason=written", controlled + "none reason=restart"}));
    }

    void ipConfigurationCycle()
    {
        const QByteArray lease =
            R"(, "dhcp": {"ip": "10.0.0.7", "mask": "255.0.0.0", "gateway": "10.0.0.1"})";
        const QByteArray persistent = "static ip=192.168.10.21 mask=255.255.255.0 gateway=192.168.10.9";
        const std::pair<QByteArray, QByteArray> cases[] = {
            {R"("enabled": ["dhcp", "persistent"])" + lease, persistent},
            {R"("enabled": ["persistent", "dhcp"], "persistent": {"ip": "0.0.0.0", "mask": "0.0.0.0"})" +
                 lease,
             "dhcp ip=10.0.0.7 mask=255.0.0.0 gateway=10.0.0.1"},
            {R"("enabled": ["dhcp"], "dhcpTimeoutMs": 0, "linkLocal": "169.254.9.9")",
             "linklocal ip=169.254.9.9 mask=255.255.0.0 gateway=0.0.0.0"},
            {R"("enabled": [])" + lease, "linklocal ip=169.254.1.1 mask=255.255.0.0 gateway=0.0.0.0"},
            {R"("forced": {"ip": "10.1.1.1", "mask": "255.0.0.0"})", persistent},
        };
        for (const auto& [camera, mode] : cases) {
            Bench bench(camera);
            bench.network.reportStates();
            const QByteArrayList initial = std::exchange(bench.events, {});
            QCOMPARE(bench.tell("B" + restart), "");
            bench.tell("+299");
            QCOMPARE(bench.network.nextDeadline(), bench.now + 1ms);
            QCOMPARE(bench.tell(discovery) + bench.events.join(), "");
            bench.tell("+1");
            QCOMPARE(std::exchange(bench.events, {}), QByteArrayList{"restarted camera=a mode=" + mode});
            bench.network.reportStates(); // as if it had been through before the scene began
            QCOMPARE(bench.events == initial, !camera.contains("forced"));
        }
    }

    void broadcastCommandStoresEverythingForItsMakersCameras()
    {
        const QByteArray command =
            "B42118010002800050000025E41000001000000020A000001FF0000000A0000FE6122620A" + gap;
        Bench bench;
        QCOMPARE(bench.tell(command), "0000801100000005");
        QCOMPARE(
            bench.events.value(0),
            "configured camera=a by=broadcast what=all mode=dhcp+lla persistent-ip=10.0.0.1 persistent-mask=255.0.0.0 persistent-gateway=10.0.0.254 name=\"a\\\"b\\x0A\"");
        QCOMPARE(bench.tell(QByteArray(command).replace("025E41000001", "025E41000002")), "");
        QCOMPARE(bench.tell(QByteArray(command).replace("0028", "0024").chopped(8)), "8002801100000005");
        bench.tell("O" + takeControl);
        QCOMPARE(bench.tell(command), "8006801100000005");
        QCOMPARE(Bench(R"("supported": ["persistent"])").tell(command), "8002801100000005");
        QCOMPARE(Bench(R"("broadcastCommand": false)").tell(command), "8001801100000005");
    }

    void aDescriptionNamesTheCameraAndItsUserId()
    {
        const auto make = [](sim::DescriptionKind kind) {
            return sim::makeDescription(kind, "Orvik", "a<b", "");
        };
        const QByteArray plain = QByteArray::fromHex(hexOf(make(sim::DescriptionKind::Plain)->bytes));
        QVERIFY(plain.contains("ModelName=\"a&lt;b\"") && plain.contains("<Address>0xE8</Address>"));
        const auto zipped = make(sim::DescriptionKind::Zipped);
        const auto file = std::span(zipped->bytes).first(gige::parseDescriptionUrl(zipped->firstUrl).length);
        QVERIFY(plain.startsWith(gige::unzipDescription(file, 1'000'000).c_str()));
        const auto second = make(sim::DescriptionKind::SecondUrl);
        QVERIFY(second->firstUrl.starts_with("http:") && second->secondUrl.starts_with("Local:"));
        Bench bench(R"("description": {"kind": "no-user-id"})");
        QCOMPARE(bench.tell(readRegister("00000934")), "000000810004000140000003");
        bench.tell(takeControl);
        QVERIFY(bench.tell("4201008200080005000000E841414141").startsWith("8004"));
    }

    void camerasHearAndReachOnlyWhatRealOnesWould()
    {
        const QByteArray quiet = "4201000200000001"; // without leave to broadcast
        const net::Ipv4 foreign{0x0A090001};
        const auto answers = [](Bench& bench, net::Ipv4 from, net::Ipv4 to, const QByteArray& command,
                                const net::MacAddress& mac = wire::broadcastMac) {
            bench.send(from, to, command, mac);
            const QByteArray heard = bench.heard().join();
            return heard.startsWith("arp") ? heard : heard.left(heard.lastIndexOf(' '));
        };
        const QByteArray near = "02000000AD00 192.168.10.21>192.168.10.1";
        Bench bench;
        for (const net::Ipv4 to : {net::limitedBroadcast, net::Ipv4{0xC0A80AFF}, cameraIp}) {
            QCOMPARE(answers(bench, hostIp, to, quiet, to == cameraIp ? cameraMac : wire::broadcastMac),
                     near);
        }
        for (const net::Ipv4 to : {net::Ipv4{0xC0A8FFFF}, net::Ipv4{0xC0A80A16}}) {
            QCOMPARE(answers(bench, hostIp, to, quiet), "");
        }
        QCOMPARE(answers(bench, hostIp, cameraIp, quiet, hostMac), "");
        QCOMPARE(answers(bench, foreign, net::limitedBroadcast, discovery),
                 "FFFFFFFFFFFF 192.168.10.21>255.255.255.255");
        // without that leave the answer has to find its way through the gateway
        QCOMPARE(answers(bench, foreign, net::limitedBroadcast, quiet), "arp 192.168.10.9");
        const net::MacAddress gateway{{2, 9, 9, 9, 9, 9}};
        const auto reply = wire::buildArp(
            cameraMac, {wire::ArpOperation::Reply, gateway, {0xC0A80A09}, cameraMac, cameraIp});
        bench.network.receive(0, reply.all(), bench.now);
        QVERIFY(bench.heard().value(0).startsWith("020909090909 192.168.10.21>10.9.0.1 0000"));
        bench.send(hostIp, net::limitedBroadcast, forceIp); // a new address is announced
        QCOMPARE(bench.heard(), (QByteArrayList{"arp 192.168.10.99",
                                                "02000000AD00 192.168.10.99>192.168.10.1 0000000500000009"}));

        const QByteArray elsewhere = R"("persistent": {"ip": "172.16.0.5", "mask": "255.255.0.0"})";
        QCOMPARE(Bench(elsewhere).tell("B" + quiet), "");
        QCOMPARE(Bench(R"("ignoreBroadcastAckFlag": true, )" + elsewhere).tell("B" + discovery), "");
    }

    void faultsOfCameraAndLine()
    {
        const QByteArray read = readRegister("00000A00");
        const QByteArray good = "02000000AD00 192.168.10.21>192.168.10.1 000000810004000100000000";
        const auto answersTo = [&](const QByteArray& camera, const QByteArray& network, int requests = 1,
                                   Duration wait = 0ms) {
            Bench bench(camera, network);
            for (int i = 0; i < requests; ++i) {
                bench.send(hostIp, cameraIp, read, cameraMac);
            }
            bench.network.advance(bench.now + wait);
            return bench.heard();
        };
        QCOMPARE(answersTo(R"("losePackets": [1, 4])", "{}", 4).size(), 2);
        QCOMPARE(answersTo(R"("repeatAnswers": 2)", "{}"), (QByteArrayList{good, good, good}));
        QCOMPARE(Bench(R"("answerWith": "wrongId")").tell(read), "000000810004000200000000");
        QCOMPARE(Bench(R"("answerWith": "wrongLength")").tell(read), "000000810008000100000000");
        QVERIFY(!Bench(R"("answerWith": "garbage")").tell(read).contains("0081000400"));
        QVERIFY(Bench(R"("refuse": {"READREG": "8007"})").tell(read).startsWith("8007"));
        QCOMPARE(answersTo(R"("answerDelayMs": 20)", R"({"delayMs": 10})", 1, 29ms).size(), 0);
        QCOMPARE(answersTo("", R"({"duplicatePercent": 100})"), QByteArrayList(4, good));
        QVERIFY(!Bench("", R"({"garbagePercent": 100})").tell(read).contains("0081000400"));
        QCOMPARE(answersTo("", R"({"reorderPercent": 100})", 1, 20ms), QByteArrayList{good});
        const auto lossy = answersTo(R"("lossPercent": 30)", R"({"seed": 7})", 400).size();
        QVERIFY2(lossy > 156 && lossy < 236, qPrintable(QString::number(lossy))); // 400 × 0.7²
        QCOMPARE(answersTo(R"("lossPercent": 30)", R"({"seed": 7})", 400).size(), lossy);

        Bench fading(R"("refuse": {"register:0x0014": "8004"}, "vanishAfterWrites": 1)");
        fading.tell(takeControl);
        QVERIFY(fading.tell("42010082000800050000001400000001").startsWith("8004"));
        QVERIFY(fading.tell("42010082000800060000064C01020304").startsWith("0000"));
        QCOMPARE(fading.tell(read), "");
        Bench gone(R"("vanishAfterRestart": true, "restartAck": true)");
        QCOMPARE(gone.tell(restart), "0000000500000008");
        gone.tell("+100000");
        QCOMPARE(gone.tell(read), "");
        QCOMPARE(Bench(R"("muteToDiscovery": true)").tell("B" + discovery), "");
    }

    void wrongScenesAreRefusedWithPlaceAndReason()
    {
        const auto camera = [](const QByteArray& more, const QByteArray& complaint) {
            return std::pair(sceneText(more), "adapters[0].cameras[0]." + complaint);
        };
        const std::vector<std::pair<std::string, QByteArray>> rows{
            {"{\n  \"adapters\": [\n}", "line 3 column 1: is not valid JSON"},
            {R"({"adapters": [{"name": "lo"}]})", "adapters[0].name: is no name for an adapter"},
            {R"({"adapters": [{"name": "a", "addresses": ["10.0.0.1"]}]})",
             "adapters[0].addresses[0]: must be an IPv4 address and a prefix length, as 192.168.10.1/24"},
            {R"({"adapters": [{"name": "a", "name": "b"}]})", "name: appears twice in one object"},
            {R"({"adapters": [{"name": "a", "cameras": [{"name": "a"}]}]})",
             "adapters[0].cameras[0].mac: is missing"},
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
    }

    void shippedScenesAreValid()
    {
        const QStringList scenes = QDir(SCENES).entryList({"*.json"});
        QVERIFY(scenes.size() >= 6);
        for (const QString& name : scenes) {
            QVERIFY_THROWS_NO_EXCEPTION((void)sim::loadScene(QDir(SCENES).filePath(name).toStdString()));
        }
    }
};

QTEST_GUILESS_MAIN(SimulatorTest)
#include "tst_simulator.moc"
