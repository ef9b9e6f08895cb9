#include "support/gui.h"

#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

#include <stdexcept>

using sdk::camera;

/// The tree of adapters and cameras, what a selected row tells, and how a refresh brings it up to date.
class TreeTest : public gui::GuiTest
{
    Q_OBJECT

    struct Family
    {
        const char* name;
        const char* model;
        const char* picture;
        const char* vendor = "Orvik";
    };
    struct Status
    {
        const char* name;
        int code;
        const char* word;
        QStyle::StandardPixmap picture = QStyle::SP_CustomBase; // none
    };
    struct Hint
    {
        const char* name;
        int code;
        const char* interface;
        const char* address;
        const char* mask;
        const char* says = ""; // its telling words, empty for no hint at all
        QString ending = {};
    };

    QString current()
    {
        const QTreeWidgetItem* const item = tree().currentItem();
        return item == nullptr ? "nothing" : item->text(0) + ' ' + item->text(6);
    }
    QString info() { return text("labelSelectionInfo"); }
    QString hint() { return text("labelHint"); }
    static QImage image(const QIcon& icon) { return icon.pixmap(16, 16).toImage(); }

private slots:
    void camerasStandUnderTheirAdapters()
    {
        m_world.cameras = {camera("vt-9", "025E41000003", "192.168.1.9"),
                           camera("km-1", "025E41000002", "192.168.1.10"),
                           camera("km-1", "025E41000001", "192.168.1.11"),
                           camera("km-1", "025E41000002", "10.0.0.9", "10.0.0.1"),
                           camera("aa-1", "025E41000009", "192.168.1.12", "192.168.77.1"),
                           {}};
        sdk::set(m_world.cameras.back(), "MacAddress", "025E41000008"); // has no model
        sdk::set(m_world.cameras.back(), "Interface", "192.168.1.5");
        openWindow();
        QStringList found;
        for (QTreeWidgetItemIterator item(&tree()); *item != nullptr; ++item) {
            found << ((*item)->parent() != nullptr ? "  " : "") + (*item)->text(0) + ' ' +
                         (*item)->text(3).right(2) + ' ' + (*item)->data(0, Qt::UserRole).toString();
        }
        QCOMPARE(found, (QStringList{"lan0  1", "   08 2", "  km-1 01 2", "  km-1 02 2", "  vt-9 03 2",
                                     "lan1  1", "  km-1 02 2", "aa-1 09 2"}));
        QVERIFY(row("lan1").isExpanded() && row("lan1").isFirstColumnSpanned());
        QCOMPARE(row("lan1").childIndicatorPolicy(), QTreeWidgetItem::DontShowIndicatorWhenChildless);
        QCOMPARE(row("lan1").data(0, Qt::UserRole + 2).toInt(), 1);
        QCOMPARE(row("vt-9").data(0, Qt::UserRole + 1).toInt(), 0); // its place in the lister's order
        QCOMPARE(current(), "lan0 ");
    }

    void rowsShowWhatTheRecordSays()
    {
        m_world.cameras = {camera("km-1", "025E41000001", "192.168.1.9")};
        for (const auto& [key, value] : {std::pair{"UserDefinedName", "Förderband"},
                                         {"IpConfigCurrent", "6"},
                                         {"FriendlyName", "Förderband (000001)"},
                                         {"DefaultGateway", "192.168.1.1"}}) {
            sdk::set(m_world.cameras[0], key, value);
        }
        openWindow();
        QCOMPARE(rows(),
                 (QStringList{"lan0",
                              "  km-1|Förderband|000001|02:5E:41:00:00:01|OK|DHCP|192.168.1.9|255.255.255.0",
                              "lan1"}));
        QStringList headers;
        for (int column = 0; column < tree().columnCount(); ++column) {
            headers << tree().headerItem()->text(column);
        }
        QCOMPARE(
            headers.join('|'),
            "Name|Device User ID|Serial Number|MAC Address|Status|IP Configuration|IP Address|Subnet Mask");
        select("km-1");
        const QString row = "<tr><td width='8'></td><td>";
        const QStringList rows{"Vendor:</td><td>Orvik",
                               "Model Name:</td><td>km-1",
                               "Device User ID:</td><td>Förderband",
                               "Serial Number:</td><td>000001",
                               "MAC Address:</td><td>02:5E:41:00:00:01",
                               "IP Configuration:</td><td>DHCP",
                               "IP Address:</td><td>192.168.1.9",
                               "Subnet Mask:</td><td>255.255.255.0",
                               "Gateway:</td><td>192.168.1.1"};
        QCOMPARE(info(), "<p><b>Förderband (000001)</b></p><p><table align='left' border='0' cellpadding='1' "
                         "cellspacing='1'>" +
                             row + rows.join("</td></tr>" + row) + "</td></tr></table></p>");
    }

