#include "support/gui.h"

using namespace gui;
using sdk::camera;

namespace {

using Step = std::function<void()>;

QList<QEventLoop::ProcessEventsFlags> processedInWaits; // at each call

} // namespace

/// Takes the place of Qt's, to note which events the program lets through under its wait cursor.
void QCoreApplication::processEvents(QEventLoop::ProcessEventsFlags flags)
{
    if (cursorDepth() > 0) {
        processedInWaits << flags;
    }
    QEventLoop().processEvents(flags);
}

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

private slots:
    void broadcastWritesRestartsAndWaits()
    {
        edit("5", true, " bält ");
        type("editIpAddress", "192.168.001.020");
        type("editDefaultGateway", "192.168.001.001");
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
        QCOMPARE(row("km-1").text(1), "bält");
        QVERIFY(row("km-1").isSelected() && !tree().hasFocus());
        type("editCustomName", "gate");
        auto& button = child<QPushButton>("btnWriteConfiguration");
        button.setFocus();
        QTest::mouseClick(&button, Qt::LeftButton);
        QVERIFY(!button.isEnabled() && tree().hasFocus()); // which moves on from a button that is greyed
        QCOMPARE(takeDebug().filter("unicast"), QStringList());
    }

    void aCameraThatReportsOtherValuesCausesAWarning_data()
    {
        // The way of leaving, if it is not saved by the button.
        const auto row = addColumns<QString, bool>("way", "knowsBroadcast");
        row("saved by the button", "", true);
        row("saved by the button, over unicast", "", false);
        row("saved before a refresh", "refresh", true);
        row("saved when the row is left", "another row", true);
        row("saved when the window is closed", "close", true);
    }
    void aCameraThatReportsOtherValuesCausesAWarning()
    {
        QFETCH(const QString, way);
        QFETCH(const bool, knowsBroadcast);
        edit("6", knowsBroadcast);
        m_world.at["RestartIpConfig"] = [this] {
            cam() = sdk::with(camera(), {{"IpConfigCurrent", "6"}}); // as before
        };
        clickOn("btnUsePersistentIp");
        type("editIpAddress", "192.168.1.20");
        type("editNetmask", "255.255.0.0");
        type("editDefaultGateway", "192.168.1.1");
        const QString warning = "|The camera 02:5E:41:00:00:01 does not report what was saved.\n\n"
                                "IP configuration: Static IP was saved; the camera reports DHCP.\n"
                                "IP address: 192.168.1.20 was saved; the camera reports 192.168.1.9.\n"
                                "Subnet mask: 255.255.0.0 was saved; the camera reports 255.255.255.0.\n"
                                "Default gateway: 192.168.1.1 was saved; the camera reports 0.0.0.0.\n"
                                "Device user ID: belt was saved; the camera reports nothing.|OK|";
        if (!way.isEmpty()) {
            expect({click(QMessageBox::Yes), escape});
            leave(way);
            QCOMPARE(takeDialogs().mid(1), QStringList{warning}); // the first is the question
            return;
        }
        qsizetype searches = 0; // until the warning comes
        const auto countSearches = [&](QWidget& box) {
            searches = m_world.take(true).filter("EnumerateDevicesAnySubnet").size();
            escape(box);
        };
        QCOMPARE(save({countSearches}), QStringList{warning});
        QCOMPARE(searches, 2); // the wait's and the refresh's
    }

    void afterAFailedBroadcastUnicastIsTried_data()
    {
        const auto row = addColumns<Step, QStringList, QStringList>("breakIt", "dialogs", "calls");
        const QString broadcast = "broadcastConfiguration";
        const QString failed = reportUnexpected(broadcast, "cable");
        row("the command fails", [this] { failAt("BroadcastIpConfig"); }, {failed},
            {"Open(192.168.1.9, 1+3+4)", "SetValue(belt, true)",
             "SetPersistentIp(192.168.1.20, 255.255.255.0, 0.0.0.0)", "sleep(2)"});
        // The camera took the command, so from here on it is sought at its new address.
        row("the restart fails", [this] { failAt("RestartIpConfig"); }, {failed},
            {"Open(192.168.1.20, 1+3+4)", "sleep(2)"});
        row("the wait fails", [this] { failAt("EnumerateDevicesAnySubnet"); },
            {reportUnexpected("waitForDevice", "cable") + "|wait cursor 2",
             reportOwn("Failed to discover reconfigured device", broadcast)},
            {"sleep(2)", "Open(192.168.1.20, 1+3+4)", "sleep(2)"});
        row("only the refresh fails", [this] { failAt("EnumerateDevicesAnySubnet", 2); },
            {reportUnexpected("on_btnWriteConfiguration_clicked", "cable")}, {"sleep(2)"});
    }
    void afterAFailedBroadcastUnicastIsTried()
    {
        QFETCH(const Step, breakIt);
        QFETCH(const QStringList, dialogs);
        QFETCH(const QStringList, calls);
        edit();
        type("editIpAddress", "192.168.1.20");
        breakIt();
        saveFails(dialogs);
        QCOMPARE(m_world.take().filter(QRegularExpression("^(Open|Set|sleep)")), calls);
        QCOMPARE(takeTrace().contains("warning Failed to rediscover the device with MAC=025E41000001."),
                 dialogs.size() == 2); // the wait
        QCOMPARE(sdk::get(cam().record, {"UserDefinedName"}), "belt");
    }

    void unicastTellsEachStep()
    {
        edit("6", false, " bält ");
        clickOn("btnUsePersistentIp");
        type("editIpAddress", "192.168.1.20");
        type("editNetmask", "255.255.0.0");
        QStringList seen;
        for (const char* const call : {"BroadcastIpConfig", "Open", "SetValue", "RestartIpConfig", "sleep",
                                       "EnumerateDevicesAnySubnet"}) {
            m_world.at[call] = [&, call] {
                seen << QString("%1, wait cursors: %2 ").arg(call).arg(cursorDepth()) + paintedMessage();
            };
        }
        processedInWaits.clear();
        save();
        const QString restart =
            "Camera restarts its IP configuration cycle.\nWaiting until the device has been discovered again...\n\n0 of at most 75 s";
        QCOMPARE(seen, (QStringList{"BroadcastIpConfig, wait cursors: 1 ",
                                    "Open, wait cursors: 1 Trying to establish a connection to the device...",
                                    "SetValue, wait cursors: 1 ", "RestartIpConfig, wait cursors: 1 ",
                                    "sleep, wait cursors: 2 " + restart,
                                    "EnumerateDevicesAnySubnet, wait cursors: 2 " + restart,
                                    "EnumerateDevicesAnySubnet, wait cursors: 1 "}));
        const QEventLoop::ProcessEventsFlags withoutInput = QEventLoop::ExcludeUserInputEvents;
        QCOMPARE(processedInWaits, (QList{withoutInput, withoutInput})); // for the camera, and the search
        QCOMPARE(m_world.take(),
                 (QStringList{
                     "BroadcastIpConfig(025E41000001, true, false, 192.168.1.20, 255.255.0.0, 0.0.0.0, bält)",
                     "CreateDeviceInfo()", "CreateDevice(192.168.1.9)", "Open(192.168.1.9, 1+3+4)",
                     "GetNodeMap()", "GetNode(DeviceUserID)", "SetValue( bält , true)",
                     "SetIpConfigMode(true, false)", "SetPersistentIp(192.168.1.20, 255.255.0.0, 0.0.0.0)",
                     "Close()", "RestartIpConfig(025E41000001)", "sleep(2)", "DestroyDevice()"}));
        const QStringList told{
            "warning Failed to change IP configuration via broadcast for MAC=025E41000001. This is not an error. The device may not support broadcast ip configuration.",
            "debug Broadcast Configuration failed! Trying unicast configuration.",
            "info Trying open device with old IP=192.168.1.9 to change IP configuration via unicast.",
            "info Successfully opened device with old IP=192.168.1.9; Netmask=255.255.255.0; Gateway=0.0.0.0; IPConfig='DHCP, Auto IP (LLA)' to change IP configuration via unicast.",
            "info Setting DeviceUserID to ' bält ' for device with old IP=192.168.1.9.",
            "info Setting ip config for device with old IP=192.168.1.9 to static IP.",
            "info Setting persitent IP address for device with old IP=192.168.1.9 (NewIP=192.168.1.20; NewNetmask=255.255.0.0; NewGateway=0.0.0.0;).",
            "info Closing device with old IP=192.168.1.9.",
            "info Finished configuring device with old IP=192.168.1.9."};
        QCOMPARE(takeTrace(QString()).filter(QRegularExpression("^(info|debug)|not an error")).mid(1), told);
        QVERIFY(!canSave());
    }

    void aModeIsSentByBroadcastAndByUnicast_data()
    {
        // Calls, and trace lines of the mode.
        const auto row = addColumns<Step, QStringList>("change", "told");
        const QString send = "BroadcastIpConfig(025E41000001, ";
        const QString trying = "info Trying broadcast ip config for MAC=025E41000001 setting ";
        const QString setting = "info Setting ip config for device with old IP=192.168.1.9 to ";
        row("DHCP to Auto IP", [this] { clickOn("btnUseAutoIp"); },
            {send + "false, false, 0.0.0.0, 0.0.0.0, 0.0.0.0, )", "SetIpConfigMode(false, false)",
             trying + "AutoIP/LLA.", setting + "AutoIP/LLA"});
        const Step undecided = [this] {
            clickOn("btnUsePersistentIp"); // which proposes a network
            clickOn("btnUseDhcp");
        };
        row("DHCP to static and back", undecided,
            {send + "false, true, 192.168.1., 255.255.255.0, 0.0.0.0, )", "SetIpConfigMode(false, true)",
             trying + "DHCP.", setting + "DHCP."});
    }
    void aModeIsSentByBroadcastAndByUnicast()
    {
        QFETCH(const Step, change);
        QFETCH(const QStringList, told);
        edit("6", false, "");
        change();
        m_world.at["sleep"] = [this] { cam().record.SetPropertyValue("MacAddress", "025e41000001"); };
        takeTrace();
        save();
        QCOMPARE(m_world.take().filter(QRegularExpression("^(Broadcast|Set)")) +
                     takeTrace().filter(QRegularExpression("setting (DHCP|Auto)|Setting ip config")),
                 told);
        QVERIFY(!canSave());
    }

    void unicastFailuresKeepTheEdits_data()
    {
        const auto row =
            addColumns<Step, QString, QStringList, QStringList>("breakIt", "lastCall", "dialogs", "errors");
        const QString unicast = "unicastConfiguration";
        const QString nameError = "Could not update DeviceUserID.";
        row("name", [this] { failAt("SetValue"); }, "SetValue(belt, true)",
            {report(nameError, unicast, {nameError, "cable"})},
            {"error Error setting DeviceUserID of device with old IP=192.168.1.9. Err='cable'"});
        row("addresses", [this] { failAt("SetPersistentIp", 1, false); },
            "SetPersistentIp(192.168.1.20, 255.255.255.0, 0.0.0.0)",
            {report("Unknown exception occurred", unicast)}, {});
        const QString refused =
            "Invalid IP address. IP addresses 224.0.0.0 to 255.255.255.255 and 127.0.0.1 are not allowed.";
        row("address that no camera can have", [this] { type("editIpAddress", "224.0.0.1"); },
            "SetIpConfigMode(true, false)", {reportOwn(refused, unicast)},
            {"error Invalid new IP address '224.0.0.1' for device with old IP=192.168.1.9!"});
        const QString noMode = "error Invalid addresstype for %1! Don't know which addressing to use.";
        // The checked one is off.
        row("no mode is chosen", [this] { child<QWidget>("btnUsePersistentIp").setEnabled(false); },
            "SetValue(belt, true)", {}, {noMode.arg("MAC=025E41000001"), noMode.arg("old IP=192.168.1.9")});
    }
    void unicastFailuresKeepTheEdits()
    {
        QFETCH(const Step, breakIt);
        QFETCH(const QStringList, dialogs);
        QFETCH(const QStringList, errors);
        edit("6", false);
        clickOn("btnUsePersistentIp");
        type("editIpAddress", "192.168.1.20");
        breakIt();
        const QString address = text("editIpAddress");
        saveFails(dialogs + QStringList{notSaved});
        QTEST(m_world.take().last(), "lastCall");
        QCOMPARE(takeTrace().filter(QRegularExpression("^error")), errors);
        QCOMPARE(text("editIpAddress"), address);
        QCOMPARE(text("editCustomName"), "belt");
        QVERIFY(canSave());
        expect({escape});
        failAt("Close", 1, false);
        select("lan0"); // only now is the camera let go
        QCOMPARE(m_world.take(), QStringList{"Close()"});
        QVERIFY(takeDebug().contains("warning closeDevice: Unspecified exception occurred."));
    }

    void aRestartThatFailsOverUnicastIsReported()
    {
        edit("5", false, "");
        type("editIpAddress", "192.168.1.20");
        failAt("RestartIpConfig");
        saveFails({reportUnexpected("unicastConfiguration", "cable"), notSaved});
        QCOMPARE(m_world.take().last(2), (QStringList{"Close()", "RestartIpConfig(025E41000001)"}));
        QCOMPARE(takeIcons(), (QList{QMessageBox::Critical, QMessageBox::Critical}));
        select("lan0"); // asks nothing, since the address was written
    }

    void aCameraThatStaysAwayIsShownAsItWasWritten()
    {
        edit("1", false);
        type("editIpAddress", "192.168.1.20");
        clickOn("btnUseAutoIp");
        cam().comesBack = false;
        failAt("Close");
        expect({click(QMessageBox::Yes), escape, escape});
        select("lan0");
        const QString lost = reportOwn("Failed to discover reconfigured device", "unicastConfiguration");
        QCOMPARE(takeDialogs().mid(1), (QStringList{lost, notSaved}));
        QCOMPARE(row("km-1").text(5) + ' ' + row("km-1").text(6), "Unknown 192.168.1.20");
        QCOMPARE(takeTrace(QString()).filter(QRegularExpression("^warning (Failed to (cl|re)|close)")),
                 (QStringList{
                     "warning Failed to close device", "warning closeDevice :  Exception occurred:\n cable",
                     "warning Failed to rediscover the configured device with old IP=192.168.1.9."}));
        QCOMPARE(m_world.take().filter(QRegularExpression("^(Restart|sleep)")),
                 QStringList{"RestartIpConfig(025E41000001)"} + QStringList(30, "sleep(2)"));
    }
};

WINDOW_TEST_MAIN(SavingTest)
#include "tst_saving.moc"
