#include "qtbase/advicesign.h"
#include "support/gui.h"

#include <QKeyEvent>
#include <QRadioButton>

using namespace gui;
using sdk::camera;

/// What the editor offers, proposes, corrects and accepts while one camera is edited.
class EditorTest : public GuiTest
{
    Q_OBJECT

    /// Edits one camera in that mode, in bits as the record gives it.
    void edit(const char* mode = "5", const char* interface = "192.168.1.5", int accessibility = 1)
    {
        sdk::Camera made =
            sdk::with(camera("km-1", "025E41000001", "192.168.1.9", interface), {{"IpConfigCurrent", mode}});
        made.accessibility = accessibility;
        openOn({made});
    }
    bool isSaveDefault() { return child<QPushButton>("btnWriteConfiguration").isDefault(); }
    void key(const char* name, Qt::Key key) { QTest::keyClick(&child<QLineEdit>(name), key); }
    /// Address, mask and gateway in the editor.
    QString addresses()
    {
        return text("editIpAddress") + ' ' + text("editNetmask") + ' ' + text("editDefaultGateway");
    }

private slots:
    void theEditorFollowsTheCamera()
    {
        for (const auto& [accessibility, mode, chosen, enabled] :
             Table<int, const char*, const char*, int>{{1, "7", "btnUsePersistentIp", 11}, // before DHCP
                                                       {1, "6", "btnUseDhcp", 5}, // all but the addresses
                                                       {1, "4", "btnUseAutoIp", 5},
                                                       {4, "5", "btnUsePersistentIp", 11},
                                                       {0, "5", "btnUsePersistentIp", 0},
                                                       {2, "6", "btnUseDhcp", 0},
                                                       {3, "4", "btnUseAutoIp", 0}}) {
            edit(mode, "192.168.1.5", accessibility);
            QString states;
            for (const char* const name :
                 {"btnUsePersistentIp", "btnUseDhcp", "btnUseAutoIp", "labelCustomName", "editCustomName",
                  "labelIpAddress", "editIpAddress", "labelNetmask", "editNetmask", "labelDefaultGateway",
                  "editDefaultGateway"}) {
                states += child<QWidget>(name).isEnabled() ? '1' : '0';
            }
            QCOMPARE(states, QString(enabled, '1').leftJustified(11, '0'));
            QVERIFY(child<QRadioButton>(chosen).isChecked() && !canSave());
            QCOMPARE(addresses(),
                     QString(chosen).contains("Persistent") ? "192.168.1.9 255.255.255.0 0.0.0.0" : "  ");
            select("lan0");
            const auto& autoIp = child<QRadioButton>("btnUseAutoIp");
            QVERIFY(autoIp.isChecked() && !autoIp.isEnabled() && addresses() == "  ");
        }
    }

    void savingNeedsAValidChange()
    {
        edit();
        QVERIFY(!canSave() && !isSaveDefault());
        for (const auto& [field, typed, isValid] : Table<QByteArray, QString, bool>{
                 // a tab leaves the field
                 {"editCustomName", "belt\t", true},
                 {"editCustomName", "", true}, // the old name is no change, but the user may still be typing
                 {"editCustomName", "\t", false},
                 {"editIpAddress", "192.168.1x", false}, // the letter is refused
                 {"editIpAddress", "192.168.1.20", true},
                 {"editDefaultGateway", "192.168.1.", false},
                 {"btnUseDhcp", "", true}, // what the address fields hold no longer matters
                 {"btnUsePersistentIp", "", false},
                 {"editDefaultGateway", "", true},
                 {"editIpAddress", "192.168.1.255", false}, // the broadcast address of its network
                 {"editNetmask", "255.255.0.0", true},
                 {"editDefaultGateway", "192.168.255.255", false},
                 {"editDefaultGateway", "192.168.255.1", true},
                 {"editNetmask", "255.0.255.0\t", false},
                 {"editNetmask", "16\t", true}}) {
            if (field.startsWith("btn")) {
                clickOn(field);
            } else if (typed.endsWith('\t')) {
                enter(field, typed.chopped(1));
            } else {
                type(field, typed);
            }
            QCOMPARE(canSave(), isValid);
            QCOMPARE(isSaveDefault(), isValid);
        }
        expect({escape});
        select("lan0");
        QVERIFY(!canSave() && !isSaveDefault());
    }

