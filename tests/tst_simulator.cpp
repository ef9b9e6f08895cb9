#include "camera/camera.h"
#include "gige/bytes.h"
#include "network/virtualnetwork.h"
#include "scene/scene.h"
#include "wire/frames.h"

#include <QDir>
#include <QTest>

#include <zip.h>

using namespace std::chrono_literals;
using sim::Duration;
using sim::Instant;

namespace {

constexpr net::MacAddress hostMac{{0x02, 0, 0, 0, 0xAD, 0}};
constexpr net::MacAddress cameraMac{{0x02, 0x5E, 0x41, 0, 0, 1}};
constexpr net::Ipv4 hostIp{0xC0A80A01};   // 192.168.10.1
constexpr net::Ipv4 cameraIp{0xC0A80A15}; // 192.168.10.21
const QByteArray forceIpHead = "42110004003800090000025E41000001" + QByteArray(24, '0');
const QByteArray restartCommand = "42010004003800080000025E41000001" + QByteArray(96, '0');
const QByteArray discovery = "4211000200000001";

std::vector<std::uint8_t> bytesOf(const QByteArray& hex)
{
    const QByteArray raw = QByteArray::fromHex(hex);
    return {raw.begin(), raw.end()};
}

QByteArray hexOf(std::span<const std::uint8_t> bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()))
        .toHex()
        .toUpper();
}

/// A scene of one adapter and one camera at 192.168.10.21/24; `more` adds to the camera, or says it
/// otherwise.
sim::Scene sceneWith(const QByteArray& more = {}, const QByteArray& network = "{}")
{
    QByteArray camera = R"("name": "a", "mac": "025E41000001", "vendor": "Orvik", "model": "km-1300",
        "version": "2.4", "info": "sensor 7", "serial": "21000001")";
    for (const auto& [key, value] :
         {std::pair<QByteArray, QByteArray>{R"("userId")", R"("Front left")"},
          {R"("enabled")", R"(["persistent"])"},
          {R"("persistent")",
           R"({"ip": "192.168.10.21", "mask": "255.255.255.0", "gateway": "192.168.10.9"})"}}) {
        camera += more.contains(key + ":") ? "" : ", " + key + ": " + value;
    }
    camera += more.isEmpty() ? "" : ", " + more;
    return sim::parseScene(
        (R"({"adapters": [{"name": "lab0", "addresses": ["192.168.10.1/24"], "cameras": [{)" + camera +
         R"(}]}], "network": )" + network + "}")
            .toStdString(),
        ".");
}

/// One camera by itself.
struct Solo
{
    explicit Solo(const QByteArray& more = {}) : camera(sceneWith(more).cameras.at(0).config, now) {}

    /// Each answer in hexadecimal, separated by blanks. A command of "B..." comes by broadcast, one of "O..."
    /// from another application; "+N" lets N milliseconds pass.
    QByteArray hear(QByteArray command)
    {
        effects.clear();
        if (command.startsWith('+')) {
            now += Duration(command.mid(1).toInt());
            camera.advance(now, effects);
        } else {
            const sim::Endpoint from{hostIp,
                                     static_cast<std::uint16_t>(command.startsWith('O') ? 2000 : 1000)};
            const bool isBroadcast = command.startsWith("B");
            command =
                from.port == 2000 || (isBroadcast && command.startsWith("B4")) ? command.mid(1) : command;
            camera.hear({from, isBroadcast, bytesOf(command)}, now, effects);
        }
        QByteArrayList answers;
        for (const sim::Answer& answer : effects.answers) {
            answers += hexOf(answer.message.all());
        }
        for (const sim::EventLine& event : effects.events) {
            events += QByteArray::fromStdString(event.text());
        }
        return answers.join(' ');
    }

    [[nodiscard]] QByteArrayList eventsOf(const QByteArray& word) const
    {
        QByteArrayList found = events;
        found.removeIf([&](const QByteArray& event) { return !event.startsWith(word); });
        return found;
    }

    Instant now{};
    sim::Effects effects;
    sim::Camera camera;
    QByteArrayList events;
};

/// A camera on its wire; frames to the host and events are kept.
struct Bench
{
    explicit Bench(const sim::Scene& scene)
        : network(
              scene, now,
              [this](std::size_t, std::span<const std::uint8_t> frame) {
                  frames.emplace_back(frame.begin(), frame.end());
              },
              [this](const sim::EventLine& event) { events += QByteArray::fromStdString(event.text()); })
    {
        frames.clear();
    }

    void send(net::Ipv4 from, net::Ipv4 to, const QByteArray& command,
              const net::MacAddress& toMac = wire::broadcastMac)
    {
        const auto payload = bytesOf(command);
        const wire::Frame frame = wire::buildUdp(toMac, hostMac, {from, to, wire::Protocol::Udp, {}},
                                                 {1000, gvcp::Port, payload}, 1);
        network.receive(0, frame.all(), now);
    }

