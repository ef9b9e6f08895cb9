#include "support/gui.h"
#include "tessal/failure.h"

using namespace gui;
using sdk::camera;

/// How a configuration gets onto a camera: by broadcast, else over unicast, and back into the tree.
class SavingTest : public GuiTest
{
    Q_OBJECT

    /// Edits the name of one camera in that mode, in bits as the record gives it.
    void edit(const char* mode = "5", bool knowsBroadcast = true, const QString& name = "belt")
    {
        openOn({sdk::with(camera(), {{"IpConfigCurrent", mode}})});
        cam().knowsBroadcast = knowsBroadcast;
        type("editCustomName", name);
        m_world.take(true);
    }

    static void failWithNameNotKept()
    {
        throw Tessal::FailureOf(GenICam::RuntimeException("kept bel", "", 1, "RuntimeException"),
                                {.kind = Tessal::FailureKind::NotKept,
                                 .setting = Tessal::Setting::Name,
                                 .address = "192.168.1.9",
                                 .wanted = "belt",
                                 .actual = "bel"});
    }

private slots:
    void broadcastWritesRestartsAndWaits()
    {
        edit("5", true, " bält ");
        type("editIpAddress", "192.168.001.020");
        type("editDefaultGateway", "192.168.1.1");
        QCOMPARE(save(), QStringList());
        const QStringList written{
            "BroadcastIpConfig(025E41000001, true, false, 192.168.1.20, 255.255.255.0, 192.168.1.1, bält)",
            "RestartIpConfig(025E41000001)", "sleep(2)"};
        const QStringList search{"EnumerateDevicesAnySubnet(false)", "EnumerateDevices(false)",
                                 "QueryDeviceAccessibility(025E41000001, 1)"};
        QCOMPARE(m_world.take(true), written + search + search);
        const QStringList told{
            "info Trying broadcast ip config for MAC=025E41000001 setting static IP (NewIP=192.168.1.20; NewNetmask=255.255.255.0; NewGateway=192.168.1.1;).",
            "info Successfully changed IP configuration via broadcast for MAC=025E41000001.",
            "info Restarting IP configuration and waiting for rediscovery for MAC=025E41000001.",
            "info Successfully rediscovered MAC=025E41000001."};
        QCOMPARE(takeTrace(), told);
        QVERIFY(row("km-1").isSelected() && row("km-1").text(1) == "bält" && !tree().hasFocus());
        type("editCustomName", "gate");
        auto& button = child<QPushButton>("btnWriteConfiguration");
        button.setFocus();
        QTest::mouseClick(&button, Qt::LeftButton);
        QVERIFY(!button.isEnabled() && tree().hasFocus()); // which moves on from a button that is greyed
        QCOMPARE(takeDebug().filter("unicast"), QStringList());
    }

    void theCursorWaitsWithTheProgram()
    {
        edit("5", false);
        QStringList depths;
        for (const char* const name : {"BroadcastIpConfig", "Open", "SetValue", "RestartIpConfig", "sleep",
                                       "EnumerateDevicesAnySubnet"}) {
            m_world.at[name] = [&, name] {
                const auto* const message = m_window->findChild<QLabel*>("waitMessage");
                const QString told = message != nullptr && message->isVisible() ? message->text() : "";
                depths << QString("%1 %2 ").arg(name).arg(cursorDepth()) + told.section(' ', 0, 2) +
                              told.section('\n', 2);
            };
        }
        save();
        QCOMPARE(depths, (QStringList{"BroadcastIpConfig 1 ", "Open 1 Trying to establish", "SetValue 1 ",
                                      "RestartIpConfig 1 ", "sleep 2 Camera restarts its\n0 of at most 75 s",
                                      "EnumerateDevicesAnySubnet 2 Camera restarts its\n0 of at most 75 s",
                                      "EnumerateDevicesAnySubnet 1 "}));
    }

    void aCameraThatReportsSomethingElseIsToldOf_data()
    {
        QTest::addColumn<bool>("knowsBroadcast");
        QTest::addColumn<QString>("leave"); // how the edit is left
        QTest::newRow("saved by broadcast") << true << "Save";
        QTest::newRow("saved over unicast") << false << "Save";
        QTest::newRow("saved before a refresh") << true << "refresh";
        QTest::newRow("saved when the row is left") << false << "row";
        QTest::newRow("saved when the window is closed") << true << "close";
    }

