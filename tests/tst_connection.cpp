#include "support/gui.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>

#include <stdexcept>

using sdk::camera;

namespace {

const QString notSaved = "|The configuration could not be saved.|Close|Close";
const QString forceIpDialog = "Assign Temporary IP Address (Force IP)";
const QString refusedAddress =
    "Error|IP Addresses 127.0.0.1 and 224.0.0.0 to 255.255.255.255 cannot be used.|OK|OK";

/// Header and fields of the Force IP dialog; "-" for a MAC field that is not shown.
QStringList read(QWidget& dialog)
{
    QStringList texts{gui::child<QLabel>(dialog, "labelHeader").text()};
    for (const char* const name :
         {"editIpAddress", "editSubnetMask", "editDefaultGateway", "editMacAddress"}) {
        const auto& edit = gui::child<QLineEdit>(dialog, name);
        texts << (edit.isVisible() ? edit.text() : "-");
    }
    return texts;
}

} // namespace

/// Opening a camera for a save, and the temporary addresses that may be needed before.
class ConnectionTest : public gui::GuiTest
{
    Q_OBJECT

    /// Edits the name of one camera that does not know the broadcast command.
    void edit(const char* ip = "192.168.1.9")
    {
        openOnCamera(camera("km-1", "025E41000001", ip));
        cam().knowsBroadcast = false;
        type("editCustomName", "belt");
    }
    void saveAndFail()
    {
        m_dialogs.expect(gui::click(QMessageBox::Close));
        save();
        QCOMPARE(gui::cursorDepth(), 0);
    }

    /// Chooses the entry of that row's context menu, then answers the dialog.
    void assign(const QString& camera, const gui::Answer& answer)
    {
        m_dialogs.expect([](QWidget& menu) {
            QCOMPARE(menu.actions().size(), 1);
            QCOMPARE(menu.actions().first()->text(), "&Assign Temporary IP Address...");
            QTest::keyClick(&menu, Qt::Key_Down);
            QTest::keyClick(&menu, Qt::Key_Return);
        });
        m_dialogs.expect(answer);
        emit tree().customContextMenuRequested(tree().visualItemRect(&row(camera)).center());
    }

    void forceByMac() { press(QKeySequence("Alt+Shift+Ctrl+F")); }

private slots:
    void aCameraInUseIsNotForced()
    {
        edit();
        cam().accessibility = 2; // taken since it was discovered
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        saveAndFail();
        QCOMPARE(
            m_dialogs.take(),
            (QStringList{
                "Connection failed|Access denied\nThe device is controlled by another application.\nClose "
                "the connection before changing the IP configuration.|OK|",
                notSaved}));
        QCOMPARE(m_world.take().mid(1), (QStringList{"CreateDeviceInfo()", "CreateDevice(192.168.1.9)",
                                                     "Open(192.168.1.9, 1, 3, 4)"}));
        QCOMPARE(takeTrace().last(),
                 "error Could not open device with old IP=192.168.1.9 to change IP configuration "
                 "via unicast.");
        QCOMPARE(text("editCustomName"), "belt");
    }

    void whatIsNoGigECameraIsRefused()
    {
        edit();
        cam().isGigE = false;
        for (const bool isMade : {true, false}) { // another kind of device, or none at all
            m_world.makesDevices = isMade;
            m_dialogs.expect(gui::press(Qt::Key_Escape));
            saveAndFail();
            QCOMPARE(m_dialogs.take(),
                     (QStringList{gui::report("The device must be a GEV Camera."), notSaved}));
            QCOMPARE(m_world.take().last(), "CreateDevice(192.168.1.9)");
        }
    }

    void aFailureOfAnotherKindIsShownByTheSave()
    {
        edit();
        m_world.at["Open"] = [] { throw std::runtime_error("cable"); };
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        saveAndFail();
        QCOMPARE(m_dialogs.take(), (QStringList{gui::report("cable"), notSaved}));
        m_world.at["Open"] = [] { throw 7; };
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        saveAndFail();
        QCOMPARE(m_dialogs.take(), (QStringList{gui::report("Unknown exception occurred"), notSaved}));
    }