    /// What has come back since the last call: "MAC IP>IP payload" for each datagram, "arp IP" for a request.
    QByteArrayList heard()
    {
        QByteArrayList lines;
        for (const auto& bytes : frames) {
            const auto frame = wire::parseEthernet(bytes);
            if (const auto arp = wire::parseArp(*frame)) {
                lines += QByteArray(arp->operation == wire::ArpOperation::Request ? "arp " : "is-at ") +
                         net::formatIpv4(arp->targetIp).c_str();
            } else if (const auto packet = wire::parseIpv4(*frame)) {
                const auto udp = wire::parseUdp(*packet);
                const auto mac = net::formatMac(frame->to);
                lines += QByteArray(mac.c_str()) + " " + net::formatIpv4(packet->from).c_str() + ">" +
                         net::formatIpv4(packet->to).c_str() + " " +
                         hexOf(udp ? udp->payload : packet->payload);
            }
        }
        frames.clear();
        return lines;
    }

    Instant now{};
    std::vector<std::vector<std::uint8_t>> frames;
    QByteArrayList events;
    sim::VirtualNetwork network;
};

QByteArray readRegister(const QByteArray& address)
{
    return "4201008000040001" + address;
}

constexpr auto takeControl = "420100820008000200000A0000000002";

} // namespace

/// The simulated cameras as such: what they answer, whom they hear, and how scenes describe them.
class SimulatorTest : public QObject
{
    Q_OBJECT

private slots:
    void discoveryAcknowledgeHasEveryFieldInItsPlace();
    void commandsGetTheirAnswers_data();
    void commandsGetTheirAnswers();
    void repeatedWriteIsAnsweredButNotExecutedAgain();
    void slowWriteIsAnnounced();
    void controlIsTakenKeptAndLost();
    void ipConfigurationCycle_data();
    void ipConfigurationCycle();
    void broadcastCommandStoresEverythingForItsMakersCameras();
    void descriptionKinds();
    void framesOfARealKernelAreUnderstood();
    void camerasHearAndReachOnlyWhatRealOnesWould();
    void faultsOfCameraAndLine();
    void wrongScenesAreRefusedWithPlaceAndReason_data();
    void wrongScenesAreRefusedWithPlaceAndReason();
    void countMultipliesACamera();
    void shippedScenesAreValid();
    void eventValuesAreQuoted();
};

void SimulatorTest::discoveryAcknowledgeHasEveryFieldInItsPlace()
{
    Solo solo;
    const auto text = [](const char* value, qsizetype size) {
        return QByteArray(value).leftJustified(size, '\0').toHex().toUpper();
    };
    const QByteArray gap(24, '0');
    const QByteArray expected = "0000000300F80001" // success, DISCOVERY_ACK, 248 bytes, id 1
                                "00010002800000010000025E41000001"
                                "0000000700000005" +
                                gap + "C0A80A15" + gap + "FFFFFF00" + gap + "C0A80A09" + text("Orvik", 32) +
                                text("km-1300", 32) + text("2.4", 32) + text("sensor 7", 48) +
                                text("21000001", 16) + text("Front left", 16);
    QCOMPARE(solo.hear("B" + discovery), expected);
    solo.hear("B" + discovery); // the same search through another address is no second find
    QCOMPARE(solo.events, QByteArrayList{"found camera=a mac=025E41000001 from=192.168.10.1:1000"});
}

