#include "support/gui.h"

#include <QHeaderView>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>

using sdk::camera;

/// Edits are never lost unasked: on a change of the row, a refresh and at closing.
class ClosingTest : public gui::GuiTest
{
    Q_OBJECT

    struct Path
    {
        const char* name;
        const char* way;
        const char* answers; // letters: Yes, No, Escape, Close; the last two when the save fails
        const char* after;   // current row, its edited name, whether the edit is pending; or closed
    };
    struct Version
    {
        const char* name;
        QVariant stored;
        bool comesBack;
    };

    sdk::Camera& cam() { return m_world.cameras.front(); }

    /// A window on one camera, selected. With `fails`, no save can succeed.
    void open(bool fails = false)
    {
        m_world.cameras = {camera("km-1", "025E41000001", "192.168.1.9")};
        cam().knowsBroadcast = cam().hasNodeMap = !fails;
        openWindow();
        select("km-1");
        m_world.take();
    }
    void leave(const QString& way)
    {
        if (way == "row") {
            tree().setFocus();
            QTest::keyClick(&tree(), Qt::Key_Up);
        } else if (way == "refresh") {
            press(QKeySequence("F5"));
        } else {
            m_window->close();
        }
    }

private slots:
    void everyWayAsksFirst_data()
    {
        gui::rows<Path>({
            {"row, yes", "row", "Y", "lan0"},
            {"row, no", "row", "N", "lan0"},
            {"row, Escape", "row", "E", "lan0"},
            {"row, fails", "row", "YC", "lan0"},
            {"refresh, yes", "refresh", "Y", "km-1 belt"},
            {"refresh, no", "refresh", "N", "km-1 "},
            {"refresh, Escape", "refresh", "E", "km-1 "},
            {"refresh, fails", "refresh", "YC", "km-1 belt pending"},
            {"close, yes", "close", "Y", "closed"},
            {"close, no", "close", "N", "closed"},
            {"close, Escape", "close", "E", "closed"},
            {"close, fails, close all the same", "close", "YY", "closed"},
            {"close, fails, stay", "close", "YN", "km-1  pending"},
            {"close, fails, Escape", "close", "YE", "km-1  pending"},
        });
    }
    void everyWayAsksFirst()
    {
        QFETCH(const Path, row);
        const QString answers = row.answers;
        const QString way = row.way;
        const bool fails = answers.size() > 1;
        open(fails);
        type("editCustomName", "belt");
        for (const QChar answer : answers) {
            m_dialogs.expect(answer == 'Y'   ? gui::click(QMessageBox::Yes)
                             : answer == 'N' ? gui::click(QMessageBox::No)
                             : answer == 'C' ? gui::click(QMessageBox::Close)
                                             : gui::press(Qt::Key_Escape));
        }
        leave(way);

        QStringList asked{"|Do you want to save the changes to the configuration?|No,Yes|No"};
        if (fails && way == "close") {
            asked << "|The configuration could not be saved.\nWould you like to continue closing the "
                     "application?\n\nIf you click 'Yes', your configuration will not be changed and the "
                     "application will close.\nIf you click 'No', you will return to the "
                     "application.|No,Yes|No";
        } else if (fails) {
            asked << QString("|The configuration could not be saved.%1|Close|Close")
                         .arg(way == "refresh" ? "\nThe Refresh operation has been canceled." : "");
        }
        QCOMPARE(m_dialogs.take(), asked);
        QString after = "closed";
        if (m_window->isVisible()) {
            after = tree().currentItem()->text(0);
            after += after == "lan0" ? QString() : ' ' + text("editCustomName");
            after += child<QPushButton>("btnWriteConfiguration").isEnabled() ? " pending" : "";
        }
        QCOMPARE(after, row.after);
        QCOMPARE(sdk::get(cam().record, "UserDefinedName"), answers == "Y" ? "belt" : "");
        QCOMPARE(QSettings().allKeys().size(), after == "closed" ? 4 : 0);
    }

    void whatCannotBeWrittenIsDroppedUnasked()
    {
        for (const QString way : {"row", "refresh", "close"}) {
            open();
            type("editIpAddress", "192.168.1");
            leave(way);
            QCOMPARE(m_dialogs.take() + m_world.take(), QStringList());
            QCOMPARE(m_window->isVisible(), way != "close");
            if (way != "close") {
                select("km-1");
                QCOMPARE(text("editIpAddress"), "192.168.1.9");
            }
            leave(way); // and with nothing edited nobody is asked either
            QCOMPARE(m_dialogs.take(), QStringList());
        }
        QCOMPARE(QSettings().value("MainWindow/headerver").toInt(), 1);
    }

    void aFailedSaveShowsTheRowAsItIsNow()
    {
        open();
        cam().comesBack = false; // takes the command and stays away
        QTest::mouseClick(&child<QRadioButton>("btnUseDhcp"), Qt::LeftButton);
        m_dialogs.expect(gui::click(QMessageBox::Yes));
        m_dialogs.expect(gui::press(Qt::Key_Escape)); // not found again
        m_dialogs.expect(gui::press(Qt::Key_Escape)); // no temporary address
        m_dialogs.expect(gui::click(QMessageBox::Close));
        leave("row");
        QCOMPARE(row("km-1").text(5), "DHCP");
        QCOMPARE(tree().currentItem()->text(0), "lan0");
    }

    void aFailedSaveCanKeepTheProgramOpen()
    {
        open();
        cam().comesBack = false;
        type("editIpAddress", "192.168.1.20");
        m_dialogs.expect(gui::click(QMessageBox::Yes));
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        m_dialogs.expect(gui::press(Qt::Key_Escape));
        m_dialogs.expect(gui::click(QMessageBox::No));
        leave("close");
        QVERIFY(m_window->isVisible());
        QCOMPARE(row("km-1").text(6) + ' ' + text("editIpAddress"), "192.168.1.20 192.168.1.20");
        QCOMPARE(QSettings().allKeys(), QStringList());
        leave("close"); // the command went through, so nothing is pending any more
        QVERIFY(!m_window->isVisible());
    }

    void theHeaderComesBack_data()
    {
        gui::rows<Version>(
            {{"this version", 1, true}, {"another version", 2, false}, {"no version", {}, false}});
    }
    void theHeaderComesBack()
    {
        QFETCH(const Version, row);
        open();
        const int width = tree().header()->sectionSize(1);
        tree().header()->resizeSection(1, width + 33);
        tree().header()->moveSection(0, 2);
        leave("close");
        QSettings().setValue("MainWindow/headerver", row.stored);
        open();
        QCOMPARE(tree().header()->sectionSize(1), row.comesBack ? width + 33 : width);
        QCOMPARE(tree().header()->visualIndex(0), row.comesBack ? 2 : 0);
    }
};

int main(int argc, char** argv)
{
    ClosingTest test;
    return gui::run(test, argc, argv);
}

#include "tst_closing.moc"