    void namesAreShownLiterally()
    {
        m_world.cameras = {camera("<i>km</i>", "025E41000001", "192.168.1.9")};
        const char* const name = "<i>x</i>&amp;";
        for (const char* const key : {"UserDefinedName", "FriendlyName", "VendorName", "SerialNumber"}) {
            sdk::set(m_world.cameras[0], key, name);
        }
        openWindow();
        select("<i>km</i>");
        auto& label = child<QLabel>("labelSelectionInfo");
        QTest::mouseClick(&label, Qt::LeftButton);
        QTest::keySequence(&label, QKeySequence::SelectAll);
        QCOMPARE(label.selectedText().count(name), 4);
        QVERIFY(label.selectedText().contains("<i>km</i>"));
        QCOMPARE(text("editCustomName"), name);
    }

    void picturesTellTheFamily_data()
    {
        gui::rows<Family>({
            {"km", "km-1300", "Kimra-Icon_16x16"},
            {"vt", "vt1", "Velto-Icon_16x16"},
            {"dz", "dz", "Dorun-Icon_16x16"},
            {"sq", "sqq", "Sarpo_GigE-Icon_16x16"},
            {"vl", "vl-2", "Velto_light_Icon_16x16"},
            {"mx", "mx-2", "Mivex-Icon_16x16"},
            {"tk", "tk-2", "Tulka_Icon_16x16"},
            {"other case", "Vt1", "Generic_Camera_16x16px"},
            {"one letter", "k", "Generic_Camera_16x16px"},
            {"no model", "", "Generic_Camera_16x16px"},
            {"another maker", "km-1300", "", "Someone"},
        });
    }
    void picturesTellTheFamily()
    {
        QFETCH(const Family, row);
        m_world.cameras = {camera(row.model, "025E41000001", "192.168.1.9")};
        sdk::set(m_world.cameras[0], "VendorName", row.vendor);
        openWindow();
        const auto picture = [](const QString& name) {
            return image(QIcon(":/Lanvic/Resources/" + name + ".png"));
        };
        QCOMPARE(image(this->row("lan0").icon(0)), picture("network_adapter"));
        QCOMPARE(image(this->row("02:5E:41:00:00:01").icon(0)), picture(row.picture));
        QCOMPARE(picture(row.picture).isNull(), *row.picture == '\0');
    }

    void statusIsToldInWordAndPicture_data()
    {
        gui::rows<Status>({
            {"unknown", 0, "Unknown", QStyle::SP_MessageBoxCritical},
            {"accessible", 1, "OK"},
            {"controlled", 2, "In use", QStyle::SP_MessageBoxWarning},
            {"controlled exclusively", 3, "In use", QStyle::SP_MessageBoxWarning},
            {"not reachable", 4, "Not Reachable", QStyle::SP_MessageBoxWarning},
            {"too large", 5, "Unknown", QStyle::SP_MessageBoxCritical},
            {"negative", -1, "Unknown", QStyle::SP_MessageBoxCritical},
        });
    }
    void statusIsToldInWordAndPicture()
    {
        QFETCH(const Status, row);
        m_world.cameras = {camera("km-1", "025E41000001", "192.168.1.9")};
        m_world.cameras[0].accessibility = row.code;
        openWindow();
        QCOMPARE(this->row("km-1").text(4), row.word);
        QCOMPARE(image(this->row("km-1").icon(4)),
                 row.picture == QStyle::SP_CustomBase
                     ? QImage()
                     : image(QApplication::style()->standardIcon(row.picture)));
    }

