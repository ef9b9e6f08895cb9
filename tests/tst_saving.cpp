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

    struct Mode
    {
        const char* name;
        const char* before; // in bits
        const char* button;
        const char* arguments;
        const char* traced;
        const char* after;
    };
    struct Edit
    {
        const char* name;
        const char* mode;
        const char* field; // or button
        const char* typed;
        QStringList writes;
    };
    struct Failure
    {
        const char* name;
        const char* call; // at which it happens
        bool isStandard;
    };
    struct UnicastFailure
    {
        const char* name;
        std::function<void(SavingTest&)> breakIt;
        QString address;
        QString lastCall;
        QString shown = {};  // before "could not be saved"
        QString traced = {}; // beginning of the one error line
    };

    inline static const QString notSaved = "|The configuration could not be saved.|Close|Close";
    inline static const QString notFound = gui::report("Failed to discover reconfigured device");
    inline static const QString nothing = "";

    sdk::Camera& cam() { return m_world.cameras.front(); }
    /// A window on one camera at 192.168.1.9, selected. Mode in bits.
    void edit(const char* mode = "5", bool knowsBroadcast = true)
    {
        m_world.cameras = {camera("km-1", "025E41000001", "192.168.1.9")};
        sdk::set(cam(), "IpConfigCurrent", mode);
        cam().knowsBroadcast = knowsBroadcast;
        openWindow();
        select("km-1");
        m_world.take(true);
        takeTrace();
    }
    void choose(const char* mode) { QTest::mouseClick(&child<QRadioButton>(mode), Qt::LeftButton); }
    bool canSave() { return child<QPushButton>("btnWriteConfiguration").isEnabled(); }
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
        type("editCustomName", "belt");
        save();
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

    void broadcastSendsEverythingInEveryMode_data()
    {
        gui::rows<Mode>({
            {"static to DHCP", "5", "btnUseDhcp", "false, true, 192.168.1.9, 255.255.255.0, 0.0.0.0, ",
             "DHCP.", "6"},
            {"static to Auto IP", "5", "btnUseAutoIp", "false, false, 192.168.1.9, 255.255.255.0, 0.0.0.0, ",
             "AutoIP/LLA.", "4"},
            {"DHCP to Auto IP", "6", "btnUseAutoIp", "false, false, 0.0.0.0, 0.0.0.0, 0.0.0.0, ",
             "AutoIP/LLA.", "4"},
        });
    }
    void broadcastSendsEverythingInEveryMode()
    {
        QFETCH(const Mode, row);
        edit(row.before);
        choose(row.button);
        save();
        QCOMPARE(m_world.take().first(), QString("BroadcastIpConfig(025E41000001, %1)").arg(row.arguments));
        QCOMPARE(takeTrace().first(),
                 QString("info Trying broadcast ip config for MAC=025E41000001 setting ") + row.traced);
        QCOMPARE(sdk::get(cam().record, "IpConfigCurrent"), row.after);
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
                                          : nothing);
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
        type("editCustomName", "  belt ");
        save();
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
        type("editCustomName", "x");
        save();
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

    void broadcastFailuresAreShown_data()
    {
        gui::rows<Failure>({
            {"command", "BroadcastIpConfig", true},
            {"command, of no known kind", "BroadcastIpConfig", false},
            {"restart", "RestartIpConfig", true},
            {"restart, of no known kind", "RestartIpConfig", false},
        });
    }
    void broadcastFailuresAreShown()
    {
        QFETCH(const Failure, row);
        edit();
        type("editCustomName", "belt");
        failAt(row.call, 1, row.isStandard);
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        save(); // the unicast route then does it
        QCOMPARE(m_dialogs.take(),
                 QStringList{gui::report(row.isStandard ? "cable" : "Unknown exception occurred")});
        QVERIFY(m_world.take().contains("Close()"));
        QCOMPARE(this->row("km-1").text(1), "belt");
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
        choose("btnUseDhcp");
        for (const char* const mode : {"btnUsePersistentIp", "btnUseDhcp", "btnUseAutoIp"}) {
            child<QWidget>(mode).setEnabled(false); // checked, but disabled: not chosen
        }
        m_dialogs.expect(gui::click(QMessageBox::Close));
        save();
        QCOMPARE(m_world.take().last(), "GetNodeMap()");
        QCOMPARE(
            takeTrace().filter(QRegularExpression("^error")),
            (QStringList{
                "error Invalid addresstype for MAC=025E41000001! Don't know which addressing to use.",
                "error Invalid addresstype for old IP=192.168.1.9! Don't know which addressing to use."}));
        QCOMPARE(m_dialogs.take(), QStringList{notSaved});
    }

    void unicastWritesWhatWasEdited_data()
    {
        gui::rows<Edit>({
            {"name", "5", "editCustomName", "belt", {"GetNode(DeviceUserID)", "SetValue(belt, true)"}},
            {"to DHCP", "5", "btnUseDhcp", "", {"SetIpConfigMode(false, true)"}},
            {"to Auto IP", "6", "btnUseAutoIp", "", {"SetIpConfigMode(false, false)"}},
            {"address",
             "5",
             "editIpAddress",
             "192.168.1.20",
             {"SetPersistentIp(192.168.1.20, 255.255.255.0, 0.0.0.0)"}},
            {"mask",
             "5",
             "editNetmask",
             "255.255.0.0",
             {"SetPersistentIp(192.168.1.9, 255.255.0.0, 0.0.0.0)"}},
            {"gateway",
             "5",
             "editDefaultGateway",
             "192.168.001.001",
             {"SetPersistentIp(192.168.1.9, 255.255.255.0, 192.168.1.1)"}},
            {"no gateway",
             "5",
             "editDefaultGateway",
             "",
             {"SetPersistentIp(192.168.1.9, 255.255.255.0, 0.0.0.0)"}},
        });
    }
    void unicastWritesWhatWasEdited()
    {
        QFETCH(const Edit, row);
        edit(row.mode, false);
        if (QByteArray(row.field).startsWith("btn")) {
            choose(row.field);
        } else {
            type(row.field, row.typed);
        }
        save();
        const QStringList calls = m_world.take();
        QCOMPARE(calls.mid(calls.indexOf("GetNodeMap()") + 1),
                 (row.writes +
                  QStringList{"Close()", "RestartIpConfig(025E41000001)", "sleep(2)", "DestroyDevice()"}));
        QVERIFY(!canSave());
    }

    void unicastTellsEachStep()
    {
        edit("6", false);
        choose("btnUsePersistentIp");
        type("editIpAddress", "192.168.1.20");
        type("editCustomName", "belt");
        save();
        QStringList expected{
            "Trying open device with old IP=192.168.1.9 to change IP configuration via unicast.",
            "Successfully opened device with old IP=192.168.1.9; Netmask=255.255.255.0; Gateway=0.0.0.0; "
            "IPConfig='" +
                formatIPConfiguration("6", 0) + "' to change IP configuration via unicast.",
            "Setting DeviceUserID to 'belt' for device with old IP=192.168.1.9.",
            "Setting ip config for device with old IP=192.168.1.9 to static IP.",
            "Setting persitent IP address for device with old IP=192.168.1.9 (NewIP=192.168.1.20; "
            "NewNetmask=255.255.255.0; NewGateway=0.0.0.0;).",
            "Closing device with old IP=192.168.1.9.",
            "Finished configuring device with old IP=192.168.1.9.",
        };
        QCOMPARE(takeTrace().mid(2), expected.replaceInStrings(QRegularExpression("^"), "info "));
        QCOMPARE(m_world.take().filter("Set"),
                 (QStringList{"SetValue(belt, true)", "SetIpConfigMode(true, false)",
                              "SetPersistentIp(192.168.1.20, 255.255.255.0, 0.0.0.0)"}));
    }

    void unicastFailuresKeepTheEdits_data()
    {
        const QString fine = "192.168.1.20";
        const QString nameFailed = "Could not update DeviceUserID.";
        const QString nameTraced =
            "error Error setting DeviceUserID of device with old IP=192.168.1.9. Err='";
        const QString forbidden =
            "Invalid IP address. IP addresses 224.0.0.0 to 255.255.255.255 and 127.0.0.1 are not allowed.";
        const QString mode = "SetIpConfigMode(true, false)";
        using Self = SavingTest&;
        gui::rows<UnicastFailure>({
            {"no node map", [](Self test) { test.cam().hasNodeMap = false; }, fine, "GetNodeMap()"},
            {"no name", [](Self test) { test.cam().userId = sdk::UserIdNode::Missing; }, fine,
             "GetNode(DeviceUserID)", nameFailed, nameTraced},
            {"name is no text", [](Self test) { test.cam().userId = sdk::UserIdNode::OtherKind; }, fine,
             "GetNode(DeviceUserID)", nameFailed, nameTraced},
            {"name refused", [](Self test) { test.failAt("SetValue"); }, fine, "SetValue(belt, true)",
             nameFailed, nameTraced + "cable'"},
            {"mode refused", [](Self test) { test.failAt("SetIpConfigMode"); }, fine, mode, "cable"},
            {"loopback", [](Self) {}, "127.0.0.1", mode, forbidden,
             "error Invalid new IP address '127.0.0.1' for device with old IP=192.168.1.9!"},
            {"multicast", [](Self) {}, "224.0.0.1", mode, forbidden,
             "error Invalid new IP address '224.0.0.1' for device with old IP=192.168.1.9!"},
            {"address refused, of no known kind", [](Self test) { test.failAt("SetPersistentIp", 1, false); },
             fine, "SetPersistentIp(192.168.1.20, 255.255.255.0, 0.0.0.0)", "Unknown exception occurred"},
        });
    }
    void unicastFailuresKeepTheEdits()
    {
        QFETCH(const UnicastFailure, row);
        edit("6", false);
        row.breakIt(*this);
        choose("btnUsePersistentIp");
        type("editIpAddress", row.address);
        type("editCustomName", "belt");
        QStringList expected{notSaved};
        if (!row.shown.isEmpty()) {
            expected.prepend(gui::report(row.shown));
            m_dialogs.expect(gui::press(Qt::Key_Escape));
        }
        m_dialogs.expect(gui::click(QMessageBox::Close));
        save();
        QCOMPARE(m_dialogs.take(), expected);
        QCOMPARE(m_world.take().last(), row.lastCall); // neither closed nor restarted
        const QStringList errors = takeTrace().filter(QRegularExpression("^error"));
        QCOMPARE(errors.size(), row.traced.isEmpty() ? 0 : 1);
        QCOMPARE(errors.join("").left(row.traced.size()), row.traced);
        QCOMPARE(errors.join("").contains("NULL pointer dereferenced"), row.lastCall.startsWith("GetNode(D"));
        QCOMPARE(text("editIpAddress") + ' ' + text("editCustomName"), row.address + " belt");
        QVERIFY(canSave());
        m_dialogs.expect(gui::click(QMessageBox::No));
        select("lan0"); // only now is the camera let go
        QCOMPARE(m_world.take(), QStringList{"Close()"});
    }

    void aCameraThatCannotBeClosedIsStillRestarted()
    {
        edit("5", false);
        type("editCustomName", "belt");
        m_world.at["Close"] = [] { throw GenICam::RuntimeException("stuck", "device.cpp", 7); };
        save();
        QCOMPARE(takeDebug().filter("warning"),
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
