#include "qtbase/advicesign.h"
#include "support/gui.h"
#include "tessal/failure.h"

using namespace gui;
using sdk::camera;

/// Opening a camera for a save, and the temporary addresses that may be needed before.
class ConnectionTest : public GuiTest
{
    Q_OBJECT

    const QString m_first = "km-1, MAC address 02:5E:41:00:00:01";
    const QString m_temporary = "A temporary address: the camera has it until it restarts.";
    QStringList m_asked; // header, reason and fields of the Force IP dialog, as far as they are shown

    /// Edits the name of one camera that does not know the broadcast command.
    void edit(const char* ip = "192.168.1.9")
    {
        openOn({camera("km-1", "025E41000001", ip)});
        cam().knowsBroadcast = false;
        type("editCustomName", "belt");
    }

    static void confirm(QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); }
    static Answer fillAddress(const QString& ip) { return fill({{"editIpAddress", ip}}); }
    static QString force(const QString& ip)
    {
        return "ForceIp(025E41000001, " + ip + ", 255.255.255.0, 0.0.0.0)";
    }

    /// Reads the Force IP dialog before it is answered.
    Answer readThen(const Answer& answer)
    {
        return [this, answer](QWidget& dialog) {
            m_asked.clear();
            for (const char* const name : {"labelHeader", "labelReason", "editIpAddress", "editSubnetMask",
                                           "editDefaultGateway", "editMacAddress", "labelCamera"}) {
                const auto& shown = gui::child<QWidget>(dialog, name);
                m_asked << (shown.isVisible() ? QStringList{shown.property("text").toString()}
                                              : QStringList());
            }
            answer(dialog);
        };
    }

    /// Chooses the entry of that row's context menu, then answers the dialogs.
    void assign(const QString& camera, const QList<Answer>& answers)
    {
        QPoint place;
        QString offered;
        expect({[&](QWidget& menu) {
            place = tree().viewport()->mapFromGlobal(menu.pos());
            offered = menu.actions().last()->text();
            QTest::keyClick(&menu, Qt::Key_Down);
            QTest::keyClick(&menu, Qt::Key_Return);
        }});
        expect(answers);
        openMenuOf(camera);
        QCOMPARE(place, placeOf(row(camera)));
        QCOMPARE(offered, "&Assign Temporary IP Address...");
    }

    void forceByMac(const QList<Answer>& answers)
    {
        expect(answers);
        press(QKeySequence("Alt+Shift+Ctrl+F"));
    }

