#include "support/gui.h"

#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QStyle>

#include <stdexcept>

using sdk::camera;
using sdk::with;

/// The tree of adapters and cameras, what a selected row tells, and how a refresh brings it up to date.
class TreeTest : public gui::GuiTest
{
    Q_OBJECT

    QString current() { return tree().currentItem()->text(0) + ' ' + tree().currentItem()->text(6); }
    QString info() { return text("labelSelectionInfo"); }
    QString hint() { return text("labelHint"); }
    void refresh() { press(QKeySequence("F5")); }
    static QImage image(const QIcon& icon) { return icon.pixmap(16, 16).toImage(); }
    static QImage picture(const QString& name) { return image(QIcon(":/Lanvic/Resources/" + name + ".png")); }

private slots:
    void camerasStandUnderTheirAdapters()
    {
        m_world.cameras = {
            camera("vt-9", "025E41000003"),
            camera("km-1", "025E41000002"),
            camera("km-1", "025E41000001"),
            camera("km-1", "025E41000002", "10.0.0.9", "10.0.0.1"),
            camera("aa-1", "025E41000009", "192.168.1.12", "192.168.77.1"),
            with({}, {{"MacAddress", "025E41000008"}, {"Interface", "192.168.1.5"}})}; // no model
        openWindow();
        QStringList found;
        for (QTreeWidgetItemIterator item(&tree()); *item != nullptr; ++item) {
            found << ((*item)->parent() != nullptr ? "  " : "") + (*item)->text(0) + ' ' +
                         (*item)->text(3).right(2) + ' ' + (*item)->data(0, Qt::UserRole).toString();
        }
        QCOMPARE(found, (QStringList{"lan0  1", "   08 2", "  km-1 01 2", "  km-1 02 2", "  vt-9 03 2",
                                     "lan1  1", "  km-1 02 2", "aa-1 09 2"}));
        QVERIFY(row("lan1").isExpanded() && row("lan1").isFirstColumnSpanned());
        QCOMPARE(row("lan1").data(0, Qt::UserRole + 2).toInt(), 1);
        QCOMPARE(row("vt-9").data(0, Qt::UserRole + 1).toInt(), 0); // its place in the lister's order
        QCOMPARE(current(), "lan0 ");
    }

    void rowsShowWhatTheRecordSays()
    {
        openOnCamera(with(camera(), {{"UserDefinedName", "Förderband"},
                                     {"IpConfigCurrent", "6"},
                                     {"FriendlyName", "Förderband (000001)"},
                                     {"DefaultGateway", "192.168.1.1"}}));
        QCOMPARE(rows()[1], "  km-1|Förderband|000001|02:5E:41:00:00:01|OK|DHCP|192.168.1.9|255.255.255.0");
        QStringList headers;
        for (int column = 0; column < tree().columnCount(); ++column) {
            headers << tree().headerItem()->text(column);
        }
        QCOMPARE(headers.join('|'),
                 "Name|Device User ID|Serial Number|MAC Address|Status|IP Configuration|IP "
                 "Address|Subnet Mask");
        const QString line = "<tr><td width='8'></td><td>%1:</td><td>%2</td></tr>";
        QString lines;
        for (const auto& [name, value] : {std::pair{"Vendor", "Orvik"},
                                          {"Model Name", "km-1"},
                                          {"Device User ID", "Förderband"},
                                          {"Serial Number", "000001"},
                                          {"MAC Address", "02:5E:41:00:00:01"},
                                          {"IP Configuration", "DHCP"},
                                          {"IP Address", "192.168.1.9"},
                                          {"Subnet Mask", "255.255.255.0"},
                                          {"Gateway", "192.168.1.1"}}) {
            lines += line.arg(name, value);
        }
        QCOMPARE(info(), "<p><b>Förderband (000001)</b></p><p><table align='left' border='0' cellpadding='1' "
                         "cellspacing='1'>" +
                             lines + "</table></p>");
    }

    void namesAreShownLiterally()
    {
        const char* const name = "<i>x</i>&amp;";
        openOnCamera(with(camera(), {{"UserDefinedName", name},
                                     {"FriendlyName", name},
                                     {"VendorName", name},
                                     {"SerialNumber", name}}));
        auto& label = child<QLabel>("labelSelectionInfo");
        QTest::mouseClick(&label, Qt::LeftButton);
        QTest::keySequence(&label, QKeySequence::SelectAll);
        QCOMPARE(label.selectedText().count(name), 4);
        QCOMPARE(text("editCustomName"), name);
    }

