#include "gige/codec.h"

#include <QtTest>

using namespace gvcp;

namespace {

Packet fromHex(const QByteArray& hex)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    return {bytes.begin(), bytes.end()};
}

QByteArray toHex(Bytes bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())).toHex();
}

constexpr net::MacAddress mac{{0x02, 0x5E, 0x41, 0x0A, 0x0B, 0x0C}};
const QByteArray gap(24, '0');

} // namespace

class TestGvcpCodec : public QObject
{
    Q_OBJECT

private slots:
    void commandsAreTheBytesThatCamerasExpect()
    {
        const std::array<std::uint8_t, 8> data{1, 2, 3, 4, 5, 6, 7, 8};
        QCOMPARE(toHex(encodeDiscovery(0x1234)), "4211000200001234");
        QCOMPARE(toHex(encodeForceIp(7, {mac, {0xC0A80A33}, {0xFFFFFF00}, {0xC0A80AFE}})),
                 "42110004003800070000025e410a0b0c" + gap + "c0a80a33" + gap + "ffffff00" + gap + "c0a80afe");
        QCOMPARE(toHex(encodeBroadcastIpConfig(
                     8, {mac, 5, {0x0A000001}, {0xFF000000}, {}, "sixteen bytes and more"})),
                 "42118010002800080000025e410a0b0c000000050a000001ff00000000000000"
                 "7369787465656e20627974657320616e");
        QCOMPARE(toHex(encodeReadReg(9, 0x0A00)), "420100800004000900000a00");
        QCOMPARE(toHex(encodeWriteReg(0xFFFF, 0x0A00, 2)), "420100820008ffff00000a0000000002");
        QCOMPARE(toHex(encodeReadMem(10, 0x200, 512)), "420100840008000a0000020000000200");
        QCOMPARE(toHex(encodeWriteMem(11, 0xE8, data)), "42010086000c000b000000e80102030405060708");
    }

    void anAcknowledgeIsTakenOnlyWhole()
    {
        const Packet datagram = fromHex("000000810004010200000002");
        const auto acknowledge = decodeAcknowledge(datagram);
        QVERIFY(acknowledge && !acknowledge->isRefusal());
        QCOMPARE(acknowledge->code, Ack::ReadReg);
        QCOMPARE(acknowledge->requestId, std::uint16_t{0x0102});
        QCOMPARE(decodeReadRegAck(acknowledge->payload), std::optional<std::uint32_t>(2));
        for (std::size_t size = 0; size < datagram.size(); ++size) {
            QVERIFY2(!decodeAcknowledge(Bytes(datagram).first(size)), qPrintable(QString::number(size)));
        }
        QVERIFY(!decodeAcknowledge(fromHex("000000810003010200000002"))); // announces less than there is
        QVERIFY(!decodeAcknowledge(fromHex("00000081ffff010200000002"))); // and more
        const auto refusal = decodeAcknowledge(fromHex("8006008300000001"));
        QVERIFY(refusal && refusal->isRefusal() && refusal->status == Status::AccessDenied);
        QVERIFY(!decodeAcknowledge(fromHex("010000830004000100000001"))->isRefusal());
    }

    void anIdentityIsReadFieldByField()
    {
        // each text fills its field, so that none of them ends in a NUL
        Packet payload = fromHex("00020000800000010000025e410a0b0c0000000700000006" + gap + "c0a80a33" + gap +
                                 "ffffff00" + gap + "c0a80afe");
        payload.resize(248, 'x');
        auto identity = decodeIdentity(payload);
        QVERIFY(identity);
        QCOMPARE(net::formatMac(identity->mac), std::string("025E410A0B0C"));
        QCOMPARE(identity->ipConfigSupported, 7U);
        QCOMPARE(identity->ipConfigCurrent, 6U);
        QCOMPARE(net::formatIpv4(identity->ip), std::string("192.168.10.51"));
        QCOMPARE(net::formatIpv4(identity->mask), std::string("255.255.255.0"));
        QCOMPARE(net::formatIpv4(identity->gateway), std::string("192.168.10.254"));
        // A text ends with its field, or at its first NUL; bytes that are no ASCII stay as they are.
        struct Text
        {
            std::ptrdiff_t offset;
            std::size_t size;
            std::string Identity::*text;
        };
        for (const auto& [offset, size, text] :
             {Text{72, 32, &Identity::manufacturer}, Text{104, 32, &Identity::model},
              Text{136, 32, &Identity::deviceVersion}, Text{168, 48, &Identity::manufacturerInfo},
              Text{216, 16, &Identity::serialNumber}, Text{232, 16, &Identity::userDefinedName}}) {
            QCOMPARE((*identity).*text, std::string(size, 'x'));
            std::ranges::copy(fromHex("c3a900"), payload.begin() + offset);
            QCOMPARE((*decodeIdentity(payload)).*text, std::string("\xC3\xA9"));
        }
        // What is no UTF-8 must not make a name longer than a camera can store; flash memory is erased to FF.
        for (const auto& [stored, name] : {
                 std::pair{"ffffffffffffffffffffffffffffffff", ""},
                 std::pair{"c3a9e282acf09f9880ffff", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
                 std::pair{"6be46c6e 20 c3 00", "k?ln ?"},
                 std::pair{"c0af 00", "??"},
                 std::pair{"eda080 00", "???"},
                 std::pair{"f09f98 00", "???"},
             }) {
            std::ranges::copy(fromHex(stored), payload.begin() + 232);
            QCOMPARE(decodeIdentity(payload)->userDefinedName, std::string(name));
        }
        QVERIFY(!decodeIdentity(Bytes(payload).first(247)));
        payload.push_back(0);
        QVERIFY(!decodeIdentity(payload));
    }

    void answersOfAnotherSizeOrPlaceAreNone()
    {
        const Packet memory = fromHex("000002000102030405060708");
        const auto data = decodeReadMemAck(memory, 0x200, 8);
        QVERIFY(data);
        QCOMPARE(toHex(*data), "0102030405060708");
        QVERIFY(!decodeReadMemAck(memory, 0x204, 8) && !decodeReadMemAck(memory, 0x200, 4));
        QVERIFY(!decodeReadMemAck({}, 0, 0) && !decodeReadRegAck(memory));
        QVERIFY(isWriteAck(fromHex("00000000")) && !isWriteAck({}));
        QVERIFY(decodePendingAck(fromHex("000003e8")) == std::chrono::milliseconds(1000));
        QVERIFY(!decodePendingAck(fromHex("0000")));
    }
};

QTEST_GUILESS_MAIN(TestGvcpCodec)
#include "tst_gvcpcodec.moc"