void SimulatorTest::commandsGetTheirAnswers_data()
{
    QTest::addColumn<QByteArrayList>("commands");
    QTest::addColumn<QByteArray>("answer"); // to the last command
    const auto row = [](const char* name, const QByteArrayList& commands, const QByteArray& answer) {
        QTest::newRow(name) << commands << answer;
    };
    row("one register", {readRegister("00000024")}, "0000008100040001C0A80A15");
    row("three registers", {"42010080000C00030000001400000934000009FC"}, "800300810008000300000005C0000003");
    row("no register", {"4201008000000001"}, "8002008100000001");
    row("register between two", {readRegister("00000026")}, "8005008100000001");
    row("register that is not there", {readRegister("00000100")}, "8003008100000001");
    row("memory", {"4201008400080004000000E80000000C"},
        "0000008500100004000000E846726F6E74206C65667400"
        "00");
    row("memory, 514 bytes",
        {"4201008400080004000002000000"
         "0202"},
        "8002008500000004");
    row("memory, 6 bytes", {"42010084000800040000020000000006"}, "8005008500000004");
    row("memory, over the edge",
        {"420100840008000400000"
         "5F80000000C"},
        "00000085001000"
        "04000005F8" +
            QByteArray(16, '0') + "00000001");
    row("memory, into nothing",
        {"4201008400080004000006000000000"
         "8"},
        "8003008500000004");
    row("write without control", {"42010082000800050000064C01020304"},
        "80060083000400050000"
        "0000");
    row("write with control", {takeControl, "42010082000800050000064C01020304", readRegister("0000064C")},
        "000000810004000101020304");
    row("second of three writes fails",
        {takeControl, "420100820018000500000938000003E8000000240000000000000938000007D0"},
        "80040083000400050000"
        "0001");
    row("link-local stays on", {takeControl, "42010082000800060000001400000002", readRegister("00000014")},
        "000000810004000100000006");
    row("mode nobody knows", {takeControl, "42010082000800060000001400000008"},
        "80020083000400060000"
        "0000");
    row("write memory",
        {takeControl, "4201008600140007000000E8" + QByteArray("desk").toHex() + QByteArray(24, '0'),
         "420100840008000800000"
         "0E800000008"},
        "0000008"
        "5000C0008000000E86465736B00000000");
    row("write memory, odd", {takeControl, "4201008600060007000000E86465"},
        "8005008700"
        "0000"
        "07");
    row("privilege nobody knows", {"420100820008000200000A0000000004"},
        "80020083000400020000"
        "0000");
    row("controller's address", {takeControl, readRegister("00000A14")}, "0000008100040001C0A80A01");
    row("unknown command", {"4201123400000009"}, "8001123500000009");
    row("unknown command, no acknowledge wanted", {"4200123400000009"}, "");
    row("unknown command by broadcast", {"B4201123400000009"}, "");
    row("wrong key",
        {"4301008000040001"
         "00000024"},
        "800E008100000001");
    row("wrong length", {"420100800008000100000024"}, "800E008100000001");
    row("no request id", {"420100800004000000000024"}, "");
    row("less than a header", {"42010080000400"}, "");
    row("read without acknowledge", {"420000800004000100000024"}, "");
    row("forced address",
        {"B" + forceIpHead + "C0A80A63" + QByteArray(24, '0') + "FFFFFF00" + QByteArray(32, '0'),
         readRegister("00000024")},
        "0000008100040001C0A80A63");
    row("forced multicast address",
        {"B" + forceIpHead + "E0000001" + QByteArray(24, '0') + "FFFFFF00" + QByteArray(32, '0')},
        "8002000500000009");
    row("forced address for another",
        {"B" + QByteArray(forceIpHead).replace("025E41000001", "025E41000002") + "C0A80A63" +
         QByteArray(24, '0') + "FFFFFF00" + QByteArray(32, '0')},
        "");
    row("forced address while controlled",
        {takeControl,
         "O" + forceIpHead + "C0A80A63" + QByteArray(24, '0') + "FFFFFF00" + QByteArray(32, '0')},
        "8006000500000009");
    row("deaf while restarting", {restartCommand, "+299", readRegister("00000024")}, "");
    row("back after the restart", {restartCommand, "+300", readRegister("00000024")},
        "0000008100040001C0A80A15");
}

void SimulatorTest::commandsGetTheirAnswers()
{
    QFETCH(const QByteArrayList, commands);
    QFETCH(const QByteArray, answer);
    Solo solo;
    QByteArray last;
    for (const QByteArray& command : commands) {
        last = solo.hear(command);
    }
    QCOMPARE(last, answer);
}

void SimulatorTest::repeatedWriteIsAnsweredButNotExecutedAgain()
{
    Solo solo;
    solo.hear(takeControl);
    const QByteArray write = "42010082000800050000064C0102030"
                             "4";
    const QByteArray answer = solo.hear(write);
    QCOMPARE(solo.hear(write), answer);
    solo.hear("42010082000800060000065CFFFF0000");
    const auto configured = [&] { return solo.eventsOf("configured").size(); };
    QCOMPARE(configured(), 2);
    solo.hear(write); // no repeat of the latest write any more
    QCOMPARE(configured(), 3);
    QVERIFY(solo.hear("O" + QByteArray("42010082000800060000065CFFFF0000")).startsWith("8006"));
}

void SimulatorTest::slowWriteIsAnnounced()
{
    Solo solo(R"("pendingAckMs": 700)");
    QCOMPARE(solo.hear(takeControl), "000000830004000200000001");
    const QByteArray write = "42010082000800050000064C01020304";
    QCOMPARE(solo.hear(write), "0000008900040005000002BC 000000830004000500000001");
    QCOMPARE(solo.effects.answers.at(1).delay, 700ms);
    solo.hear("+300");
    QCOMPARE(solo.hear(write), "000000890004000500000190");
    solo.hear("+400");
    QCOMPARE(solo.hear(write), "000000830004000500000001");
}

