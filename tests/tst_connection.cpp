#include "support/gui.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>

using gui::click;
using gui::escape;
using gui::fill;
using gui::forceIpDialog;
using gui::notSaved;
using gui::report;
using sdk::camera;

/// Opening a camera for a save, and the temporary addresses that may be needed before.
class ConnectionTest : public gui::GuiTest
{
    Q_OBJECT

    const QString m_force = "ForceIp(025E41000001, 192.168.1.50, 255.255.255.0, 0.0.0.0)";
    QStringList m_asked; // header and fields of the Force IP dialog; "-" for a MAC field that is not shown

    /// Edits the name of one camera that does not know the broadcast command.
    void edit(const char* ip = "192.168.1.9")
    {
        openOn({camera("km-1", "025E41000001", ip)});
        cam().knowsBroadcast = false;
        type("editCustomName", "belt");
    }

    /// Reads the Force IP dialog before it is answered.
    gui::Answer readThen(const gui::Answer& answer)
    {
        return [this, answer](QWidget& dialog) {
            m_asked = {gui::child<QLabel>(dialog, "labelHeader").text()};
            for (const char* const name :
                 {"editIpAddress", "editSubnetMask", "editDefaultGateway", "editMacAddress"}) {
                const auto& edit = gui::child<QLineEdit>(dialog, name);
                m_asked << (edit.isVisible() ? edit.text() : "-");
            }
            answer(dialog);
        };
    }

    /// Chooses the entry of that row's context menu, then answers the dialogs.
    void assign(const QString& camera, const QList<gui::Answer>& answers)
    {
        expect({[=, this](QWidget& menu) {
            const QRect place = tree().visualItemRect(&row(camera));
            const bool isThere = menu.pos() == tree().viewport()->mapToGlobal(place.center());
            QCOMPARE(menu.actions().size(), 1);
            QCOMPARE(menu.actions().first()->text(), "&Assign Temporary IP Address...");
            QTest::keyClick(&menu, Qt::Key_Down);
            QTest::keyClick(&menu, Qt::Key_Return);
            QVERIFY(isThere); // only now, or the menu would stay open
        }});
        expect(answers);
        openMenuOf(camera);
    }

    void forceByMac(const gui::Answer& answer)
    {
        expect({answer});
        press(QKeySequence("Alt+Shift+Ctrl+F"));
    }

private slots:
    void failuresToOpenAreShown()
    {
        const QString create = "CreateDevice(192.168.1.9)";
        const QString open = "Open(192.168.1.9, 1+3+4)";
        const QString notGigE = report("The device must be a GEV Camera.");
        const QString denied =
            "Connection failed|Access denied\nThe device is controlled by another application.\nClose the connection before changing the IP configuration.|OK|";
        const gui::Table<std::function<void()>, QString, QString> cases{
            {[&] { cam().accessibility = 2; }, denied, open}, // taken since it was discovered
            {[&] { cam().isGigE = false; }, notGigE, create},
            {[&] { m_world.makesDevices = false; }, notGigE, create},
            {[&] { failAt("Open"); }, report("cable"), open},
            {[&] { failAt("Open", 1, false); }, report("Unknown exception occurred"), open},
        };
        for (const auto& [breakIt, shown, lastCall] : cases) {
            edit();
            breakIt();
            QCOMPARE(save({escape, click(QMessageBox::Close)}), (QStringList{shown, notSaved}));
            QCOMPARE(m_world.take().last(), lastCall);
            QCOMPARE(text("editCustomName"), "belt");
        }
    }

    void anUnreachableCameraIsGivenATemporaryAddress()
    {
        edit("10.9.9.9");
        const auto complete = [this](QWidget& dialog) { // the suggestion
            const bool isTold = child<QWidget>("waitMessage").isVisible();
            QTest::keyClicks(&gui::child<QLineEdit>(dialog, "editIpAddress"), "050");
            QTest::keyClick(&dialog, Qt::Key_Return);
            QVERIFY(!isTold);
        };
        QCOMPARE(save({readThen(complete)}), QStringList{forceIpDialog});
        QCOMPARE(
            m_asked,
            (QStringList{
                "A connection to the device must be established in order to change the configuration.<br>To do this, a temporary IP address needs to be assigned to the device.<br>This temporary address will only be used to update the configuration and will not be stored on the device.<p>Valid addresses are:<br>192.168.1.1 - 192.168.1.254<br></p>",
                "192.168.1.", "255.255.255.0", "0.0.0.0", "-"}));
        QCOMPARE(m_world.take().mid(1),
                 (QStringList{"CreateDeviceInfo()", "CreateDevice(10.9.9.9)", "Open(10.9.9.9, 1+3+4)",
                              m_force, "sleep(2)", "DestroyDevice()", "CreateDeviceInfo()",
                              "CreateDevice(192.168.1.50)", "Open(192.168.1.50, 1+3+4)", "GetNodeMap()",
                              "GetNode(DeviceUserID)", "SetValue(belt, true)", "Close()",
                              "RestartIpConfig(025E41000001)", "sleep(2)", "DestroyDevice()"}));
    }

