#include "support/gui.h"

#include <QAbstractButton>
#include <QAction>
#include <QHeaderView>
#include <QSettings>

using gui::click;
using sdk::camera;

/// Edits are never lost unasked: on a change of the row, a refresh and at closing.
class ClosingTest : public gui::GuiTest
{
    Q_OBJECT

    void leave(const QString& way)
    {
        if (way == "row") {
            QTest::keyClick(&tree(), Qt::Key_Up);
        } else if (way == "refresh") {
            refresh();
        } else {
            m_window->close();
        }
    }

    /// What is asked on that way; the second question comes when the save fails.
    static QStringList questions(const QString& way, bool fails)
    {
        QStringList asked{"|Do you want to save the changes to the configuration?|No,Yes|No"};
        if (fails) {
            asked
                << (way == "row" ? gui::notSaved
                    : way == "refresh"
                        ? "|The configuration could not be saved.\nThe Refresh operation has been canceled.|Close|Close"
                        : "|The configuration could not be saved.\nWould you like to continue closing the application?\n\nIf you click 'Yes', your configuration will not be changed and the application will close.\nIf you click 'No', you will return to the application.|No,Yes|No");
        }
        return asked;
    }

private slots:
    void everyWayAsksFirst()
    {
        struct Path
        {
            const char* way;
            const char* answers; // letters: Yes, No, Escape, Close; there are two when the save fails
            const char* after;   // current row, its edited name, whether the edit is pending; or closed
        };
        const QMap<QChar, gui::Answer> answerOf{{'Y', click(QMessageBox::Yes)},
                                                {'N', click(QMessageBox::No)},
                                                {'C', click(QMessageBox::Close)},
                                                {'E', gui::escape}};
        for (const auto& [way, answers, after] : {
                 Path{"row", "Y", "lan0"},
                 Path{"row", "N", "lan0"},
                 Path{"row", "E", "lan0"},
                 Path{"row", "YC", "lan0"},
                 Path{"refresh", "Y", "km-1 belt"},
                 Path{"refresh", "N", "km-1 "},
                 Path{"refresh", "E", "km-1 "},
                 Path{"refresh", "YC", "km-1 belt pending"},
                 Path{"close", "Y", "closed"},
                 Path{"close", "N", "closed"},
                 Path{"close", "E", "closed"},
                 Path{"close", "YY", "closed"}, // all the same
                 Path{"close", "YN", "km-1  pending"},
                 Path{"close", "YE", "km-1  pending"},
             }) {
            QSettings().clear();
            openOn();
            const bool fails = qstrlen(answers) > 1;
            cam().knowsBroadcast = cam().hasNodeMap = !fails;
            type("editCustomName", "belt");
            for (const QChar answer : QString(answers)) {
                expect({answerOf[answer]});
            }
            leave(way);
            QCOMPARE(takeDialogs(), questions(way, fails));
            QString found = "closed";
            if (m_window->isVisible()) {
                found = current() == "lan0" ? "lan0" : current() + ' ' + text("editCustomName");
                found += canSave() ? " pending" : "";
            }
            QCOMPARE(found, after);
            QCOMPARE(sdk::get(cam().record, {"UserDefinedName"}), answers == QString("Y") ? "belt" : "");
            QCOMPARE(QSettings().allKeys().size(), found == "closed" ? 4 : 0);
        }
    }

    void whatCannotBeWrittenIsDroppedUnasked()
    {
        for (const QString way : {"row", "refresh", "close"}) {
            openOn();
            type("editIpAddress", "192.168.1");
            leave(way);
            QCOMPARE(takeDialogs() + m_world.take(), QStringList());
            QCOMPARE(m_window->isVisible(), way != "close");
            select("km-1");
            QCOMPARE(text("editIpAddress"), way == "close" ? "192.168.1" : "192.168.1.9");
        }
    }

    void aMaskGivenAsItsLengthCanBeSaved()
    {
        for (const QString way : {"refresh", "close"}) {
            openOn();
            type("editNetmask", "16");
            expect({click(QMessageBox::No)});
            leave(way);
            QCOMPARE(takeDialogs(), questions(way, false));
        }
    }

