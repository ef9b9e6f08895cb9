#include "DeviceLister.h"
#include "qtbase/helpandsupport.h"
#include "support/gui.h"

#include <QNetworkInterface>
#include <QProcess>
#include <QStyle>

using namespace gui;
using sdk::camera;
using sdk::get;
using sdk::with;

/// What a search finds, the tree of adapters and cameras that comes of it, and what a selected row tells.
class TreeTest : public GuiTest
{
    Q_OBJECT

    QString info() { return text("labelSelectionInfo"); }
    QString hint() { return text("labelHint"); }
    static QImage image(const QIcon& icon) { return icon.pixmap(16, 16).toImage(); }

    /// Every record of a search as "MAC interface adapter accessibility".
    static QStringList search()
    {
        DeviceLister lister;
        lister.discoverAllDevices();
        QStringList lines;
        for (const Tessal::COrvikGigEDeviceInfo& record : lister.m_devices) {
            lines << get(record, {"MacAddress", "Interface", "IF_~_Name", "DEV_~_Accessible"});
        }
        return lines;
    }

    /// A camera as a search finds it.
    static sdk::Camera found(int accessibility, const char* interface = "192.168.1.5",
                             const char* address = "192.168.1.9", const char* mask = "255.255.255.0")
    {
        sdk::Camera made = with(camera("km-1", "025E41000001", address, interface), {{"SubnetMask", mask}});
        made.accessibility = accessibility;
        return made;
    }

private slots:
    void recordsAreMergedNamedAndJudged_data()
    {
        const auto row = addColumns<std::vector<sdk::Camera>, QStringList>("cameras", "records");
        const auto heard = [](const char* mac, const char* by) { return camera("km-1", mac, by, by); };
        row("by three addresses of an adapter",
            {heard("A1", "10.1.0.1"), heard("A1", "10.2.0.1"), heard("A1", "110.2.0.1")},
            {"A1 10.1.0.1;10.2.0.1;110.2.0.1 lan2 1"});
        // Which is taken for the same.
        row("by an address that ends like the one before",
            {heard("A1", "110.2.0.1"), heard("A1", "10.2.0.1")}, {"A1 110.2.0.1 lan2 1"});
        row("another camera in between",
            {heard("A1", "10.0.0.1"), heard("B2", "10.0.0.1"), heard("A1", "172.16.3.4")},
            {"A1 10.0.0.1;172.16.3.4 lan1 1", "B2 10.0.0.1 lan1 1"});
        row("of no adapter, one of them twice",
            {heard("A1", "9.9.9.9"), heard("A1", "9.9.9.9"), heard("A1", "127.0.0.1")},
            {"A1 9.9.9.9 - 1", "A1 127.0.0.1 - 1"});
        row("without a MAC address", {heard("", "192.168.1.5")}, {});
        using namespace Tessal::Accessibility;
        const char* const lan0 = "192.168.1.5";
        row("does not answer at its address", {found(Ok, lan0, "10.9.9.9")},
            {"025E41000001 192.168.1.5 lan0 4"});
        row("does not answer at its address, in use", {found(Controlled, lan0, "10.9.9.9")},
            {"025E41000001 192.168.1.5 lan0 2"});
    }
    void recordsAreMergedNamedAndJudged()
    {
        QFETCH(const std::vector<sdk::Camera>, cameras);
        QFETCH(const QStringList, records);
        const Adapter lan2("lan2", {"10.1.0.1/16", "10.2.0.1/16", "110.2.0.1/16"}, "02:00:00:00:00:02");
        m_world.cameras = cameras;
        QCOMPARE(search(), records);
    }