    void theUserEndsTheLoop()
    {
        edit("10.9.9.9");
        m_world.at["Open"] = [] { throw GenICam::TimeoutException("no answer", "camera.cpp", 7); };
        takeDebug();
        QCOMPARE(save({fill({{"editIpAddress", "223.255.255.255"}}), fill({{"editIpAddress", "0.0.0.0"}}),
                       escape, click(QMessageBox::Close)}),
                 (QStringList{forceIpDialog, forceIpDialog, forceIpDialog, notSaved}));
        QCOMPARE(m_world.take().filter(QRegularExpression("^(Open|Destroy)")),
                 (QStringList{"Open(10.9.9.9, 1+3+4)", "DestroyDevice()", "Open(223.255.255.255, 1+3+4)",
                              "DestroyDevice()", "Open(0.0.0.0, 1+3+4)"}));
        QCOMPARE(takeDebug().count("debug Could not open the device. Will try forceIP ('no answer')"), 3);
    }

    void aRefusedAddressIsAskedForAgain()
    {
        openOn();
        QList<gui::Answer> answers;
        for (const QString ip : {"127.0.0.1", "224.0.0.0", "255.255.255.255", "10.1"}) {
            answers << fill({{"editIpAddress", ip}}) << click(QMessageBox::Ok);
        }
        assign("km-1", answers << readThen(escape));
        QCOMPARE(
            takeDialogs().filter("Error"),
            QStringList(
                4, "Error|IP Addresses 127.0.0.1 and 224.0.0.0 to 255.255.255.255 cannot be used.|OK|OK"));
        QCOMPARE(m_asked[1], "10.1"); // what was typed is still there
        QCOMPARE(m_world.take(), QStringList());
        const QStringList traced = takeTrace();
        QCOMPARE(traced.mid(0, 3),
                 (QStringList{
                     "info Forcing IP of device with MAC=025E41000001.",
                     "info User entered IP=127.0.0.1; Netmask=255.0.0.0; Gateway=0.0.0.0; MAC=025E41000001",
                     "warning Invalid IP address entered for MAC=025E41000001. Asking again."}));
        QCOMPARE(traced.last(), "info Forcing IP of device with MAC=025E41000001 has been canceled by user.");
    }

    void aFailedForceIpIsReportedOnce()
    {
        const std::pair<bool, QString> cases[] = {{true, "cable"}, {false, "Unknown exception occurred"}};
        for (const auto& [isStandard, shown] : cases) {
            edit("10.9.9.9");
            failAt("ForceIp", 1, isStandard);
            QCOMPARE(save({fill({{"editIpAddress", "192.168.1.50"}}), escape, click(QMessageBox::Close)}),
                     (QStringList{forceIpDialog, report(shown), notSaved}));
            QCOMPARE(takeTrace().filter("force IP").last(),
                     QString("error Failed to force IP for MAC=025E41000001.") +
                         (isStandard ? " Err='cable'" : ""));
            QCOMPARE(m_world.take().last(), m_force);
        }
    }

    void aHeldCameraIsGivenBackFirst()
    {
        edit();
        cam().hasNodeMap = false; // leaves the camera open
        save({click(QMessageBox::Close)});
        m_world.take();
        save({click(QMessageBox::Close)});
        QCOMPARE(m_world.take()[1], "DestroyDevice()"); // without being closed
        failAt("DestroyDevice");
        QCOMPARE(save({escape, click(QMessageBox::Close)}), (QStringList{report("cable"), notSaved}));
        QCOMPARE(m_world.take().last(), "DestroyDevice()");
        m_world.at.clear();
        save({click(QMessageBox::Close)});
        QCOMPARE(m_world.take()[1], "CreateDeviceInfo()"); // it is not destroyed twice
    }

