#include "attempts.h"
#include "codec.h"
#include "errors.h"
#include "gvcp/bytes.h"
#include "net/routes.h"
#include "obstacles.h"
#include "record.h"
#include "request.h"
#include "support/columns.h"

#include <QtTest>

using namespace gvcp;
using namespace std::chrono_literals;

namespace {

Packet fromHex(const QByteArray& hex)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    return {bytes.begin(), bytes.end()};
}

QByteArray toHex(Bytes bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes)).toHex();
}

constexpr net::MacAddress mac{{0x02, 0x5E, 0x41, 0x0A, 0x0B, 0x0C}};
const QByteArray gap(24, '0');

/// A camera's description of itself, in which each text fills its field, so that none ends in a NUL.
Packet identity()
{
    const QByteArray texts = QByteArray(32, 'v') + QByteArray(32, 'm') + QByteArray(32, 'd') +
                             QByteArray(48, 'i') + QByteArray(16, 's') + QByteArray(16, 'n');
    return fromHex("00020000800000010000025e410a0b0c0000000f00000006" + gap + "c0a80a33" + gap + "ffffff00" +
                   gap + "c0a80afe" + texts.toHex());
}

void put(Packet& payload, int offset, const QByteArray& hex)
{
    std::ranges::copy(fromHex(hex), payload.begin() + offset);
}

/// What the record made of it has under that key.
QByteArray valueOf(const Packet& payload, const char* key)
{
    GenICam::gcstring value;
    gige::makeRecord(decodeIdentity(payload).value(), {0xC0A80A01}).GetPropertyValue(key, value);
    return value.c_str();
}

constexpr int modelAt = 104, serialAt = 216, nameAt = 232;

} // namespace

/// What the camera layer does without a network.
class GigeTest : public QObject
{
    Q_OBJECT

private slots:
    void commandsAreTheBytesThatCamerasExpect_data()
    {
        const auto row = addColumns<QByteArray, QByteArray>("encoded", "bytes");
        const std::array<std::uint8_t, 8> data{1, 2, 3, 4, 5, 6, 7, 8};
        row("a discovery", toHex(encodeDiscovery(0x1234)), "4211000200001234");
        row("a temporary address", toHex(encodeForceIp(7, {mac, {0xC0A80A33}, {0xFFFFFF00}, {0xC0A80AFE}})),
            "42110004003800070000025e410a0b0c" + gap + "c0a80a33" + gap + "ffffff00" + gap + "c0a80afe");
        row("a configuration whose name is cut to 16 bytes",
            toHex(encodeBroadcastIpConfig(
                8, {mac, 5, {0x0A000001}, {0xFF000000}, {0x0A0000FE}, "sixteen bytes and more"})),
            "42118010002800080000025e410a0b0c000000050a000001ff0000000a0000fe" +
                QByteArray("sixteen bytes an").toHex());
        row("reading a register", toHex(encodeReadReg(9, 0x0A00)), "420100800004000900000a00");
        row("writing a register, with the last request id", toHex(encodeWriteReg(0xFFFF, 0x0A00, 2)),
            "420100820008ffff00000a0000000002");
        row("reading memory", toHex(encodeReadMem(10, 0x200, 512)), "420100840008000a0000020000000200");
        row("writing memory", toHex(encodeWriteMem(11, 0xE8, data)),
            "42010086000c000b000000e80102030405060708");
    }
    void commandsAreTheBytesThatCamerasExpect()
    {
        QFETCH(const QByteArray, encoded);
        QTEST(encoded, "bytes");
    }

    void anAcknowledgeIsTakenOnlyWhole()
    {
        const Packet datagram = fromHex("0000008100040102000000025555");
        const auto acknowledge = decodeAcknowledge(datagram);
        QVERIFY(acknowledge && acknowledge->code == Ack::ReadReg && acknowledge->requestId == 0x0102);
        QCOMPARE(toHex(acknowledge->payload), "00000002");
        for (std::size_t size = 0; size < HeaderSize + 4; ++size) {
            QVERIFY2(!decodeAcknowledge(Bytes(datagram).first(size)), qPrintable(QString::number(size)));
        }
        const Packet memory = fromHex("000002000102030405060708");
        QCOMPARE(toHex(decodeReadMemAck(memory, 0x200, 8).value_or(Bytes())), "0102030405060708");
        QCOMPARE(toHex(decodeReadMemAck(memory, 0x200, 4).value_or(Bytes())), "01020304");
        QVERIFY(!decodeReadMemAck(memory, 0x204, 8) && !decodeReadMemAck(memory, 0x200, 12));
        QVERIFY(!decodeReadMemAck({}, 0, 0) && decodePendingAck(fromHex("000003e8")) == 1000ms);
        QCOMPARE(gige::describeStatus(Status::AccessDenied), "access is denied (8006)");
    }

    void aPacketIsJudgedByItsRequest()
    {
        using enum gige::Reply::Kind;
        const auto judge = [](Ack code, std::size_t payloadSize, Status status) {
            const auto request = gige::Request::readRegister(Register::ControlChannelPrivilege);
            Packet answer(HeaderSize + payloadSize);
            bytes::put16(answer, Header::Status, static_cast<std::uint16_t>(status));
            bytes::put16(answer, Header::Code, static_cast<std::uint16_t>(code));
            bytes::put16(answer, Header::Length, static_cast<std::uint16_t>(payloadSize));
            bytes::put16(answer, Header::RequestId, request.id());
            return request.judge(answer).kind;
        };
        QCOMPARE(judge(Ack::ReadReg, 4, Status{0x0100}), Done); // the value with a remark
        QCOMPARE(judge(Ack::ReadReg, 2, Status::Success), NotOurs);
        QCOMPARE(judge(Ack::WriteReg, 4, Status::Success), NotOurs);
        QCOMPARE(judge(Ack::Pending, 2, Status::Success), NotOurs);
    }