    void camerasStandUnderTheirAdaptersAndStaySelected()
    {
        const Adapter kitchen("küche", {"10.7.0.1/16"}, "02:00:00:00:00:02");
        m_world.cameras = {
            camera("vt-9", "025E41000003"),
            with(camera("vt-9", "025E41000004"), {{"VendorName", "Another maker"}}),
            camera("mx-1", "025E41000007", "10.7.0.9", "10.7.0.1"),
            camera("km-1", "025E41000002"),
            camera("km-1", "025E41000001"),
            camera("km-1", "025E41000002", "10.0.0.9", "10.0.0.1"),
            camera("aa-1", "025E41000009", "192.168.1.12", "192.168.77.1"),
            with({}, {{"MacAddress", "025E41000008"}, {"Interface", "192.168.1.5"}})}; // no model
        openWindow();
        QStringList found = rows();
        found.replaceInStrings(QRegularExpression("\\|.*:(..)\\|.*"), " \\1");
        QCOMPARE(found, (QStringList{"lan0", "   08", "  km-1 01", "  km-1 02", "  vt-9 03", "  vt-9 04",
                                     "lan1", "  km-1 02", "küche", "  mx-1 07", "aa-1 09"}));
        QCOMPARE(image(row("lan0").icon(0)), image(QIcon(":/Lanvic/Resources/network_adapter.png")));
        const auto widthOf = [this](const char* mac) {
            return tree().sizeHintForIndex(tree().indexFromItem(&row(mac), 0)).width();
        };
        QCOMPARE(widthOf("02:5E:41:00:00:04"), widthOf("02:5E:41:00:00:03")); // with a picture

        QVERIFY(tree().hasFocus());
        QCOMPARE(current(), "lan0");
        select("vt-9"); // the first in the lister's order
        QVERIFY2(info().contains("<b>vt-9</b>"), qPrintable(info()));

        select(*row("lan1").child(0));
        refresh();
        QCOMPARE(tree().currentItem(), row("lan1").child(0)); // not the same camera under lan0
        select("lan1");
        clickOn("btnRefresh");
        QCOMPARE(current(), "lan1");
        QTest::mouseDClick(tree().viewport(), Qt::LeftButton, {}, placeOf(row("lan1")));
        QVERIFY(row("lan1").isExpanded() && row("lan0").isExpanded()); // always
        select("vt-9");
        m_world.cameras.erase(m_world.cameras.begin());
        refresh();
        QCOMPARE(current(), "lan0");
    }

    void rowsShowWhatTheRecordSays()
    {
        openOn({with(camera(), {{"UserDefinedName", "Förderband"},
                                {"IpConfigCurrent", "6"},
                                {"FriendlyName", "Förderband (000001)"},
                                {"DefaultGateway", "192.168.1.1"}})});
        QCOMPARE(
            columnsOf(*tree().headerItem()),
            "Name|Device User ID|Serial Number|MAC Address|Status|IP Configuration|IP Address|Subnet Mask");
        QString table = "Vendor|Orvik,Model Name|km-1,Device User ID|Förderband,Serial Number|000001,"
                        "MAC Address|02:5E:41:00:00:01,IP Configuration|DHCP,IP Address|192.168.1.9,"
                        "Subnet Mask|255.255.255.0,Gateway|192.168.1.1";
        table.replace(",", "</td></tr><tr><td width='8'></td><td>").replace("|", ":</td><td>");
        const QString begin =
            "<p><b>Förderband (000001)</b></p><p><table align='left' border='0' cellpadding='1' cellspacing='1'><tr><td width='8'></td><td>";
        QCOMPARE(info().split("<tr>"), (begin + table + "</td></tr></table></p>").split("<tr>"));
    }