void SimulatorTest::controlIsTakenKeptAndLost()
{
    Solo solo;
    const QByteArray privilege = readRegister("00000A00");
    solo.hear("420100820008000200000A0000000001"); // exclusive
    QCOMPARE(solo.hear("O" + privilege), "000000810004000100000001");
    QCOMPARE(solo.hear("O" + readRegister("00000024")), "8006008100000001");
    QCOMPARE(solo.hear("O" + QByteArray(takeControl)), "800600830004000200000000");
    solo.hear("+2999");
    solo.hear(privilege); // the holder's heartbeat
    solo.hear("+2999");
    QCOMPARE(solo.hear("O" + privilege), "000000810004000100000001");
    solo.hear("+1");
    QCOMPARE(solo.hear("O" + QByteArray(takeControl)), "000000830004000200000001");
    solo.hear(restartCommand); // refused: the other application is in control
    solo.hear("O" + restartCommand);
    QCOMPARE(solo.eventsOf("controlled"),
             (QByteArrayList{"controlled camera=a by=192.168.10.1 privilege=exclusive reason=written",
                             "controlled camera=a by=192.168.10.1 privilege=none reason=heartbeat",
                             "controlled camera=a by=192.168.10.1 privilege=control reason=written",
                             "controlled camera=a by=192.168.10.1 privilege=none reason=restart"}));

    Solo busy(R"("inUse": "control", "inUseBy": "192.168.10.77", "inUseForMs": 5000)");
    QCOMPARE(busy.hear(readRegister("00000A14")), "0000008100040001C0A80A4D");
    busy.hear("+4999");
    QVERIFY(busy.hear(takeControl).startsWith("8006"));
    busy.hear("+1");
    QVERIFY(busy.hear(takeControl).startsWith("0000"));
}

void SimulatorTest::ipConfigurationCycle_data()
{
    QTest::addColumn<QByteArray>("camera");
    QTest::addColumn<int>("duration"); // ms
    QTest::addColumn<QByteArray>("outcome");
    const QByteArray lease = R"(, "dhcp": {"ip": "10.0.0.7", "mask": "255.0.0.0", "gateway": "10.0.0.1"})";
    QTest::newRow("persistent goes before DHCP")
        << R"("enabled": ["dhcp", "persistent"], "restartMs": 50)" + lease << 50
        << QByteArray("mode=static ip=192.168.10.21 mask=255.255.255.0 gateway=192.168.10.9");
    QTest::newRow("enabled but never set")
        << R"("enabled": ["persistent", "dhcp"], "persistent":
        {"ip": "0.0.0.0", "mask": "0.0.0.0"})" +
               lease
        << 300 << QByteArray("mode=dhcp ip=10.0.0.7 mask=255.0.0.0 gateway=10.0.0.1");
    QTest::newRow("nobody answers") << QByteArray(R"("enabled": ["dhcp"], "dhcpTimeoutMs": 1000,
        "linkLocal": "169.254.9.9")")
                                    << 1300
                                    << QByteArray(
                                           "mode=linklocal ip=169.254.9.9 mask=255.255.0.0 gateway=0.0.0.0");
    QTest::newRow("neither") << R"("enabled": [])" + lease << 300
                             << QByteArray("mode=linklocal ip=169.254.1.1 mask=255.255.0.0 gateway=0.0.0.0");
    QTest::newRow("forced ends")
        << QByteArray(R"("forced": {"ip": "10.1.1.1", "mask": "255.0.0.0"})") << 300
        << QByteArray("mode=static ip=192.168.10.21 mask=255.255.255.0 gateway=192.168.10.9");
}

void SimulatorTest::ipConfigurationCycle()
{
    QFETCH(const QByteArray, camera);
    QFETCH(const int, duration);
    QFETCH(const QByteArray, outcome);
    Solo solo(camera);
    const auto initial = solo.camera.addressing();
    QCOMPARE(solo.hear(restartCommand), QByteArray());
    solo.hear("+" + QByteArray::number(duration - 1));
    QVERIFY(solo.camera.isDeaf());
    QVERIFY(solo.events.isEmpty());
    QCOMPARE(solo.camera.nextDeadline(), solo.now + 1ms);
    solo.hear("+1");
    QCOMPARE(solo.events, QByteArrayList{"restarted camera=a " + outcome});
    if (!camera.contains("forced")) {
        QVERIFY(initial == solo.camera.addressing()); // as if it had been through before the scene began
    }
}

void SimulatorTest::broadcastCommandStoresEverythingForItsMakersCameras()
{
    const QByteArray command = "4211801000280005"
                               "0000025E41000001"
                               "00000002"
                               "0A000001"
                               "FF000000"
                               "0A0000FE" +
                               QByteArray("desk").toHex() + QByteArray(24, '0');
    Solo solo;
    QCOMPARE(solo.hear("B" + command), "0000801100000005");
    QCOMPARE(solo.events.value(0),
             "configured camera=a by=broadcast what=all mode=dhcp+lla persistent-ip=10.0.0.1"
             " persistent-mask=255.0.0.0 persistent-gateway=10.0.0.254 name=\"desk\"");
    QCOMPARE(solo.camera.addressing().ip, cameraIp);
    QCOMPARE(solo.hear("B" + QByteArray(command).replace("025E41000001", "025E41000002")), "");
    QCOMPARE(solo.hear("B" + QByteArray(command).replace("0028", "0024").chopped(8)), "8002801100000005");
    solo.hear(takeControl);
    QCOMPARE(solo.hear("O" + command), "8006801100000005");
    QCOMPARE(Solo(R"("supported": ["persistent"])").hear("B" + command), "8002801100000005");
    QCOMPARE(Solo(R"("broadcastCommand": false)").hear("B" + command), "8001801100000005");
    sim::CameraConfig stranger = sceneWith().cameras[0].config;
    stranger.knowsBroadcastCommand = false;
    solo.camera = sim::Camera(stranger, {});
    QCOMPARE(solo.hear("B" + command), "");
}