    void staticModeProposesTheNetwork()
    {
        const Adapter lan2("lan2", {"172.31.0.1/16"}, "02:00:00:00:00:02");
        const Adapter lan3("lan3", {"11.0.0.1/8"}, "02:00:00:00:00:03");
        for (const auto& [interface, proposal] :
             {std::pair{"192.168.1.5", "192.168.1. 255.255.255.0 "},
              {"172.31.0.1", "172.31. 255.255.0.0 "},
              {"11.0.0.1", "11. 255.0.0.0 "},
              {"10.0.0.1", "172.16. 255.255.240.0 "}, // its adapter's first
              {"9.9.9.9", "  "}}) {
            edit("6", interface);
            clickOn("btnUsePersistentIp");
            QCOMPARE(addresses(), proposal);
            QVERIFY(!canSave());
            type("editNetmask", "");
            type("editIpAddress", "10.");
            clickOn("btnUseDhcp");
            clickOn("btnUsePersistentIp"); // nothing is proposed over what is there
            QCOMPARE(addresses(), "10.  ");
        }
    }

    void aTypedAddressBringsTheMaskOfTheSmallestHostSubnet()
    {
        const Adapter lan2("lan2", {"10.0.48.1/20", "10.0.60.7/32"}, "02:00:00:00:00:02");
        for (const auto& [typed, mask] :
             {std::pair{"10.0.", " "},
              {"10.0.63.9", " 255.255.240.0"},
              {"10.0.60.7", " 255.255.240.0"}, // an adapter's own /32 is no subnet for a camera
              {"10.0.64.9", " 255.255.0.0"},
              {"10.1.0.9", " 255.0.0.0"}}) { // of no adapter
            edit("6", "9.9.9.9");
            clickOn("btnUsePersistentIp");
            enter("editIpAddress", typed);
            QCOMPARE(addresses(), QString(typed) + mask + ' ');
        }
        enter("editIpAddress", "192.168.1.77");
        QCOMPARE(addresses(), "192.168.1.77 255.0.0.0 "); // filled already
        QVERIFY(canSave());
        type("editNetmask", "");
        enter("editIpAddress", "192.168.1.78");
        QCOMPARE(addresses(), "192.168.1.78  "); // the user wants it empty
    }

    void anEmptyGatewayCountsAsAChange()
    {
        edit();
        key("editIpAddress", Qt::Key_Return);
        QVERIFY(!canSave());
        cam().record.SetDefaultGateway("");
        refresh();
        key("editIpAddress", Qt::Key_Return);
        QVERIFY(canSave() && !isSaveDefault());
    }

    void theNameHasSixteenBytes()
    {
        edit();
        for (const auto& [typed, kept] : {std::pair{"0123456789abcdefg", "0123456789abcdef"},
                                          {"äääääääää", "ääääääää"},
                                          {"0123456789abcdeäf", "0123456789abcdef"}}) { // takes what fits
            type("editCustomName", typed);
            QCOMPARE(text("editCustomName"), kept);
        }
        type("editCustomName", "");
        child<QLineEdit>("editCustomName").insert("0123456789abcdefg"); // as pasting does
        QCOMPARE(text("editCustomName"), "0123456789abcdef");
    }

    void theEditorTellsWhatIsTheMatter_data()
    {
        QTest::addColumn<int>("accessibility");
        QTest::addColumn<QString>("typed"); // as IP address, if anything
        QTest::addColumn<QByteArray>("clicked");
        QTest::addColumn<QString>("atTheField"); // the sentence begins so
        QTest::addColumn<QString>("atSave");
        QTest::addColumn<bool>("isSaveEnabled");
        using namespace Tessal::Accessibility;
        const QString own = "192.168.1.5 is this computer's own address on lan0.";
        const QString half = "The IP address is incomplete:";
        const QString leftOver = "The IP address typed before is written as well";
        const QByteArray dhcp = "btnUseDhcp";
        const auto row = [](const char* name, int accessibility, const QString& typed,
                            const QByteArray& clicked, const QString& atTheField, const QString& atSave,
                            bool isSaveEnabled) {
            QTest::newRow(name) << accessibility << typed << clicked << atTheField << atSave << isSaveEnabled;
        };
        row("unchanged", Ok, "", "", "", "Nothing has been changed.", false);
        row("in use", Controlled, "", "", "", "Another application is using the camera.", false);
        row("unknown", Unknown, "", "", "", "It is not known whether", false);
        row("good", Ok, "192.168.1.6", "", "", "", true);
        row("half", Ok, "192.168.1.", "", half, half, false);
        row("of no use", NotReachable, "192.168.1.5", "", own, own, true);
        row("half, then DHCP", Ok, "192.168.1.", dhcp, leftOver, leftOver, true);
        row("good, then DHCP", Ok, "192.168.1.6", dhcp, "", "", true);
        row("DHCP only", Ok, "", dhcp, "", "", true);
    }