    void anAdapterTellsItsAddressesAndWhatHindersASearch()
    {
        openWindow();
        QString before; // what is painted before the search
        QMetaObject::invokeMethod(
            this, [&] { before = info(); }, Qt::QueuedConnection);
        child<QAction>("actionRefresh").trigger();
        QCOMPARE(before, "Searching for devices...");
        QCOMPARE(m_world.take(true).filter("Enum"), QStringList(2, "EnumerateDevicesAnySubnet(false)"));
        QVERIFY(row("lan1").isExpanded());
        QCOMPARE(hint(),
                 "<p>No devices found!</p>Click <b>Refresh</b> or press <b>F5</b> to search for devices.");
        m_world.cameras = {camera()};
        const Adapter kitchen("küche", {"10.7.0.1/16"}, "02:00:00:00:00:02");
        m_world.obstacles = {{.kind = Tessal::Obstacle::SharedSubnet, .adapter = "küche", .other = "lan0"}};
        refresh();
        const QString told =
            "küche and lan0 have addresses in the same network, so cameras may not be reachable "
            "through either. Give each adapter a network of its own.";
        QCOMPARE(row("küche").toolTip(0), told);
        QCOMPARE(row("lan0").toolTip(0), "");
        const QString support = GetOrvikSupportInfo(true);
        QVERIFY(support.contains(told));
        QVERIFY(support.contains(qVersion()));
        QVERIFY(support.contains("MTU 1500") && support.contains("MTU 65536"));
        QVERIFY2(support.contains(QRegularExpression("rp_filter of all: \\d\\)")), qPrintable(support));
        QVERIFY2(!support.contains("02:00:00:00"), qPrintable(support)); // the begin of their addresses
        QVERIFY(!GetOrvikSupportInfo(false).contains("MTU"));
        select("lan1");
        QCOMPARE(hint(), QString());
        const QString block =
            "<tr><td width='8'></td></tr><tr><td width='8'></td><td>IP Address:</td><td width='100' align='right'>%1</td></tr><tr><td></td><td>Subnet Mask:</td><td align='right'>%2</td></tr>";
        QCOMPARE(
            info(),
            "<p><b>lan1</b><br>(02:00:00:00:00:01)</p><table align='left' border='0' cellpadding='1' cellspacing='1'>" +
                block.arg("172.16.3.4", "255.255.240.0") + block.arg("10.0.0.1", "255.255.0.0") + "</table>");
    }

    void hintsExplainProblems_data()
    {
        const auto row = addColumns<sdk::Camera, QString>("camera", "expected");
        using namespace Tessal::Accessibility;
        const char* const lan0 = "192.168.1.5";
        const QString picture = "<p><img src=':/Lanvic/Resources/error.png'><br>";
        const QString apart =
            picture +
            "<p>The network adapter and the device are currently not in the same subnet. Therefore, the device will currently not be visible to applications.</p><p>Make sure the device and the network adapter share the same network prefix and subnet mask.</p>";
        const QString inUse =
            picture +
            "The device is currently in use by another application!</p><p>Please close any applications currently using the device and click <b>Refresh</b> to check the status again.";
        const QString gone =
            picture +
            "The device is unreachable!</p><p>Currently you will not be able to use the device.</p>Please make sure the IP address is in the same subnet as the adapter the device is connected to.";
        row("no mask", found(Ok, lan0, "192.168.1.9", "none"), "");
        row("no address", found(Ok, lan0, "192.168.1.x"), "");
        row("in the second network of its adapter", found(Ok, "10.0.0.1", "10.0.0.9", "255.255.0.0"), "");
        row("with another mask", found(Ok, "10.0.0.1", "10.0.0.9", "255.0.0.0"), apart);
        row("in use", found(Controlled), inUse);
        row("unknown", found(Unknown),
            picture +
                "There was an error while trying to determine the accessibility status of the device.</p>Try refreshing the list by clicking <b>Refresh</b>.");
        row("out of reach of a link-local address", found(NotReachable, "169.254.7.9"),
            gone + "<p>Possible addresses are:<br>169.254.1.0 - 169.254.254.255<br></p>");
        row("out of reach of no adapter", found(NotReachable, "9.9.9.9"), gone);
    }
    void hintsExplainProblems()
    {
        QFETCH(const sdk::Camera, camera);
        QFETCH(const QString, expected);
        const Adapter linkLocal("lan2", {"169.254.7.9/16"}, "02:00:00:00:07:09");
        openOn({camera});
        QCOMPARE(hint().split("<p>"), expected.split("<p>")); // a whole one would not be told in full
    }

