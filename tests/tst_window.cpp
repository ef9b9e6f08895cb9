#include "support/gui.h"

#include "qtbase/helpandsupport.h"

#include <QAction>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QUrl>

namespace {

QString helpFile; // where the program believes the help to be

} // namespace

// Takes the place of GetHelpFilePath() in this program; see gui.cmake.
QString wrappedHelpFilePath() asm("__wrap__Z15GetHelpFilePathv");
QString wrappedHelpFilePath()
{
    return helpFile;
}

/// Title, menus, geometry and the commands around help and support.
class WindowTest : public gui::GuiTest
{
    Q_OBJECT

    QStringList menu(const char* name)
    {
        QStringList entries;
        for (const QAction* const action : child<QMenu>(name).actions()) {
            entries << (action->isSeparator()
                            ? "-"
                            : (action->text() + ' ' + action->shortcut().toString()).trimmed());
        }
        return entries;
    }

    void trigger(const char* action) { child<QAction>(action).trigger(); }

    QTemporaryDir m_directory;
    QList<QUrl> m_urls;

public slots:
    void keepUrl(const QUrl& url) { m_urls << url; }

private slots:
    void initTestCase()
    {
        GuiTest::initTestCase();
        helpFile = m_directory.filePath("help.html");
        QFile file(helpFile);
        QVERIFY(file.open(QIODevice::WriteOnly));
        for (const char* const scheme : {"file", "https", "mailto"}) {
            QDesktopServices::setUrlHandler(scheme, this, "keepUrl"); // no browser, no mail program
        }
    }

    void menusOfferTheCommands()
    {
        openWindow();
        QCOMPARE(takeTrace("qt.core.qmetaobject.connectslotsbyname"), // every other slot found its signal
                 QStringList{"warning QMetaObject::connectSlotsByName: No matching signal for "
                             "on_selectionInfo_linkActivated(QString)"});
        QStringList titles;
        for (const QAction* const action : m_window->menuBar()->actions()) {
            titles << action->text();
        }
        QCOMPARE(titles, (QStringList{"&File", "&View", "&?"}));
        QCOMPARE(menu("menuFile"), QStringList{"E&xit"});
        QCOMPARE(menu("menu_View"), QStringList{"&Refresh F5"});
        QCOMPARE(menu("menuHelp"), (QStringList{"View &Help F1", "-", "Submit &Feedback...",
                                                "&Contact Orvik Support...", "-", "&About Tessal Lanvic"}));
        press(QKeySequence("F1"));
        QCOMPARE(m_urls, QList<QUrl>{QUrl::fromLocalFile(helpFile)});
        m_urls.clear();

        m_world.take(true);
        press(QKeySequence("F5"));
        QCOMPARE(m_world.take(true), QStringList{"EnumerateDevicesAnySubnet(false)"});
        press(QKeySequence("Alt+Shift+Ctrl+N"));
        QCOMPARE(m_world.take(true), QStringList());
        trigger("actionExit");
        QVERIFY(!m_window->isVisible());
    }

    void withoutAHelpFileThereIsNoHelp()
    {
        const QString before = std::exchange(helpFile, m_directory.filePath("missing.html"));
        openWindow();
        QVERIFY(takeDebug().contains("debug View Help removed"));
        QCOMPARE(menu("menuHelp"), (QStringList{"-", "Submit &Feedback...", "&Contact Orvik Support...", "-",
                                                "&About Tessal Lanvic"}));
        helpFile = before; // even if it came back, F1 has gone with its entry
        press(QKeySequence("F1"));
        QCOMPARE(m_urls, QList<QUrl>());
    }

    void geometryIsRestoredWhereItCanBeSeen()
    {
        struct Case
        {
            QVariant pos;
            QVariant size;
            bool isRestored;
        };
        const QSize size(760, 600);
        const MainWnd first;
        for (const auto& [pos, saved, isRestored] : {
                 // The platform's one screen goes from 0, 0 to 799, 799.
                 Case{QPoint(20, 30), size, true},
                 Case{QPoint(-751, 30), size, true}, // shows its last column
                 Case{QPoint(-752, 30), size, false},
                 Case{QPoint(20, 815), size, true}, // its first row
                 Case{QPoint(20, 816), size, false},
                 Case{QPoint(3000, 30), size, false},
                 Case{{}, size, false},
                 Case{QPoint(20, 30), {}, false},
             }) {
            QSettings settings;
            settings.clear();
            for (const auto& [key, value] : {std::pair{"MainWindow/pos", pos}, {"MainWindow/size", saved}}) {
                if (value.isValid()) {
                    settings.setValue(key, value);
                }
            }
            const MainWnd window;
            QCOMPARE(window.size(), isRestored ? size : first.size());
            QCOMPARE(window.pos(), isRestored ? pos.toPoint() : first.pos());
        }
    }