    void selectionSurvivesARefresh()
    {
        m_world.cameras = {camera("km-1", "025E41000001", "192.168.1.9"),
                           camera("km-2", "025E41000002", "192.168.1.10"),
                           camera("km-2", "025E41000002", "10.0.0.10", "10.0.0.1")};
        openWindow();
        select(*row("lan1").child(0));
        press(QKeySequence("F5"));
        QCOMPARE(current(), "km-2 10.0.0.10"); // the one under the same adapter
        select("lan1");
        QTest::mouseClick(&child<QPushButton>("btnRefresh"), Qt::LeftButton);
        QCOMPARE(current(), "lan1 ");
        select("km-1");
        m_world.cameras.erase(m_world.cameras.begin());
        press(QKeySequence("F5"));
        QCOMPARE(current(), "lan0 ");
    }

    void anAdapterTellsItsAddresses()
    {
        openWindow();
        QCOMPARE(hint(),
                 "<p>No devices found!</p>Click <b>Refresh</b> or press <b>F5</b> to search for devices.");
        QVERIFY(tree().hasFocus());
        m_world.cameras = {camera("km-1", "025E41000001", "192.168.1.9")};
        press(QKeySequence("F5"));
        select("lan1");
        QCOMPARE(hint(), QString());
        const QString block = "<tr><td width='8'></td></tr><tr><td width='8'></td><td>IP Address:</td><td "
                              "width='100' align='right'>%1</td></tr><tr><td></td><td>Subnet Mask:</td><td "
                              "align='right'>%2</td></tr>";
        QCOMPARE(info(),
                 "<p><b>lan1</b><br>(02:00:00:00:00:01)</p><table align='left' border='0' cellpadding='1' "
                 "cellspacing='1'>" +
                     block.arg("10.0.0.1", "255.255.0.0") + block.arg("172.16.3.4", "255.255.240.0") +
                     "</table>");
    }

    void hintsSayWhatIsTheMatter_data()
    {
        const char* const otherSubnet = "currently not in the same subnet";
        const char* const inUse = "in use by another application!";
        const char* const unreachable = "The device is unreachable!";
        gui::rows<Hint>({
            {"all is well", 1, "192.168.1.5", "192.168.1.9", "255.255.255.0"},
            {"another mask", 1, "10.0.0.1", "10.0.0.9", "255.0.0.0", otherSubnet, "subnet mask.</p>"},
            {"second address of the adapter", 1, "172.16.3.4", "172.16.3.9", "255.255.240.0"},
            {"no mask to judge by", 1, "192.168.1.5", "192.168.1.9", "none"},
            {"in use", 2, "192.168.1.5", "192.168.1.9", "255.255.255.0", inUse, "check the status again."},
            {"in exclusive use", 3, "192.168.1.5", "192.168.1.9", "255.255.255.0", inUse,
             "the status again."},
            {"unknown", 0, "192.168.1.5", "192.168.1.9", "255.255.255.0", "There was an error",
             "Refresh</b>."},
            {"unreachable", 4, "192.168.1.5", "10.9.9.9", "255.0.0.0", unreachable,
             "connected to.<p>Possible addresses are:<br>192.168.1.1 - 192.168.1.254<br></p>"},
            {"unreachable, two subnets", 4, "10.0.0.1", "192.168.9.9", "255.0.0.0", unreachable,
             "<p>Possible addresses are:<br>10.0.0.1 - 10.0.255.254<br>172.16.0.1 - 172.16.15.254<br></p>"},
            {"unreachable, no adapter", 4, "9.9.9.9", "192.168.9.9", "255.0.0.0", unreachable,
             "connected to."},
        });
    }
    void hintsSayWhatIsTheMatter()
    {
        QFETCH(const Hint, row);
        m_world.cameras = {camera("km-1", "025E41000001", row.address, row.interface)};
        m_world.cameras[0].accessibility = row.code;
        sdk::set(m_world.cameras[0], "SubnetMask", row.mask);
        openWindow();
        select("km-1");
        QCOMPARE(hint().isEmpty(), *row.says == '\0');
        QVERIFY2(hint().contains(row.says), qPrintable(hint()));
        QCOMPARE(hint().right(row.ending.size()), row.ending);
        QCOMPARE(hint().startsWith("<p><img src=':/Lanvic/Resources/error.png'><br>"), *row.says != '\0');
    }

