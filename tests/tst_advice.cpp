#include "advice/advice.h"
#include "support/columns.h"

#include <QTest>

using advice::Kind;
using advice::Purpose;
using Found = QList<std::pair<advice::Field, Kind>>;

namespace {

net::Ipv4 ip(const char* text)
{
    return net::parseIpv4(text).value();
}

const QString gateMac = "02-5E-41-00-00-03";

/// A computer with two adapters; lan0 has two networks, and the cameras Gate and Front left.
advice::Surroundings network()
{
    return {.adapters = {{"lan0",
                          {{ip("192.168.10.1"), ip("255.255.255.0")}, {ip("10.1.0.1"), ip("255.255.0.0")}}},
                         {"lan1", {{ip("192.168.20.1"), ip("255.255.255.0")}}}},
            .cameras = {{"Gate", "dz-500c", net::parseMac("025E41000003").value(), ip("192.168.10.23")},
                        {"Front left", "km-1300", net::parseMac("025E41000001").value(), ip("10.1.2.3")}},
            .cameraAdapter = "lan0"};
}

} // namespace

/// What is told of addresses before a camera gets them.
class AdviceTest : public QObject
{
    Q_OBJECT

private slots:
    void unusableEntriesGetAdvice_data()
    {
        QTest::addColumn<Purpose>("purpose");
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("mask");
        QTest::addColumn<QString>("gateway");
        QTest::addColumn<Found>("expected");
        using enum advice::Field;
        const auto row = [](const char* name, const char* address, const char* mask, const char* gateway,
                            const Found& expected, Purpose purpose = Purpose::Static) {
            QTest::newRow(name) << purpose << address << mask << gateway << expected;
        };
        const char* const classB = "255.255.0.0";
        const char* const classC = "255.255.255.0";
        row("fits", "192.168.10.77", classC, "192.168.10.1", {});
        row("fits the adapter's second network", "10.1.255.9", classB, "", {});
        row("is the camera's present one", "192.168.10.23", classC, "0.0.0.0", {});
        row("nothing typed", "", "", "", {{Address, Kind::Missing}, {Mask, Kind::Missing}});
        row("three numbers", "192.168.10.", "255.255.", "192.168.10",
            {{Address, Kind::Incomplete}, {Mask, Kind::Incomplete}, {Gateway, Kind::Incomplete}});
        row("a number above 255", "192.168.10.256", classC, "", {{Address, Kind::Incomplete}});
        row("no address", "0.0.0.0", classC, "", {{Address, Kind::SpecialAddress}});
        row("this network", "0.1.2.3", classC, "", {{Address, Kind::SpecialAddress}});
        row("loopback", "127.0.0.1", classC, "", {{Address, Kind::SpecialAddress}});
        row("multicast", "224.0.0.1", classC, "", {{Address, Kind::SpecialAddress}});
        row("beyond multicast", "255.255.255.9", classC, "", {{Address, Kind::SpecialAddress}});
        row("this computer's", "192.168.10.1", classC, "", {{Address, Kind::OwnAddress}});
        row("this computer's on another adapter", "192.168.20.1", classC, "", {{Address, Kind::OwnAddress}});
        row("another camera's", "10.1.2.3", classB, "", {{Address, Kind::AddressOfCamera}});
        row("network", "192.168.10.0", classC, "", {{Address, Kind::NetworkAddress}});
        row("broadcast", "192.168.10.255", classC, "", {{Address, Kind::BroadcastAddress}});
        row("broadcast of the adapter's mask only", "192.168.10.255", classB, "",
            {{Address, Kind::BroadcastAddress}, {Mask, Kind::OtherMask}});
        row("of another adapter's network", "192.168.20.5", classC, "", {{Address, Kind::OutsideAdapter}});
        row("in a network of two", "172.16.0.0", "255.255.255.254", "", {{Address, Kind::OutsideAdapter}});
        row("no mask", "192.168.10.77", "255.0.255.0", "", {{Mask, Kind::NoMask}});
        row("another mask than the adapter's", "10.1.2.77", classC, "", {{Mask, Kind::OtherMask}});
        row("gateway in another network", "192.168.10.77", classC, "192.168.20.1",
            {{Gateway, Kind::GatewayOutside}});
        row("gateway is the camera", "192.168.10.77", classC, "192.168.10.77",
            {{Gateway, Kind::GatewayOfCamera}});
        row("gateway is the network", "192.168.10.77", classC, "192.168.10.0",
            {{Gateway, Kind::NetworkAddress}});

        row("gateway, mask with a gap", "192.168.10.77", "255.0.255.0", "10.0.0.1", {{Mask, Kind::NoMask}});

        row("temporary, restarts", "", "", "", {{Address, Kind::RestartsConfiguration}}, Purpose::Temporary);
        row("temporary, restarts with zeros", "0.0.0.0", "0.0.0.0", "0.0.0.0",
            {{Address, Kind::RestartsConfiguration}}, Purpose::Temporary);
        row("temporary, restarts with half a mask", "", "255.", "",
            {{Address, Kind::RestartsConfiguration}, {Mask, Kind::Incomplete}}, Purpose::Temporary);
        row("temporary, outside", "172.16.0.1", "", "",
            {{Address, Kind::OutsideAdapter}, {Mask, Kind::Missing}}, Purpose::Temporary);

        row("left over, half an address", "192.168.", "255.", "", {{Address, Kind::LeftOverAddress}},
            Purpose::LeftOver);
        row("left over, refused", "224.0.0.1", "", "", {{Address, Kind::LeftOverAddress}}, Purpose::LeftOver);
        row("left over, taken", "192.168.10.1", "255.", "1", {}, Purpose::LeftOver);
    }

    void unusableEntriesGetAdvice()
    {
        QFETCH(const Purpose, purpose);
        QFETCH(const QString, address);
        QFETCH(const QString, mask);
        QFETCH(const QString, gateway);
        QFETCH(const Found, expected);
        Found found;
        for (const advice::Advice& one : adviceOn({purpose, gateMac, address, mask, gateway}, network())) {
            found << std::pair(one.field, one.kind);
            QVERIFY2(sentence(one).endsWith('.') && !sentence(one).contains('%'), qPrintable(sentence(one)));
        }
        QCOMPARE(found, expected);
    }

    void sentencesHaveTheValues_data()
    {
        const auto row = addColumns<QString, QString, QString>("address", "adapter", "expected");
        row("another camera's", "10.1.2.3", "lan0",
            "10.1.2.3 is the address of another camera: Front left, km-1300, "
            "MAC address 02:5E:41:00:00:01. With the same address, neither "
            "can be reached reliably.");
        row("outside the camera's adapter", "172.16.0.1", "lan1",
            "172.16.0.1 is in no network of lan1. The camera can then not be reached through lan1.");
        row("outside all adapters", "172.16.0.1", "",
            "172.16.0.1 is in no network of this computer. The camera can then not be reached.");
        row("broadcast", "192.168.10.255", "lan0",
            "192.168.10.255 addresses all devices of a network at once, under the "
            "mask 255.255.255.0. No device can have it.");
    }

    void sentencesHaveTheValues()
    {
        QFETCH(const QString, address);
        QFETCH(const QString, adapter);
        QFETCH(const QString, expected);
        advice::Surroundings surroundings = network();
        surroundings.cameraAdapter = adapter;
        const auto all = adviceOn({Purpose::Static, gateMac, address, "255.255.255.0", ""}, surroundings);
        QVERIFY(!all.empty());
        QCOMPARE(sentence(all.front()), expected);
    }
};

QTEST_APPLESS_MAIN(AdviceTest)
#include "tst_advice.moc"