    void ctrlDoesNotTakeTheCameraAway()
    {
        openOn();
        const QPoint place = tree().visualItemRect(&row("km-1")).center();
        QTest::mouseClick(tree().viewport(), Qt::LeftButton, Qt::ControlModifier, place);
        type("editCustomName", "belt");
        expect({click(QMessageBox::No)});
        leave("refresh");
        QCOMPARE(takeDialogs(), questions("refresh", false));
    }

    void noCommandBeginsInTheMiddleOfAnother()
    {
        openOn();
        m_world.at["sleep"] = [this] { // as a screen reader would, past what is held back meanwhile
            for (const char* const command : {"actionRefresh", "actionExit", "actionForceIpByMac"}) {
                QMetaObject::invokeMethod(&child<QAction>(command), "trigger", Qt::QueuedConnection);
            }
        };
        type("editCustomName", "belt");
        save();
        QCOMPARE(m_world.take(true).count("EnumerateDevicesAnySubnet(false)"), 2);
        QCOMPARE(takeDialogs(), QStringList());
        QVERIFY(m_window->isVisible());
    }

    void aSaveThatTakesEffectLateIsDropped()
    {
        openOn({camera(), camera("km-2", "025E41000002", "192.168.1.10")});
        for (const bool isQuestionAnsweredFirst : {false, true}) {
            select("km-1");
            type("editCustomName", "belt");
            const auto& button = child<QAbstractButton>("btnWriteConfiguration");
            expect({[&](QWidget& question) {
                if (!isQuestionAnsweredFirst) {
                    QTRY_VERIFY(!button.isDown());
                }
                click(QMessageBox::No)(question);
            }});
            press(QKeySequence("Ctrl+S")); // the button is only shown pressed so far
            select("km-2");
            QTRY_VERIFY(!button.isDown());
            QCOMPARE(m_world.take(), QStringList());
        }
    }

    void aFailedSaveShowsTheCameraAsItIsNow()
    {
        for (const bool isClosing : {false, true}) {
            openOn();
            cam().comesBack = false; // takes the command and stays away
            clickOn("btnUseDhcp");
            expect({click(QMessageBox::Yes), gui::escape,
                    gui::escape, // not found again, no temporary address
                    click(isClosing ? QMessageBox::No : QMessageBox::Close)});
            leave(isClosing ? "close" : "row");
            QVERIFY(m_window->isVisible());
            QCOMPARE(row("km-1").text(5), "DHCP");
            QCOMPARE(current(), isClosing ? "km-1" : "lan0");
            QCOMPARE(text("editIpAddress"), QString());
        }
        leave("close"); // the command went through, so nothing is pending any more
        QVERIFY(!m_window->isVisible());
    }

    void theCameraThatIsLeftGetsTheTemporaryAddress()
    {
        openOn({camera("km-1", "025E41000001", "10.9.9.9"), camera("km-2", "025E41000002", "192.168.1.10")});
        cam().knowsBroadcast = false;
        type("editCustomName", "belt");
        expect({click(QMessageBox::Yes), gui::fill({{"editIpAddress", "192.168.1.50"}})});
        select("km-2");
        const QStringList calls = m_world.take();
        QVERIFY(calls.contains("ForceIp(025E41000001, 192.168.1.50, 255.255.255.0, 0.0.0.0)"));
        QVERIFY(calls.contains("SetValue(belt, true)"));
        QCOMPARE(current(), "km-2");
    }

    void theHeaderComesBack()
    {
        for (const QVariant& version : {QVariant(1), QVariant(2), QVariant()}) {
            QSettings().clear();
            openOn();
            QHeaderView* const header = tree().header();
            const int width = header->sectionSize(1);
            header->resizeSection(1, width + 33);
            header->moveSection(0, 2);
            leave("close");
            QCOMPARE(QSettings().value("MainWindow/headerver").toInt(), 1);
            QSettings().setValue("MainWindow/headerver", version);
            openOn();
            QCOMPARE(tree().header()->sectionSize(1), version == 1 ? width + 33 : width);
            QCOMPARE(tree().header()->visualIndex(0), version == 1 ? 2 : 0);
        }
    }
};

WINDOW_TEST_MAIN(ClosingTest)
#include "tst_closing.moc"