    void picturesTellFamilyAndStatus()
    {
        const std::pair<const char*, const char*> families[] = {{"km-1300", "Kimra-Icon_16x16"},
                                                                {"vt1", "Velto-Icon_16x16"},
                                                                {"dz", "Dorun-Icon_16x16"},
                                                                {"sqq", "Sarpo_GigE-Icon_16x16"},
                                                                {"vl-2", "Velto_light_Icon_16x16"},
                                                                {"mx-2", "Mivex-Icon_16x16"},
                                                                {"tk-2", "Tulka_Icon_16x16"},
                                                                {"Vt1", "Generic_Camera_16x16px"},
                                                                {"k", "Generic_Camera_16x16px"},
                                                                {"", "Generic_Camera_16x16px"},
                                                                {"km-other", ""}};
        const std::pair<const char*, int> statuses[] = {
            {"Unknown", QStyle::SP_MessageBoxCritical},      {"OK", -1},
            {"In use", QStyle::SP_MessageBoxWarning},        {"In use", QStyle::SP_MessageBoxWarning},
            {"Not Reachable", QStyle::SP_MessageBoxWarning}, {"Unknown", QStyle::SP_MessageBoxCritical}};
        for (const auto& [model, icon] : families) {
            m_world.cameras = {with(camera(model), {{"VendorName", *icon != '\0' ? "Orvik" : "Someone"}})};
            openWindow();
            QVERIFY2(image(row("02:5E:41:00:00:01").icon(0)) == picture(icon), model);
            QCOMPARE(picture(icon).isNull(), *icon == '\0');
        }
        QCOMPARE(image(row("lan0").icon(0)), picture("network_adapter"));
        for (int code = 0; code <= 5; ++code) {
            m_world.cameras[0].accessibility = code;
            refresh();
            const auto& [word, icon] = statuses[code];
            const QIcon expected =
                icon < 0 ? QIcon() : QApplication::style()->standardIcon(QStyle::StandardPixmap(icon));
            QCOMPARE(row("km-other").text(4), word);
            QVERIFY2(image(row("km-other").icon(4)) == image(expected), word);
        }
    }

    void selectionSurvivesARefresh()
    {
        m_world.cameras = {camera(), camera("km-2", "025E41000002", "192.168.1.10"),
                           camera("km-2", "025E41000002", "10.0.0.10", "10.0.0.1")};
        openWindow();
        select(*row("lan1").child(0));
        refresh();
        QCOMPARE(current(), "km-2 10.0.0.10"); // the one under the same adapter
        select("lan1");
        clickOn("btnRefresh");
        QCOMPARE(current(), "lan1 ");
        select("km-1");
        m_world.cameras.erase(m_world.cameras.begin());
        refresh();
        QCOMPARE(current(), "lan0 ");
    }

    void anAdapterTellsItsAddresses()
    {
        openWindow();
        QCOMPARE(hint(),
                 "<p>No devices found!</p>Click <b>Refresh</b> or press <b>F5</b> to search for devices.");
        QVERIFY(tree().hasFocus());
        m_world.cameras = {camera()};
        refresh();
        select("lan1");
        QCOMPARE(hint(), QString());
        const QString block = "<tr><td width='8'></td></tr><tr><td width='8'></td><td>IP Address:</td><td "
                              "width='100' align='right'>%1</td></tr><tr><td></td><td>Subnet Mask:</td><td "
                              "align='right'>%2</td></tr>";
        QCOMPARE(info(),
                 "<p><b>lan1</b><br>(02:00:00:00:00:01)</p><table align='left' border='0' cellpadding='1' "
                 "cellspacing='1'>" +
                     block.arg("172.16.3.4", "255.255.240.0") + block.arg("10.0.0.1", "255.255.0.0") +
                     "</table>");
    }

