#include "support/wire.h"

namespace {

// model, user ID, serial number, MAC, status, mode, address, mask
const QStringList demo{
    "lab0",
    "  dz-500c|Gate|21000003|02:5E:41:00:00:03|Not Reachable|Static IP|172.16.4.9|255.255.255.0",
    "  km-1300|Front left|21000001|02:5E:41:00:00:01|OK|Static IP|192.168.10.21|255.255.255.0",
    "  mx-5000|Robot arm|21000006|02:5E:41:00:00:06|In use|Static IP|192.168.10.26|255.255.255.0",
    "  sq-640|Ceiling|21000004|02:5E:41:00:00:04|OK|Static IP|192.168.10.24|255.255.0.0",
    "  vl-1200|Conveyor|21000005|02:5E:41:00:00:05|In use|Static IP|192.168.10.25|255.255.255.0",
    "  vt-2400m|Front right|21000002|02:5E:41:00:00:02|OK|DHCP|192.168.10.102|255.255.255.0",
    "lab1",
    "  BX-1||BX1010|02:A3:17:00:00:0A|OK|DHCP|192.168.20.110|255.255.255.0",
    "  BX-4K|Guest|BX1009|02:A3:17:00:00:09|OK|Static IP|192.168.20.29|255.255.255.0",
    "  ProtoCam 12|Café door|P-008|02:5E:41:00:00:08|OK|Static IP|192.168.20.28|255.255.255.0",
    "  km-2100|Behind a wall|21000011|02:5E:41:00:00:0B|Not Reachable|Static IP|192.168.20.31|255.255.255.0",
    "  tk-800||21000007|02:5E:41:00:00:07|OK|Auto IP (LLA)|169.254.77.7|255.255.0.0",
};
const QString pictures = // of their families
    "Dorun-Icon_16x16 Kimra-Icon_16x16 Mivex-Icon_16x16 Sarpo_GigE-Icon_16x16 Velto_light_Icon_16x16 "
    "Velto-Icon_16x16 none none Generic_Camera_16x16px Kimra-Icon_16x16 Tulka_Icon_16x16";

} // namespace

/// What the window shows of cameras, and the two commands that give one an address for the time being.
class WireWindowTest : public WireTest
{
    Q_OBJECT

private slots:
    void everyCameraShowsStatusAndHint()
    {
        start("demo");
        m_controlled = {"watched", "taken"};
        QCOMPARE(rows(), demo);
        QStringList expected = pictures.split(' ');
        for (const QString& camera : demo.filter("|")) {
            QTreeWidgetItem& item = row(camera.trimmed().section('|', 0, 0));
            const QIcon picture(":/Lanvic/Resources/" + expected.takeFirst() + ".png");
            QCOMPARE(item.icon(0).pixmap(16).toImage(), picture.pixmap(16).toImage());
            select(item);
            QCOMPARE(text("labelHint").isEmpty(), item.text(4) == "OK" && item.text(0) != "sq-640");
        }
    }

    void aCameraIsGivenAddressesByItsRowAndByItsMac()
    {
        start("test-saving", "BX-4");
        sleepUntil({"forced camera=foreign ip=192.168.10.134 mask=255.255.255.0 gateway=0.0.0.0"});
        expect({[](QWidget& menu) {
                    QTest::keyClick(&menu, Qt::Key_Down);
                    QTest::keyClick(&menu, Qt::Key_Return);
                },
                gui::fill({{"editIpAddress", "192.168.10.134"}})});
        openMenuOf("BX-4");
        QVERIFY(rows().contains("  BX-4||4|02:A3:17:00:00:04|OK|Static IP|192.168.10.134|255.255.255.0"));
        QCOMPARE(takeSleeps(), 1);

        sleepUntil({"forced camera=foreign ip=192.168.10.135 mask=255.255.255.0 gateway=0.0.0.0"});
        takeDialogs();
        expect({gui::fill({{"editMacAddress", "02-a3-17-00-00-04"}, {"editIpAddress", "192.168.10.135"}})});
        press(QKeySequence("Alt+Shift+Ctrl+F"));
        QCOMPARE(takeDialogs(), QStringList{gui::forceIpDialog});
        QTRY_VERIFY(rows().contains("  BX-4||4|02:A3:17:00:00:04|OK|Static IP|192.168.10.135|255.255.255.0"));
        const QStringList kept = simulator().states("foreign").filter(" persistent-ip=172.16.4.9 ");
        QCOMPARE(kept.filter(" mode=forced ").size(), 1);
    }
};

WINDOW_TEST_MAIN(WireWindowTest)
#include "wire_window.moc"
