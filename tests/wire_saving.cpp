#include "support/wire.h"

#include <QLabel>
#include <QNetworkDatagram>
#include <QRadioButton>
#include <QRegularExpression>

using gui::click;
using gui::escape;
using gui::forceIpDialog;
using gui::notSaved;
using gui::report;

/// A save, from the keyboard to the camera's registers and back into the tree.
class WireSavingTest : public WireTest
{
    Q_OBJECT

    const QByteArray gap{24, '0'}; // the reserved fields of FORCEIP

    void edit(const QString& model)
    {
        start("test-saving");
        select(model);
        takeTrace();
    }

private slots:
    void aTypedAddressReachesTheCameraByBroadcast()
    {
        edit("km-1");
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
        QCOMPARE(
            takeTrace(),
            (QStringList{
                "info Trying broadcast ip config for MAC=025E41000001 setting static IP (NewIP=192.168.10.31; NewNetmask=255.255.255.0; NewGateway=192.168.10.1;).",
                "info Successfully changed IP configuration via broadcast for MAC=025E41000001.",
                "info Restarting IP configuration and waiting for rediscovery for MAC=025E41000001.",
                "info Successfully rediscovered MAC=025E41000001.",
            }));
        OtherProgram other; // reads the address where the camera is now, and nothing where it was
        QCOMPARE(other.ask("192.168.10.31", "420100800004000100000024"), "0000008100040001c0a80a1f");
        QCOMPARE(other.ask("192.168.10.21", "420100800004000300000024"), "");
        QCOMPARE(tree().currentItem(), &row("km-1"));
        QVERIFY(rows().contains(
            "  km-1|Förderband|1|02:5E:41:00:00:01|OK|Static IP|192.168.10.31|255.255.255.0"));
        QVERIFY(!canSave());
    }

    void halfAnAddressDoesNotHinderAutoIp()
    {
        edit("km-1");
        type("editIpAddress", "192.168.");
        clickOn("btnUseAutoIp");
        sleepUntil({"restarted camera=belt"});
        QCOMPARE(save(), QStringList());
        QCOMPARE(takeSleeps(), 1);
        QVERIFY(row("km-1").text(6).startsWith("169.254."));
    }

    void aCameraThatNeverReturnsIsGivenUp()
    {
        edit("km-2");
        enter("editIpAddress", "192.168.10.32");
        sleepUntil({"vanished camera=lost"});
        QCOMPARE(save({escape, escape, click(QMessageBox::Close)}), // and no temporary address
                 (QStringList{report("Failed to discover reconfigured device"), forceIpDialog, notSaved}));
        QCOMPARE(takeSleeps(), 30);
        const QStringList traced = takeTrace();
        QVERIFY(traced.contains("warning Failed to rediscover the device with MAC=025E41000002."));
        QVERIFY(traced.contains(
            "info Trying open device with old IP=192.168.10.32 to change IP configuration via unicast."));
        QCOMPARE(text("editIpAddress"), "192.168.10.32");
    }

    void anotherMakersCameraIsConfiguredByUnicast()
    {
        edit("BX-3");
        clickOn("btnUsePersistentIp");
        enter("editIpAddress", "192.168.10.33");
        type("editCustomName", "gate");
        sleepUntil({"restarted camera=other"});
        QUdpSocket wire; // hears what this computer sends to everybody
        QVERIFY(wire.bind(QHostAddress::AnyIPv4, 3956));
        save();
        QCOMPARE(takeSleeps(), 1);
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
        const QString row = "  BX-3|gate|3|02:A3:17:00:00:03|OK|Static IP|192.168.10.33|255.255.255.0";
        QVERIFY2(rows().contains(row), qPrintable(rows().join('\n')));
        QVERIFY(!canSave());
    }

    void aCameraOfAForeignSubnetIsReachedByATemporaryAddress()
    {
        edit("BX-4");
        enter("editIpAddress", "192.168.10.34");
        type("editCustomName", "gate");
        QString header;
        sleepUntil({"forced camera=foreign", "restarted camera=foreign"});
        const QStringList shown = save({[&](QWidget& dialog) {
            header = gui::child<QLabel>(dialog, "labelHeader").text();
            gui::fill({{"editIpAddress", "192.168.10.134"}})(dialog);
        }});
        QVERIFY2(header.endsWith("<p>Valid addresses are:<br>192.168.10.1 - 192.168.10.254<br></p>"),
                 qPrintable(header));
        QCOMPARE(shown, QStringList{forceIpDialog});
        QCOMPARE(takeSleeps(), 2);
        QCOMPARE(simulator().state("foreign", "mode"), "static"); // no longer the temporary address
        QVERIFY(rows().contains("  BX-4|gate|4|02:A3:17:00:00:04|OK|Static IP|192.168.10.34|255.255.255.0"));
    }

    void aCameraThatAnotherProgramTookMeanwhileIsLeftAlone()
    {
        edit("km-1"); // of the maker: refuses the broadcast command as well
        OtherProgram other;
        QCOMPARE(other.ask("192.168.10.21", "420100820008000100000a0000000002"), "000000830004000100000001");
        type("editCustomName", "mine");
        QCOMPARE(
            save({escape, click(QMessageBox::Close)}),
            (QStringList{
                "Connection failed|Access denied\nThe device is controlled by another application.\nClose the connection before changing the IP configuration.|OK|",
                notSaved}));
        QVERIFY(takeTrace().last().startsWith("error Could not open device with old IP=192.168.10.21 "));
        QCOMPARE(simulator().takeEvents().filter("configured"), QStringList());
        QVERIFY(text("editCustomName") == "mine" && canSave());
        m_controlled = {"belt"};
    }

    void aCameraThatTookTheAddressOfAnotherIsLeftAlone()
    {
        edit("BX-5");
        OtherProgram other;
        const QByteArray toFree = "02a317000005" + gap + "c0a80a5f" + gap + "ffffff00" + gap + "00000000";
        const QByteArray toTaken = "02a317000006" + gap + "c0a80a19" + gap + "ffffff00" + gap + "00000000";
        QCOMPARE(other.ask("192.168.10.25", "42010004003800010000" + toFree), "0000000500000001");
        QCOMPARE(other.ask("192.168.10.26", "42010004003800020000" + toTaken), "0000000500000002");
        type("editCustomName", "mine");
        QCOMPARE(save({escape, click(QMessageBox::Close)}), (QStringList{forceIpDialog, notSaved}));
        QVERIFY(takeDebug().join('\n').contains(
            "The address 192.168.10.25 was that of the camera with MAC 02A317000005 and is now"));
        QCOMPARE(simulator().takeEvents().filter(QRegularExpression("^(configured|controlled)")),
                 QStringList());
    }

    void aCameraThatVanishesWhileItIsWrittenKeepsTheEdits()
    {
        edit("BX-6");
        clickOn("btnUseDhcp");
        QStringList shown = save({escape, click(QMessageBox::Close)});
        shown.replaceInStrings(QRegularExpression("\\d+ ms"), "some ms");
        QCOMPARE(shown,
                 (QStringList{report("Camera 192.168.10.26, READREG of 0x0014: no answer within some ms"),
                              notSaved}));
        QVERIFY(child<QRadioButton>("btnUseDhcp").isChecked() && canSave());
        m_controlled = {"fading"};
    }
};

WINDOW_TEST_MAIN(WireSavingTest)
#include "wire_saving.moc"