    void aTemporaryAddressOnDemand()
    {
        openOn({camera("km-1", "025E41000002", "192.168.1.10"), camera("km-2", "025E41000001", "10.9.9.9")});
        openMenuOf("lan0");
        QCOMPARE(takeDialogs(), QStringList()); // only cameras have a menu
        assign("km-2", {fill({{"editIpAddress", "192.168.1.50"}, {"editDefaultGateway", "192.168.001.1"}})});
        const QStringList calls = m_world.take(true);
        QCOMPARE(calls.first(), "ForceIp(025E41000001, 192.168.1.50, 255.255.255.0, 192.168.1.1)");
        QCOMPARE(calls.last(3),
                 (QStringList{"QueryDeviceAccessibility(025E41000002, 1)",
                              "QueryDeviceAccessibility(025E41000001, 1)",
                              "QueryDeviceAccessibility(025E41000001, 1)"})); // the wait's, the record's
        QCOMPARE(calls.filter("AnySubnet").size(), 1);                        // no refresh
        QCOMPARE(rows()[2], "  km-2||000001|02:5E:41:00:00:01|OK|Static IP|192.168.1.50|255.255.255.0");
        QVERIFY(row("km-2").icon(4).isNull());
        QCOMPARE(text("editIpAddress") + ' ' + text("editDefaultGateway"), "192.168.1.50 192.168.001.1");
        QCOMPARE(
            takeTrace(),
            (QStringList{
                "info Forcing IP of device with MAC=025E41000001.",
                "info User entered IP=192.168.1.50; Netmask=255.255.255.0; Gateway=192.168.1.1; MAC=025E41000001",
                "info Now forcing IP for MAC=025E41000001. Retries remaining=0.",
                "info Successfully forced IP for MAC=025E41000001."}));
        failAt("QueryDeviceAccessibility", 3); // the record's
        assign("km-2", {fill({{"editIpAddress", "192.168.1.51"}, {"editDefaultGateway", ""}})});
        QCOMPARE(
            takeDebug().filter("orcing IP"),
            (QStringList{
                "debug Forcing IP configuration for MAC: '025E41000001' with IP: '192.168.1.51'; Subnet: '255.255.255.0'; Default Gateway: '0.0.0.0'",
                "debug error forcing IP (err='cable')"}));
    }

    void theDialogKnowsTheAdapter()
    {
        openOn({camera("km-1", "025E41000001", "10.9.9.9", "10.0.0.1"),
                camera("km-2", "025E41000002", "10.9.9.9", "9.9.9.9")});
        const QStringList before = rows();
        const QString header =
            "Please specify a temporary IP address.<br>This address will be valid until the device resets.";
        assign("km-1", {readThen(escape)});
        QCOMPARE(
            m_asked,
            (QStringList{
                header +
                    "<p>Valid addresses are:<br>172.16.0.1 - 172.16.15.254<br>10.0.0.1 - 10.0.255.254<br></p>",
                "172.16.", "255.255.240.0", "0.0.0.0", "-"}));
        assign("km-2", {readThen(escape)}); // stands under no adapter
        QCOMPARE(m_asked, (QStringList{header, "192.168.0.202", "255.255.255.0", "0.0.0.0", "-"}));
        QCOMPARE(m_world.take(), QStringList());
        QCOMPARE(rows(), before);
    }

    void anyCameraCanBeForcedByItsMac()
    {
        disconnectAdapters(); // so that there was no search yet
        openWindow();
        connectAdapters();
        m_world.cameras = {camera("km-1", "025E410A0B0C", "10.9.9.9")};
        forceByMac(readThen(fill({{"editMacAddress", "02-5e-41-0a-0b-0c"},
                                  {"editIpAddress", "192.168.1.50"},
                                  {"editDefaultGateway", ""}})));
        const QString header =
            "Please specify the MAC address for the device to force the IP address.\n\nThere won't be any error message in case you specify the wrong MAC address.";
        QCOMPARE(m_asked, (QStringList{header, "192.168.0.202", "255.255.255.0", "0.0.0.0", "02-5E-41-"}));
        QCOMPARE(m_world.take(),
                 (QStringList{"CreateTl(OrvikGigE)",
                              "ForceIp(025E410A0B0C, 192.168.1.50, 255.255.255.0, 0.0.0.0)", "sleep(2)"}));
        QCOMPARE(takeTrace().first(), "info Forcing IP of device with MAC=<unknown>.");
        QCOMPARE(row("km-1").text(6), "192.168.1.50");

        select("km-1");
        forceByMac(readThen(escape));
        QCOMPARE(m_asked.mid(1),
                 (QStringList{"192.168.1.", "255.255.255.0", "0.0.0.0", "02-5E-41-0A-0B-0C"}));
    }
};

WINDOW_TEST_MAIN(ConnectionTest)
#include "tst_connection.moc"