void SimulatorTest::descriptionKinds()
{
    using Kind = sim::DescriptionKind;
    const auto make = [](Kind kind) { return sim::makeDescription(kind, "Orvik", "a<b", ""); };
    const auto textOf = [](const sim::Description& d) { return QByteArray::fromHex(hexOf(d.bytes)); };
    const QByteArray plain = textOf(*make(Kind::Plain));
    QVERIFY(plain.contains("ModelName=\"a&lt;b\"") && plain.contains("<Address>0xE8</Address>"));
    QVERIFY(textOf(*make(Kind::ReadOnlyUserId)).contains("<Length>16</Length>\n    <AccessMode>RO"));
    QVERIFY(!textOf(*make(Kind::NoUserId)).contains("DeviceUserID"));
    QVERIFY(!textOf(*make(Kind::Malformed)).contains("</RegisterDescription>"));
    QVERIFY(make(Kind::Missing)->firstUrl.empty() && make(Kind::Missing)->secondUrl.empty());
    QVERIFY(make(Kind::SecondUrl)->firstUrl.starts_with("http:"));
    QVERIFY(make(Kind::SecondUrl)->secondUrl.starts_with("Local:camera.xml;10000;"));
    QVERIFY(make(Kind::Huge)->firstUrl.ends_with(";40000000"));

    const auto archive = make(Kind::Zipped);
    QVERIFY(archive->firstUrl.starts_with("Local:camera.zip;10000;"));
    zip_error_t error;
    const auto length =
        QByteArray::fromStdString(archive->firstUrl).split(';').last().toULongLong(nullptr, 16);
    zip_source_t* const source = zip_source_buffer_create(archive->bytes.data(), length, 0, &error);
    zip_t* const zip = zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &error);
    QVERIFY(zip != nullptr);
    QByteArray text(100000, '\0');
    zip_file_t* const file = zip_fopen_index(zip, 0, 0);
    text.resize(zip_fread(file, text.data(), 100000));
    zip_fclose(file);
    zip_discard(zip);
    QVERIFY(text.endsWith("</RegisterDescription>\n") && plain.startsWith(text.first(200)));

    Solo solo(R"("description": {"kind": "no-user-id"})");
    QCOMPARE(solo.hear(readRegister("00000934")), "000000810004000140000003");
    solo.hear(takeControl);
    QVERIFY(solo.hear("420100820008000500"
                      "0000E841414141")
                .startsWith("8004"));
}

void SimulatorTest::framesOfARealKernelAreUnderstood()
{
    const QByteArray head = "FFFFFFFFFFFF02000000AD0008004500";
    const QByteArray kernels = head + "0024EE4940004011"
                                      "81D6C0A80A01FFFFFFFF"
                                      "A0D50F74001042C7"
                                      "4211000200000001";
    const auto frame = bytesOf(kernels);
    const auto packet = wire::parseIpv4(wire::parseEthernet(frame).value());
    const auto udp = wire::parseUdp(packet.value());
    QCOMPARE(hexOf(udp.value().payload), discovery);
    QCOMPARE(hexOf(wire::buildUdp(wire::broadcastMac, hostMac, *packet, *udp, 0xEE49).all()),
             kernels + QByteArray(20, '0')); // ours is padded as on a wire
    for (std::size_t at = 14; at < frame.size(); ++at) {
        auto broken = frame;
        broken[at] ^= 0x20;
        const auto ip = wire::parseIpv4(*wire::parseEthernet(broken));
        QVERIFY2(!ip || !wire::parseUdp(*ip), qPrintable(QString::number(at)));
        broken.resize(at);
        const auto cut = wire::parseIpv4(*wire::parseEthernet(broken));
        QVERIFY(!cut);
    }
    const auto fragment = bytesOf(head + "0024EE4920004011"
                                         "A1D6C0A80A01FFFFFFFF"
                                         "A0D50F74001042C7"
                                         "4211000200000001");
    QVERIFY(!wire::parseIpv4(*wire::parseEthernet(fragment)));

    Bench bench(sceneWith());
    bench.network.receive(0,
                          bytesOf("FFFFFFFFFFFF02000000AD00080600010800060400"
                                  "0102000000AD00C0A80A01000000000000C0A80A15"),
                          bench.now);
    QCOMPARE(bench.frames.size(), 1U);
    QCOMPARE(hexOf(bench.frames[0]), "02000000AD00025E41000001080600010800060400"
                                     "02025E41000001C0A80A15"
                                     "02000000AD00C0A80A01" +
                                         QByteArray(36, '0'));
    bench.frames.clear();
    const auto echo = bytesOf("0800F7F600090000");
    auto ping =
        wire::buildEchoReply(cameraMac, hostMac, {hostIp, cameraIp, wire::Protocol::Icmp, {}}, echo, 1);
    bytes::put16(ping.bytes, 34, 0x0800);
    bytes::put16(ping.bytes, 36, 0xF7F6);
    bench.network.receive(0, ping.all(), bench.now);
    QCOMPARE(bench.heard(), QByteArrayList{"02000000AD00 192.168.10.21>192.168.10.1 0000FFF600090000"});
}

