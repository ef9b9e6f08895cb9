#include "qtbase/advicesign.h"
#include "support/gui.h"

#include <QKeyEvent>
#include <QRadioButton>
#include <QToolTip>

using namespace gui;
using sdk::camera;
using Step = std::function<void()>;

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
        openOn({made, camera("km-2", "025E41000002", "192.168.1.10", interface)});
    }
    bool isSaveDefault() { return child<QPushButton>("btnWriteConfiguration").isDefault(); }
    void key(const char* name, Qt::Key key) { QTest::keyClick(&child<QLineEdit>(name), key); }
    /// Address, mask and gateway in the editor.
    QStringList addresses()
    {
        return {text("editIpAddress"), text("editNetmask"), text("editDefaultGateway")};
    }

private slots:
    void staticModeProposesTheNetwork()
    {
        const auto proposalOn = [this](const QString& host) {
            const Adapter lan2("lan2", {host}, "02:00:00:00:00:02");
            edit("6", qPrintable(host.section('/', 0, 0)));
            clickOn("btnUsePersistentIp");
            return addresses().join(' ');
        };
        QCOMPARE(proposalOn("11.16.0.1/12"), "11. 255.240.0.0 ");
        QCOMPARE(proposalOn("11.0.0.1/16"), "11.0. 255.255.0.0 ");
        QCOMPARE(proposalOn("11.0.0.1/25"), "11.0.0. 255.255.255.128 ");
        QCOMPARE(proposalOn("11.0.0.1/30"), "11.0.0. 255.255.255.252 ");
        QVERIFY(!canSave());
        const auto chosenAgain = [this] {
            clickOn("btnUseDhcp");
            clickOn("btnUsePersistentIp");
            return addresses();
        };
        type("editIpAddress", "");
        QCOMPARE(chosenAgain(), (QStringList{"", "255.255.255.252", ""})); // nothing over what is there
        type("editNetmask", "");
        type("editIpAddress", "10.");
        QCOMPARE(chosenAgain(), (QStringList{"10.", "", ""}));
        edit("6", "9.9.9.9"); // of no adapter
        QVERIFY(child<QRadioButton>("btnUseDhcp").isChecked());
        clickOn("btnUsePersistentIp");
        QCOMPARE(addresses(), (QStringList{"", "", ""}));
    }

    void aTypedAddressBringsTheMaskOfTheSmallestHostSubnet()
    {
        const Adapter lan2("lan2", {"10.0.48.1/20", "10.0.60.7/32"}, "02:00:00:00:00:02");
        const auto maskFor = [this](const QString& address) {
            edit("6", "9.9.9.9");
            clickOn("btnUsePersistentIp");
            enter("editIpAddress", address);
            return text("editNetmask");
        };
        QCOMPARE(maskFor("10.0."), "");
        QCOMPARE(maskFor("10.0.63.9"), "255.255.240.0");
        QCOMPARE(maskFor("10.0.60.7"), "255.255.240.0"); // an adapter's own /32 is no subnet for a camera
        QCOMPARE(maskFor("10.0.64.9"), "255.255.0.0");
        QCOMPARE(maskFor("10.1.0.9"), "255.0.0.0"); // of no adapter
        QVERIFY(canSave());
        enter("editIpAddress", "192.168.1.77");
        QCOMPARE(text("editNetmask"), "255.0.0.0"); // filled already
        type("editNetmask", "");
        enter("editIpAddress", "192.168.1.78");
        QCOMPARE(text("editNetmask"), ""); // the user wants it empty
    }

    void anEmptyGatewayCountsAsAChange()
    {
        edit();
        cam().record.SetDefaultGateway("");
        refresh();
        key("editIpAddress", Qt::Key_Return);
        QVERIFY(canSave() && !isSaveDefault());
    }

    void theNameHasSixteenBytes()
    {
        edit();
        const auto kept = [this](const QString& typed) {
            type("editCustomName", typed);
            return text("editCustomName");
        };
        QCOMPARE(kept("äääääääää"), "ääääääää");
        QCOMPARE(kept("0123456789abcdeäf"), "0123456789abcdef"); // takes what fits
        type("editCustomName", "");
        child<QLineEdit>("editCustomName").insert("0123456789abcdefg"); // as pasting does
        QCOMPARE(text("editCustomName"), "0123456789abcdef");
    }

    void theEditorTellsWhatCanBeSaved_data()
    {
        // The sentences begin so.
        const auto row = addColumns<int, bool, QString, QString, Step>("accessibility", "isValid",
                                                                       "atTheField", "atSave", "change");
        using namespace Tessal::Accessibility;
        const QString own = "192.168.1.5 is this computer's own address on lan0.";
        const QString half = "The IP address is incomplete:";
        const QString leftOver = "The IP address typed before is written as well";
        const QString unchanged = "Nothing has been changed.";
        const QString broadcast = "192.168.1.255 addresses all devices of a network at once";
        const auto typed = [this](const char* field, const char* text) {
            return [=, this] { type(field, text); };
        };
        const Step halfAddress = typed("editIpAddress", "192.168.1.");
        const Step dhcp = [this] { clickOn("btnUseDhcp"); };
        const Step rename = typed("editCustomName", "belt");
        row("unchanged", Ok, false, "", unchanged, [] {});
        row("in use", Controlled, false, "", "Another application is using the camera.", [] {});
        row("unknown", Unknown, false, "", "It is not known whether", [] {});
        row("half an address", Ok, false, half, half, halfAddress);
        row("of no use", NotReachable, true, own, own, typed("editIpAddress", "192.168.1.5"));
        row("half an address, then DHCP", Ok, true, leftOver, leftOver, [=] { halfAddress(), dhcp(); });
        row("DHCP only", Ok, true, "", "", dhcp);
        row("old name, which may become another", Ok, true, "", "",
            [=, this] { rename(), type("editCustomName", ""); });
        row("old name, and the field is left", Ok, false, "", unchanged,
            [=, this] { rename(), enter("editCustomName", ""); });
        row("no gateway", Ok, true, "", "", typed("editDefaultGateway", ""));
        row("broadcast address", Ok, false, broadcast, broadcast, typed("editIpAddress", "192.168.1.255"));
        const QString other = "192.168.1.10 is the address of another camera: km-2";
        row("of another camera", Ok, true, other, other, typed("editIpAddress", "192.168.1.10"));
        const QString outside = "172.31.0.9 is in no network of lan0.";
        row("outside", Ok, true, outside, outside, typed("editIpAddress", "172.31.0.9"));
        row("broadcast as gateway", Ok, false, "", broadcast, typed("editDefaultGateway", "192.168.1.255"));
        row("mask with a gap", Ok, false, "", "255.0.255.0 ",
            [this] { enter("editNetmask", "255.0.255.0"); });
        row("length, still in the field", Ok, false, "",
            "The subnet mask is incomplete:", typed("editNetmask", "16"));
    }
    void theEditorTellsWhatCanBeSaved()
    {
        QFETCH(const int, accessibility);
        QFETCH(const Step, change);
        QFETCH(const bool, isValid);
        QFETCH(const QString, atTheField);
        QFETCH(const QString, atSave);
        edit("7", "192.168.1.5", accessibility); // static before DHCP
        const bool isEdited = accessibility == Tessal::Accessibility::Ok ||
                              accessibility == Tessal::Accessibility::NotReachable;
        QCOMPARE(enabledInEditor(), isEdited ? editorWithAddresses : QStringList());
        change();
        QCOMPARE(canSave(), isValid);
        QCOMPARE(isSaveDefault(), isValid);
        for (const auto& [name, expected] :
             {std::pair{"editIpAddress", atTheField}, {"btnWriteConfiguration", atSave}}) {
            const auto& told = child<QWidget>(name);
            QCOMPARE(name + (": " + told.accessibleDescription().left(expected.size())),
                     name + (": " + expected));
            QCOMPARE(told.accessibleDescription().isEmpty(), expected.isEmpty());
            QCOMPARE(told.toolTip(), toolTipText(told.accessibleDescription()));
        }
        const auto& sign = child<QLabel>("editIpAddressAdvice");
        QCOMPARE(sign.toolTip(), child<QWidget>("editIpAddress").toolTip());
        QCOMPARE(sign.pixmap(Qt::ReturnByValue).isNull(), atTheField.isEmpty());
        QVERIFY(!sign.visibleRegion().isEmpty());
        expect(QList<Answer>(isValid ? 1 : 0, escape)); // the question
        tree().setCurrentItem(&row("km-2"));            // the focus stays in the editor
        QVERIFY(!canSave() && !isSaveDefault());
        select("lan0");
        QCOMPARE(enabledInEditor() + addresses(), (QStringList{"", "", ""}));
        QVERIFY(child<QRadioButton>("btnUseAutoIp").isChecked());
        QCOMPARE(child<QWidget>("editIpAddress").accessibleDescription(), QString());
        QCOMPARE(child<QWidget>("btnWriteConfiguration").accessibleDescription(), "No camera is selected.");
    }

    void aMistakeIsPointedOutWhileItIsTyped()
    {
        edit();
        type("editIpAddress", "192.168.1.");
        QTRY_VERIFY(!QToolTip::isVisible());
        type("editIpAddress", "192.168.1.255");
        QCOMPARE(QToolTip::text(), child<QWidget>("editIpAddress").toolTip());
        type("editIpAddress", "192.168.1.77");
        QTRY_VERIFY(!QToolTip::isVisible());
        QVERIFY(child<QLabel>("editIpAddressAdvice").pixmap(Qt::ReturnByValue).isNull());
        type("editIpAddress", "192.");
        clickOn("btnUseDhcp");
        QVERIFY2(QToolTip::text().contains("typed before"), qPrintable(QToolTip::text()));
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
        QCOMPARE(text("editCustomName"), "");
        QCOMPARE(addresses(), (QStringList{"192.168.1.9", "255.255.255.0", "0.0.0.0"}));
        QVERIFY(child<QRadioButton>("btnUsePersistentIp").isChecked() && !canSave() && !isSaveDefault());
        select("lan0"); // nothing to ask
    }

    void enterSavesAndAMaskLengthFillsTheMask()
    {
        edit();
        key("editIpAddress", Qt::Key_Return);
        QCOMPARE(m_world.take(), QStringList()); // nothing to save yet
        QVERIFY(!canSave());
        type("editCustomName", "belt");
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r", true);
        QApplication::sendEvent(&child<QLineEdit>("editCustomName"), &held);
        QCOMPARE(m_world.take(), QStringList()); // the key may have been pressed for a message before
        QTest::keyClick(&child<QLineEdit>("editCustomName"), Qt::Key_Return, Qt::ShiftModifier);
        child<QWidget>("btnRefresh").setFocus();
        QTest::keyClick(&child<QWidget>("btnRefresh"), Qt::Key_Return); // its own
        QCOMPARE(m_world.take(), QStringList());
        type("editIpAddress", "192.168.1.77/20");
        QCOMPARE(addresses(), (QStringList{"192.168.1.77", "255.255.240.0", "0.0.0.0"}));
        type("editDefaultGateway", "192.168.1.1/9");
        QCOMPARE(addresses(), (QStringList{"192.168.1.77", "255.128.0.0", "192.168.1.1"}));
        type("editNetmask", "20");
        key("editNetmask", Qt::Key_Return);
        QCOMPARE(
            m_world.take().first(),
            "BroadcastIpConfig(025E41000001, true, false, 192.168.1.77, 255.255.240.0, 192.168.1.1, belt)");
    }
};

WINDOW_TEST_MAIN(EditorTest)
#include "tst_editor.moc"