    void aHostWithoutAdaptersIsToldSo()
    {
        openOn();
        disconnectAdapters();
        const Adapter withoutAddress("lan2", {}, "02:00:00:00:00:02");
        const Adapter unplugged("lan3", {"10.8.0.1/16"}, "02:00:00:00:00:03");
        QCOMPARE(QProcess::execute("ip", {"link", "set", "lan3", "carrier", "off"}), 0);
        QTRY_VERIFY(
            !QNetworkInterface::interfaceFromName("lan3").flags().testFlag(QNetworkInterface::IsRunning));
        refresh();
        QCOMPARE(rows() + enabledInEditor(), QStringList());
        QCOMPARE(
            info() + hint(),
            "<p>No active network networkAdapter found!</p><p>Please make sure your network adapters are enabled and working correctly.</p>Click <b>Refresh</b> or press <b>F5</b> to refresh the list of adapters.");
        openWindow();
        QVERIFY(child<QWidget>("btnRefresh").hasFocus());
        QCOMPARE(m_world.take(true).filter("Enum").size(), 0); // without an adapter there is no search
        connectAdapters();
        refresh();
        QCOMPARE(rows().filter("lan"), (QStringList{"lan0", "lan1"}));
    }

    void aFailedSearchIsShown()
    {
        openOn();
        m_world.at["EnumerateDevicesAnySubnet"] = [] {
            QCOMPARE(cursorDepth(), 1);
            throw GenICam::RuntimeException("cable <cut>", "socket", 7);
        };
        expect({escape, escape, escape});
        refresh();
        failAt("EnumerateDevicesAnySubnet", 1, false);
        refresh();
        QCOMPARE(rows() + enabledInEditor(), QStringList());
        QCOMPARE(info() + hint(), "");
        m_window.reset(); // and the transport layer
        m_world.makesTransportLayer = false;
        openWindow();
        const QString failed = "Failed to enumerate devices";
        const QString noLayer = "Failed to create transport layer object";
        QCOMPARE(takeDialogs(),
                 (QStringList{report(failed, "refresh", {"cable <cut>"}), report(failed, "refresh"),
                              report(failed + "\n\n" + noLayer, "refresh", {noLayer})}));
    }

    void aStatusIsExplained_data()
    {
        const auto row =
            addColumns<sdk::Camera, QString, QImage, QString>("camera", "status", "picture", "explanation");
        using namespace Tessal;
        using namespace Tessal::Accessibility;
        const auto symbol = [](QStyle::StandardPixmap which) {
            return image(QApplication::style()->standardIcon(which));
        };
        const QImage warning = symbol(QStyle::SP_MessageBoxWarning);
        row("unknown", found(Unknown), "Unknown", symbol(QStyle::SP_MessageBoxCritical),
            "The camera answers, but does not tell whether an application controls it.");
        row("held on a computer that is known", with(found(Controlled), {{Key::ControlledBy, "192.168.1.7"}}),
            "In use", warning, "An application on the computer 192.168.1.7 controls the camera.");
        row("held exclusively", found(ControlledExclusively), "In use", warning,
            "Another application has exclusive access to the camera.");
        row("in another network", found(NotReachable, "192.168.1.5", "172.31.0.9"), "Not Reachable", warning,
            "The camera answers the search, but its address is not in a network of lan0.");
        row("silent at its address", found(NotReachable), "Not Reachable", warning,
            "The camera answers the search, but not at its own address. It may be restarting.");
        row("an address that another camera has",
            with(found(NotReachable),
                 {{Key::SameAddressName, "Gate <1>"}, {Key::SameAddressMac, "025E41000002"}}),
            "Not Reachable", warning,
            "The camera Gate <1> with the MAC address 02:5E:41:00:00:02 has the same address. One of them needs "
            "another.");
        row("a MAC address that another camera has",
            with(found(Ok), {{Key::SameMacName, "Twin (2)"}, {Key::SameMacIp, "192.168.1.8"}}), "OK", {},
            "The camera answers at its address and no application controls it. Another camera has the same MAC "
            "address: Twin (2) at 192.168.1.8.");
    }
    void aStatusIsExplained()
    {
        QFETCH(const sdk::Camera, camera);
        QFETCH(const QString, explanation);
        openOn({camera});
        QTEST(row("km-1").text(4), "status");
        QTEST(image(row("km-1").icon(4)), "picture");
        QCOMPARE(row("km-1").data(4, Qt::AccessibleDescriptionRole).toString(), explanation);
        QCOMPARE(row("km-1").toolTip(4), explanation.toHtmlEscaped());
    }
};

WINDOW_TEST_MAIN(TreeTest)
#include "tst_tree.moc"
