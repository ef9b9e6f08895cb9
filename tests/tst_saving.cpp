#include "support/gui.h"

#include "qtbase/formatting.h"

#include <QPushButton>
#include <QRadioButton>

#include <stdexcept>

using sdk::camera;

/// How a configuration gets onto a camera: by broadcast, else over unicast, and back into the tree.
class SavingTest : public gui::GuiTest
{
    Q_OBJECT

    inline static const QString notSaved = "|The configuration could not be saved.|Close|Close";
    inline static const QString notFound = gui::report("Failed to discover reconfigured device");

    /// Edits one camera in that mode, in bits as the record gives it.
    void edit(const char* mode = "5", bool knowsBroadcast = true)
    {
        openOnCamera(sdk::with(camera(), {{"IpConfigCurrent", mode}}));
        cam().knowsBroadcast = knowsBroadcast;
        m_world.take(true);
    }
    /// Edits a camera's name and saves it with Ctrl+S.
    void saveName(const QString& name)
    {
        type("editCustomName", name);
        save();
    }
    QStringList errors() { return takeTrace().filter(QRegularExpression("^error")); }
    /// Makes the nth call of that name fail.
    void failAt(const char* call, int nth = 1, bool isStandard = true)
    {
        m_world.at[call] = [=, calls = std::make_shared<int>(0)] {
            if (++*calls == nth && isStandard) {
                throw std::runtime_error("cable");
            }
            if (*calls == nth) {
                throw 7;
            }
        };
    }

private slots:
    void broadcastWritesRestartsAndWaits()
    {
        edit();
        type("editIpAddress", "192.168.1.20");
        type("editDefaultGateway", "192.168.1.1");
        saveName("belt");
        const QStringList search{"EnumerateDevicesAnySubnet(false)", "EnumerateDevices(false)",
                                 "QueryDeviceAccessibility(025E41000001, 1)"};
        QCOMPARE(m_world.take(true),
                 (QStringList{"BroadcastIpConfig(025E41000001, true, false, 192.168.1.20, 255.255.255.0, "
                              "192.168.1.1, belt)",
                              "RestartIpConfig(025E41000001)", "sleep(2)"} +
                  search + search));
        QCOMPARE(
            takeTrace(),
            (QStringList{
                "info Trying broadcast ip config for MAC=025E41000001 setting static IP (NewIP=192.168.1.20; "
                "NewNetmask=255.255.255.0; NewGateway=192.168.1.1;).",
                "info Successfully changed IP configuration via broadcast for MAC=025E41000001.",
                "info Restarting IP configuration and waiting for rediscovery for MAC=025E41000001.",
                "info Successfully rediscovered MAC=025E41000001.",
            }));
        QCOMPARE(row("km-1").text(1) + ' ' + row("km-1").text(6), "belt 192.168.1.20");
        QVERIFY(row("km-1").isSelected() && !canSave());
    }

    void broadcastSendsEverythingInEveryMode()
    {
        struct Case
        {
            const char* before;
            const char* button;
            QString arguments;
            QString traced;
            QString after;
        };
        const QString address = "192.168.1.9, 255.255.255.0, 0.0.0.0, ";
        for (const Case& mode :
             {Case{"5", "btnUseDhcp", "false, true, " + address, "DHCP.", "6"},
              Case{"5", "btnUseAutoIp", "false, false, " + address, "AutoIP/LLA.", "4"},
              Case{"6", "btnUseAutoIp", "false, false, 0.0.0.0, 0.0.0.0, 0.0.0.0, ", "AutoIP/LLA.", "4"}}) {
            edit(mode.before);
            clickOn(mode.button);
            save();
            QCOMPARE(m_world.take().first(), "BroadcastIpConfig(025E41000001, " + mode.arguments + ')');
            QCOMPARE(takeTrace().first(),
                     "info Trying broadcast ip config for MAC=025E41000001 setting " + mode.traced);
            QCOMPARE(sdk::get(cam().record, "IpConfigCurrent"), mode.after);
        }
    }

