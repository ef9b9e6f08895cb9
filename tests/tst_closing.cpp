#include "support/gui.h"

#include <QAbstractButton>
#include <QAction>
#include <QHeaderView>
#include <QSettings>
#include <QSignalSpy>

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
        const QMap<QString, QString> failed{
            {"row", gui::notSaved},
            {"refresh",
             "|The configuration could not be saved.\nThe Refresh operation has been canceled.|Close|Close"},
            {"close",
             "|The configuration could not be saved.\nWould you like to continue closing the application?\n\nIf you click 'Yes', your configuration will not be changed and the application will close.\nIf you click 'No', you will return to the application.|No,Yes|No"}};
        const QString question = "|Do you want to save the changes to the configuration?|No,Yes|No";
        return fails ? QStringList{question, failed[way]} : QStringList{question};
    }

    /// `path` is the answers, two where the save fails, and what is there afterwards: the current row, its
    /// edited name and whether the edit is pending.
    void check(const QString& way, const QString& path)
    {
        const QString answers = path.section(' ', 0, 0);
        const QMap<QChar, gui::Answer> answerOf{{'Y', click(QMessageBox::Yes)},
                                                {'N', click(QMessageBox::No)},
                                                {'C', click(QMessageBox::Close)},
                                                {'E', gui::escape}};
        QSettings().clear();
        openOn();
        const bool fails = answers.size() > 1;
        cam().knowsBroadcast = cam().hasNodeMap = !fails;
        type("editCustomName", "belt");
        for (const QChar answer : answers) {
            expect({answerOf[answer]});
        }
        leave(way);
        QCOMPARE(takeDialogs(), questions(way, fails));
        QString found = "closed";
        if (m_window->isVisible()) {
            found = current() == "lan0" ? "lan0" : current() + ' ' + text("editCustomName");
            found += canSave() ? " pending" : "";
        }
        QCOMPARE(way + ' ' + answers + ' ' + found, way + ' ' + path);
        QCOMPARE(sdk::get(cam().record, {"UserDefinedName"}), answers == "Y" ? "belt" : "");
        QCOMPARE(QSettings().allKeys().size(), found == "closed" ? 4 : 0);
    }

private slots:
    void everyWayAsksFirst()
    {
        const gui::Table<QString, QStringList> ways{
            {"row", {"Y lan0", "N lan0", "E lan0", "YC lan0"}},
            {"refresh", {"Y km-1 belt", "N km-1 ", "E km-1 ", "YC km-1 belt pending"}},
            {"close",
             {"Y closed", "N closed", "E closed", "YY closed", "YN km-1  pending", "YE km-1  pending"}},
        };
        for (const auto& [way, paths] : ways) {
            for (const QString& path : paths) {
                check(way, path);
            }
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
        select("km-2");
        const QStringList calls = m_world.take();
        QVERIFY(calls.contains("ForceIp(025E41000001, 192.168.1.50, 255.255.255.0, 0.0.0.0)"));
        QVERIFY(calls.contains("SetValue(belt, true)"));
        QCOMPARE(current() + ' ' + row("km-1").text(6), "km-2 192.168.1.50");
        QCOMPARE(row("lan1").child(0)->text(6), "192.168.1.50");
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