void SimulatorTest::camerasHearAndReachOnlyWhatRealOnesWould()
{
    const QByteArray quiet = "4201000200000001"; // without leave to broadcast
    const net::Ipv4 foreign{0x0A090001};
    const auto answers = [](Bench& bench, net::Ipv4 from, net::Ipv4 to, const QByteArray& command,
                            const net::MacAddress& mac = wire::broadcastMac) {
        bench.send(from, to, command, mac);
        QByteArrayList lines = bench.heard();
        for (QByteArray& line : lines) {
            line = line.startsWith("arp") ? line : line.left(line.lastIndexOf(' '));
        }
        return lines;
    };
    const QByteArrayList near{"02000000AD00 192.168.10.21>192.168.10.1"};
    Bench bench(sceneWith());
    QCOMPARE(answers(bench, hostIp, net::limitedBroadcast, quiet), near);
    QCOMPARE(answers(bench, hostIp, {0xC0A80AFF}, quiet), near);
    QCOMPARE(answers(bench, hostIp, cameraIp, quiet, cameraMac), near);
    QCOMPARE(answers(bench, hostIp, cameraIp, quiet, hostMac), QByteArrayList());
    QCOMPARE(answers(bench, hostIp, {0xC0A8FFFF}, quiet), QByteArrayList());
    QCOMPARE(answers(bench, hostIp, {0xC0A80A16}, quiet), QByteArrayList());
    QCOMPARE(answers(bench, foreign, net::limitedBroadcast, discovery),
             QByteArrayList{"FFFFFFFFFFFF 192.168.10.21>255.255.255.255"});
    // without that leave the answer has to find its way through the gateway
    QCOMPARE(answers(bench, foreign, net::limitedBroadcast, quiet), QByteArrayList{"arp 192.168.10.9"});
    const net::MacAddress gateway{{2, 9, 9, 9, 9, 9}};
    const auto reply =
        wire::buildArp(cameraMac, {wire::ArpOperation::Reply, gateway, {0xC0A80A09}, cameraMac, cameraIp});
    bench.network.receive(0, reply.all(), bench.now);
    QVERIFY(bench.heard().value(0).startsWith("020909090909 192.168.10.21>10.9.0.1 0000"));
    QCOMPARE(answers(bench, foreign, cameraIp, quiet, cameraMac),
             QByteArrayList{"020909090909 192.168.10.21>10.9.0.1"});

    // a new address is announced, and the old one is not answered for any more
    bench.send(hostIp, net::limitedBroadcast,
               forceIpHead + "C0A80A63" + QByteArray(24, '0') + "FFFFFF00" + QByteArray(32, '0'));
    QCOMPARE(bench.heard(), (QByteArrayList{"arp 192.168.10.99",
                                            "02000000AD00 192.168.10.99>192.168.10.1 0000000500000009"}));
    const wire::Arp who{wire::ArpOperation::Request, hostMac, hostIp, {}, cameraIp};
    bench.network.receive(0, wire::buildArp(wire::broadcastMac, who).all(), bench.now);
    QCOMPARE(bench.heard(), QByteArrayList());
    Bench alone(sceneWith(R"("persistent": {"ip": "172.16.0.5", "mask": "255.255.0.0"})"));
    QCOMPARE(answers(alone, hostIp, net::limitedBroadcast, quiet), QByteArrayList());
    Bench two(sceneWith(
        R"("ignoreBroadcastAckFlag": true, "persistent": {"ip": "172.16.0.5", "mask": "255.255.0.0"})"));
    QCOMPARE(answers(two, hostIp, net::limitedBroadcast, discovery), QByteArrayList());
}