private slots:
    void failuresToOpenAreShown()
    {
        edit();
        m_world.isGigE = false;
        saveFails({reportOwn("The device must be a GEV Camera.", "openDevice"), notSaved});
        QCOMPARE(m_world.take().last(), "CreateDevice(192.168.1.9)");
        m_world.isGigE = true;
        m_world.at["Open"] = [] { throw GenICam::AccessException("", "", 1, ""); };
        QCOMPARE(
            save({escape, escape}),
            (QStringList{"Connection failed|Access denied\nThe device is controlled by another application.\n"
                         "Close the connection before changing the IP configuration.|OK|",
                         notSaved}));
        QCOMPARE(takeIcons().at(2), QMessageBox::Warning); // after the two of the first save
        QCOMPARE(m_world.take().last(), "Open(192.168.1.9, 1+3+4)");
        QCOMPARE(text("editCustomName"), "belt");
        expect({escape});
        select("lan0");
        QCOMPARE(m_world.take(), QStringList()); // what was not opened is not closed
    }

    void anUnreachableCameraIsGivenTemporaryAddressesUntilOneServes()
    {
        edit("10.9.9.9");
        takeDebug();
        m_world.at["Open"] = [isFirst = true]() mutable {
            if (std::exchange(isFirst, false)) {
                throw Tessal::FailureOf(
                    GenICam::TimeoutException("no answer <at all>", "", 1, "TimeoutException"),
                    {.setting = Tessal::Setting::Identity, .address = "10.9.9.9"});
            }
        };
        QString reason;
        const auto readReason = [&](QWidget& dialog) {
            const auto& label = gui::child<QLabel>(dialog, "labelReason");
            reason = label.text() + " Details: " + label.toolTip();
            QCOMPARE(label.toolTip(), toolTipText(label.accessibleDescription()));
            fillAddress("223.255.255.255")(dialog);
        };
        const auto complete = [this](QWidget& dialog) { // the suggestion
            const bool isTold = child<QWidget>("waitMessage").isVisible();
            auto& address = gui::child<QLineEdit>(dialog, "editIpAddress");
            QTest::simulateEvent(&address, true, Qt::Key_Return, {}, "\r", true); // held down since before
            QTest::keyClicks(&address, "050");
            QTest::keyClick(&dialog, Qt::Key_Return);
            QVERIFY(!isTold);
        };
        QCOMPARE(save({readReason, fillAddress("0.0.0.0"), readThen(complete)}),
                 QStringList(3, forceIpDialog));
        QCOMPARE(
            reason,
            "The camera 10.9.9.9 did not answer. Details: <span>no answer &lt;at all&gt; : TimeoutException thrown (file '', line 1)</span>");
        const QString header =
            "A connection to the device must be established in order to change the configuration.<br>To do this, a temporary IP address needs to be assigned to the device.<br>This temporary address will only be used to update the configuration and will not be stored on the device.<p>Valid addresses are:<br>192.168.1.1 - 192.168.1.254<br></p>";
        QCOMPARE(m_asked, (QStringList{header, "The connection to the device could not be established.",
                                       "192.168.1.", "255.255.255.0", "0.0.0.0", m_first}));
        QCOMPARE(m_world.take().filter(QRegularExpression("^(Open|Force|Destroy|sleep|Set)")),
                 (QStringList{"Open(10.9.9.9, 1+3+4)", force("223.255.255.255"), "sleep(2)",
                              "DestroyDevice()", "Open(223.255.255.255, 1+3+4)", force("0.0.0.0"), "sleep(2)",
                              "DestroyDevice()", "Open(0.0.0.0, 1+3+4)", force("192.168.1.50"), "sleep(2)",
                              "DestroyDevice()", "Open(192.168.1.50, 1+3+4)", "SetValue(belt, true)",
                              "sleep(2)", "DestroyDevice()"}));
        QCOMPARE(takeDebug().count("debug Could not open the device. Will try forceIP ('nobody answers')"),
                 2); // and once with that reason
    }

    void aFailedForceIpIsReportedOnce()
    {
        edit("10.9.9.9");
        failAt("ForceIp");
        QCOMPARE(save({fillAddress("192.168.1.50"), escape, escape}),
                 (QStringList{forceIpDialog, reportUnexpected("forceIp", "cable"), notSaved}));
        const QString failed = "error Failed to force IP for MAC=025E41000001.";
        const QString notOpened =
            "error Could not open device with old IP=10.9.9.9 to change IP configuration via unicast.";
        QCOMPARE(takeTrace().last(2), (QStringList{failed + " Err='cable'", notOpened}));
        QCOMPARE(m_world.take().last(), force("192.168.1.50"));

        failAt("ForceIp", 1, false);
        QCOMPARE(save({readThen(confirm), escape, escape}),
                 (QStringList{forceIpDialog, report("Unknown exception occurred", "forceIp"), notSaved}));
        QCOMPARE(takeTrace().last(2), (QStringList{failed, notOpened}));
        QCOMPARE(m_asked[2], "192.168.1.50"); // what was refused before

        m_world.at.clear();
        cam().comesBack = false; // is not opened then
        QCOMPARE(save({confirm, escape}), (QStringList{forceIpDialog, notSaved}));
        QCOMPARE(m_world.take().last(30), QStringList(30, "sleep(2)"));
    }

    void aNameIsNotWrittenToAnotherCamera()
    {
        edit();
        m_world.cameras.push_back(camera("km-2", "025E41000002"));
        cam().record.SetIpAddress("192.168.1.77");
        saveFails(
            {report("The address 192.168.1.9 is that of another camera (MAC address 02:5E:41:00:00:02). "
                    "Refresh the list, or choose another temporary address.",
                    "unicastConfiguration",
                    {"The camera with MAC 025E41000001 was expected at 192.168.1.9, where the one with MAC "
                     "025E41000002 answers"}),
             notSaved});
        QCOMPARE(m_world.take().last(), "Close()");
    }

    void anotherCameraIsNotTakenForTheSavedOne()
    {
        edit();
        m_world.cameras.push_back(camera("km-2", "025E41000002", "10.9.9.9"));
        cam().knowsBroadcast = true;
        failAt("EnumerateDevicesAnySubnet", 2); // after the wait
        saveFails({reportUnexpected("on_btnWriteConfiguration_clicked", "cable")});
        m_world.at.clear();
        forceByMac({fill({{"editMacAddress", "02-5E-41-00-00-02"}, {"editIpAddress", "192.168.1.50"}})});
        QCOMPARE(takeDialogs(), QStringList{forceIpDialog}); // and no warning about the name
    }

    void aHeldCameraIsGivenBack()
    {
        edit();
        cam().hasNodeMap = false; // leaves the camera open
        saveFails({notSaved});
        m_world.take();
        saveFails({notSaved});
        QCOMPARE(m_world.take()[1], "DestroyDevice()"); // without being closed
        failAt("DestroyDevice");
        saveFails({reportUnexpected("unicastConfiguration", "cable"), notSaved});
        QCOMPARE(m_world.take().last(), "DestroyDevice()");
        m_world.at["DestroyDevice"] = [] { throw GenICam::RuntimeException("stuck", "device.cpp", 7); };
        saveFails({notSaved});
        QCOMPARE(m_world.take()[1], "CreateDeviceInfo()"); // it is not destroyed twice
        takeDebug();
        expect({escape});
        refresh();
        refresh();
        QCOMPARE(m_world.take(), QStringList{"DestroyDevice()"}); // nor by a refresh
        QCOMPARE(takeDebug().filter(QRegularExpression("^warning (Failed|doRefresh)")),
                 (QStringList{"warning Failed to destroy device",
                              "warning doRefresh :  Exception occurred:\n stuck \n device.cpp : 7 \n"}));
    }

    void aTemporaryAddressOnDemand()
    {
        openOn({camera("km-1", "025E41000002", "192.168.1.10"), camera("km-2", "025E41000001", "10.9.9.9"),
                camera("km-2", "025E41000001", "10.9.9.9", "10.0.0.1")});
        openMenuOf("lan0");
        QCOMPARE(takeDialogs(), QStringList()); // only cameras have a menu
        assign(
            "km-2",
            {fillAddress("127.0.0.1"), escape, fillAddress("224.0.0.0"), escape,
             readThen(fill({{"editIpAddress", "192.168.1.50"}, {"editDefaultGateway", "192.168.001.1"}}))});
        QCOMPARE(takeDialogs().count(
                     "Error|IP Addresses 127.0.0.1 and 224.0.0.0 to 255.255.255.255 cannot be used.|OK|OK"),
                 2);
        QCOMPARE(takeIcons(), (QList{QMessageBox::Critical, QMessageBox::Critical}));
        QCOMPARE(m_asked[1], "224.0.0.0"); // what was typed is still there
        const QStringList calls = m_world.take(true);
        QCOMPARE(calls.first(), "ForceIp(025E41000001, 192.168.1.50, 255.255.255.0, 192.168.1.1)");
        QCOMPARE(calls.filter("QueryDeviceAccessibility(025E41000001"),
                 QStringList(3, "QueryDeviceAccessibility(025E41000001, 1)")); // the first record's too
        QCOMPARE(calls.filter("AnySubnet").size(), 1);                         // no refresh
        QVERIFY(row("km-2").icon(4).isNull());
        QCOMPARE(text("editIpAddress") + ' ' + text("editDefaultGateway"), "192.168.1.50 192.168.001.1");
        const QStringList told{
            "info Forcing IP of device with MAC=025E41000001.",
            "info User entered IP=127.0.0.1; Netmask=255.0.0.0; Gateway=0.0.0.0; MAC=025E41000001",
            "warning Invalid IP address entered for MAC=025E41000001. Asking again.",
            "info User entered IP=192.168.1.50; Netmask=255.255.255.0; Gateway=192.168.1.1; MAC=025E41000001",
            "info Now forcing IP for MAC=025E41000001. Retries remaining=0.",
            "info Successfully forced IP for MAC=025E41000001."};
        const QStringList traced = takeTrace();
        QCOMPARE(traced.first(3) + traced.last(3), told);
        failAt("QueryDeviceAccessibility", 4); // the record's
        assign("km-2", {readThen(fill({{"editIpAddress", "192.168.1.51"}, {"editDefaultGateway", ""}}))});
        QCOMPARE(m_asked[1], "192.168.1."); // not what was accepted before
        const QStringList debug{
            "debug Forcing IP configuration for MAC: '025E41000001' with IP: '192.168.1.51'; Subnet: '255.255.255.0'; Default Gateway: '0.0.0.0'",
            "debug error forcing IP (err='cable')"};
        QCOMPARE(takeDebug().filter("orcing IP"), debug);

        refresh();
        QCOMPARE(row("km-2").text(6) + ": " + row("km-2").toolTip(6), "192.168.1.51: " + m_temporary);
        type("editDefaultGateway", "192.168.1.1");
        save(); // after a restart it has the address for good
        QCOMPARE(row("km-2").text(6) + ": " + row("km-2").toolTip(6), "192.168.1.51: ");
    }

    void anAddressThatWasNotTakenIsNotShown()
    {
        openOn({camera()});
        m_world.at["sleep"] = [this] { cam().record.SetIpAddress("192.168.1.77"); };
        assign("km-1", {fillAddress("192.168.1.50"), escape});
        QCOMPARE(
            takeDialogs().last(),
            report("The camera 02:5E:41:00:00:01 was given the address 192.168.1.50 but has 192.168.1.77. "
                   "Try again, or choose another temporary address.",
                   "forceIp",
                   {"Camera MAC=025E41000001 was given the address 192.168.1.50 and has 192.168.1.77"}));
        QCOMPARE(row("km-1").text(6) + row("km-1").toolTip(6), "192.168.1.77");

        // The same address, however it is written.
        m_world.at["sleep"] = [this] { cam().record.SetIpAddress("10.1.1.1"); };
        assign("km-1", {fillAddress("010.1.1.1")});
        QCOMPARE(takeDialogs().last(), forceIpDialog);
        assign("km-1", {fillAddress("0.0.0.0")}); // the camera is to choose one
        QCOMPARE(takeDialogs().last(), forceIpDialog);
        refresh();
        QCOMPARE(row("km-1").text(6) + ": " + row("km-1").toolTip(6), "10.1.1.1: " + m_temporary);
    }

    void theDialogKnowsTheAdapter()
    {
        openOn({camera("km-1", "025E41000001", "10.9.9.9", "10.0.0.1"),
                camera("km-2", "025E41000002", "10.9.9.9", "9.9.9.9")});
        const QString header =
            "Please specify a temporary IP address.<br>This address will be valid until the device resets.";
        const QString valid =
            "<p>Valid addresses are:<br>172.16.0.1 - 172.16.15.254<br>10.0.0.1 - 10.0.255.254<br></p>";
        assign("km-1", {readThen(escape)});
        QCOMPARE(m_asked, (QStringList{header + valid, "172.16.", "255.255.240.0", "0.0.0.0", m_first}));
        select("km-2"); // stands under no adapter
        type("editCustomName", "belt");
        assign("km-2", {click(QMessageBox::No), readThen(escape)});
        QCOMPARE(m_asked, (QStringList{header, "192.168.0.202", "255.255.255.0", "0.0.0.0",
                                       "km-2, MAC address 02:5E:41:00:00:02"}));
        QCOMPARE(m_world.take(), QStringList());
        QCOMPARE(text("editCustomName"), QString()); // what the camera has
        QCOMPARE(takeTrace().last(),
                 "info Forcing IP of device with MAC=025E41000002 has been canceled by user.");
    }

    void aTemporaryAddressEndsTheEdit_data()
    {
        // Answers to the question about the edits, and then.
        const auto row = addColumns<bool, QList<Answer>, QStringList>("canBeSaved", "answers", "calls");
        const QString saved = "BroadcastIpConfig(025E41000001, false, true, 0.0.0.0, 0.0.0.0, 0.0.0.0, belt)";
        row("edits saved", true, {click(QMessageBox::Yes), fillAddress("192.168.1.50")},
            {saved, force("192.168.1.50")});
        row("edits not saved", false, {click(QMessageBox::Yes), click(QMessageBox::Close)}, {saved});
    }
    void aTemporaryAddressEndsTheEdit()
    {
        QFETCH(const bool, canBeSaved);
        QFETCH(const QList<Answer>, answers);
        QFETCH(const QStringList, calls);
        openOn({sdk::with(camera(), {{"IpConfigCurrent", "4"}})});
        cam().knowsBroadcast = cam().hasNodeMap = canBeSaved;
        clickOn("btnUseDhcp");
        type("editCustomName", "belt");
        assign("km-1", answers);
        QCOMPARE(m_world.take().filter(QRegularExpression("^(Broadcast|Force)")), calls);
        QCOMPARE(text("editCustomName"), "belt");
        QVERIFY(child<QAbstractButton>("btnUseDhcp").isChecked());
        QCOMPARE(takeIcons().last(), canBeSaved ? QMessageBox::Question : QMessageBox::Critical);
        QCOMPARE(canSave(), !canBeSaved); // pending only where a save failed
        expect(canSave() ? QList<Answer>{escape} : QList<Answer>());
        select("lan0");
    }

    void anyCameraCanBeForcedByItsMac()
    {
        disconnectAdapters(); // so that there was no search yet
        openWindow();
        connectAdapters();
        m_world.cameras = {camera("km-1", "025E410A0B0C", "10.9.9.9")};
        m_world.makesTransportLayer = false;
        const auto enter = fill({{"editMacAddress", "02-5e-41-0a-0b-0c"},
                                 {"editIpAddress", "172.16.3.50"},
                                 {"editDefaultGateway", ""}});
        forceByMac({readThen(enter), escape});
        const QString header =
            "Please specify the MAC address for the device to force the IP address.\n\nThere won't be any error message in case you specify the wrong MAC address.";
        QCOMPARE(m_asked,
                 (QStringList{header, "192.168.0.202", "255.255.255.0", "0.0.0.0", "02-5E-41-", ""}));
        QCOMPARE(
            takeDialogs(),
            (QStringList{forceIpDialog, reportOwn("Failed to create transport layer object", "forceIp")}));
        m_world.makesTransportLayer = true;
        forceByMac({confirm});          // what was refused before
        QCOMPARE(m_world.take().mid(2), // after the layer that could not be made
                 (QStringList{"CreateTl(OrvikGigE)",
                              "ForceIp(025E410A0B0C, 172.16.3.50, 255.255.240.0, 0.0.0.0)", "sleep(2)"}));
        const QStringList traced = takeTrace();
        QCOMPARE(traced.first(), "info Forcing IP of device with MAC=<unknown>.");
        QCOMPARE(traced.filter("object : RuntimeException thrown (file 'DeviceLister', line ").size(), 1);
        QCOMPARE(row("km-1").text(6), "172.16.3.50");

        select("km-1");
        forceByMac({readThen(escape)});
        QCOMPARE(m_asked, (QStringList{header, "192.168.1.", "255.255.255.0", "0.0.0.0", "02-5E-41-0A-0B-0C",
                                       "km-1, MAC address 02:5E:41:0A:0B:0C"}));
        QVERIFY(!child<QAction>("actionForceIpByMac").autoRepeat());
    }
};

WINDOW_TEST_MAIN(ConnectionTest)
#include "tst_connection.moc"
