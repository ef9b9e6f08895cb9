#include "support/gui.h"

#include "qtbase/ipaddresswidget.h"

#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

using sdk::camera;

/// What the editor offers, proposes, corrects and accepts while one camera is edited.
class EditorTest : public gui::GuiTest
{
    Q_OBJECT

    /// Edits one camera in that mode, in bits as the record gives it.
    void edit(const char* mode = "5", const char* interface = "192.168.1.5")
    {
        openOn({sdk::with(camera("km-1", "025E41000001", "192.168.1.9", interface),
                          {{"IpConfigCurrent", mode}})});
    }
    bool isSaveDefault() { return child<QPushButton>("btnWriteConfiguration").isDefault(); }
    void key(const char* name, Qt::Key key) { QTest::keyClick(&child<QLineEdit>(name), key); }
    /// Address, mask and gateway in the editor.
    QString addresses()
    {
        return text("editIpAddress") + ' ' + text("editNetmask") + ' ' + text("editDefaultGateway");
    }
    QString sent() { return m_world.take().value(0); }

private slots:
    void theEditorFollowsTheCamera()
    {
        for (const auto& [accessibility, mode, chosen, enabled] :
             gui::Table<int, const char*, const char*, int>{
                 {1, "7", "btnUsePersistentIp", 11}, // static before DHCP
                 {1, "6", "btnUseDhcp", 5},          // all but the addresses
                 {1, "4", "btnUseAutoIp", 5},
                 {4, "5", "btnUsePersistentIp", 11},
                 {0, "5", "btnUsePersistentIp", 0},
                 {2, "6", "btnUseDhcp", 0},
                 {3, "4", "btnUseAutoIp", 0},
             }) {
            sdk::Camera made = sdk::with(camera(), {{"IpConfigCurrent", mode}});
            made.accessibility = accessibility;
            openOn({made});
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
            QVERIFY(child<QRadioButton>("btnUseAutoIp").isChecked() &&
                    !child<QRadioButton>("btnUseAutoIp").isEnabled());
            QCOMPARE(addresses(), "  ");
        }
    }

    void savingNeedsAValidChange()
    {
        edit();
        QVERIFY(!canSave() && !isSaveDefault());
        for (const auto& [field, typed, isValid] : gui::Table<const char*, const char*, bool>{
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
             }) {
            if (QString(field).startsWith("btn")) {
                clickOn(field);
            } else {
                type(field, typed);
            }
            QCOMPARE(canSave() && isSaveDefault(), isValid);
            QCOMPARE(canSave() || isSaveDefault(), isValid);
        }
        expect({gui::click(QMessageBox::No)});
        select("lan0");
        QVERIFY(!canSave() && !isSaveDefault());
    }

    void staticModeProposesTheNetwork()
    {
        const gui::Adapter lan2("lan2", {"172.31.0.1/16"}, "02:00:00:00:00:02");
        const gui::Adapter lan3("lan3", {"11.0.0.1/8"}, "02:00:00:00:00:03");
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

    void aTypedAddressBringsItsMask()
    {
        edit("6", "9.9.9.9");
        clickOn("btnUsePersistentIp");
        for (const auto& [typed, expected] :
             {std::pair{"10.0.", "10.0.  "},
              {"10.0.0.77", "10.0.0.77 255.255.0.0 "},          // as on the adapter
              {"192.168.1.77", "192.168.1.77 255.255.0.0 "}}) { // filled already
            enter("editIpAddress", typed);
            QCOMPARE(addresses(), expected);
        }
        QVERIFY(canSave());
        type("editNetmask", "");
        enter("editIpAddress", "192.168.1.78");
        QCOMPARE(addresses(), "192.168.1.78  "); // the user wants it empty
    }

    void theMaskIsThatOfTheSmallestHostSubnet()
    {
        const gui::Adapter lan2("lan2", {"10.0.48.1/20", "10.0.60.7/32"}, "02:00:00:00:00:02");
        const auto maskOf = [](const char* address) {
            return IpAddressWidget::subnetFromAddress(QHostAddress(QString(address))).toString();
        };
        QCOMPARE(maskOf("10.0.63.9"), "255.255.240.0");
        QCOMPARE(maskOf("10.0.60.7"), "255.255.240.0"); // an adapter's own /32 is no subnet for a camera
        QCOMPARE(maskOf("10.0.64.9"), "255.255.0.0");
        QCOMPARE(maskOf("10.1.0.9"), "255.0.0.0"); // of no adapter
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
        save();
        QCOMPARE(sent(),
                 "BroadcastIpConfig(025E41000001, true, false, 192.168.1.9, 255.255.255.0, 0.0.0.0, )");
    }

    void theMaskIsNormalised()
    {
        edit();
        for (const auto& [typed, kept] : {std::pair{"24", "255.255.255.0"}, {"255.0.255.0", "255.0.255.0"}}) {
            enter("editNetmask", typed);
            QCOMPARE(text("editNetmask"), kept);
            QCOMPARE(canSave() && isSaveDefault(), typed == QString("24"));
        }
        type("editNetmask", "20");
        key("editNetmask", Qt::Key_Return);
        QVERIFY(sent().contains("192.168.1.9, 255.255.240.0"));
    }

    void theNameHasSixteenBytes()
    {
        edit();
        for (const QString typed : {"0123456789abcdefg", "äääääääää", "0123456789abcdeäf", "<b>&amp;"}) {
            QString kept; // a letter that does not fit is refused, a later one that does is taken
            for (const QChar letter : typed) {
                kept += (kept + letter).toUtf8().size() <= 16 ? QString(letter) : QString();
            }
            type("editCustomName", typed);
            QCOMPARE(text("editCustomName"), kept);
            save();
            QVERIFY(sent().endsWith(", " + kept + ')'));
            QCOMPARE(row("km-1").text(1), kept);
        }
    }

    void enterSavesANewName()
    {
        edit();
        key("editCustomName", Qt::Key_Return);
        QCOMPARE(sent(), QString()); // nothing to save yet
        enter("editCustomName", "belt");
        QVERIFY(canSave());
        type("editCustomName", "");
        QVERIFY(canSave()); // the old name is no change, but the user may still be typing
        key("editCustomName", Qt::Key_Tab);
        QVERIFY(!canSave());
        type("editCustomName", "belt");
        key("editCustomName", Qt::Key_Return);
        QVERIFY(sent().endsWith(", belt)"));
    }

    void whatIsTypedIsPutRight()
    {
        edit();
        type("editIpAddress", "192.168.001.020");
        type("editDefaultGateway", "");
        type("editCustomName", "  left ");
        save();
        QCOMPARE(sent(),
                 "BroadcastIpConfig(025E41000001, true, false, 192.168.1.20, 255.255.255.0, 0.0.0.0, left)");
    }
};

WINDOW_TEST_MAIN(EditorTest)
#include "tst_editor.moc"
