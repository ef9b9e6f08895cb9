#include "support/gui.h"

#include <QSignalSpy>

using gui::click;
using gui::editorWithAddresses;
using gui::editorWithoutAddresses;
using sdk::camera;
using Buttons = QList<QMessageBox::StandardButton>;

/// Edits are never lost unasked: on a change of the row, a refresh and at closing.
class ClosingTest : public gui::GuiTest
{
    Q_OBJECT

    const QString m_question = "|Do you want to save the changes to the configuration?|No,Yes|No";

    const QStringList m_closed{"closed"};
    const QStringList m_pending{"something to save"};

private slots:
    void everyWayAsksFirst_data()
    {
        // Two answers where the save fails.
        const auto row = addColumns<QString, Buttons, QStringList>("way", "answers", "state");
        using enum QMessageBox::StandardButton;
        const QStringList left{"current: lan0", "name: "};
        const QStringList saved = QStringList{"current: km-1", "name: belt"} + editorWithoutAddresses;
        const QStringList asBefore = QStringList{"current: km-1", "name: "} + editorWithAddresses;
        row("row left, saved", "another row", {Yes}, left);
        row("row left, save failed", "another row", {Yes, Close}, left);
        row("refreshed, saved", "refresh", {Yes}, saved);
        row("refreshed, not saved", "refresh", {No}, asBefore);
        row("refresh cancelled", "refresh", {Yes, Close}, saved + m_pending);
        row("closed, saved", "close", {Yes}, m_closed);
        row("closed, save failed", "close", {Yes, Yes}, m_closed);
        row("kept open", "close", {Yes, No}, asBefore + m_pending);
    }
    void everyWayAsksFirst()
    {
        QFETCH(const QString, way);
        QFETCH(const Buttons, answers);
        QFETCH(const QStringList, state);
        openOn();
        cam().knowsBroadcast = cam().hasNodeMap = answers.size() == 1;
        type("editCustomName", "belt");
        clickOn("btnUseDhcp");
        for (const QMessageBox::StandardButton answer : answers) {
            expect({click(answer)});
        }
        leave(way);
        const QString failed = "|The configuration could not be saved.";
        const QMap<QString, QString> questionAfterFailure{
            {"another row", gui::notSaved},
            {"refresh", failed + "\nThe Refresh operation has been canceled.|Close|Close"},
            {"close",
             failed +
                 "\nWould you like to continue closing the application?\n\nIf you click 'Yes', your configuration will not be changed and the application will close.\nIf you click 'No', you will return to the application.|No,Yes|No"}};
        QCOMPARE(takeDialogs(), QStringList({m_question, questionAfterFailure[way]}).first(answers.size()));
        QCOMPARE(takeIcons(), QList({QMessageBox::Question, QMessageBox::Critical}).first(answers.size()));
        const QStringList open{"current: " + current(), "name: " + text("editCustomName")};
        QCOMPARE(m_window->isVisible() ? open + enabledInEditor() + (canSave() ? m_pending : QStringList())
                                       : m_closed,
                 state);
        const QString name = answers == Buttons{QMessageBox::Yes} ? "belt" : "";
        QCOMPARE(sdk::get(cam().record, {"UserDefinedName"}), name);
        QCOMPARE(row("km-1").text(1), way == "close" ? "" : name);
        QCOMPARE(QSettings().allKeys().isEmpty(), m_window->isVisible());
    }

    void whatCanBeWrittenIsAskedAbout_data()
    {
        const auto row = addColumns<QString, QByteArray, QByteArray, QString, bool>("way", "mask", "field",
                                                                                    "typed", "isAsked");
        const char* const classC = "255.255.255.0";
        for (const QByteArray way : {"another row", "another row, by a screen reader", "refresh", "close"}) {
            row("half an address, " + way, way, classC, "editIpAddress", "192.168.1", false);
            row("an address, to which the mask is added, " + way, way, "", "editIpAddress", "192.168.1.77",
                true);
            row("the same name, " + way, way, classC, "editCustomName", "Gate", false);
            row("a length, which becomes a mask, " + way, way, classC, "editNetmask", "16", true);
        }
    }
    void whatCanBeWrittenIsAskedAbout()
    {
        QFETCH(const QString, way);
        QFETCH(const QByteArray, mask);
        QFETCH(const QByteArray, field);
        QFETCH(const QString, typed);
        QFETCH(const bool, isAsked);
        openOn({sdk::with(camera(), {{"SubnetMask", mask}, {"UserDefinedName", "Gate"}})});
        QTest::mouseClick(tree().viewport(), Qt::LeftButton, Qt::ControlModifier,
                          placeOf(row("km-1"))); // no effect
        type(field, typed);
        expect(QList<gui::Answer>(isAsked ? 1 : 0, click(QMessageBox::No)));
        leave(way);
        QCOMPARE(takeDialogs(), QStringList(isAsked ? 1 : 0, m_question));
        QCOMPARE(m_world.take(), QStringList());
        QCOMPARE(m_window->isVisible(), way != "close");
        QCOMPARE(tree().selectedItems(), QList<QTreeWidgetItem*>{tree().currentItem()});
    }