    void hintsSayWhatIsTheMatter()
    {
        struct Case
        {
            int code;
            const char* interface;
            const char* address;
            const char* mask;
            QString says; // its telling words, empty for no hint at all
            QString ending = {};
        };
        const GuiAdapter linkLocal("lan2", {"169.254.7.9/16"}, "02:00:00:00:07:09");
        const QString inUse = "in use by another application!";
        const QString unreachable = "The device is unreachable!";
        for (const Case& that : {
                 Case{1, "192.168.1.5", "192.168.1.9", "255.255.255.0", ""},
                 Case{1, "10.0.0.1", "10.0.0.9", "255.255.0.0", ""}, // the second network of its adapter
                 Case{1, "10.0.0.1", "10.0.0.9", "255.0.0.0", "currently not in the same subnet",
                      "subnet mask.</p>"},
                 Case{1, "192.168.1.5", "192.168.1.9", "none", ""},
                 Case{2, "192.168.1.5", "192.168.1.9", "255.255.255.0", inUse, "check the status again."},
                 Case{3, "192.168.1.5", "192.168.1.9", "255.255.255.0", inUse, "check the status again."},
                 Case{0, "192.168.1.5", "192.168.1.9", "255.255.255.0", "There was an error",
                      "<b>Refresh</b>."},
                 Case{4, "192.168.1.5", "10.9.9.9", "255.0.0.0", unreachable,
                      "connected to.<p>Possible addresses are:<br>192.168.1.1 - 192.168.1.254<br></p>"},
                 Case{4, "10.0.0.1", "192.168.9.9", "255.0.0.0", unreachable,
                      "are:<br>172.16.0.1 - 172.16.15.254<br>10.0.0.1 - 10.0.255.254<br></p>"},
                 Case{4, "169.254.7.9", "10.9.9.9", "255.0.0.0", unreachable,
                      "are:<br>169.254.1.0 - 169.254.254.255<br></p>"},
                 Case{4, "9.9.9.9", "192.168.9.9", "255.0.0.0", unreachable,
                      "connected to."}, // under no adapter
             }) {
            sdk::Camera made = with(camera("km-1", "025E41000001", that.address, that.interface),
                                    {{"SubnetMask", that.mask}});
            made.accessibility = that.code;
            openOnCamera(made);
            QCOMPARE(hint().isEmpty(), that.says.isEmpty());
            QVERIFY2(hint().contains(that.says), qPrintable(hint()));
            QCOMPARE(hint().right(that.ending.size()), that.ending);
            QCOMPARE(hint().startsWith("<p><img src=':/Lanvic/Resources/error.png'><br>"),
                     !that.says.isEmpty());
        }
    }

    void aHostWithoutAdaptersIsToldSo()
    {
        disconnectAdapters();
        openWindow();
        const QString said = info();
        const QStringList asked = m_world.take(true);
        const bool isRefreshFocused = child<QWidget>("btnRefresh").hasFocus();
        connectAdapters();
        QCOMPARE(said,
                 "<p>No active network networkAdapter found!</p><p>Please make sure your network adapters "
                 "are enabled and working correctly.</p>Click <b>Refresh</b> or press <b>F5</b> to refresh "
                 "the list of adapters.");
        QCOMPARE(asked + rows(), QStringList());
        QVERIFY(isRefreshFocused);
        refresh();
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
        refresh();
        QCOMPARE(cursors, 1);
        m_world.at["EnumerateDevicesAnySubnet"] = [] { throw 1; };
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        refresh();
        QCOMPARE(m_dialogs.take(), (QStringList{gui::report("Failed to enumerate devices\n\ncable <cut>"),
                                                gui::report("Failed to enumerate devices")}));
        QCOMPARE(rows(), QStringList());
    }

    void aHeldCameraIsGivenBackByARefresh()
    {
        openOnCamera(camera());
        cam().knowsBroadcast = cam().hasNodeMap = false; // a save fails with the camera open
        for (const bool fails : {false, true}) {
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
            refresh();
            QCOMPARE(m_world.take(), QStringList{"DestroyDevice()"});
            QCOMPARE(rows().size(), 3);
        }
        QCOMPARE(takeDebug().filter(QRegularExpression("^warning (Failed|doRefresh)")),
                 (QStringList{"warning Failed to destroy device",
                              "warning doRefresh :  Exception occurred:\n stuck \n device.cpp : 7 \n"}));
        refresh();
        QCOMPARE(m_world.take(), QStringList()); // never a second time
    }
};

int main(int argc, char** argv)
{
    TreeTest test;
    return gui::run(test, argc, argv);
}

#include "tst_tree.moc"
