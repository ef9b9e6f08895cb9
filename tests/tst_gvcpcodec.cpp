#include "gige/codec.h"

#include <QtTest>

using namespace gvcp;

namespace {

Packet fromHex(const char* hex)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    return {bytes.begin(), bytes.end()};
}

QByteArray toHex(Bytes bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())).toHex();
}

constexpr net::MacAddress mac{{0x02, 0x5E, 0x41, 0x0A, 0x0B, 0x0C}};

/// The payload of an acknowledge whose texts fill their fields, so that none of them ends in a NUL.
Packet fullIdentity()
{
    Packet payload = fromHex("00020000"
                             "80000001"
                             "0000025e410a0b0c"
                             "00000007"
                             "00000006");
    payload.resize(DiscoveryAck::Size, 'x');
    for (const auto& [offset, hex] : {std::pair{36, "c0a80a33"}, {52, "ffffff00"}, {68, "c0a80afe"}}) {
        std::ranges::copy(fromHex(hex), payload.begin() + offset);
    }
    return payload;
}

} // namespace

class TestGvcpCodec : public QObject
{
    Q_OBJECT

private slots:
    void commandsAreTheBytesThatCamerasExpect_data()
    {
        QTest::addColumn<QByteArray>("packet");
        QTest::addColumn<QByteArray>("expected");
        const auto row = [](const char* name, const Packet& packet, const QByteArray& expected) {
            QTest::newRow(name) << toHex(packet) << expected;
        };
        const std::array<std::uint8_t, 8> data{1, 2, 3, 4, 5, 6, 7, 8};
        const QByteArray zeros12(24, '0');
        row("discovery", encodeDiscovery(0x1234), "4211000200001234");
        row("force ip", encodeForceIp(7, {mac, {0xC0A80A33}, {0xFFFFFF00}, {0xC0A80AFE}}),
            "4211000400380007"
            "0000025e410a0b0c" +
                zeros12 + "c0a80a33" + zeros12 + "ffffff00" + zeros12 + "c0a80afe");
        row("broadcast",
            encodeBroadcastIpConfig(8, {mac, 5, {0x0A000001}, {0xFF000000}, {}, "sixteen bytes and more"}),
            "4211801000280008"
            "0000025e410a0b0c"
            "00000005"
            "0a000001"
            "ff000000"
            "00000000"
            "7369787465656e20627974657320616e");
        row("read register", encodeReadReg(9, 0x0A00), "420100800004000900000a00");
        row("write register", encodeWriteReg(0xFFFF, 0x0A00, 2), "420100820008ffff00000a0000000002");
        row("read memory", encodeReadMem(10, 0x200, 512), "420100840008000a0000020000000200");
        row("write memory", encodeWriteMem(11, 0xE8, data), "42010086000c000b000000e80102030405060708");
    }
    void commandsAreTheBytesThatCamerasExpect()
    {
        QFETCH(QByteArray, packet);
        QTEST(packet, "expected");
    }

    void anAcknowledgeIsTakenOnlyWhole()
    {
        const Packet datagram = fromHex("0000008100040102"
                                        "00000002");
        const auto acknowledge = decodeAcknowledge(datagram);
        QVERIFY(acknowledge);
        QCOMPARE(acknowledge->code, Ack::ReadReg);
        QCOMPARE(acknowledge->requestId, std::uint16_t{0x0102});
        QVERIFY(!acknowledge->isRefusal());
        QCOMPARE(decodeReadRegAck(acknowledge->payload), std::optional<std::uint32_t>(2));

        for (std::size_t size = 0; size < datagram.size(); ++size) {
            QVERIFY2(!decodeAcknowledge(Bytes(datagram).first(size)), qPrintable(QString::number(size)));
        }
        QVERIFY(!decodeAcknowledge(fromHex("0000008100030102"
                                           "00000002"))); // announces less than there is
        QVERIFY(!decodeAcknowledge(fromHex("00000081ffff0102"
                                           "00000002"))); // and more
    }

    void aStatusWithTheErrorBitRefuses()
    {
        const auto refusal = decodeAcknowledge(fromHex("8006008300000001"));
        QVERIFY(refusal && refusal->isRefusal());
        QCOMPARE(refusal->status, Status::AccessDenied);
        QVERIFY(!decodeAcknowledge(fromHex("0100008300040001"
                                           "00000001"))
                     ->isRefusal());
    }

    void anIdentityIsReadFieldByField()
    {
        Packet payload = fullIdentity();
        auto identity = decodeIdentity(payload);
        QVERIFY(identity);
        QCOMPARE(net::formatMac(identity->mac), std::string("025E410A0B0C"));
        QCOMPARE(identity->ipConfigSupported, 7U);
        QCOMPARE(identity->ipConfigCurrent, 6U);
        QCOMPARE(net::formatIpv4(identity->ip), std::string("192.168.10.51"));
        QCOMPARE(net::formatIpv4(identity->mask), std::string("255.255.255.0"));
        QCOMPARE(net::formatIpv4(identity->gateway), std::string("192.168.10.254"));

        // A text ends with its field, or at its first NUL; bytes that are no ASCII stay as they are.
        const std::array<std::pair<std::size_t, std::string Identity::*>, 6> texts{
            {{72, &Identity::manufacturer},
             {104, &Identity::model},
             {136, &Identity::deviceVersion},
             {168, &Identity::manufacturerInfo},
             {216, &Identity::serialNumber},
             {232, &Identity::userDefinedName}}};
        const std::array<std::size_t, 6> sizes{32, 32, 32, 48, 16, 16};
        for (std::size_t i = 0; i < texts.size(); ++i) {
            QCOMPARE((*identity).*texts[i].second, std::string(sizes[i], 'x'));
            std::ranges::copy(fromHex("c3a900"),
                              payload.begin() + static_cast<std::ptrdiff_t>(texts[i].first));
            QCOMPARE((*decodeIdentity(payload)).*texts[i].second, std::string("\xC3\xA9"));
        }
        QVERIFY(!decodeIdentity(Bytes(payload).first(247)));
        payload.push_back(0);
        QVERIFY(!decodeIdentity(payload));
    }

    void answersOfAnotherSizeOrPlaceAreNone()
    {
        const Packet memory = fromHex("00000200"
                                      "0102030405060708");
        const auto data = decodeReadMemAck(memory, 0x200, 8);
        QVERIFY(data);
        QCOMPARE(toHex(*data), QByteArray("0102030405060708"));
        QVERIFY(!decodeReadMemAck(memory, 0x204, 8));
        QVERIFY(!decodeReadMemAck(memory, 0x200, 4));
        QVERIFY(!decodeReadMemAck({}, 0, 0));
        QVERIFY(!decodeReadRegAck(memory));
        QVERIFY(isWriteAck(fromHex("00000000")));
        QVERIFY(!isWriteAck({}));
        QVERIFY(decodePendingAck(fromHex("000003e8")) == std::chrono::milliseconds(1000));
        QVERIFY(!decodePendingAck(fromHex("0000")));
    }
};

QTEST_GUILESS_MAIN(TestGvcpCodec)
#include "tst_gvcpcodec.moc"
