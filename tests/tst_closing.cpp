#include "support/gui.h"

#include <QAccessible>
#include <QSignalSpy>

using gui::click;
using sdk::camera;

/// Edits are never lost unasked: on a change of the row, a refresh and at closing.
class ClosingTest : public gui::GuiTest
{
    Q_OBJECT

    const QString m_question = "|Do you want to save the changes to the configuration?|No,Yes|No";

    void leave(const QString& way)
    {
        if (way == "row") {
            select("lan0");
        } else if (way == "spoken") { // as a screen reader selects
            QAccessible::queryAccessibleInterface(&tree())->tableInterface()->selectRow(0);
        } else if (way == "refresh") {
            refresh();
        } else {
            m_window->close();
        }
    }

private slots:
    void everyWayAsksFirst()
    {
        const QMap<QChar, gui::Answer> answerOf{{'Y', click(QMessageBox::Yes)},
                                                {'N', click(QMessageBox::No)},
                                                {'C', click(QMessageBox::Close)},
                                                {'E', gui::escape}};
        // What is asked when the save fails; the answers, two where it does, and what is there afterwards:
        // the current row, the name in the tree and in the editor, and whether the edit is pending.
        for (
            const auto& [way, secondQuestion, paths] : gui::Table<QString, QString, QStringList>{
                {"row", gui::notSaved, {"Y lan0 belt", "N lan0", "E lan0", "YC lan0"}},
                {"refresh",
                 "|The configuration could not be saved.\nThe Refresh operation has been canceled.|Close|Close",
                 {"Y km-1 belt belt", "N km-1", "E km-1", "YC km-1 belt pending"}},
                {"close",
                 "|The configuration could not be saved.\nWould you like to continue closing the application?\n\nIf you click 'Yes', your configuration will not be changed and the application will close.\nIf you click 'No', you will return to the application.|No,Yes|No",
                 {"Y closed", "N closed", "E closed", "YY closed", "YN km-1 pending", "YE km-1 pending"}},
            }) {
            for (const QString& path : paths) {
                const QString answers = path.section(' ', 0, 0);
                const bool fails = answers.size() > 1;
                QSettings().clear();
                openOn();
                cam().knowsBroadcast = cam().hasNodeMap = !fails;
                type("editCustomName", "belt");
                for (const QChar answer : answers) {
                    expect({answerOf[answer]});
                }
                leave(way);
                QCOMPARE(takeDialogs(), QStringList({m_question, secondQuestion}).first(answers.size()));
                const QString names = row("km-1").text(1) + ' ' + text("editCustomName");
                const QString seen = current() + ' ' + names + (canSave() ? " pending" : "");
                const QString found = m_window->isVisible() ? seen : "closed";
                QCOMPARE(way + ' ' + answers + ' ' + found.simplified(), way + ' ' + path);
                QCOMPARE(sdk::get(cam().record, {"UserDefinedName"}), answers == "Y" ? "belt" : "");
                QCOMPARE(QSettings().allKeys().size(), found == "closed" ? 4 : 0);
            }
        }
    }

    void whatCanBeWrittenIsAskedAbout()
    {
        for (const auto& [mask, field, typed, isAsked] :
             gui::Table<const char*, const char*, const char*, bool>{
                 {"255.255.255.0", "editIpAddress", "192.168.1", false},
                 {"", "editIpAddress", "192.168.1.77", true}, // its mask follows when the field is left
                 {"255.255.255.0", "editCustomName", "Gate", false}, // as it was
                 {"255.255.255.0", "editNetmask", "16", true},       // as this becomes one
             }) {
            for (const QString way : {"row", "spoken", "refresh", "close"}) {
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
        }
    }

    void noCommandBeginsInTheMiddleOfAnother()
    {
        openOn();
        m_world.at["sleep"] = [this] { // as a screen reader would, past what is held back meanwhile
            for (const auto& [object, slot] :
                 {std::pair{"actionRefresh", "trigger"},
                  {"actionAbout", "trigger"},
                  {"actionFeedback", "trigger"},
                  {"actionContact_Orvik_Support", "trigger"},
                  {"actionExit", "trigger"},
                  {"actionForceIpByMac", "trigger"},
                  {"btnWriteConfiguration", "click"},
                  {"IpConfigurationWidgetClass", "on_assignTemporaryIPAddress"}}) {
                QMetaObject::invokeMethod(&child<QObject>(object), slot, Qt::QueuedConnection);
            }
        };
        type("editCustomName", "belt");
        save();
        QCOMPARE(m_world.take(true).filter(QRegularExpression("Broadcast|AnySubnet")).size(), 3);
        QCOMPARE(takeDialogs(), QStringList());
        QVERIFY(m_window->isVisible());
    }

    void aSaveThatTakesEffectLateIsDropped()
    {
        openOn({camera(), camera("km-2", "025E41000002", "192.168.1.10")});
        for (const bool isQuestionAnsweredFirst : {false, true}) {
            select("km-1");
            type("editCustomName", "belt");
            const QSignalSpy clicked(&child<QAbstractButton>("btnWriteConfiguration"),
                                     &QAbstractButton::clicked);
            expect({[&](QWidget& question) {
                QTRY_COMPARE(clicked.size(), isQuestionAnsweredFirst ? 0 : 1);
                click(QMessageBox::No)(question);
            }});
            press(QKeySequence("Ctrl+S")); // the button is only shown pressed so far
            select("km-2");
            QTRY_COMPARE(clicked.size(), 1);
            QCOMPARE(m_world.take(), QStringList());
        }
    }

    void aFailedSaveShowsTheCameraAsItIsNow()
    {
        for (const bool isClosing : {false, true}) {
            openOn();
            cam().comesBack = false; // takes the command and stays away
            clickOn("btnUseAutoIp");
            expect({click(QMessageBox::Yes), gui::escape,
                    gui::escape, // not found again, no temporary address
                    click(isClosing ? QMessageBox::No : QMessageBox::Close)});
            leave(isClosing ? "close" : "row");
            QVERIFY(m_window->isVisible());
            QCOMPARE(row("km-1").text(5), "Auto IP (LLA)");
            QCOMPARE(current(), isClosing ? "km-1" : "lan0");
            QCOMPARE(text("editIpAddress"), QString());
        }
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