void SimulatorTest::faultsOfCameraAndLine()
{
    const QByteArray read = readRegister("00000A00");
    const QByteArray good = "02000000AD00 192.168.10.21>192.168.10.1 000000810004000100000000";
    const auto answersTo = [&](const QByteArray& camera, const QByteArray& network, int requests,
                               Duration wait = 0ms) {
        Bench bench(sceneWith(camera, network));
        for (int i = 0; i < requests; ++i) {
            bench.send(hostIp, cameraIp, read, cameraMac);
        }
        bench.network.advance(bench.now + wait);
        return bench.heard();
    };
    const auto tails = [](const QByteArrayList& lines) { return lines.join().split(' ').last(); };
    QCOMPARE(answersTo(R"("losePackets": [1, 3])", "{}", 4).size(), 2);
    QCOMPARE(answersTo(R"("repeatAnswers": 2)", "{}", 1), (QByteArrayList{good, good, good}));
    QCOMPARE(answersTo(R"("muteToUnicast": true)", "{}", 1).size(), 0);
    QCOMPARE(tails(answersTo(R"("answerWith": "wrongId")", "{}", 1)), "000000810004000200000000");
    QCOMPARE(tails(answersTo(R"("answerWith": "wrongLength")", "{}", 1)), "000000810008000100000000");
    QVERIFY(tails(answersTo(R"("answerWith": "truncated")", "{}", 1)).size() < 24);
    QVERIFY(!tails(answersTo(R"("answerWith": "garbage")", "{}", 1)).contains("0081000400"));
    QVERIFY(tails(answersTo(R"("refuse": {"READREG": "8007"})", "{}", 1)).startsWith("8007"));
    QVERIFY(tails(answersTo(R"("refuse": {"read:0xA00": "8FFF"})", "{}", 1)).startsWith("8FFF"));
    QCOMPARE(answersTo(R"("answerDelayMs": 20)", R"({"delayMs": 10})", 1, 29ms).size(), 0);
    QCOMPARE(answersTo(R"("answerDelayMs": 20)", R"({"delayMs": 10})", 1, 30ms).size(), 1);
    QCOMPARE(answersTo("", R"({"lossPercent": 100})", 9).size(), 0);
    QCOMPARE(answersTo("", R"({"duplicatePercent": 100})", 1), (QByteArrayList{good, good, good, good}));
    QVERIFY(!tails(answersTo("", R"({"garbagePercent": 100})", 1)).contains("0081000400"));
    QVERIFY(answersTo("", R"({"reorderPercent": 100})", 1, 20ms) == QByteArrayList{good});
    const auto lossy = answersTo(R"("lossPercent": 30)", R"({"seed": 7})", 400).size();
    QVERIFY2(lossy > 156 && lossy < 236, qPrintable(QString::number(lossy))); // 400 × 0.7²
    QCOMPARE(answersTo(R"("lossPercent": 30)", R"({"seed": 7})", 400).size(), lossy);

    Solo solo(R"("refuse": {"register:0x0014": "8004"}, "vanishAfterWrites": 2)");
    solo.hear(takeControl);
    QVERIFY(solo.hear("42010082000800050000001400000001").startsWith("8004"));
    QVERIFY(solo.hear("42010082000800060000064C01020304").startsWith("0000"));
    QVERIFY(solo.hear("42010082000800070000064C01020305").startsWith("0000"));
    QCOMPARE(solo.hear(read), "");
    Solo gone(R"("vanishAfterRestart": true, "restartAck": true)");
    QCOMPARE(gone.hear(restartCommand), "0000000500000008");
    gone.hear("+100000");
    QCOMPARE(gone.hear(read), "");
    QCOMPARE(Solo(R"("muteToDiscovery": true)").hear("B" + discovery), "");
    const QByteArray force =
        "B" + forceIpHead + "C0A80A63" + QByteArray(24, '0') + "FFFFFF00" + QByteArray(32, '0');
    QCOMPARE(Solo(R"("forceIpAck": "never")").hear(force), "");
    Solo old(R"("forceIpAck": "old-address")");
    old.hear(force);
    QCOMPARE(old.effects.answers.at(0).source.ip, cameraIp);
}

