#include "DeviceLister.h"
#include "qtbase/helpandsupport.h"
#include "support/gui.h"

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

private slots:
    void recordsAreMergedNamedAndJudged()
    {
        const Adapter lan2("lan2", {"10.1.0.1/16", "10.2.0.1/16", "110.2.0.1/16"}, "02:00:00:00:00:02");
        for (const auto& [heard, expected] : Table<QStringList, QStringList>{
                 // "MAC interface", then what is not as usual: address, accessibility when asked
                 {{"A1 10.1.0.1", "A1 10.2.0.1", "A1 110.2.0.1"}, {"A1 10.1.0.1;10.2.0.1;110.2.0.1 lan2 1"}},
                 {{"A1 110.2.0.1", "A1 10.2.0.1"}, {"A1 110.2.0.1 lan2 1"}}, // told apart by their ends
                 {{"A1 9.9.9.9", "A1 9.9.9.9"}, {"A1 9.9.9.9 - 1"}},
                 {{"A1 10.0.0.1", "B2 10.0.0.1", "A1 172.16.3.4"},
                  {"A1 10.0.0.1;172.16.3.4 lan1 1", "B2 10.0.0.1 lan1 1"}},
                 {{"A1 192.168.1.5", "A1 10.0.0.1"}, {"A1 192.168.1.5 lan0 1", "A1 10.0.0.1 lan1 1"}},
                 {{"A1 10.0.0.1", "a1 172.16.3.4"}, {"A1 10.0.0.1 lan1 1", "a1 172.16.3.4 lan1 1"}},
                 {{"A1 9.9.9.9", "A1 8.8.8.8", "A1 127.0.0.1"}, // of no adapter, so nothing is merged
                  {"A1 9.9.9.9 - 1", "A1 8.8.8.8 - 1", "A1 127.0.0.1 - 1"}},
                 {{"A1 10.1"}, {"A1 10.1 - 1"}}, // shorthand is no address
                 {{" 192.168.1.5"}, {}},
                 {{"A1 192.168.1.5 10.9.9.9", "B2 192.168.1.5"},
                  {"A1 192.168.1.5 lan0 4", "B2 192.168.1.5 lan0 1"}},
                 {{"A1 192.168.1.5 10.9.9.9 2"}, {"A1 192.168.1.5 lan0 2"}},
                 {{"A1 192.168.1.5 10.9.9.9 0"}, {"A1 192.168.1.5 lan0 0"}}}) {
            m_world.cameras.clear();
            for (const QString& line : heard) {
                const QList<QByteArray> words = line.toLatin1().split(' ');
                const QByteArray address = words.value(2, words[1]);
                m_world.cameras.push_back(camera("km-1", words[0], address, words[1]));
                m_world.cameras.back().accessibility = words.value(3, "1").toInt();
            }
            QCOMPARE(search(), expected);
        }
    }

    void listersShareOneTransportLayer()
    {
        auto lister = std::make_unique<DeviceLister>();
        QCOMPARE(m_world.take(true), QStringList());
        lister->discoverAllDevices(); // nobody there: one enumeration only
        m_world.cameras = {camera()};
        QCOMPARE(search().size(), 1);
        lister.reset();
        QCOMPARE(m_world.take(true),
                 (QStringList{"CreateTl(OrvikGigE)", "EnumerateDevicesAnySubnet(false)",
                              "EnumerateDevicesAnySubnet(false)", "EnumerateDevices(false)",
                              "QueryDeviceAccessibility(025E41000001, 1)", "ReleaseTl(true)"}));
        QVERIFY(DeviceLister::s_pTl == nullptr);
    }

    void recordsArePatched()
    {
        m_world.cameras = {camera(), camera("km-1", "025E41000001", "192.168.1.9", "10.0.0.1"),
                           camera("km-2", "025E41000002", "192.168.1.10")};
        DeviceLister lister;
        lister.discoverAllDevices();
        m_world.take(true);
        const auto values = [&](std::size_t index) {
            return get(lister.m_devices.at(index),
                       {"IpConfigCurrent", "Address", "SubnetMask", "DefaultGateway", "DEV_~_Accessible"});
        };
        const char* const mac = "025E41000001";
        m_world.cameras[0].accessibility = m_world.cameras[1].accessibility = 3;
        QCOMPARE(lister.updateDeviceInfo(mac, "6", nullptr, nullptr, nullptr, false), 2);
        QCOMPARE(values(0), "6 192.168.1.9:3956 255.255.255.0 0.0.0.0 1");
        QCOMPARE(lister.updateDeviceInfo(mac, nullptr, "10.0.0.7", "255.0.0.0", "10.0.0.254", true), 2);
        QCOMPARE(values(0), "6 10.0.0.7:3956 255.0.0.0 10.0.0.254 3");
        QCOMPARE(values(1), "6 10.0.0.7:3956 255.0.0.0 10.0.0.254 1"); // not asked again
        QCOMPARE(values(2), "5 192.168.1.10:3956 255.255.255.0 0.0.0.0 1");
        QCOMPARE(m_world.take(true), QStringList{"QueryDeviceAccessibility(025E41000001, 1)"});
    }

    void camerasStandUnderTheirAdaptersAndStaySelected()
    {
        m_world.cameras = {
            camera("vt-9", "025E41000003"),
            camera("km-1", "025E41000002"),
            camera("km-1", "025E41000001"),
            camera("km-1", "025E41000002", "10.0.0.9", "10.0.0.1"),
            camera("aa-1", "025E41000009", "192.168.1.12", "192.168.77.1"),
            with({}, {{"MacAddress", "025E41000008"}, {"Interface", "192.168.1.5"}})}; // no model
        openWindow();
        QStringList found = rows();
        found.replaceInStrings(QRegularExpression("\\|.*:(..)\\|.*"), " \\1");
        QCOMPARE(found, (QStringList{"lan0", "   08", "  km-1 01", "  km-1 02", "  vt-9 03", "lan1",
                                     "  km-1 02", "aa-1 09"}));
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
        QVERIFY(row("lan1").isExpanded()); // always
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
        QCOMPARE(rows()[1], "  km-1|Förderband|000001|02:5E:41:00:00:01|OK|DHCP|192.168.1.9|255.255.255.0");
        QStringList headers;
        for (int column = 0; column < tree().columnCount(); ++column) {
            headers << tree().headerItem()->text(column);
        }
        QCOMPARE(
            headers.join('|'),
            "Name|Device User ID|Serial Number|MAC Address|Status|IP Configuration|IP Address|Subnet Mask");
        QString table = "Vendor|Orvik,Model Name|km-1,Device User ID|Förderband,Serial Number|000001,"
                        "MAC Address|02:5E:41:00:00:01,IP Configuration|DHCP,IP Address|192.168.1.9,"
                        "Subnet Mask|255.255.255.0,Gateway|192.168.1.1";
        table.replace(",", "</td></tr><tr><td width='8'></td><td>").replace("|", ":</td><td>");
        QCOMPARE(
            info(),
            "<p><b>Förderband (000001)</b></p><p><table align='left' border='0' cellpadding='1' cellspacing='1'><tr><td width='8'></td><td>" +
                table + "</td></tr></table></p>");
    }

    void picturesTellFamilyAndStatus()
    {
        m_world.cameras = {camera("Vt1"), camera("k", "025E41000002"), camera("", "025E41000003")};
        openWindow();
        for (const char* const where : {"Vt1", "k", "02:5E:41:00:00:03"}) { // of no known family
            QCOMPARE(image(row(where).icon(0)),
                     image(QIcon(":/Lanvic/Resources/Generic_Camera_16x16px.png")));
        }
        QCOMPARE(image(row("lan0").icon(0)), image(QIcon(":/Lanvic/Resources/network_adapter.png")));
        int code = -1;
        for (const QString word :
             {"Unknown", "Unknown", "OK", "In use", "In use", "Not Reachable", "Unknown"}) {
            cam().accessibility = code++;
            refresh();
            const auto symbol =
                word == "Unknown" ? QStyle::SP_MessageBoxCritical : QStyle::SP_MessageBoxWarning;
            QCOMPARE(row("Vt1").text(4), word);
            QCOMPARE(image(row("Vt1").icon(4)),
                     word == "OK" ? QImage() : image(tree().style()->standardIcon(symbol)));
        }
    }

    void namesStandBelowOneAnotherWithAndWithoutAPicture()
    {
        m_world.cameras = {camera("km-1"),
                           with(camera("km-1", "025E41000002"), {{"VendorName", "Another maker"}})};
        openWindow();
        const auto widthOf = [this](const char* mac) {
            return tree().sizeHintForIndex(tree().indexFromItem(&row(mac), 0)).width();
        };
        QVERIFY(row("02:5E:41:00:00:02").icon(0).isNull());
        QCOMPARE(widthOf("02:5E:41:00:00:02"), widthOf("02:5E:41:00:00:01"));
    }

    void anAdapterTellsItsAddresses()
    {
        openWindow();
        QString before; // what is painted before the search
        QMetaObject::invokeMethod(
            this, [&] { before = info(); }, Qt::QueuedConnection);
        child<QAction>("actionRefresh").trigger();
        QCOMPARE(before, "Searching for devices...");
        QVERIFY(row("lan1").isExpanded());
        QCOMPARE(hint(),
                 "<p>No devices found!</p>Click <b>Refresh</b> or press <b>F5</b> to search for devices.");
        m_world.cameras = {camera()};
        refresh();
        select("lan1");
        QCOMPARE(hint(), QString());
        const QString block =
            "<tr><td width='8'></td></tr><tr><td width='8'></td><td>IP Address:</td><td width='100' align='right'>%1</td></tr><tr><td></td><td>Subnet Mask:</td><td align='right'>%2</td></tr>";
        QCOMPARE(
            info(),
            "<p><b>lan1</b><br>(02:00:00:00:00:01)</p><table align='left' border='0' cellpadding='1' cellspacing='1'>" +
                block.arg("172.16.3.4", "255.255.240.0") + block.arg("10.0.0.1", "255.255.0.0") + "</table>");
    }

    void hintsSayWhatIsTheMatter()
    {
        const Adapter linkLocal("lan2", {"169.254.7.9/16"}, "02:00:00:00:07:09");
        const char* const lan0 = "192.168.1.5";
        const char* const near = "192.168.1.9";
        const char* const classC = "255.255.255.0";
        const QString unknown =
            "There was an error while trying to determine the accessibility status of the device.</p>Try refreshing the list by clicking <b>Refresh</b>.";
        const QString apart =
            "<p>The network adapter and the device are currently not in the same subnet. Therefore, the device will currently not be visible to applications.</p><p>Make sure the device and the network adapter share the same network prefix and subnet mask.</p>";
        const QString inUse =
            "The device is currently in use by another application!</p><p>Please close any applications currently using the device and click <b>Refresh</b> to check the status again.";
        const QString gone =
            "The device is unreachable!</p><p>Currently you will not be able to use the device.</p>Please make sure the IP address is in the same subnet as the adapter the device is connected to.";
        QVERIFY(!QImage(":/Lanvic/Resources/error.png").isNull());
        const QString possible = gone + "<p>Possible addresses are:<br>%1<br></p>";
        for (const auto& [code, interface, address, mask, says] :
             Table<int, const char*, const char*, const char*, QString>{
                 {1, lan0, near, classC, ""},
                 {1, lan0, near, "none", ""},
                 {1, lan0, "192.168.1.x", classC, ""},
                 {1, "10.0.0.1", "10.0.0.9", "255.255.0.0", ""}, // the second network of its adapter
                 {1, "10.0.0.1", "10.0.0.9", "255.0.0.0", apart},
                 {2, lan0, near, classC, inUse},
                 {3, lan0, near, classC, inUse},
                 {0, lan0, near, classC, unknown},
                 {4, lan0, near, classC, possible.arg("192.168.1.1 - 192.168.1.254")},
                 {4, "10.0.0.1", near, classC,
                  possible.arg("172.16.0.1 - 172.16.15.254<br>10.0.0.1 - 10.0.255.254")},
                 {4, "169.254.7.9", near, classC, possible.arg("169.254.1.0 - 169.254.254.255")},
                 {4, "9.9.9.9", near, classC, gone}, // under no adapter
             }) {
            sdk::Camera made =
                with(camera("km-1", "025E41000001", address, interface), {{"SubnetMask", mask}});
            made.accessibility = code;
            openOn({made});
            const QString picture = "<p><img src=':/Lanvic/Resources/error.png'><br>";
            QCOMPARE(hint(), says.isEmpty() ? QString() : picture + says);
        }
    }

    void aHostWithoutAdaptersIsToldSo()
    {
        disconnectAdapters();
        const Adapter withoutAddress("lan2", {}, "02:00:00:00:00:02");
        openWindow();
        QCOMPARE(m_world.take(true) + rows(), QStringList());
        QCOMPARE(
            info() + hint(),
            "<p>No active network networkAdapter found!</p><p>Please make sure your network adapters are enabled and working correctly.</p>Click <b>Refresh</b> or press <b>F5</b> to refresh the list of adapters.");
        QVERIFY(child<QWidget>("btnRefresh").hasFocus());
        connectAdapters();
        refresh();
        QCOMPARE(rows(), (QStringList{"lan0", "lan1"}));
    }

    void anAdapterHasItsCamerasWhateverItsName()
    {
        const Adapter kitchen("küche", {"10.7.0.1/16"}, "02:00:00:00:00:02");
        m_world.cameras = {camera("km-1", "025E41000001", "10.7.0.9", "10.7.0.1")};
        openWindow();
        QVERIFY(row("km-1").parent() != nullptr);
        QCOMPARE(row("km-1").parent()->text(0), "küche");
        select("küche");
        QVERIFY2(info().contains("<b>küche</b>"), qPrintable(info()));
    }

    void aFailedSearchIsShown()
    {
        m_world.makesTransportLayer = false;
        expect({escape, escape, escape});
        openWindow();
        m_world.makesTransportLayer = true;
        m_world.at["EnumerateDevicesAnySubnet"] = [] {
            QCOMPARE(cursorDepth(), 1);
            throw GenICam::RuntimeException("cable <cut>", "socket", 7);
        };
        refresh();
        failAt("EnumerateDevicesAnySubnet", 1, false);
        refresh();
        const QString failed = "Failed to enumerate devices";
        const QString noLayer = "Failed to create transport layer object";
        QCOMPARE(takeDialogs(),
                 (QStringList{report(failed + "\n\n" + noLayer, "refresh", {noLayer}),
                              report(failed, "refresh", {"cable <cut>"}), report(failed, "refresh")}));
        QCOMPARE(rows(), QStringList());
    }

    void aStatusIsExplained_data()
    {
        QTest::addColumn<int>("accessibility");
        QTest::addColumn<QList<std::pair<const char*, const char*>>>("learned");
        QTest::addColumn<QString>("explanation");
        using Properties = QList<std::pair<const char*, const char*>>;
        QTest::newRow("free") << 1 << Properties()
                              << "The camera answers at its address and no application controls it.";
        QTest::newRow("held on a computer that is known")
            << 2 << Properties{{Tessal::Key::ControlledBy, "192.168.1.7"}}
            << "An application on the computer 192.168.1.7 controls the camera.";
        QTest::newRow("held exclusively")
            << 3 << Properties() << "Another application has the camera for itself alone.";
        QTest::newRow("in another network")
            << 4 << Properties{{Tessal::Key::IpAddress, "172.31.0.9"}}
            << "The camera answers the search, but its address is not in a network of lan0.";
        QTest::newRow("silent at its address")
            << 4 << Properties()
            << "The camera answers the search, but not at its own address. It may be restarting.";
        QTest::newRow("an address that another camera has")
            << 4
            << Properties{{Tessal::Key::SameAddressName, "Gate <1>"},
                          {Tessal::Key::SameAddressMac, "025E41000002"}}
            << "The camera Gate <1> with the MAC address 02:5E:41:00:00:02 has the same address. One of them needs "
               "another.";
        QTest::newRow("a MAC address that another camera has")
            << 1
            << Properties{{Tessal::Key::SameMacName, "Twin (2)"}, {Tessal::Key::SameMacIp, "192.168.1.8"}}
            << "The camera answers at its address and no application controls it. Another camera has the same MAC "
               "address: Twin (2) at 192.168.1.8.";
    }

    void aStatusIsExplained()
    {
        QFETCH(const int, accessibility);
        QFETCH(const QString, explanation);
        using Properties = QList<std::pair<const char*, const char*>>;
        QFETCH(const Properties, learned);
        sdk::Camera camera = sdk::camera();
        camera.accessibility = accessibility;
        for (const auto& [key, value] : learned) {
            camera.record.SetPropertyValue(key, value);
        }
        openOn({camera});
        QCOMPARE(row("km-1").data(4, Qt::AccessibleDescriptionRole).toString(), explanation);
        QCOMPARE(row("km-1").toolTip(4), explanation.toHtmlEscaped());
    }

    void whatHindersASearchIsToldOnTheAdaptersRow()
    {
        openOn();
        m_world.obstacles = {{.kind = Tessal::Obstacle::SharedSubnet, .adapter = "lan1", .other = "lan0"}};
        refresh();
        const QString told =
            "lan1 and lan0 have addresses in the same network, so cameras may not be reachable "
            "through either. Give each adapter a network of its own.";
        QCOMPARE(row("lan1").toolTip(0), told);
        QCOMPARE(row("lan0").toolTip(0), "");
        QVERIFY(GetOrvikSupportInfo(true).contains(told));
    }

    void aTemporaryAddressIsMarkedUntilTheCameraHasAnother()
    {
        const QString mark = "A temporary address: the camera has it until it restarts.";
        openOn();
        expect({[](QWidget& menu) { QTest::keyClicks(&menu, "a"); },
                gui::fill({{"editIpAddress", "192.168.1.77"}})});
        openMenuOf("km-1");
        QCOMPARE(row("km-1").text(6), "192.168.1.77");
        QCOMPARE(row("km-1").toolTip(6), mark);
        refresh();
        QCOMPARE(row("km-1").toolTip(6), mark);
        cam().record.SetIpAddress("192.168.1.9");
        refresh();
        QCOMPARE(row("km-1").toolTip(6), "");
        takeDialogs();
    }
};

WINDOW_TEST_MAIN(TreeTest)
#include "tst_tree.moc"