    void theCursorWaitsWithTheProgram()
    {
        edit("5", false);
        type("editCustomName", "belt");
        QStringList depths;
        for (const char* const name : {"BroadcastIpConfig", "Open", "SetValue", "RestartIpConfig", "sleep",
                                       "EnumerateDevicesAnySubnet"}) {
            m_world.at[name] = [&, name] {
                const auto* const message = m_window->findChild<QWidget*>("waitMessage");
                const bool isTold = message != nullptr && message->isVisible();
                depths << QString("%1 %2 %3")
                              .arg(name)
                              .arg(gui::cursorDepth())
                              .arg(isTold ? message->property("text").toString().section(' ', 0, 2)
                                          : QString());
            };
        }
        save();
        QCOMPARE(depths, (QStringList{"BroadcastIpConfig 1 ", "Open 1 Trying to establish", "SetValue 1 ",
                                      "RestartIpConfig 1 ", "sleep 2 Camera restarts its",
                                      "EnumerateDevicesAnySubnet 2 Camera restarts its",
                                      "EnumerateDevicesAnySubnet 1 "}));
        QCOMPARE(gui::cursorDepth(), 0);
    }

    void aRefusedBroadcastFallsBackToUnicast()
    {
        edit("5", false);
        saveName("  belt ");
        QCOMPARE(
            m_world.take(),
            (QStringList{
                "BroadcastIpConfig(025E41000001, true, false, 192.168.1.9, 255.255.255.0, 0.0.0.0, belt)",
                "CreateDeviceInfo()", "CreateDevice(192.168.1.9)", "Open(192.168.1.9, 1, 3, 4)",
                "GetNodeMap()", "GetNode(DeviceUserID)", "SetValue(  belt , true)", "Close()",
                "RestartIpConfig(025E41000001)", "sleep(2)", "DestroyDevice()"}));
        QVERIFY(!canSave());
        QCOMPARE(takeTrace()[1], "warning Failed to change IP configuration via broadcast for "
                                 "MAC=025E41000001. This is not an error. "
                                 "The device may not support broadcast ip configuration.");
        saveName("x");
        QCOMPARE(takeDebug().last(), "debug Broadcast Configuration failed! Trying unicast configuration.");
    }

    void aCameraThatStaysAwayIsGivenUp()
    {
        edit();
        type("editIpAddress", "192.168.1.20");
        cam().comesBack = false;
        m_dialogs.expect(gui::press(Qt::Key_Escape)); // not found
        m_dialogs.expect(gui::press(Qt::Key_Escape)); // no temporary address
        m_dialogs.expect(gui::click(QMessageBox::Close));
        save();
        const QStringList calls = m_world.take();
        QCOMPARE(calls.count("sleep(2)"), 30);
        QCOMPARE(calls.filter("Broadcast").size(), 1);
        QCOMPARE(calls.last(), "Open(192.168.1.20, 1, 3, 4)"); // where it should be by now
        QCOMPARE(m_dialogs.take(),
                 (QStringList{notFound, "Assign Temporary IP Address (Force IP)", notSaved}));
        QVERIFY(takeTrace().contains("warning Failed to rediscover the device with MAC=025E41000001."));
        QCOMPARE(text("editIpAddress"), "192.168.1.20");
    }

    void theMacIsFoundInEitherCase()
    {
        edit();
        type("editCustomName", "belt");
        m_world.at["sleep"] = [&] { sdk::set(cam(), "MacAddress", "025e41000001"); };
        save();
        QCOMPARE(m_world.take().count("sleep(2)"), 1);
    }

    void broadcastFailuresAreShown()
    {
        for (const char* const call : {"BroadcastIpConfig", "RestartIpConfig"}) {
            for (const bool isStandard : {true, false}) {
                edit();
                failAt(call, 1, isStandard);
                m_dialogs.expect(gui::press(Qt::Key_Escape));
                saveName("belt"); // the unicast route then does it
                QCOMPARE(m_dialogs.take(),
                         QStringList{gui::report(isStandard ? "cable" : "Unknown exception occurred")});
                QVERIFY(m_world.take().contains("Close()"));
                QCOMPARE(row("km-1").text(1), "belt");
            }
        }
    }

    void aFailedWaitIsNotRepeated()
    {
        edit();
        type("editCustomName", "belt");
        failAt("EnumerateDevicesAnySubnet");
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        save();
        QCOMPARE(m_dialogs.take(), // the wait shows its failure while the cursor still waits
                 (QStringList{gui::report("cable") + "|wait cursor 2", notFound}));
        QCOMPARE(m_world.take().count("sleep(2)"), 2); // one for each route
    }