void SimulatorTest::wrongScenesAreRefusedWithPlaceAndReason_data()
{
    QTest::addColumn<QByteArray>("scene");
    QTest::addColumn<QByteArray>("complaint");
    const auto row = [](const QByteArray& scene, const QByteArray& complaint) {
        QTest::newRow(complaint.constData()) << scene << complaint;
    };
    const auto camera = [&](const QByteArray& from, const QByteArray& to, const QByteArray& complaint) {
        QByteArray text = R"({"adapters": [{"name": "lab0", "cameras": [{"name": "a", "mac": "025E41000001",
            "vendor": "Orvik", "model": "km-1", "serial": "1", "count": 2}]}]})";
        row(text.replace(from, to), "adapters[0].cameras[0]." + complaint);
    };
    row("{\n  \"adapters\": [\n}", "line 3 column 1: is not valid JSON");
    row("[]", "$: must be an object");
    row("{}", "adapters: needs at least one adapter");
    row(R"({"adapters": [{"name": "lo"}]})", "adapters[0].name: is no name for an adapter");
    row(R"({"adapters": [{"name": "a", "addresses": ["10.0.0.1"]}]})",
        "adapters[0].addresses[0]: must be an IPv4 address and a prefix length, as 192.168.10.1/24");
    row(R"({"adapters": [{"name": "a"}, {"name": "a"}]})",
        "adapters[1].name: is the name of another adapter, too");
    row(R"({"adapters": [{"name": "a"}], "network": {"lossPercent": 101}})",
        "network.lossPercent: must be a number from 0 to 100");
    row(R"({"adapters": [{"name": "a", "name": "b"}]})", "name: appears twice in one object");
    camera(R"("model": "km-1",)", "", "model: is missing");
    camera(R"("count": 2)", R"("restartMS": 2)", "restartMS: is no known key");
    camera("025E41000001", "025E4100000", "mac: is no MAC address");
    camera("025E41000001", "035E41000001", "mac: is not the MAC address of one device");
    camera("025E41000001", "02000000AD00", "mac: is the MAC address of another device, too");
    camera(R"("serial": "1")", R"("serial": "x")", "serial: must end in a number to be counted on");
    camera("km-1", QByteArray(33, 'k'), "model: is longer than 32 bytes");
    camera(R"("count": 2)", R"("count": -1)", "count: must be a whole number from 1 to 4096");
    camera(R"("count": 2)", R"("enabled": ["bootp"])", "enabled[0]: must be one of persistent, dhcp");
    camera(R"("count": 2)", R"("supported": [], "enabled": ["dhcp"])",
           "enabled: holds a mode that is not supported");
    camera(R"("count": 2)", R"("dhcp": {"ip": "10.1.1.1", "mask": "255.0.255.0"})",
           "dhcp.mask: is no subnet mask");
    camera(R"("count": 2)", R"("linkLocal": "169.254.0.1")",
           "linkLocal: is not within 169.254.1.0 to 169.254.254.255");
    camera(R"("count": 2)", R"("refuse": {"FORCE": "8007"})",
           "refuse.FORCE: is neither a command nor register:ADDRESS nor read:ADDRESS");
    camera(R"("count": 2)", R"("refuse": {"FORCEIP": "7"})",
           "refuse.FORCEIP: must be a status from 8001 to FFFF");
    camera(R"("count": 2)", R"("inUseBy": "10.1.1.1")", "inUseBy: needs inUse");
    camera(R"("count": 2)", R"("alsoOn": ["lab1"])", "alsoOn[0]: is no adapter of this scene");
    camera(R"("count": 2)", R"("description": {"kind": "plain", "file": "no.xml"})",
           "description.file: cannot be read (No such file or directory)");
}

void SimulatorTest::wrongScenesAreRefusedWithPlaceAndReason()
{
    QFETCH(const QByteArray, scene);
    QFETCH(const QByteArray, complaint);
    try {
        (void)sim::parseScene(scene.toStdString(), ".");
        QFAIL("the scene was accepted");
    } catch (const sim::SceneError& error) {
        QCOMPARE(QByteArray(error.what()), complaint);
    }
}

void SimulatorTest::countMultipliesACamera()
{
    const auto cameras =
        sceneWith(
            R"("count": 300, "forced": {"ip": "10.0.0.250", "mask": "255.0.0.0", "gateway": "10.0.0.1"})")
            .cameras;
    QCOMPARE(cameras.size(), 300U);
    const sim::CameraConfig& last = cameras.back().config;
    QCOMPARE(last.name, "a-300");
    QCOMPARE(net::formatMac(last.mac), "025E4100012C");
    QCOMPARE(last.identity.serial, "21000300");
    QCOMPARE(net::formatIpv4(last.persistent.ip), "192.168.11.64");
    QCOMPARE(net::formatIpv4(last.forced->ip), "10.0.2.37");
    QCOMPARE(net::formatIpv4(last.forced->gateway), "10.0.0.1");
    QCOMPARE(last.linkLocal.value - cameras.front().config.linkLocal.value, 299U);
    QCOMPARE(last.description, cameras.front().config.description); // one for all of a model
}

void SimulatorTest::shippedScenesAreValid()
{
    const QDir directory(QStringLiteral(SCENES));
    const QStringList scenes = directory.entryList({QStringLiteral("*.json")});
    QVERIFY(scenes.size() >= 6);
    for (const QString& name : scenes) {
        try {
            (void)sim::loadScene(directory.filePath(name).toStdString());
        } catch (const sim::SceneError& error) {
            QFAIL(qPrintable(name + QLatin1String(": ") + QLatin1String(error.what())));
        }
    }
}

void SimulatorTest::eventValuesAreQuoted()
{
    const auto line =
        sim::EventLine("e").add("a", "x=1").add("b", "two words").add("c", "").addQuoted("d", "\"\\\n\x7Fé");
    QCOMPARE(QByteArray::fromStdString(line.text()), R"(e a=x=1 b="two words" c="" d="\"\\\x0A\x7Fé")");
}

QTEST_GUILESS_MAIN(SimulatorTest)
#include "tst_simulator.moc"