    void aCameraThatReportsSomethingElseIsToldOf()
    {
        QFETCH(const bool, knowsBroadcast);
        QFETCH(const QString, leave);
        edit("5", knowsBroadcast);
        cam().keepsConfiguration = false;
        type("editIpAddress", "192.168.1.20");
        const QString warning =
            "|The camera 02:5E:41:00:00:01 does not report what was saved.\n\nIP address: 192.168.1.20 was saved; "
            "the camera reports 192.168.1.9.|OK|";
        qsizetype searches = 0; // until the warning comes
        const auto countSearches = [&](QWidget& box) {
            searches = m_world.take(true).filter("EnumerateDevicesAnySubnet").size();
            gui::escape(box);
        };
        if (leave == "Save") {
            QCOMPARE(save({countSearches}), QStringList{warning});
            QCOMPARE(searches, 2); // the wait's and the refresh's
            return;
        }
        expect({click(QMessageBox::Yes), gui::escape});
        if (leave == "refresh") {
            refresh();
        } else if (leave == "row") {
            select("lan0");
        } else {
            m_window->close();
        }
        QCOMPARE(takeDialogs().mid(1), QStringList{warning}); // the first is the question
    }

    void failuresAfterWhichTheNameIsSavedAllTheSame()
    {
        const QString broadcast = "broadcastConfiguration";
        const QString lost = reportOwn("Failed to discover reconfigured device", broadcast);
        for (const auto& [call, nth, operation, cursor, sleeps] :
             Table<const char*, int, QString, QString, int>{
                 {"BroadcastIpConfig", 1, broadcast, "", 1}, // unicast does it
                 {"RestartIpConfig", 1, broadcast, "", 1},
                 {"EnumerateDevicesAnySubnet", 1, "waitForDevice", "|wait cursor 2", 2}, // by unicast
                 {"EnumerateDevicesAnySubnet", 2, "on_btnWriteConfiguration_clicked", "",
                  1}}) { // the refresh
            for (const bool isStandard : {true, false}) {
                edit("6");
                clickOn("btnUseAutoIp");
                failAt(call, nth, isStandard);
                const QStringList shown{(isStandard ? reportUnexpected(operation, "cable")
                                                    : report("Unknown exception occurred", operation)) +
                                            cursor,
                                        lost};
                saveFails(shown.first(sleeps));
                const QStringList calls = m_world.take();
                QCOMPARE(calls.count("sleep(2)"), sleeps);
                QCOMPARE(calls.filter("SetIp").isEmpty(),
                         QString(call) != "BroadcastIpConfig"); // sent already
                const QString missed = "warning Failed to rediscover the device with MAC=025E41000001.";
                QCOMPARE(takeTrace().count(missed), sleeps - 1);
                QCOMPARE(sdk::get(cam().record, {"UserDefinedName"}), "belt");
            }
        }
    }

    void unicastTellsEachStep()
    {
        edit("6", false, " bält ");
        clickOn("btnUsePersistentIp");
        type("editIpAddress", "192.168.1.20");
        type("editNetmask", "255.255.0.0");
        save();
        QCOMPARE(m_world.take(),
                 (QStringList{
                     "BroadcastIpConfig(025E41000001, true, false, 192.168.1.20, 255.255.0.0, 0.0.0.0, bält)",
                     "CreateDeviceInfo()", "CreateDevice(192.168.1.9)", "Open(192.168.1.9, 1+3+4)",
                     "GetNodeMap()", "GetNode(DeviceUserID)", "SetValue( bält , true)",
                     "SetIpConfigMode(true, false)", "SetPersistentIp(192.168.1.20, 255.255.0.0, 0.0.0.0)",
                     "Close()", "RestartIpConfig(025E41000001)", "sleep(2)", "DestroyDevice()"}));
        const QStringList told{
            "warning Failed to change IP configuration via broadcast for MAC=025E41000001. This is not an error. The device may not support broadcast ip configuration.",
            "info Trying open device with old IP=192.168.1.9 to change IP configuration via unicast.",
            "info Successfully opened device with old IP=192.168.1.9; Netmask=255.255.255.0; Gateway=0.0.0.0; IPConfig='DHCP, Auto IP (LLA)' to change IP configuration via unicast.",
            "info Setting DeviceUserID to ' bält ' for device with old IP=192.168.1.9.",
            "info Setting ip config for device with old IP=192.168.1.9 to static IP.",
            "info Setting persitent IP address for device with old IP=192.168.1.9 (NewIP=192.168.1.20; NewNetmask=255.255.0.0; NewGateway=0.0.0.0;).",
            "info Closing device with old IP=192.168.1.9.",
            "info Finished configuring device with old IP=192.168.1.9."};
        QCOMPARE(takeTrace().mid(1), told);
        QVERIFY(!canSave());
    }

