#include "support/gui.h"

#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

using sdk::camera;

/// What the editor offers, proposes, corrects and accepts while one camera is edited.
class EditorTest : public gui::GuiTest
{
    Q_OBJECT

    struct Offer
    {
        const char* name;
        int accessibility;
        const char* mode;
        int enabled; // how many of the editor's fields
    };
    struct Proposal
    {
        const char* name;
        const char* interface;
        const char* fields;
    };
    struct Typed
    {
        const char* name;
        QString typed;
        QString kept;
    };

    /// Opens the window with one camera and selects it. Mode in bits, as the record gives it.
    void edit(const char* mode, const char* interface = "192.168.1.5", int accessibility = 1)
    {
        m_world.cameras = {camera("km-1", "025E41000001", "192.168.1.9", interface)};
        m_world.cameras[0].accessibility = accessibility;
        change("IpConfigCurrent", mode);
        openWindow();
        select("km-1");
        m_world.take();
    }
    void change(const char* key, const char* value) { sdk::set(m_world.cameras[0], key, value); }
    QStringList enabled()
    {
        QStringList names;
        for (const char* const name : {"btnUsePersistentIp", "btnUseDhcp", "btnUseAutoIp", "editCustomName",
                                       "editIpAddress", "editNetmask", "editDefaultGateway"}) {
            names += child<QWidget>(name).isEnabled() ? QStringList{name} : QStringList{};
        }
        return names;
    }
    bool canSave() { return child<QPushButton>("btnWriteConfiguration").isEnabled(); }
    bool isSaveDefault() { return child<QPushButton>("btnWriteConfiguration").isDefault(); }
    void choose(const char* mode) { QTest::mouseClick(&child<QRadioButton>(mode), Qt::LeftButton); }
    void key(const char* name, Qt::Key key) { QTest::keyClick(&child<QLineEdit>(name), key); }
    /// Address, mask and gateway in the editor.
    QString addresses()
    {
        return text("editIpAddress") + ' ' + text("editNetmask") + ' ' + text("editDefaultGateway");
    }
    QString sent() { return m_world.take().value(0); }

private slots:
    void enablingFollowsAccessibility_data()
    {
        gui::rows<Offer>({
            {"accessible, static", 1, "5", 7},
            {"accessible, DHCP", 1, "6", 4},
            {"accessible, Auto IP", 1, "4", 4},
            {"not reachable", 4, "5", 7},
            {"unknown", 0, "5", 0},
            {"controlled", 2, "5", 0},
            {"controlled exclusively", 3, "5", 0},
        });
    }
    void enablingFollowsAccessibility()
    {
        QFETCH(const Offer, row);
        edit(row.mode, "192.168.1.5", row.accessibility);
        QCOMPARE(enabled().size(), row.enabled);
        QCOMPARE(enabled().filter("edit").size(), row.enabled == 7 ? 4 : row.enabled == 4 ? 1 : 0);
        QVERIFY(!canSave());
        QTest::keyClick(&tree(), Qt::Key_Up); // to the adapter
        QCOMPARE(enabled(), QStringList());
        QVERIFY(child<QRadioButton>("btnUseAutoIp").isChecked());
        QCOMPARE(addresses(), "  ");
    }

    void theEditorShowsTheCamera()
    {
        edit("7");
        QVERIFY(child<QRadioButton>("btnUsePersistentIp").isChecked()); // static before DHCP
        QCOMPARE(addresses(), "192.168.1.9 255.255.255.0 0.0.0.0");
        change("IpConfigCurrent", "6");
        press(QKeySequence("F5"));
        QVERIFY(child<QRadioButton>("btnUseDhcp").isChecked());
        QCOMPARE(addresses(), "  ");
        change("IpConfigCurrent", "4");
        press(QKeySequence("F5"));
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
        choose("btnUseDhcp"); // what the address fields hold no longer matters
        QVERIFY(canSave() && isSaveDefault());
        choose("btnUsePersistentIp");
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

    void staticModeProposesTheNetwork_data()
    {
        gui::rows<Proposal>({
            {"class C", "192.168.1.5", "192.168.1. 255.255.255.0 "},
            {"first address of the adapter", "172.16.3.4", "10.0. 255.255.0.0 "},
            {"no adapter above", "9.9.9.9", "  "},
        });
    }
    void staticModeProposesTheNetwork()
    {
        QFETCH(const Proposal, row);
        edit("6", row.interface);
        choose("btnUsePersistentIp");
        QCOMPARE(addresses(), row.fields);
        QVERIFY(!canSave());
        type("editNetmask", "");
        type("editIpAddress", "10.");
        choose("btnUseDhcp");
        choose("btnUsePersistentIp"); // nothing is proposed over what is there
        QCOMPARE(addresses(), "10.  ");
    }

    void aTypedAddressBringsItsMask()
    {
        edit("6", "9.9.9.9");
        choose("btnUsePersistentIp");
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
        press(QKeySequence("F5"));
        key("editIpAddress", Qt::Key_Return);
        QVERIFY(canSave() && !isSaveDefault());
        save();
        QCOMPARE(sent(),
                 "BroadcastIpConfig(025E41000001, true, false, 192.168.1.9, 255.255.255.0, 0.0.0.0, )");
    }

    void theMaskIsNormalised_data()
    {
        gui::rows<Typed>({
            {"length", "24", "255.255.255.0"},
            {"length with slash", "/20", "255.255.240.0"},
            {"leading zeros", "255.255.000.000", "255.255.0.0"},
            {"not contiguous", "255.0.255.0", "255.0.255.0"},
        });
    }
    void theMaskIsNormalised()
    {
        QFETCH(const Typed, row);
        edit("5");
        enter("editNetmask", row.typed);
        QCOMPARE(text("editNetmask"), row.kept);
    }

    void theNameHasSixteenBytes_data()
    {
        gui::rows<Typed>({
            {"17 letters", "0123456789abcdefg", "0123456789abcdef"},
            {"18 bytes", "äääääääää", "ääääääää"},
            {"the letter that still fits", "0123456789abcdeäf", "0123456789abcdef"},
            {"markup", "<b>&amp;", "<b>&amp;"},
        });
    }
    void theNameHasSixteenBytes()
    {
        QFETCH(const Typed, row);
        edit("5");
        type("editCustomName", row.typed);
        QCOMPARE(text("editCustomName"), row.kept);
        save();
        QVERIFY(sent().endsWith(", " + row.kept + ')'));
        QCOMPARE(this->row("km-1").text(1), row.kept);
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