    void geometryIsStoredAtClosing()
    {
        openWindow();
        m_window->setGeometry(40, 50, 770, 610);
        const QPoint pos = m_window->pos();
        QCOMPARE(QSettings().allKeys(), QStringList());
        m_window->close();
        QCOMPARE(QSettings().value("MainWindow/pos").toPoint(), pos);
        QCOMPARE(QSettings().value("MainWindow/size").toSize(), QSize(770, 610));

        const QString directory = QFileInfo(QSettings().fileName()).path() + "/..";
        openWindow();
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, "/proc/nowhere");
        m_window->close();
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, directory);
        QVERIFY(!m_window->isVisible());
        QCOMPARE(takeDebug().filter("could not be stored in /proc/nowhere").size(), 1);
    }

    void aboutAndFeedback()
    {
        openWindow();
        QStringList said;
        m_dialogs.expect([&](QWidget& about) {
            for (const QLabel* const label : about.findChildren<QLabel*>()) {
                said << label->text();
            }
            QTest::keyClick(&about, Qt::Key_Escape);
        });
        trigger("actionAbout");
        QVERIFY2(said.contains("Version 4.0.0.62 64-Bit"), qPrintable(said.join('\n')));
        QCOMPARE(said.filter(QRegularExpression("20\\d\\d-20\\d\\d")).size(), 1);
        trigger("actionFeedback");
        QVERIFY(m_urls.takeFirst().host().endsWith("orvik.example"));
    }

    void supportIsOfferedByMail()
    {
        QFile query(m_directory.filePath("xdg-mime"));
        QVERIFY(query.open(QIODevice::WriteOnly));
        query.write("#!/bin/sh\necho mail.desktop\n");
        query.close();
        query.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", m_directory.path().toLocal8Bit());
        openWindow();
        trigger("actionContact_Orvik_Support");
        qputenv("PATH", path);
        QCOMPARE(m_urls.size(), 1);
        QCOMPARE(m_urls.takeFirst().scheme(), "mailto");
        QCOMPARE(m_dialogs.take(), QStringList());
    }

    void supportIsOfferedByClipboard()
    {
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", "/nonexistent"); // no way to ask for a mail program
        QClipboard& clipboard = *QGuiApplication::clipboard();
        clipboard.setText("before");
        openWindow();
        QString details;
        m_dialogs.expect([&](QWidget& box) {
            details = qobject_cast<QMessageBox*>(&box)->detailedText();
            QTest::keyClick(&box, Qt::Key_Escape);
        });
        trigger("actionContact_Orvik_Support");
        QCOMPARE(clipboard.text(), "before");
        QVERIFY(details.contains("@orvik.example"));
        QCOMPARE(
            m_dialogs.take(),
            QStringList{
                "Contact Orvik Support|In order to contact Orvik support, you can copy the information "
                "(e-mail address and Tessal information) to your clipboard.\n\nThe copied information is "
                "visible via \u201CShow Details\u201D.\n\nAfterwards you can send this information to the "
                "indicated address (visible via \u201CShow Details\u201D).|Close,Copy to Clipboard,Show "
                "Details...|"});

        m_dialogs.expect([](QWidget& box) {
            for (QAbstractButton* const button : qobject_cast<QMessageBox*>(&box)->buttons()) {
                if (button->text() == "Copy to Clipboard") {
                    button->click();
                    return;
                }
            }
        });
        m_dialogs.expect(gui::click(QMessageBox::Ok));
        trigger("actionContact_Orvik_Support");
        qputenv("PATH", path);
        QCOMPARE(clipboard.text(), details);
        QCOMPARE(m_dialogs.take().last(),
                 "Contact Orvik Support|E-Mail information copied to clipboard successfully.|OK|OK");
        QCOMPARE(m_urls, QList<QUrl>());
    }
};

int main(int argc, char** argv)
{
    WindowTest test;
    return gui::run(test, argc, argv);
}

#include "tst_window.moc"
