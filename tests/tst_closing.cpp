#include "support/gui.h"

#include <QAbstractButton>
#include <QHeaderView>
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

    void leave(const QString& way)
    {
        if (way == "row") {
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
        openOnCamera(camera());
        cam().knowsBroadcast = cam().hasNodeMap = !fails;
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
            after += canSave() ? " pending" : "";
        }
        QCOMPARE(after, row.after);
        QCOMPARE(sdk::get(cam().record, "UserDefinedName"), answers == "Y" ? "belt" : "");
        QCOMPARE(QSettings().allKeys().size(), after == "closed" ? 4 : 0);
    }

    void whatCannotBeWrittenIsDroppedUnasked()
    {
        for (const QString way : {"row", "refresh", "close"}) {
            openOnCamera(camera());
            type("editIpAddress", "192.168.1");
            leave(way);
            QCOMPARE(m_dialogs.take() + m_world.take(), QStringList());
            QCOMPARE(m_window->isVisible(), way != "close");
            select("km-1");
            QCOMPARE(text("editIpAddress"), way == "close" ? "192.168.1" : "192.168.1.9");
        }
        QCOMPARE(QSettings().value("MainWindow/headerver").toInt(), 1);
    }

    void aSaveThatTakesEffectLateIsDropped()
    {
        openOnCamera(camera());
        type("editCustomName", "belt");
        m_dialogs.expect([this](QWidget& question) {
            QTRY_VERIFY(!child<QAbstractButton>("btnWriteConfiguration").isDown());
            gui::click(QMessageBox::No)(question);
        });
        press(QKeySequence("Ctrl+S")); // the button acts a moment later
        leave("refresh");
        QCOMPARE(m_world.take(), QStringList());
    }

    void aFailedSaveShowsTheCameraAsItIsNow()
    {
        for (const bool isClosing : {false, true}) {
            openOnCamera(camera());
            cam().comesBack = false; // takes the command and stays away
            clickOn("btnUseDhcp");
            m_dialogs.expect(gui::click(QMessageBox::Yes));
            m_dialogs.expect(gui::press(Qt::Key_Escape)); // not found again
            m_dialogs.expect(gui::press(Qt::Key_Escape)); // no temporary address
            m_dialogs.expect(gui::click(isClosing ? QMessageBox::No : QMessageBox::Close));
            leave(isClosing ? "close" : "row");
            QVERIFY(m_window->isVisible());
            QCOMPARE(row("km-1").text(5), "DHCP");
            QCOMPARE(tree().currentItem()->text(0), isClosing ? "km-1" : "lan0");
            QCOMPARE(text("editIpAddress"), QString());
        }
        leave("close"); // the command went through, so nothing is pending any more
        QVERIFY(!m_window->isVisible());
    }

    void theCameraThatIsLeftGetsTheTemporaryAddress()
    {
        openOnCamera(camera("km-1", "025E41000001", "10.9.9.9"));
        cam().knowsBroadcast = false;
        m_world.cameras.push_back(camera("km-2", "025E41000002", "192.168.1.10"));
        leave("refresh");
        type("editCustomName", "belt");
        m_dialogs.expect(gui::click(QMessageBox::Yes));
        m_dialogs.expect(gui::fill({{"editIpAddress", "192.168.1.50"}}));
        select("km-2");
        const QStringList calls = m_world.take();
        QVERIFY(calls.contains("ForceIp(025E41000001, 192.168.1.50, 255.255.255.0, 0.0.0.0)"));
        QVERIFY(calls.contains("SetValue(belt, true)"));
        QCOMPARE(tree().currentItem()->text(0), "km-2");
    }

    void theHeaderComesBack()
    {
        for (const QVariant& version : {QVariant(1), QVariant(2), QVariant()}) {
            QSettings().clear();
            openOnCamera(camera());
            QHeaderView* const header = tree().header();
            const int width = header->sectionSize(1);
            header->resizeSection(1, width + 33);
            header->moveSection(0, 2);
            leave("close");
            QCOMPARE(QSettings().value("MainWindow/headerver").toInt(), 1);
            QSettings().setValue("MainWindow/headerver", version);
            openOnCamera(camera());
            QCOMPARE(tree().header()->sectionSize(1), version == 1 ? width + 33 : width);
            QCOMPARE(tree().header()->visualIndex(0), version == 1 ? 2 : 0);
        }
    }
};

int main(int argc, char** argv)
{
    ClosingTest test;
    return gui::run(test, argc, argv);
}

#include "tst_closing.moc"