    void theEditorTellsWhatIsTheMatter()
    {
        QFETCH(const int, accessibility);
        QFETCH(const QString, typed);
        QFETCH(const QByteArray, clicked);
        QFETCH(const QString, atTheField);
        QFETCH(const QString, atSave);
        edit("5", "192.168.1.5", accessibility);
        if (!typed.isEmpty()) {
            type("editIpAddress", typed);
        }
        if (!clicked.isEmpty()) {
            clickOn(clicked);
        }
        QTEST(canSave(), "isSaveEnabled");
        for (const auto& [name, expected] :
             {std::pair{"editIpAddress", atTheField}, {"btnWriteConfiguration", atSave}}) {
            const auto& told = child<QWidget>(name);
            QCOMPARE(told.accessibleDescription().first(expected.size()), expected);
            QCOMPARE(told.accessibleDescription().isEmpty(), expected.isEmpty());
            QCOMPARE(told.toolTip(), toolTipText(told.accessibleDescription()));
        }
        const auto& sign = child<QLabel>("editIpAddressAdvice");
        QCOMPARE(sign.toolTip(), child<QWidget>("editIpAddress").toolTip());
        QCOMPARE(sign.pixmap(Qt::ReturnByValue).isNull(), atTheField.isEmpty());
        QVERIFY(!sign.visibleRegion().isEmpty());
        if (canSave()) {
            expect({escape}); // the question
        }
        select("lan0");
        QCOMPARE(child<QWidget>("editIpAddress").accessibleDescription(), QString());
        QCOMPARE(child<QWidget>("btnWriteConfiguration").accessibleDescription(), "No camera is selected.");
    }

    void aMaskLengthFillsTheMask()
    {
        edit();
        type("editIpAddress", "192.168.1.77/20");
        QCOMPARE(addresses(), "192.168.1.77 255.255.240.0 0.0.0.0");
        type("editDefaultGateway", "192.168.1.1/9");
        QCOMPARE(addresses(), "192.168.1.77 255.128.0.0 192.168.1.1");
        save();
        QCOMPARE(m_world.take().first(),
                 "BroadcastIpConfig(025E41000001, true, false, 192.168.1.77, 255.128.0.0, 192.168.1.1, )");
    }

    void escapeTakesTheEditsBack()
    {
        edit();
        type("editCustomName", "belt");
        type("editNetmask", "255.");
        clickOn("btnUseDhcp");
        tree().setFocus();
        QTest::keyClick(&tree(), Qt::Key_Escape); // is not about the editor
        child<QLineEdit>("editCustomName").setFocus();
        QTest::simulateEvent(&child<QLineEdit>("editCustomName"), true, Qt::Key_Escape, {}, "", true);
        QCOMPARE(text("editCustomName") + ' ' + text("editNetmask"), "belt 255.");
        QVERIFY(canSave());
        key("editCustomName", Qt::Key_Escape);
        QCOMPARE(text("editCustomName") + ' ' + addresses(), " 192.168.1.9 255.255.255.0 0.0.0.0");
        QVERIFY(child<QRadioButton>("btnUsePersistentIp").isChecked() && !canSave() && !isSaveDefault());
        select("lan0"); // nothing to ask
    }

    void enterSaves()
    {
        edit();
        key("editCustomName", Qt::Key_Return);
        QCOMPARE(m_world.take(), QStringList()); // nothing to save yet
        type("editCustomName", "belt");
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r", true);
        QApplication::sendEvent(&child<QLineEdit>("editCustomName"), &held);
        QCOMPARE(m_world.take(), QStringList()); // the key may have been pressed for a message before
        type("editNetmask", "20");
        key("editNetmask", Qt::Key_Return);
        QCOMPARE(m_world.take().first(),
                 "BroadcastIpConfig(025E41000001, true, false, 192.168.1.9, 255.255.240.0, 0.0.0.0, belt)");
    }
};

WINDOW_TEST_MAIN(EditorTest)
#include "tst_editor.moc"
