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
        const auto row = addColumns<Purpose, QString, QString, QString, Found>("purpose", "address", "mask",
                                                                               "gateway", "expected");
        using enum advice::Field;
        using enum Kind;
        using enum Purpose;
        const char* const classB = "255.255.0.0";
        const char* const classC = "255.255.255.0";
        row("fits", Static, "192.168.10.77", classC, "192.168.10.1", {});
        row("fits the adapter's second network", Static, "10.1.255.9", classB, "", {});
        row("is the camera's present one", Static, "192.168.10.23", classC, "0.0.0.0", {});
        row("nothing typed", Static, "", "", "", {{Address, Missing}, {Mask, Missing}});
        row("three numbers", Static, "192.168.10.", "255.255.", "192.168.10",
            {{Address, Incomplete}, {Mask, Incomplete}, {Gateway, Incomplete}});
        row("a number above 255", Static, "192.168.10.256", classC, "", {{Address, Incomplete}});
        row("no address", Static, "0.0.0.0", classC, "", {{Address, SpecialAddress}});
        row("this network", Static, "0.1.2.3", classC, "", {{Address, SpecialAddress}});
        row("loopback", Static, "127.0.0.1", classC, "", {{Address, SpecialAddress}});
        row("multicast", Static, "224.0.0.1", classC, "", {{Address, SpecialAddress}});
        row("beyond multicast", Static, "255.255.255.9", classC, "", {{Address, SpecialAddress}});
        row("this computer's", Static, "192.168.10.1", classC, "", {{Address, OwnAddress}});
        row("this computer's on another adapter", Static, "192.168.20.1", classC, "",
            {{Address, OwnAddress}});
        row("another camera's", Static, "10.1.2.3", classB, "", {{Address, AddressOfCamera}});
        row("network", Static, "192.168.10.0", classC, "", {{Address, NetworkAddress}});
        row("broadcast", Static, "192.168.10.255", classC, "", {{Address, BroadcastAddress}});
        row("broadcast of the adapter's mask only", Static, "192.168.10.255", classB, "",
            {{Address, BroadcastAddress}, {Mask, OtherMask}});
        row("of another adapter's network", Static, "192.168.20.5", classC, "", {{Address, OutsideAdapter}});
        row("in a network of two", Static, "172.16.0.0", "255.255.255.254", "", {{Address, OutsideAdapter}});
        row("no mask", Static, "192.168.10.77", "255.0.255.0", "", {{Mask, NoMask}});
        row("another mask than the adapter's", Static, "10.1.2.77", classC, "", {{Mask, OtherMask}});
        row("gateway in another network", Static, "192.168.10.77", classC, "192.168.20.1",
            {{Gateway, GatewayOutside}});
        row("gateway is the camera", Static, "192.168.10.77", classC, "192.168.10.77",
            {{Gateway, GatewayOfCamera}});
        row("gateway is the network", Static, "192.168.10.77", classC, "192.168.10.0",
            {{Gateway, NetworkAddress}});

        row("gateway, mask with a gap", Static, "192.168.10.77", "255.0.255.0", "10.0.0.1", {{Mask, NoMask}});

        row("temporary, restarts", Temporary, "", "", "", {{Address, RestartsConfiguration}});
        row("temporary, restarts with zeros", Temporary, "0.0.0.0", "0.0.0.0", "0.0.0.0",
            {{Address, RestartsConfiguration}});
        row("temporary, restarts with half a mask", Temporary, "", "255.", "",
            {{Address, RestartsConfiguration}, {Mask, Incomplete}});
        row("temporary, outside", Temporary, "172.16.0.1", "", "",
            {{Address, OutsideAdapter}, {Mask, Missing}});

        row("left over, half an address", LeftOver, "192.168.", "255.", "", {{Address, LeftOverAddress}});
        row("left over, refused", LeftOver, "224.0.0.1", "", "", {{Address, LeftOverAddress}});
        row("left over, taken", LeftOver, "192.168.10.1", "255.", "1", {});
    }

    void unusableEntriesGetAdvice()
    {
        QFETCH(const Purpose, purpose);
        QFETCH(const QString, address);
        QFETCH(const QString, mask);
        QFETCH(const QString, gateway);
        Found found;
        for (const advice::Advice& one : adviceOn({purpose, gateMac, address, mask, gateway}, network())) {
            found << std::pair(one.field, one.kind);
            QVERIFY2(sentence(one).endsWith('.') && !sentence(one).contains('%'), qPrintable(sentence(one)));
        }
        QTEST(found, "expected");
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
        advice::Surroundings surroundings = network();
        surroundings.cameraAdapter = adapter;
        const auto all = adviceOn({Purpose::Static, gateMac, address, "255.255.255.0", ""}, surroundings);
        QVERIFY(!all.empty());
        QTEST(sentence(all.front()), "expected");
    }
};

QTEST_APPLESS_MAIN(AdviceTest)
#include "tst_advice.moc"
