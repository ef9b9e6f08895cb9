#include "support/wire.h"

#include "DeviceLister.h"

#include <QNetworkDatagram>
#include <QRegularExpression>

/// A save, from the keyboard to the camera's registers and back into the tree.
class WireSavingTest : public WireTest
{
    Q_OBJECT

    const net::Ipv4 m_classC{0xFFFFFF00};

private slots:
    void aTypedAddressReachesTheCameraByBroadcast()
    {
        start("test-saving", "km-1");
        enter("editIpAddress", "192.168.010.031");
        type("editCustomName", "Förderband");
        sleepUntil({"restarted camera=belt"});
        save();
        QCOMPARE(takeSleeps(), 1);
        QStringList events = simulator().takeEvents();
        events.removeDuplicates(); // the command goes to two broadcast addresses
        QCOMPARE(events, (QStringList{"configured camera=belt by=broadcast what=all mode=static+lla "
                                      "persistent-ip=192.168.10.31 persistent-mask=255.255.255.0 "
                                      "persistent-gateway=192.168.10.1 name=\"Förderband\"",
                                      "restarted camera=belt mode=static ip=192.168.10.31 mask=255.255.255.0 "
                                      "gateway=192.168.10.1"}));
        QVERIFY(rows().contains(
            "  km-1|Förderband|1|02:5E:41:00:00:01|OK|Static IP|192.168.10.31|255.255.255.0"));
        QVERIFY(!canSave());

        OtherProgram other; // gives it a name that is no UTF-8, and after the search another address
        QCOMPARE(other.ask("192.168.10.31", packets::takeControl()), packets::done);
        const std::uint32_t name = gvcp::Register::UserDefinedName;
        QCOMPARE(other.ask("192.168.10.31",
                           packets::writeRegisters({{name, 0x4BFC686C}, {name + 4, 0}, {name + 8, 0}})),
                 "WRITEREG success 00000003"); // "K\xFChl"
        QCOMPARE(other.ask("192.168.10.31", packets::giveBackControl()), packets::done);
        refresh();
        QCOMPARE(row("km-1").text(1), "K?hl");
        QCOMPARE(other.ask("192.168.10.31",
                           packets::forceIp({{0x02, 0x5E, 0x41, 0, 0, 1}}, {0xC0A80A5F}, m_classC)),
                 "FORCEIP success");
        type("editIpAddress", "192.168."); // half an address does not hinder Auto IP
        clickOn("btnUseAutoIp");
        sleepUntil({"restarted camera=belt"});
        QCOMPARE(save(), QStringList());
        QVERIFY(row("km-1").text(6).startsWith("169.254."));
        QCOMPARE(simulator().takeEvents().filter(QRegularExpression("by=broadcast.*K\uFFFDhl")).size(),
                 2); // it was not edited
    }

    void anotherMakersCameraIsConfiguredByUnicast()
    {
        start("test-saving", "BX-3");
        clickOn("btnUsePersistentIp");
        enter("editIpAddress", "192.168.10.33");
        type("editCustomName", "gate");
        sleepUntil({"restarted camera=other"});
        QUdpSocket wire; // receives what this computer broadcasts
        QVERIFY(wire.bind(QHostAddress::AnyIPv4, 3956));
        save();
        QVERIFY(wire.hasPendingDatagrams());
        while (wire.hasPendingDatagrams()) { // none is the command of a maker that is not its own
            QVERIFY(wire.receiveDatagram().data().mid(2, 2) != QByteArray::fromHex("8010"));
        }
        QStringList events = simulator().takeEvents();
        events.replaceInStrings(QRegularExpression(" camera=other| by=\\S+| mode=.*| reason=.*"), "");
        QCOMPARE(events,
                 (QStringList{"controlled privilege=control", "configured what=name", "configured what=mode",
                              "configured what=address", "configured what=address", "configured what=address",
                              "controlled privilege=none", "restarted"}));
        QVERIFY(rows().contains("  BX-3|gate|3|02:A3:17:00:00:03|OK|Static IP|192.168.10.33|255.255.255.0"));
    }

    void aCameraOfAForeignSubnetIsReachedByATemporaryAddress()
    {
        start("test-saving", "BX-4");
        enter("editIpAddress", "192.168.10.34");
        type("editCustomName", "gate");
        sleepUntil({"forced camera=foreign", "restarted camera=foreign"});
        QCOMPARE(save({gui::fill({{"editIpAddress", "192.168.10.134"}})}), QStringList{gui::forceIpDialog});
        QCOMPARE(takeSleeps(), 2);
        QCOMPARE(simulator().states("foreign").filter(" mode=static ").size(), 1); // and not forced
        QVERIFY(rows().contains("  BX-4|gate|4|02:A3:17:00:00:04|OK|Static IP|192.168.10.34|255.255.255.0"));
    }

    void aCameraThatRefusesControlNeedsNoOtherAddress()
    {
        start("test-saving", "BX-8");
        type("editCustomName", "mine");
        saveFails(
            {gui::report("The camera 192.168.10.28 refused to be controlled by this program.", "openDevice",
                         {"Camera 192.168.10.28, WRITEREG of 0x0002 to 0x0A00: "
                          "the camera reports an error (8FFF)"}),
             gui::notSaved});
        QVERIFY(text("editCustomName") == "mine" && canSave());
    }

    void aCameraThatTookTheAddressOfAnotherIsLeftAlone()
    {
        start("test-saving", "BX-5");
        OtherProgram other;
        QCOMPARE(other.ask("192.168.10.25",
                           packets::forceIp({{0x02, 0xA3, 0x17, 0, 0, 5}}, {0xC0A80A5F}, m_classC)),
                 "FORCEIP success");
        QCOMPARE(other.ask("192.168.10.26",
                           packets::forceIp({{0x02, 0xA3, 0x17, 0, 0, 6}}, {0xC0A80A19}, m_classC)),
                 "FORCEIP success");
        type("editCustomName", "mine");
        saveFails({gui::forceIpDialog, gui::notSaved});
        QVERIFY(takeDebug().join('\n').contains(
            "The address 192.168.10.25 was that of the camera with MAC 02A317000005 and is now"));
        QCOMPARE(simulator().takeEvents().filter(QRegularExpression("^(configured|controlled)")),
                 QStringList());
        DeviceLister().discoverAllDevices(); // as a wait for some camera does; the rows stay as they are
        saveFails({gui::forceIpDialog, gui::notSaved});
        QCOMPARE(simulator().takeEvents().filter(QRegularExpression("^(configured|controlled)")),
                 QStringList());
    }

    void aCameraThatIsBusySilentAndRefusesBlocksIsConfigured()
    {
        start("test-difficult", "BX-5");
        type("editDefaultGateway", "192.168."); // half of one does not hinder DHCP
        clickOn("btnUseDhcp");
        sleepUntil({"restarted camera=difficult"});
        QCOMPARE(save(), QStringList());
        QVERIFY(row("BX-5").text(6).startsWith("169.254.")); // there is no server
    }
};

WINDOW_TEST_MAIN(WireSavingTest)
#include "wire_saving.moc"