    void aHostWithoutAdaptersIsToldSo()
    {
        disconnectAdapters();
        openWindow();
        const QString said = info();
        const QStringList asked = m_world.take(true);
        const bool isRefreshFocused = child<QPushButton>("btnRefresh").hasFocus();
        connectAdapters();
        QCOMPARE(said,
                 "<p>No active network networkAdapter found!</p><p>Please make sure your network adapters "
                 "are enabled and working correctly.</p>Click <b>Refresh</b> or press <b>F5</b> to refresh "
                 "the list of adapters.");
        QCOMPARE(asked + rows(), QStringList());
        QVERIFY(isRefreshFocused);
        press(QKeySequence("F5"));
        QCOMPARE(rows(), (QStringList{"lan0", "lan1"}));
    }

    void aFailedSearchIsShown()
    {
        openWindow();
        int cursors = 0;
        m_world.at["EnumerateDevicesAnySubnet"] = [&] {
            cursors = gui::cursorDepth();
            throw GenICam::RuntimeException("cable <cut>", "socket", 7);
        };
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        press(QKeySequence("F5"));
        QCOMPARE(cursors, 1);
        QCOMPARE(m_dialogs.take(), QStringList{gui::report("Failed to enumerate devices\n\ncable <cut>")});

        m_world.at["EnumerateDevicesAnySubnet"] = [] { throw 1; };
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        press(QKeySequence("F5"));
        QCOMPARE(m_dialogs.take(), QStringList{gui::report("Failed to enumerate devices")});
        QCOMPARE(rows(), QStringList());
    }

    void aHeldCameraIsGivenBackByARefresh()
    {
        m_world.cameras = {camera("km-1", "025E41000001", "192.168.1.9")};
        m_world.cameras[0].knowsBroadcast = false;
        m_world.cameras[0].hasNodeMap = false; // a save fails with the camera open
        openWindow();
        for (const bool fails : {false, true}) {
            select("km-1");
            type("editCustomName", "left");
            m_dialogs.expect(gui::click(QMessageBox::Close));
            save();
            m_dialogs.expect(gui::click(QMessageBox::No));
            m_world.take();
            takeDebug();
            if (fails) {
                m_world.at["DestroyDevice"] = [] {
                    throw GenICam::RuntimeException("stuck", "device.cpp", 7);
                };
            }
            press(QKeySequence("F5"));
            QCOMPARE(m_world.take(), QStringList{"DestroyDevice()"});
            QCOMPARE(rows().size(), 3);
        }
        QCOMPARE(takeDebug().filter("warning"),
                 (QStringList{"warning Failed to destroy device",
                              "warning doRefresh :  Exception occurred:\n stuck \n device.cpp : 7 \n"}));
        press(QKeySequence("F5"));
        QCOMPARE(m_world.take(), QStringList()); // never a second time
    }
};

int main(int argc, char** argv)
{
    TreeTest test;
    return gui::run(test, argc, argv);
}

#include "tst_tree.moc"
