#include "support/wire.h"

namespace {

struct Expected
{
    const char* columns; // model, user ID, serial number, MAC, status, mode, address, mask
    QString picture;     // of the family
    QString hint = {};   // a part of it
};

const std::initializer_list<Expected> cameras{
    {"dz-500c|Gate|21000003|02:5E:41:00:00:03|Not Reachable|Static IP|172.16.4.9|255.255.255.0",
     "Dorun-Icon_16x16.png", "Possible addresses are:<br>192.168.10.1 - 192.168.10.254<br></p>"},
    {"km-1300|Front left|21000001|02:5E:41:00:00:01|OK|Static IP|192.168.10.21|255.255.255.0",
     "Kimra-Icon_16x16.png"},
    {"mx-5000|Robot arm|21000006|02:5E:41:00:00:06|In use|Static IP|192.168.10.26|255.255.255.0",
     "Mivex-Icon_16x16.png", "The device is currently in use by another application!"},
    {"sq-640|Ceiling|21000004|02:5E:41:00:00:04|OK|Static IP|192.168.10.24|255.255.0.0",
     "Sarpo_GigE-Icon_16x16.png", "are currently not in the same subnet."},
    {"vl-1200|Conveyor|21000005|02:5E:41:00:00:05|In use|Static IP|192.168.10.25|255.255.255.0",
     "Velto_light_Icon_16x16.png", "The device is currently in use by another application!"},
    {"vt-2400m|Front right|21000002|02:5E:41:00:00:02|OK|DHCP|192.168.10.102|255.255.255.0",
     "Velto-Icon_16x16.png"},
    {"BX-1||BX1010|02:A3:17:00:00:0A|OK|DHCP|192.168.20.110|255.255.255.0", ""},
    {"BX-4K|Guest|BX1009|02:A3:17:00:00:09|OK|Static IP|192.168.20.29|255.255.255.0", ""},
    {"ProtoCam 12|Café door|P-008|02:5E:41:00:00:08|OK|Static IP|192.168.20.28|255.255.255.0",
     "Generic_Camera_16x16px.png"},
    {"km-2100|Behind a wall|21000011|02:5E:41:00:00:0B|Not Reachable|Static IP|192.168.20.31|255.255.255.0",
     "Kimra-Icon_16x16.png", "192.168.20.1 - 192.168.20.254<br>"},
    {"tk-800||21000007|02:5E:41:00:00:07|OK|Auto IP (LLA)|169.254.77.7|255.255.0.0", "Tulka_Icon_16x16.png"},
};

QImage image(const QIcon& icon)
{
    return icon.pixmap(16, 16).toImage();
}

} // namespace

/// What the window shows of cameras, and the two commands that give one an address for the time being.
class WireWindowTest : public WireTest
{
    Q_OBJECT

    const QString m_forced = "  BX-4||4|02:A3:17:00:00:04|OK|Static IP|192.168.10.134|255.255.255.0";

private slots:
    void everyCameraSaysWhatIsTheMatterWithIt()
    {
        start("demo");
        m_controlled = {"taken", "watched"};
        QStringList lines;
        for (const Expected& camera : cameras) {
            lines << QString("  ") + camera.columns;
        }
        lines.insert(6, "lab1");
        lines.prepend("lab0");
        QCOMPARE(rows(), lines);
        for (const Expected& camera : cameras) {
            QTreeWidgetItem& item = row(QString(camera.columns).section('|', 0, 0));
            QCOMPARE(image(item.icon(0)), image(QIcon(":/Lanvic/Resources/" + camera.picture)));
            QCOMPARE(item.icon(4).isNull(), item.text(4) == "OK");
            select(item);
            const QString hint = text("labelHint");
            QVERIFY2(hint.contains(camera.hint) && hint.isEmpty() == camera.hint.isEmpty(), qPrintable(hint));
            QCOMPARE(child<QWidget>("editCustomName").isEnabled(), item.text(4) != "In use");
        }
    }

    void theContextMenuGivesATemporaryAddress()
    {
        start("test-saving");
        select("BX-4");
        expect({[](QWidget& menu) {
                    QTest::keyClick(&menu, Qt::Key_Down);
                    QTest::keyClick(&menu, Qt::Key_Return);
                },
                gui::fill({{"editIpAddress", "192.168.10.134"}})});
        sleepUntil({"forced camera=foreign ip=192.168.10.134 mask=255.255.255.0 gateway=0.0.0.0"});
        openMenuOf("BX-4");
        QCOMPARE(takeSleeps(), 1);
        QVERIFY2(rows().contains(m_forced), qPrintable(rows().join('\n')));
        QVERIFY(!text("labelHint").contains("unreachable"));
        // another program hears it, though nothing is stored
        QCOMPARE(OtherProgram().ask("192.168.10.134", "420100800004000100000024"),
                 "0000008100040001c0a80a86");
        QCOMPARE(simulator().state("foreign", "persistent-ip"), "172.16.4.9");
    }

    void aTemporaryAddressGoesToAnyMacAddress()
    {
        start("test-saving");
        expect({gui::fill({{"editMacAddress", "02-a3-17-00-00-04"}, {"editIpAddress", "192.168.10.134"}})});
        sleepUntil({"forced camera=foreign ip=192.168.10.134 mask=255.255.255.0 gateway=0.0.0.0"});
        press(QKeySequence("Alt+Shift+Ctrl+F"));
        QTRY_VERIFY(rows().contains(m_forced));
        QCOMPARE(takeSleeps(), 1);

        // a MAC address that no camera has
        const QStringList before = rows();
        takeDialogs();
        select("km-1");
        type("editCustomName", "pending"); // a refresh would ask
        expect({gui::fill({{"editMacAddress", "02-A3-17-00-00-44"}, {"editIpAddress", "192.168.10.44"}})});
        press(QKeySequence("Alt+Shift+Ctrl+F"));
        QCOMPARE(takeSleeps(), 30);
        QCOMPARE(takeDialogs(), QStringList{gui::forceIpDialog}); // no complaint
        QCOMPARE(rows(), before);
        QCOMPARE(gui::cursorDepth(), 0);
        QCOMPARE(simulator().takeEvents().filter("forced").size(), 1);
    }
};

WINDOW_TEST_MAIN(WireWindowTest)
#include "wire_window.moc"