    void noCommandBeginsInTheMiddleOfAnother()
    {
        openOn();
        // As a screen reader would, past what is held back meanwhile.
        m_world.at["sleep"] = [this, isFirst = true]() mutable {
            if (!std::exchange(isFirst, false)) {
                return;
            }
            const auto call = [this](const char* object, const char* slot) {
                QMetaObject::invokeMethod(&child<QObject>(object), slot, Qt::QueuedConnection);
            };
            for (const char* const action : {"actionRefresh", "actionAbout", "actionFeedback", "actionExit",
                                             "actionContact_Orvik_Support", "actionForceIpByMac"}) {
                call(action, "trigger");
            }
            call("btnWriteConfiguration", "click");
            call("IpConfigurationWidgetClass", "on_assignTemporaryIPAddress");
        };
        type("editCustomName", "belt");
        save();
        const QString search = "EnumerateDevicesAnySubnet(false)"; // by the wait, and by the refresh
        QCOMPARE(
            m_world.take(true).filter(QRegularExpression("Broadcast|AnySubnet")),
            (QStringList{
                "BroadcastIpConfig(025E41000001, true, false, 192.168.1.9, 255.255.255.0, 0.0.0.0, belt)",
                search, search}));
        QCOMPARE(takeDialogs(), QStringList());
        QVERIFY(m_window->isVisible());
    }

    void aSaveThatTakesEffectLateIsDropped()
    {
        openOn({camera(), camera("km-2", "025E41000002", "192.168.1.10")});
        const QSignalSpy clicked(&child<QAbstractButton>("btnWriteConfiguration"), &QAbstractButton::clicked);
        const auto saveAndLeave = [&](const gui::Answer& answer) {
            select("km-1");
            type("editCustomName", "belt");
            expect({answer});
            press(QKeySequence("Ctrl+S")); // the button is only shown pressed so far
            select("km-2");
        };
        saveAndLeave([&](QWidget& question) {
            QTRY_COMPARE(clicked.size(), 1); // behind the question
            click(QMessageBox::No)(question);
        });
        saveAndLeave(click(QMessageBox::No));
        QTRY_COMPARE(clicked.size(), 2); // after it
        QCOMPARE(m_world.take(), QStringList());
    }

    void aFailedSaveShowsTheCameraAsItIsNow()
    {
        openOn();
        cam().comesBack = false; // takes the command and stays away
        clickOn("btnUseAutoIp");
        // not found again, no temporary address
        expect({click(QMessageBox::Yes), gui::escape, gui::escape, click(QMessageBox::No)});
        leave("close");
        QVERIFY(m_window->isVisible());
        QCOMPARE(row("km-1").text(5), "Auto IP (LLA)");
        QCOMPARE(text("editIpAddress"), QString());
        leave("close"); // the command went through, so nothing is pending any more
        QVERIFY(!m_window->isVisible());
    }

    void theCameraThatIsLeftGetsTheTemporaryAddress()
    {
        openOn({camera("km-1", "025E41000001", "10.9.9.9"), camera("km-2", "025E41000002", "192.168.1.10"),
                camera("km-1", "025E41000001", "10.9.9.9", "10.0.0.1")});
        cam().knowsBroadcast = m_world.cameras.back().knowsBroadcast = false;
        type("editCustomName", "belt");
        expect({click(QMessageBox::Yes), gui::fill({{"editIpAddress", "192.168.1.50"}})});
        QTest::keyClick(&tree(), Qt::Key_Down); // by a key, which selects the row first
        const QStringList calls = m_world.take();
        QVERIFY(calls.contains("ForceIp(025E41000001, 192.168.1.50, 255.255.255.0, 0.0.0.0)"));
        QVERIFY(calls.contains("SetValue(belt, true)"));
        QCOMPARE(current() + ' ' + row("km-1").text(6), "km-2 192.168.1.50");
        QCOMPARE(row("lan1").child(0)->text(6), "192.168.1.50");
    }
};

WINDOW_TEST_MAIN(ClosingTest)
#include "tst_closing.moc"