    void anIdentityIsReadFieldByField()
    {
        QByteArrayList values;
        for (const char* const key :
             {"MacAddress", "Interface", "Address", "SubnetMask", "DefaultGateway", "IpConfigOptions",
              "IpConfigCurrent", "VendorName", "ModelName", "DeviceVersion", "ManufacturerInfo",
              "SerialNumber", "UserDefinedName", "FriendlyName", "DeviceClass", "PortNr"}) {
            values << valueOf(identity(), key);
        }
        const QByteArray serial(16, 's'), name(16, 'n');
        QCOMPARE(values, (QByteArrayList{"025E410A0B0C", "192.168.10.1", "192.168.10.51:3956",
                                         "255.255.255.0", "192.168.10.254", "7", "6", QByteArray(32, 'v'),
                                         QByteArray(32, 'm'), QByteArray(32, 'd'), QByteArray(48, 'i'),
                                         serial, name, name + " (" + serial + ")", "OrvikGigE", "3956"}));
        QVERIFY(!decodeIdentity(Bytes(identity()).first(247)));
    }

    void aNameIsMadeUtf8AndNoLonger_data()
    {
        const auto row = addColumns<QByteArray, QByteArray>("stored", "name");
        const QByteArray allLengths = "c280e0a080ed9fbff0908080f48fbfbf";
        row("characters of every length", allLengths, QByteArray::fromHex(allLengths));
        row("Latin-1, half a character, erased flash memory", "6be46c6e20c3ff00", "k?ln ?");
        row("not the shortest form, and too large", "c1bfe09fbfeda080f09f98f580808000", QByteArray(15, '?'));
        row("four bytes below and above their range", "f08fbfbff4908080c3a900", "????????\xC3\xA9");
    }
    void aNameIsMadeUtf8AndNoLonger()
    {
        QFETCH(const QByteArray, stored);
        Packet payload = identity();
        put(payload, nameAt, stored);
        QTEST(valueOf(payload, "UserDefinedName"), "name");
    }

    void aFriendlyNameIsMadeOfWhatThereIs()
    {
        Packet payload = identity();
        put(payload, modelAt, "6b6d00");
        put(payload, nameAt, "00");
        put(payload, serialAt, "c3a900"); // bytes that are no ASCII stay as they are
        QCOMPARE(valueOf(payload, "FriendlyName"), "km (\xC3\xA9)");
        put(payload, serialAt, "00");
        QCOMPARE(valueOf(payload, "FriendlyName"), "km");
    }

    void aCameraIsWaitedForAsItAsksButNotForEver()
    {
        constexpr std::array sends{0ms, 100ms};
        const auto start = gige::Clock::now();
        gige::Attempts attempts({sends, 300ms}, start);
        attempts.extend(1s, start + 50ms);
        QVERIFY(!attempts.isSendDue(start + 100ms) && attempts.nextEvent() == start + 1550ms);
        attempts.extend(65s, start + 1s);
        QVERIFY(attempts.nextEvent() == start + 10s);
    }

    void theReversePathFilterHidesCameras()
    {
        using enum gige::ReversePath;
        const auto judge = [](int all, int own, const char* defaultAdapter) {
            return gige::judgeReversePath(all, own, "eth0", defaultAdapter);
        };
        QCOMPARE(judge(0, 0, ""), Open);
        QCOMPARE(judge(0, 1, ""), Strict);
        QCOMPARE(judge(1, 0, ""), Strict);
        QCOMPARE(judge(1, 1, "wlan0"), Strict);
        QCOMPARE(judge(1, 1, "eth0"), Open);
        QCOMPARE(judge(1, 2, "wlan0"), Open);
        QCOMPARE(judge(2, 1, ""), NoRoute);
    }

    void theCheapestDefaultRouteCounts()
    {
        const std::string network = "titles\neth0\t000AA8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\n";
        const std::string rejected = "*\t00000000\t00000000\t0201\t0\t0\t0\t00000000\t0\n";
        const std::string half = "tun0\t00000000\t00000000\t0001\t0\t0\t0\t00000080\t0\n";
        const std::string costly = "wlan0\t00000000\t0101A8C0\t0003\t0\t0\t600\t00000000\t0\n";
        const std::string cheap = "eth1\t00000000\t0102A8C0\t0003\t0\t0\t100\t00000000\t0\n";
        QCOMPARE(net::defaultRouteAdapter(network + rejected + half), std::string());
        QCOMPARE(net::defaultRouteAdapter(network + costly + rejected + cheap + half), std::string("eth1"));
    }

    void recordsAreCompared()
    {
        Tessal::COrvikGigEDeviceInfo record;
        const Tessal::COrvikGigEDeviceInfo empty(record);
        record.SetPropertyValue(Tessal::Key::UserDefinedName, "belt");
        QVERIFY(record.IsSubset(empty) && !empty.IsSubset(record) && !(record == empty));
    }
};

QTEST_GUILESS_MAIN(GigeTest)
#include "tst_gige.moc"