    void withoutAModeNothingIsSent()
    {
        edit();
        clickOn("btnUseDhcp");
        for (const char* const mode : {"btnUsePersistentIp", "btnUseDhcp", "btnUseAutoIp"}) {
            child<QWidget>(mode).setEnabled(false); // checked, but disabled: not chosen
        }
        m_dialogs.expect(gui::click(QMessageBox::Close));
        save();
        QCOMPARE(m_world.take().last(), "GetNodeMap()");
        QCOMPARE(
            errors(),
            (QStringList{
                "error Invalid addresstype for MAC=025E41000001! Don't know which addressing to use.",
                "error Invalid addresstype for old IP=192.168.1.9! Don't know which addressing to use."}));
        QCOMPARE(m_dialogs.take(), QStringList{notSaved});
    }

    void unicastWritesWhatWasEdited()
    {
        struct Case
        {
            const char* mode;
            const char* field; // or button
            const char* typed;
            QString write;
        };
        for (const Case& that :
             {Case{"5", "editCustomName", "belt", "SetValue(belt, true)"},
              Case{"5", "btnUseDhcp", "", "SetIpConfigMode(false, true)"},
              Case{"6", "btnUseAutoIp", "", "SetIpConfigMode(false, false)"},
              Case{"5", "editIpAddress", "192.168.1.20",
                   "SetPersistentIp(192.168.1.20, 255.255.255.0, 0.0.0.0)"},
              Case{"5", "editNetmask", "255.255.0.0", "SetPersistentIp(192.168.1.9, 255.255.0.0, 0.0.0.0)"},
              Case{"5", "editDefaultGateway", "192.168.001.001",
                   "SetPersistentIp(192.168.1.9, 255.255.255.0, 192.168.1.1)"},
              Case{"5", "editDefaultGateway", "", "SetPersistentIp(192.168.1.9, 255.255.255.0, 0.0.0.0)"}}) {
            edit(that.mode, false);
            if (QString(that.field).startsWith("btn")) {
                clickOn(that.field);
            } else {
                type(that.field, that.typed);
            }
            save();
            const QStringList calls = m_world.take();
            QCOMPARE(calls.filter("Set"), QStringList{that.write});
            QCOMPARE(calls.last(4), (QStringList{"Close()", "RestartIpConfig(025E41000001)", "sleep(2)",
                                                 "DestroyDevice()"}));
            QVERIFY(!canSave());
        }
    }

    void unicastTellsEachStep()
    {
        edit("6", false);
        clickOn("btnUsePersistentIp");
        type("editIpAddress", "192.168.1.20");
        saveName("belt");
        const QString setting = "Setting persitent IP address for device with old IP=192.168.1.9 "
                                "(NewIP=192.168.1.20; NewNetmask=255.255.255.0; NewGateway=0.0.0.0;).";
        const QString opened = "Successfully opened device with old IP=192.168.1.9; Netmask=255.255.255.0; "
                               "Gateway=0.0.0.0; IPConfig='%1' to change IP configuration via unicast.";
        QStringList expected{
            "Trying open device with old IP=192.168.1.9 to change IP configuration via unicast.",
            opened.arg(formatIPConfiguration("6", 0)),
            "Setting DeviceUserID to 'belt' for device with old IP=192.168.1.9.",
            "Setting ip config for device with old IP=192.168.1.9 to static IP.",
            setting,
            "Closing device with old IP=192.168.1.9.",
            "Finished configuring device with old IP=192.168.1.9.",
        };
        QCOMPARE(takeTrace().mid(2), expected.replaceInStrings(QRegularExpression("^"), "info "));
        QCOMPARE(m_world.take().filter("Set"),
                 (QStringList{"SetValue(belt, true)", "SetIpConfigMode(true, false)",
                              "SetPersistentIp(192.168.1.20, 255.255.255.0, 0.0.0.0)"}));
    }

