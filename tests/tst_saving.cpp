#include "support/gui.h"

#include "qtbase/formatting.h"

#include <QPushButton>

using gui::click;
using gui::notSaved;
using gui::report;
using sdk::camera;

/// How a configuration gets onto a camera: by broadcast, else over unicast, and back into the tree.
class SavingTest : public gui::GuiTest
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

private slots:
    void broadcastWritesRestartsAndWaits()
    {
        edit();
        type("editIpAddress", "192.168.1.20");
        type("editDefaultGateway", "192.168.1.1");
        QCOMPARE(save(), QStringList());
        const QStringList search{"EnumerateDevicesAnySubnet(false)", "EnumerateDevices(false)",
                                 "QueryDeviceAccessibility(025E41000001, 1)"};
        QCOMPARE(
            m_world.take(true),
            (QStringList{
                 "BroadcastIpConfig(025E41000001, true, false, 192.168.1.20, 255.255.255.0, 192.168.1.1, belt)",
                 "RestartIpConfig(025E41000001)", "sleep(2)"} +
             search + search));
        QCOMPARE(
            takeTrace(),
            (QStringList{
                "info Trying broadcast ip config for MAC=025E41000001 setting static IP (NewIP=192.168.1.20; NewNetmask=255.255.255.0; NewGateway=192.168.1.1;).",
                "info Successfully changed IP configuration via broadcast for MAC=025E41000001.",
                "info Restarting IP configuration and waiting for rediscovery for MAC=025E41000001.",
                "info Successfully rediscovered MAC=025E41000001.",
            }));
        QVERIFY(row("km-1").isSelected() && row("km-1").text(1) == "belt" && !canSave() &&
                !tree().hasFocus());
    }

    void broadcastSendsEverythingInEveryMode()
    {
        const QString address = "192.168.1.9, 255.255.255.0, 0.0.0.0, belt";
        const gui::Table<const char*, const char*, QString, QString> cases{
            {"5", "btnUseDhcp", "false, true, " + address, "DHCP."},
            {"5", "btnUseAutoIp", "false, false, " + address, "AutoIP/LLA."},
            {"6", "btnUseAutoIp", "false, false, 0.0.0.0, 0.0.0.0, 0.0.0.0, belt", "AutoIP/LLA."},
        };
        for (const auto& [before, button, arguments, traced] : cases) {
            edit(before);
            clickOn(button);
            m_world.at["sleep"] = [this] { cam().record.SetPropertyValue("MacAddress", "025e41000001"); };
            save();
            QCOMPARE(m_world.take(), (QStringList{"BroadcastIpConfig(025E41000001, " + arguments + ')',
                                                  "RestartIpConfig(025E41000001)", "sleep(2)"}));
            QVERIFY(takeTrace().first().endsWith("MAC=025E41000001 setting " + traced));
        }
    }

    void theCursorWaitsWithTheProgram()
    {
        edit("5", false);
        QStringList depths;
        for (const char* const name : {"BroadcastIpConfig", "Open", "SetValue", "RestartIpConfig", "sleep",
                                       "EnumerateDevicesAnySubnet"}) {
            m_world.at[name] = [&, name] {
                const auto* const message = m_window->findChild<QWidget*>("waitMessage");
                const bool isTold = message != nullptr && message->isVisible();
                depths << QString("%1 %2").arg(name).arg(gui::cursorDepth()) +
                              (isTold ? ' ' + message->property("text").toString().section(' ', 0, 2) : "");
            };
        }
        save();
        QCOMPARE(depths, (QStringList{"BroadcastIpConfig 1", "Open 1 Trying to establish", "SetValue 1",
                                      "RestartIpConfig 1", "sleep 2 Camera restarts its",
                                      "EnumerateDevicesAnySubnet 2 Camera restarts its",
                                      "EnumerateDevicesAnySubnet 1"}));
    }

    void failuresAfterWhichTheNameIsSavedAllTheSame()
    {
        const QString unknown = report("Unknown exception occurred");
        const QString lost = report("Failed to discover reconfigured device");
        const gui::Table<const char*, int, bool, QStringList, int> cases{
            {"BroadcastIpConfig", 1, true, {report("cable")}, 1}, // unicast does it
            {"BroadcastIpConfig", 1, false, {unknown}, 1},
            {"RestartIpConfig", 1, true, {report("cable")}, 1},
            {"RestartIpConfig", 1, false, {unknown}, 1},
            {"EnumerateDevicesAnySubnet",
             1,
             true,
             {report("cable") + "|wait cursor 2", lost},
             2}, // by unicast
            {"EnumerateDevicesAnySubnet", 1, false, {unknown + "|wait cursor 2", lost}, 2},
            {"EnumerateDevicesAnySubnet", 2, false, {unknown}, 1},
            {"EnumerateDevicesAnySubnet", 2, true, {report("cable")}, 1}, // the refresh
        };
        for (const auto& [call, nth, isStandard, shown, sleeps] : cases) {
            edit("6");
            failAt(call, nth, isStandard);
            QCOMPARE(save(QList<gui::Answer>(shown.size(), gui::escape)), shown);
            QCOMPARE(m_world.take().count("sleep(2)"), sleeps);
            QCOMPARE(sdk::get(cam().record, {"UserDefinedName"}), "belt");
        }
    }

    void unicastTellsEachStep()
    {
        edit("6", false, " belt ");
        clickOn("btnUsePersistentIp");
        type("editIpAddress", "192.168.1.20");
        type("editNetmask", "255.255.0.0");
        save();
        QCOMPARE(m_world.take(),
                 (QStringList{
                     "BroadcastIpConfig(025E41000001, true, false, 192.168.1.20, 255.255.0.0, 0.0.0.0, belt)",
                     "CreateDeviceInfo()", "CreateDevice(192.168.1.9)", "Open(192.168.1.9, 1+3+4)",
                     "GetNodeMap()", "GetNode(DeviceUserID)", "SetValue( belt , true)",
                     "SetIpConfigMode(true, false)", "SetPersistentIp(192.168.1.20, 255.255.0.0, 0.0.0.0)",
                     "Close()", "RestartIpConfig(025E41000001)", "sleep(2)", "DestroyDevice()"}));
        QCOMPARE(
            takeTrace().mid(1),
            (QStringList{
                "warning Failed to change IP configuration via broadcast for MAC=025E41000001. This is not an error. The device may not support broadcast ip configuration.",
                "info Trying open device with old IP=192.168.1.9 to change IP configuration via unicast.",
                "info Successfully opened device with old IP=192.168.1.9; Netmask=255.255.255.0; Gateway=0.0.0.0; IPConfig='DHCP, Auto IP (LLA)' to change IP configuration via unicast.",
                "info Setting DeviceUserID to ' belt ' for device with old IP=192.168.1.9.",
                "info Setting ip config for device with old IP=192.168.1.9 to static IP.",
                "info Setting persitent IP address for device with old IP=192.168.1.9 (NewIP=192.168.1.20; NewNetmask=255.255.0.0; NewGateway=0.0.0.0;).",
                "info Closing device with old IP=192.168.1.9.",
                "info Finished configuring device with old IP=192.168.1.9.",
            }));
        QVERIFY(!canSave());
    }

    void unicastWritesWhatWasEdited()
    {
        for (const auto& [mode, field, typed, write] :
             gui::Table<const char*, const char*, const char*, QString>{
                 {"5", "editCustomName", "gate", "SetValue(gate, true)"},
                 {"5", "btnUseDhcp", " to DHCP.", "SetIpConfigMode(false, true)"}, // what is traced
                 {"6", "btnUseAutoIp", " to AutoIP/LLA", "SetIpConfigMode(false, false)"},
                 {"5", "editNetmask", "255.255.0.0", "SetPersistentIp(192.168.1.9, 255.255.0.0, 0.0.0.0)"},
                 {"5", "editDefaultGateway", "192.168.001.001",
                  "SetPersistentIp(192.168.1.9, 255.255.255.0, 192.168.1.1)"},
                 {"5", "editDefaultGateway", "", "SetPersistentIp(192.168.1.9, 255.255.255.0, 0.0.0.0)"},
             }) {
            edit(mode, false, "");
            if (QString(field).startsWith("btn")) {
                clickOn(field);
            } else {
                enter(field, typed);
            }
            takeTrace();
            save();
            QCOMPARE(m_world.take().filter("Set"), QStringList{write});
            const QString traced = takeTrace().filter("Setting ip config").join('\n');
            QVERIFY2(QString(field).startsWith("btn") ? traced.endsWith(typed) : traced.isEmpty(), typed);
            QVERIFY(!canSave());
        }
    }

    void unicastFailuresKeepTheEdits()
    {
        const QString nameFailed = "Could not update DeviceUserID.";
        const QString nameTraced =
            "error Error setting DeviceUserID of device with old IP=192.168.1.9. Err='";
        const QString refused =
            "Invalid IP address. IP addresses 224.0.0.0 to 255.255.255.255 and 127.0.0.1 are not allowed.";
        const QString refusedTraced = "error Invalid new IP address '%1' for device with old IP=192.168.1.9!";
        const QString noMode = "error Invalid addresstype for %1! Don't know which addressing to use.";
        const QString set = "SetIpConfigMode(true, false)";
        const auto choosesNothing = [&] {
            for (const char* const mode : {"btnUsePersistentIp", "btnUseDhcp", "btnUseAutoIp"}) {
                child<QWidget>(mode).setEnabled(false); // checked, but disabled
            }
        };
        const auto use = [&](const char* ip) { return [this, ip] { type("editIpAddress", ip); }; };
        const gui::Table<std::function<void()>, QString, QString, QString> cases{
            {[&] { cam().hasNodeMap = false; }, "GetNodeMap()", "", ""},
            {[&] { cam().hasUserId = false; }, "GetNode(DeviceUserID)", nameFailed, nameTraced},
            {[&] { failAt("SetValue"); }, "SetValue(belt, true)", nameFailed, nameTraced + "cable'"},
            {[&] { failAt("SetIpConfigMode"); }, set, "cable", ""},
            {choosesNothing, "SetValue(belt, true)", "",
             noMode.arg("MAC=025E41000001") + '\n' + noMode.arg("old IP=192.168.1.9")},
            {use("127.0.0.1"), set, refused, refusedTraced.arg("127.0.0.1")},
            {use("224.0.0.1"), set, refused, refusedTraced.arg("224.0.0.1")},
            {[&] { failAt("SetPersistentIp", 1, false); },
             "SetPersistentIp(192.168.1.20, 255.255.255.0, 0.0.0.0)", "Unknown exception occurred", ""},
        };
        for (const auto& [breakIt, lastCall, shown, traced] : cases) {
            edit("6", false);
            clickOn("btnUsePersistentIp");
            type("editIpAddress", "192.168.1.20");
            breakIt();
            const QString address = text("editIpAddress");
            QList<gui::Answer> answers{click(QMessageBox::Close)};
            QStringList expected{notSaved};
            if (!shown.isEmpty()) {
                answers.prepend(gui::escape);
                expected.prepend(report(shown));
            }
            QCOMPARE(save(answers), expected);
            QCOMPARE(m_world.take().last(), lastCall); // neither closed nor restarted
            const QString errors = takeTrace().filter(QRegularExpression("^error")).join('\n');
            QVERIFY2(errors.isEmpty() == traced.isEmpty() && errors.left(traced.size()) == traced,
                     qPrintable(errors));
            QVERIFY(text("editIpAddress") == address && text("editCustomName") == "belt" && canSave());
            expect({click(QMessageBox::No)});
            select("lan0"); // only now is the camera let go
            QCOMPARE(m_world.take(), QStringList{"Close()"});
        }
    }

    void aCameraThatCannotBeClosedIsStillRestarted()
    {
        edit("5", false);
        cam().comesBack = false;
        failAt("Close");
        int painted = 0, before = 0; // the last search
        m_world.at["sleep"] = [&] {
            before = painted;
            QMetaObject::invokeMethod(
                this, [&] { ++painted; }, Qt::QueuedConnection);
        };
        QCOMPARE(save({gui::escape, click(QMessageBox::Close)}),
                 (QStringList{report("Failed to discover reconfigured device"), notSaved}));
        QCOMPARE(takeTrace(QString()).filter(QRegularExpression("^warning (Failed to (cl|re)|close)")),
                 (QStringList{
                     "warning Failed to close device", "warning closeDevice :  Exception occurred:\n cable",
                     "warning Failed to rediscover the configured device with old IP=192.168.1.9."}));
        QCOMPARE(before, 29);
        QCOMPARE(m_world.take().last(31),
                 QStringList{"RestartIpConfig(025E41000001)"} + QStringList(30, "sleep(2)"));
    }

    void theFocusMovesOnFromSave()
    {
        edit();
        auto& button = child<QPushButton>("btnWriteConfiguration");
        button.setFocus();
        QTest::mouseClick(&button, Qt::LeftButton);
        QVERIFY(!button.isEnabled() && tree().hasFocus());
        QCOMPARE(takeDebug().filter("unicast"), QStringList());

        select("lan0"); // and without a camera nothing happens
        m_world.take(true);
        button.setEnabled(true);
        save();
        QCOMPARE(m_world.take(true), QStringList());
    }
};

WINDOW_TEST_MAIN(SavingTest)
#include "tst_saving.moc"