    void anUnreachableCameraIsGivenATemporaryAddress()
    {
        edit("10.9.9.9");
        QStringList asked;
        m_dialogs.expect([&](QWidget& dialog) {
            asked = read(dialog);
            QTest::keyClicks(&gui::child<QLineEdit>(dialog, "editIpAddress"),
                             "050"); // completes the suggestion
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        takeDebug();
        save();
        QCOMPARE(
            asked,
            (QStringList{
                "A connection to the device must be established in order to change the "
                "configuration.<br>To do this, a temporary IP address needs to be assigned to the "
                "device.<br>This temporary address will only be used to update the configuration and will "
                "not be stored on the device.<p>Valid addresses are:<br>192.168.1.1 - "
                "192.168.1.254<br></p>",
                "192.168.1.", "255.255.255.0", "0.0.0.0", "-"}));
        QCOMPARE(m_dialogs.take(), QStringList{forceIpDialog});
        QCOMPARE(m_world.take().mid(1),
                 (QStringList{"CreateDeviceInfo()", "CreateDevice(10.9.9.9)", "Open(10.9.9.9, 1, 3, 4)",
                              "ForceIp(025E41000001, 192.168.1.50, 255.255.255.0, 0.0.0.0)", "sleep(2)",
                              "DestroyDevice()", "CreateDeviceInfo()", "CreateDevice(192.168.1.50)",
                              "Open(192.168.1.50, 1, 3, 4)", "GetNodeMap()", "GetNode(DeviceUserID)",
                              "SetValue(belt, true)", "Close()", "RestartIpConfig(025E41000001)", "sleep(2)",
                              "DestroyDevice()"}));
        // Nothing of the temporary address was stored: the restart brought the old one back.
        QCOMPARE(row("km-1").text(6), "10.9.9.9");
    }

    void theUserEndsTheLoop()
    {
        edit("10.9.9.9");
        m_world.at["Open"] = [] { throw GenICam::TimeoutException("no answer", "camera.cpp", 7); };
        m_dialogs.expect(gui::fill({{"editIpAddress", "192.168.1.50"}}));
        m_dialogs.expect(gui::fill({{"editIpAddress", "192.168.1.51"}}));
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        takeDebug();
        saveAndFail();
        QCOMPARE(m_dialogs.take(), (QStringList{forceIpDialog, forceIpDialog, forceIpDialog, notSaved}));
        QCOMPARE(m_world.take().filter(QRegularExpression("^(Open|Destroy)")),
                 (QStringList{"Open(10.9.9.9, 1, 3, 4)", "DestroyDevice()", "Open(192.168.1.50, 1, 3, 4)",
                              "DestroyDevice()", "Open(192.168.1.51, 1, 3, 4)"}));
        QCOMPARE(takeDebug().count("debug Could not open the device. Will try forceIP ('no answer')"), 3);
    }

    void aRefusedAddressIsAskedForAgain()
    {
        edit();
        QStringList again;
        const QStringList refused{"224.0.0.1", "255.255.255.255", "10.1"};
        assign("km-1", [&](QWidget& dialog) {
            m_dialogs.expect(gui::click(QMessageBox::Ok));
            for (const QString& ip : refused) {
                m_dialogs.expect(gui::fill({{"editIpAddress", ip}}));
                m_dialogs.expect(gui::click(QMessageBox::Ok));
            }
            m_dialogs.expect([&](QWidget& last) {
                again = read(last);
                QTest::keyClick(&last, Qt::Key_Escape);
            });
            gui::fill({{"editIpAddress", "127.0.0.1"}})(dialog);
        });
        QCOMPARE(m_dialogs.take().filter("Error"), QStringList(4, refusedAddress));
        QCOMPARE(again[1], "10.1"); // what was typed is still there
        QCOMPARE(m_world.take(), QStringList());
        const QStringList traced = takeTrace();
        QCOMPARE(traced.count("warning Invalid IP address entered for MAC=025E41000001. Asking again."), 4);
        QCOMPARE(
            traced.mid(0, 2),
            (QStringList{
                "info Forcing IP of device with MAC=025E41000001.",
                "info User entered IP=127.0.0.1; Netmask=255.0.0.0; Gateway=0.0.0.0; MAC=025E41000001"}));
        QCOMPARE(traced.last(), "info Forcing IP of device with MAC=025E41000001 has been canceled by user.");
    }

    void aFailedForceIpIsReportedOnce()
    {
        edit("10.9.9.9");
        for (const bool isStandard : {true, false}) {
            m_world.at["ForceIp"] = [isStandard] {
                if (isStandard) {
                    throw std::runtime_error("refused");
                }
                throw 7;
            };
            m_dialogs.expect(gui::fill({{"editIpAddress", "192.168.1.50"}}));
            m_dialogs.expect(gui::press(Qt::Key_Escape));
            saveAndFail();
            const QString shown = isStandard ? "refused" : "Unknown exception occurred";
            QCOMPARE(m_dialogs.take(), (QStringList{forceIpDialog, gui::report(shown), notSaved}));
            QCOMPARE(takeTrace().filter("force IP").last(),
                     QString("error Failed to force IP for MAC=025E41000001.") +
                         (isStandard ? " Err='refused'" : ""));
            QVERIFY(!m_world.take().contains("sleep(2)"));
        }
    }

    void aHeldCameraIsGivenBackFirst()
    {
        edit();
        cam().hasNodeMap = false; // leaves the camera open
        saveAndFail();
        m_world.take();
        saveAndFail();
        QCOMPARE(m_world.take()[1], "DestroyDevice()"); // without being closed
        m_world.at["DestroyDevice"] = [] { throw std::runtime_error("stuck"); };
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        m_dialogs.take();
        saveAndFail();
        QCOMPARE(m_dialogs.take(), (QStringList{gui::report("stuck"), notSaved}));
        QCOMPARE(m_world.take().last(), "DestroyDevice()");
    }

    void aTemporaryAddressOnDemand()
    {
        m_world.cameras = {camera("km-1", "025E41000001", "10.9.9.9")};
        openWindow();
        select("km-1");
        QCOMPARE(row("km-1").text(4), "Not Reachable");
        m_world.take(true);
        takeTrace();
        assign("km-1",
               gui::fill({{"editIpAddress", "192.168.1.50"}, {"editDefaultGateway", "192.168.001.1"}}));
        const QStringList calls = m_world.take(true);
        QCOMPARE(calls.first(), "ForceIp(025E41000001, 192.168.1.50, 255.255.255.0, 192.168.1.1)");
        QCOMPARE(calls.last(2),
                 (QStringList{"QueryDeviceAccessibility(025E41000001, 1)",
                              "QueryDeviceAccessibility(025E41000001, 1)"})); // the wait's, the record's
        QCOMPARE(calls.filter("AnySubnet").size(), 1);                        // no refresh
        QCOMPARE(rows()[1].section('|', 4, 4) + ' ' + rows()[1].section('|', 6, 6), "OK 192.168.1.50");
        QCOMPARE(text("editIpAddress") + ' ' + text("editDefaultGateway"), "192.168.1.50 192.168.001.1");
        QCOMPARE(
            takeTrace(),
            (QStringList{"info Forcing IP of device with MAC=025E41000001.",
                         "info User entered IP=192.168.1.50; Netmask=255.255.255.0; Gateway=192.168.1.1; "
                         "MAC=025E41000001",
                         "info Now forcing IP for MAC=025E41000001. Retries remaining=0.",
                         "info Successfully forced IP for MAC=025E41000001."}));
    }

    void theDialogKnowsTheAdapter()
    {
        m_world.cameras = {camera("km-1", "025E41000001", "10.9.9.9", "10.0.0.1"),
                           camera("km-2", "025E41000002", "10.9.9.9", "9.9.9.9")};
        openWindow();
        const QStringList before = rows();
        m_world.take();
        QStringList asked;
        const auto look = [&](QWidget& dialog) {
            asked = read(dialog);
            QTest::keyClick(&dialog, Qt::Key_Escape);
        };
        const QString header =
            "Please specify a temporary IP address.<br>This address will be valid until the device resets.";
        assign("km-1", look);
        QCOMPARE(asked,
                 (QStringList{header + "<p>Valid addresses are:<br>172.16.0.1 - 172.16.15.254<br>10.0.0.1 - "
                                       "10.0.255.254<br></p>",
                              "172.16.", "255.255.240.0", "0.0.0.0", "-"}));
        assign("km-2", look); // stands under no adapter
        QCOMPARE(asked, (QStringList{header, "192.168.0.202", "255.255.255.0", "0.0.0.0", "-"}));
        QCOMPARE(m_world.take(), QStringList());
        QCOMPARE(rows(), before);
    }

    void theMenuActsOnItsRow()
    {
        m_world.cameras = {camera("km-1", "025E41000001", "192.168.1.9"),
                           camera("km-2", "025E41000002", "192.168.1.10")};
        openWindow();
        select("km-1");
        m_world.take();
        emit tree().customContextMenuRequested(tree().visualItemRect(&row("lan0")).center());
        QCOMPARE(m_dialogs.take(), QStringList()); // only cameras have a menu
        assign("km-2", gui::fill({{"editIpAddress", "192.168.1.50"}}));
        QCOMPARE(m_world.take().first(), "ForceIp(025E41000002, 192.168.1.50, 255.255.255.0, 0.0.0.0)");
    }

    void anyCameraCanBeForcedByItsMac()
    {
        openWindow();
        tree().setCurrentItem(nullptr);
        m_world.cameras = {camera("km-1", "025E410A0B0C", "10.9.9.9")}; // not in the tree yet
        m_world.take();
        takeTrace();
        QStringList asked;
        m_dialogs.expect([&](QWidget& dialog) {
            asked = read(dialog);
            gui::fill({{"editMacAddress", "02-5e-41-0a-0b-0c"}, {"editIpAddress", "192.168.1.50"}})(dialog);
        });
        forceByMac();
        const QString text = "Please specify the MAC address for the device to force the IP address.\n\n"
                             "There won't be any error message in case you specify the wrong MAC address.";
        QCOMPARE(asked, (QStringList{text, "192.168.0.202", "255.255.255.0", "0.0.0.0", "02-5E-41-"}));
        QCOMPARE(m_world.take(),
                 (QStringList{"ForceIp(025E410A0B0C, 192.168.1.50, 255.255.255.0, 0.0.0.0)", "sleep(2)"}));
        QCOMPARE(takeTrace().first(), "info Forcing IP of device with MAC=<unknown>.");
        QCOMPARE(row("km-1").text(6), "192.168.1.50");

        select("km-1");
        m_dialogs.expect([&](QWidget& dialog) {
            asked = read(dialog);
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        forceByMac();
        QCOMPARE(asked.mid(1), (QStringList{"192.168.1.", "255.255.255.0", "0.0.0.0", "02-5E-41-0A-0B-0C"}));
    }

    void aWrongMacEndsWithoutAMessage()
    {
        m_world.cameras = {camera("km-1", "025E41000001", "192.168.1.9")};
        openWindow();
        m_world.take();
        m_dialogs.expect(gui::fill({{"editIpAddress", "127.0.0.2"},
                                    {"editSubnetMask", "255.0.0.0"},
                                    {"editDefaultGateway", ""},
                                    {"editMacAddress", "02-5E-41-FF-FF-FF"}}));
        forceByMac();
        QCOMPARE(m_world.take(), QStringList{"ForceIp(025E41FFFFFF, 127.0.0.2, 255.0.0.0, 0.0.0.0)"} +
                                     QStringList(30, "sleep(2)"));
        QCOMPARE(m_dialogs.take(), QStringList{forceIpDialog});
    }

    void byMacWorksBeforeAnySearch()
    {
        disconnectAdapters();
        openWindow();
        connectAdapters();
        m_world.cameras = {camera("km-1", "025E41000001", "10.9.9.9")};
        m_dialogs.expect(gui::fill({{"editMacAddress", "025E41000001"}, {"editIpAddress", "192.168.1.50"}}));
        forceByMac();
        QCOMPARE(m_world.take().first(2),
                 (QStringList{"CreateTl(OrvikGigE)",
                              "ForceIp(025E41000001, 192.168.1.50, 255.255.255.0, 0.0.0.0)"}));
        QCOMPARE(row("km-1").text(4), "OK");
    }
};

int main(int argc, char** argv)
{
    ConnectionTest test;
    return gui::run(test, argc, argv);
}

#include "tst_connection.moc"