    void unicastFailuresKeepTheEdits()
    {
        struct Case
        {
            std::function<void()> breakIt;
            QString address;
            QString lastCall;
            QString shown = {};  // before "could not be saved"
            QString traced = {}; // pattern of the one error line
        };
        const QString fine = "192.168.1.20";
        const QString nameFailed = "Could not update DeviceUserID.";
        const QString nameTraced = "error Error setting DeviceUserID of device with old IP=192.168.1.9. "
                                   "Err='.*NULL pointer dereferenced.*'";
        const QString notAllowed =
            "Invalid IP address. IP addresses 224.0.0.0 to 255.255.255.255 and 127.0.0.1 are not allowed.";
        const QString notAllowedTraced =
            "error Invalid new IP address '%1' for device with old IP=192.168.1.9!";
        const QString mode = "SetIpConfigMode(true, false)";
        for (const Case& that : {
                 Case{[&] { cam().hasNodeMap = false; }, fine, "GetNodeMap()"},
                 Case{[&] { cam().userId = sdk::UserIdNode::Missing; }, fine, "GetNode(DeviceUserID)",
                      nameFailed, nameTraced},
                 Case{[&] { cam().userId = sdk::UserIdNode::OtherKind; }, fine, "GetNode(DeviceUserID)",
                      nameFailed, nameTraced},
                 Case{[&] { failAt("SetValue"); }, fine, "SetValue(belt, true)", nameFailed, ".*Err='cable'"},
                 Case{[&] { failAt("SetIpConfigMode"); }, fine, mode, "cable"},
                 Case{[] {}, "127.0.0.1", mode, notAllowed, notAllowedTraced.arg("127.0.0.1")},
                 Case{[] {}, "224.0.0.1", mode, notAllowed, notAllowedTraced.arg("224.0.0.1")},
                 Case{[&] { failAt("SetPersistentIp", 1, false); }, fine,
                      "SetPersistentIp(192.168.1.20, 255.255.255.0, 0.0.0.0)", "Unknown exception occurred"},
             }) {
            m_world.at.clear();
            edit("6", false);
            that.breakIt();
            clickOn("btnUsePersistentIp");
            type("editIpAddress", that.address);
            QStringList expected{notSaved};
            if (!that.shown.isEmpty()) {
                expected.prepend(gui::report(that.shown));
                m_dialogs.expect(gui::press(Qt::Key_Escape));
            }
            m_dialogs.expect(gui::click(QMessageBox::Close));
            saveName("belt");
            QCOMPARE(m_dialogs.take(), expected);
            QCOMPARE(m_world.take().last(), that.lastCall); // neither closed nor restarted
            const QString traced = errors().join('\n');
            const QRegularExpression pattern(QRegularExpression::anchoredPattern(that.traced));
            QVERIFY2(pattern.match(traced).hasMatch(), qPrintable(traced));
            QCOMPARE(text("editIpAddress") + ' ' + text("editCustomName"), that.address + " belt");
            QVERIFY(canSave());
            m_dialogs.expect(gui::click(QMessageBox::No));
            select("lan0"); // only now is the camera let go
            QCOMPARE(m_world.take(), QStringList{"Close()"});
            m_dialogs.take();
        }
    }

    void aCameraThatCannotBeClosedIsStillRestarted()
    {
        edit("5", false);
        type("editCustomName", "belt");
        m_world.at["Close"] = [] { throw GenICam::RuntimeException("stuck", "device.cpp", 7); };
        save();
        QCOMPARE(takeDebug().filter(QRegularExpression("^warning (Failed|close)")),
                 (QStringList{"warning Failed to close device",
                              "warning closeDevice :  Exception occurred:\n stuck \n device.cpp : 7 \n"}));
        QVERIFY(m_world.take().contains("RestartIpConfig(025E41000001)"));
    }

    void withoutACameraNothingHappens()
    {
        edit();
        select("lan0");
        child<QPushButton>("btnWriteConfiguration").setEnabled(true);
        save();
        QCOMPARE(m_world.take(true) + m_dialogs.take(), QStringList());
    }

    void whoMovesOnBeforeTheButtonActsSavesNothing()
    {
        edit();
        m_world.cameras.push_back(camera("km-2", "025E41000002", "192.168.1.10"));
        press(QKeySequence("F5"));
        type("editCustomName", "belt");
        press(QKeySequence("Ctrl+S")); // the button is only shown pressed so far
        m_dialogs.expect(gui::click(QMessageBox::No));
        select("km-2");
        QTRY_VERIFY(!child<QPushButton>("btnWriteConfiguration").isDown());
        QCOMPARE(m_world.take(), QStringList());
    }

    void theFocusMovesOnFromSave()
    {
        edit();
        type("editCustomName", "belt");
        auto& button = child<QPushButton>("btnWriteConfiguration");
        button.setFocus();
        QTest::mouseClick(&button, Qt::LeftButton);
        QVERIFY(!button.isEnabled() && tree().hasFocus());
    }

    void aFailedRefreshAfterASaveIsShown()
    {
        edit();
        type("editCustomName", "belt");
        failAt("EnumerateDevicesAnySubnet", 2);
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        save();
        QCOMPARE(m_dialogs.take(), QStringList{gui::report("cable")});
    }
};

int main(int argc, char** argv)
{
    SavingTest test;
    return gui::run(test, argc, argv);
}

#include "tst_saving.moc"