    void broadcastSendsEverythingAndUnicastWhatWasEdited()
    {
        const QString network = "true, false, 192.168.1.9, 255.255.255.0, ";
        for (const auto& [mode, field, typed, told, sent, written] :
             Table<const char*, QByteArray, QString, QString, QString, QString>{
                 {"5", "editCustomName", "gate", "", network + "0.0.0.0, gate", "SetValue(gate, true)"},
                 {"5", "btnUseDhcp", "DHCP.", "DHCP.", "false, true, 192.168.1.9, 255.255.255.0, 0.0.0.0, ",
                  "SetIpConfigMode(false, true)"},
                 {"6", "btnUseAutoIp", "AutoIP/LLA.", "AutoIP/LLA",
                  "false, false, 0.0.0.0, 0.0.0.0, 0.0.0.0, ", "SetIpConfigMode(false, false)"},
                 {"5", "editNetmask", "255.255.0.0", "", "true, false, 192.168.1.9, 255.255.0.0, 0.0.0.0, ",
                  "SetPersistentIp(192.168.1.9, 255.255.0.0, 0.0.0.0)"},
                 {"5", "editDefaultGateway", "192.168.001.001", "", network + "192.168.1.1, ",
                  "SetPersistentIp(192.168.1.9, 255.255.255.0, 192.168.1.1)"},
                 {"5", "editDefaultGateway", "", "", network + "0.0.0.0, ",
                  "SetPersistentIp(192.168.1.9, 255.255.255.0, 0.0.0.0)"}}) {
            edit(mode, false, "");
            const bool isMode = field.startsWith("btn");
            isMode ? clickOn(field) : enter(field, typed);
            m_world.at["sleep"] = [this] { cam().record.SetPropertyValue("MacAddress", "025e41000001"); };
            takeTrace();
            save();
            QCOMPARE(m_world.take().filter(QRegularExpression("^(Broadcast|Set|sleep)")),
                     (QStringList{"BroadcastIpConfig(025E41000001, " + sent + ')', written, "sleep(2)"}));
            const QString traced = takeTrace().join('\n');
            QCOMPARE(traced.contains("setting " + typed + '\n'), isMode);
            QCOMPARE(traced.contains("Setting ip config"), isMode);
            QVERIFY(!isMode || traced.contains("old IP=192.168.1.9 to " + told + '\n'));
            QVERIFY(!canSave());
        }
    }

