#include "support/gui.h"

#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

using sdk::camera;
using sdk::with;

/// What the editor offers, proposes, corrects and accepts while one camera is edited.
class EditorTest : public gui::GuiTest
{
    Q_OBJECT

    /// Edits one camera in that mode, in bits as the record gives it.
    void edit(const char* mode, const char* interface = "192.168.1.5")
    {
        openOnCamera(
            with(camera("km-1", "025E41000001", "192.168.1.9", interface), {{"IpConfigCurrent", mode}}));
    }
    void change(const char* key, const char* value)
    {
        sdk::set(cam(), key, value);
        press(QKeySequence("F5"));
    }
    QStringList enabled()
    {
        QStringList names;
        for (const char* const name : {"btnUsePersistentIp", "btnUseDhcp", "btnUseAutoIp", "editCustomName",
                                       "editIpAddress", "editNetmask", "editDefaultGateway"}) {
            names += child<QWidget>(name).isEnabled() ? QStringList{name} : QStringList{};
        }
        return names;
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
    void enablingFollowsAccessibility()
    {
        struct Case
        {
            int accessibility;
            const char* mode;
            int expected; // enabled fields
        };
        for (const auto& [accessibility, mode, expected] : {Case{1, "5", 7},
                                                            {1, "6", 4},
                                                            {1, "4", 4},
                                                            {4, "5", 7},
                                                            {0, "5", 0},
                                                            {2, "5", 0},
                                                            {3, "5", 0}}) {
            sdk::Camera made = with(camera(), {{"IpConfigCurrent", mode}});
            made.accessibility = accessibility;
            openOnCamera(made);
            QCOMPARE(enabled().size(), expected);
            QCOMPARE(enabled().filter("edit").size(), expected == 7 ? 4 : expected == 4 ? 1 : 0);
            QVERIFY(!canSave());
            select("lan0");
            QCOMPARE(enabled(), QStringList());
            QVERIFY(child<QRadioButton>("btnUseAutoIp").isChecked());
            QCOMPARE(addresses(), "  ");
        }
    }

    void theEditorShowsTheCamera()
    {
        edit("7");
        QVERIFY(child<QRadioButton>("btnUsePersistentIp").isChecked()); // static before DHCP
        QCOMPARE(addresses(), "192.168.1.9 255.255.255.0 0.0.0.0");
        change("IpConfigCurrent", "6");
        QVERIFY(child<QRadioButton>("btnUseDhcp").isChecked());
        QCOMPARE(addresses(), "  ");
        change("IpConfigCurrent", "4");
        QVERIFY(child<QRadioButton>("btnUseAutoIp").isChecked());
    }

    void savingNeedsAValidChange()
    {
        edit("5");
        QVERIFY(!canSave() && !isSaveDefault());
        type("editIpAddress", "192.168.1x"); // the letter is refused
        QCOMPARE(text("editIpAddress"), "192.168.1");
        QVERIFY(!canSave());
        type("editIpAddress", "192.168.1.20");
        QVERIFY(canSave() && isSaveDefault());
        type("editDefaultGateway", "192.168.1.");
        QVERIFY(!canSave());
        clickOn("btnUseDhcp"); // what the address fields hold no longer matters
        QVERIFY(canSave() && isSaveDefault());
        clickOn("btnUsePersistentIp");
        QVERIFY(!canSave());
        type("editDefaultGateway", "");
        QVERIFY(canSave());
        m_dialogs.expect(gui::click(QMessageBox::No));
        select("lan0");
        QVERIFY(!canSave() && !isSaveDefault());
    }

    void addressesAreJudgedUnderTheMask()
    {
        edit("5");
        type("editIpAddress", "192.168.1.255");
        QVERIFY(!canSave()); // the broadcast address of its network
        type("editNetmask", "255.255.0.0");
        QVERIFY(canSave());
        type("editDefaultGateway", "192.168.255.255");
        QVERIFY(!canSave());
        type("editDefaultGateway", "192.168.255.1");
        type("editNetmask", "255.0.255.0");
        QVERIFY(!canSave());
    }

    void staticModeProposesTheNetwork()
    {
        for (const auto& [interface, proposal] :
             {std::pair{"192.168.1.5", "192.168.1. 255.255.255.0 "},
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
        enter("editIpAddress", "10.0.");
        QCOMPARE(addresses(), "10.0.  ");
        enter("editIpAddress", "10.0.0.77");
        QCOMPARE(addresses(), "10.0.0.77 255.255.0.0 "); // as on the adapter that has this network
        QVERIFY(canSave());
        enter("editIpAddress", "192.168.1.77");
        QCOMPARE(addresses(), "192.168.1.77 255.255.0.0 "); // filled already
        type("editNetmask", "");
        enter("editIpAddress", "192.168.1.78");
        QCOMPARE(addresses(), "192.168.1.78  "); // the user wants it empty
    }

    void anEmptyGatewayCountsAsAChange()
    {
        edit("5");
        key("editIpAddress", Qt::Key_Return);
        QVERIFY(!canSave());
        change("DefaultGateway", "");
        key("editIpAddress", Qt::Key_Return);
        QVERIFY(canSave() && !isSaveDefault());
        save();
        QCOMPARE(sent(),
                 "BroadcastIpConfig(025E41000001, true, false, 192.168.1.9, 255.255.255.0, 0.0.0.0, )");
    }

    void theMaskIsNormalised()
    {
        edit("5");
        for (const auto& [typed, kept] : {std::pair{"24", "255.255.255.0"},
                                          {"/20", "255.255.240.0"},
                                          {"255.255.000.000", "255.255.0.0"},
                                          {"255.0.255.0", "255.0.255.0"}}) {
            enter("editNetmask", typed);
            QCOMPARE(text("editNetmask"), kept);
            QCOMPARE(canSave() && isSaveDefault(), typed != QString("255.0.255.0"));
        }
        type("editNetmask", "20");
        key("editNetmask", Qt::Key_Return);
        QVERIFY(sent().contains("192.168.1.9, 255.255.240.0"));
    }

    void theNameHasSixteenBytes()
    {
        edit("5");
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

    void theOldNameIsNoChange()
    {
        edit("5");
        enter("editCustomName", "new");
        QVERIFY(canSave());
        type("editCustomName", "");
        QVERIFY(canSave()); // not judged while the user is still typing
        key("editCustomName", Qt::Key_Tab);
        QVERIFY(!canSave());
    }

    void enterSaves()
    {
        edit("5");
        key("editCustomName", Qt::Key_Return);
        QCOMPARE(sent(), QString()); // nothing to save yet
        type("editCustomName", "belt");
        key("editCustomName", Qt::Key_Return);
        QVERIFY(sent().endsWith(", belt)"));
    }

    void tabGoesFromFieldToField()
    {
        edit("5");
        type("editCustomName", "new");
        tree().setFocus();
        QStringList visited;
        for (int i = 0; i < 7; ++i) {
            QTest::keyClick(m_window->focusWidget(), Qt::Key_Tab);
            visited << m_window->focusWidget()->objectName();
        }
        QCOMPARE(visited,
                 (QStringList{"btnUsePersistentIp", "editIpAddress", "editNetmask", "editDefaultGateway",
                              "editCustomName", "btnWriteConfiguration", "btnRefresh"}));
    }

    void whatIsTypedIsPutRight()
    {
        edit("5");
        type("editIpAddress", "192.168.001.020");
        type("editDefaultGateway", "");
        type("editCustomName", "  left ");
        save();
        QCOMPARE(sent(),
                 "BroadcastIpConfig(025E41000001, true, false, 192.168.1.20, 255.255.255.0, 0.0.0.0, left)");
        QCOMPARE(addresses(), "192.168.1.20 255.255.255.0 0.0.0.0");
    }
};

int main(int argc, char** argv)
{
    EditorTest test;
    return gui::run(test, argc, argv);
}

#include "tst_editor.moc"