    void unicastFailuresKeepTheEdits()
    {
        const QString unicast = "unicastConfiguration";
        const auto nameFailed = [&](const QString& reason) {
            const QString text = "Could not update DeviceUserID.";
            return report(text, unicast, {text, reason});
        };
        const QString nameTraced =
            "error Error setting DeviceUserID of device with old IP=192.168.1.9. Err='";
        const QString refused =
            "Invalid IP address. IP addresses 224.0.0.0 to 255.255.255.255 and 127.0.0.1 are not allowed.";
        const QString refusedTraced = "error Invalid new IP address '%1' for device with old IP=192.168.1.9!";
        const QString noMode = "error Invalid addresstype for %1! Don't know which addressing to use.";
        const QString set = "SetIpConfigMode(true, false)";
        const auto use = [&](const char* ip) { return [this, ip] { type("editIpAddress", ip); }; };
        const auto forgetName = [this] { m_world.at["SetValue"] = failWithNameNotKept; };
        const QString forgotten =
            "Could not update DeviceUserID.\n\nThe camera 192.168.1.9 confirmed the new device user ID “belt” but reports “bel”.";
        const auto disableMode = [&] { child<QWidget>("btnUsePersistentIp").setEnabled(false); }; // checked
        for (const auto& [breakIt, lastCall, shown, traced] :
             Table<std::function<void()>, QString, QString, QString>{
                 {[&] { cam().hasNodeMap = false; }, "GetNodeMap()", "", ""},
                 {[&] { cam().hasUserId = false; }, "GetNode(DeviceUserID)",
                  nameFailed("NULL pointer dereferenced"), nameTraced},
                 {[&] { failAt("SetValue"); }, "SetValue(belt, true)", nameFailed("cable"),
                  nameTraced + "cable'"},
                 {forgetName, "SetValue(belt, true)",
                  report(forgotten, unicast, {"Could not update DeviceUserID.", "kept bel"}), nameTraced},
                 {[&] { failAt("SetIpConfigMode"); }, set, reportUnexpected(unicast, "cable"), ""},
                 {disableMode, "SetValue(belt, true)", "",
                  noMode.arg("MAC=025E41000001") + '\n' + noMode.arg("old IP=192.168.1.9")},
                 {use("224.0.0.1"), set, reportOwn(refused, unicast), refusedTraced.arg("224.0.0.1")},
                 {[&] { failAt("SetPersistentIp", 1, false); },
                  "SetPersistentIp(192.168.1.20, 255.255.255.0, 0.0.0.0)",
                  report("Unknown exception occurred", unicast), ""},
             }) {
            edit("6", false);
            clickOn("btnUsePersistentIp");
            type("editIpAddress", "192.168.1.20");
            breakIt();
            const QString address = text("editIpAddress");
            const QStringList dialogs{shown, notSaved};
            saveFails(dialogs.mid(shown.isEmpty() ? 1 : 0));
            QCOMPARE(m_world.take().last(), lastCall); // neither closed nor restarted
            const QString errors = takeTrace().filter(QRegularExpression("^error")).join('\n');
            QVERIFY2(errors.isEmpty() == traced.isEmpty() && errors.left(traced.size()) == traced,
                     qPrintable(errors));
            QVERIFY(text("editIpAddress") == address && text("editCustomName") == "belt" && canSave());
            expect({escape});
            failAt("Close", 1, false);
            select("lan0"); // only now is the camera let go
            QCOMPARE(m_world.take(), QStringList{"Close()"});
            QVERIFY(takeDebug().contains("warning closeDevice: Unspecified exception occurred."));
        }
    }

    void aCameraThatStaysAwayIsShownAsItWasWritten()
    {
        edit("1", false);
        type("editIpAddress", "192.168.1.20");
        clickOn("btnUseAutoIp");
        cam().comesBack = false;
        failAt("Close");
        int painted = 0, before = 0; // the last search
        m_world.at["sleep"] = [&] {
            before = painted;
            QMetaObject::invokeMethod(
                this, [&] { ++painted; }, Qt::QueuedConnection);
        };
        expect({click(QMessageBox::Yes), escape, escape});
        select("lan0");
        const QString lost = reportOwn("Failed to discover reconfigured device", "unicastConfiguration");
        QCOMPARE(takeDialogs().mid(1), (QStringList{lost, notSaved}));
        QCOMPARE(row("km-1").text(5) + ' ' + row("km-1").text(6), "Unknown 192.168.1.20");
        QCOMPARE(takeTrace(QString()).filter(QRegularExpression("^warning (Failed to (cl|re)|close)")),
                 (QStringList{
                     "warning Failed to close device", "warning closeDevice :  Exception occurred:\n cable",
                     "warning Failed to rediscover the configured device with old IP=192.168.1.9."}));
        QCOMPARE(before, 29);
        QCOMPARE(m_world.take().filter(QRegularExpression("^(Restart|sleep)")),
                 QStringList{"RestartIpConfig(025E41000001)"} + QStringList(30, "sleep(2)"));
    }
};

WINDOW_TEST_MAIN(SavingTest)
#include "tst_saving.moc"
