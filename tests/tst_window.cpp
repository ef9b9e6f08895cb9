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

    /// Each menu as its title and entries, joined by "|".
    QStringList menus()
    {
        QStringList lines;
        for (const QAction* const menu : m_window->menuBar()->actions()) {
            QStringList entries{menu->text()};
            for (const QAction* const entry : menu->menu<QMenu*>()->actions()) {
                entries << (entry->text() + ' ' + entry->shortcut().toString()).trimmed();
            }
            lines << entries.join('|');
        }
        return lines;
    }

    void trigger(const char* action) { child<QAction>(action).trigger(); }

    QTemporaryDir m_directory;
    QList<QUrl> m_urls;

    Q_SLOT void keepUrl(const QUrl& url) { m_urls << url; }

private slots:
    void initTestCase()
    {
        GuiTest::initTestCase();
        helpFile = QCoreApplication::applicationFilePath();
        for (const char* const scheme : {"file", "https", "mailto"}) {
            QDesktopServices::setUrlHandler(scheme, this, "keepUrl"); // no browser, no mail program
        }
    }

    void init()
    {
        GuiTest::init();
        m_urls.clear();
    }

    void menusOfferTheCommands()
    {
        openWindow();
        QCOMPARE(
            takeTrace("qt.core.qmetaobject.connectslotsbyname"), // every other slot found its signal
            QStringList{
                "warning QMetaObject::connectSlotsByName: No matching signal for on_selectionInfo_linkActivated(QString)"});
        QCOMPARE(
            menus(),
            (QStringList{
                "&File|E&xit", "&View|&Refresh F5",
                "&?|View &Help F1||Submit &Feedback...|&Contact Orvik Support...||&About Tessal Lanvic"}));
        press(QKeySequence("F1"));
        QCOMPARE(m_urls, QList<QUrl>{QUrl::fromLocalFile(helpFile)});
        m_world.take(true);
        refresh();
        QCOMPARE(m_world.take(true), QStringList{"EnumerateDevicesAnySubnet(false)"});
        press(QKeySequence("Alt+Shift+Ctrl+N"));
        QCOMPARE(m_world.take(true), QStringList());
        trigger("actionExit");
        QVERIFY(!m_window->isVisible());
    }

    void withoutAHelpFileThereIsNoHelp()
    {
        const QString before = std::exchange(helpFile, "/nowhere");
        openWindow();
        QVERIFY(takeDebug().contains("debug View Help removed"));
        QVERIFY(menus().last().startsWith("&?||Submit &Feedback..."));
        helpFile = before; // even if it came back, F1 has gone with its entry
        press(QKeySequence("F1"));
        QCOMPARE(m_urls, QList<QUrl>());
    }

    void geometryIsRestoredWhereItCanBeSeen()
    {
        const QSize size(760, 600);
        const MainWnd first;
        const QRect usual(first.pos(), first.size());
        const auto isRestored = [&](const QVariant& pos, const QVariant& stored) {
            QSettings().clear();
            for (const auto& [key, value] : {std::pair{"MainWindow/pos", pos}, {"MainWindow/size", stored}}) {
                if (value.isValid()) {
                    QSettings().setValue(key, value);
                }
            }
            const MainWnd window;
            const QRect place(window.pos(), window.size());
            return place == QRect(pos.toPoint(), size) ? "yes" : place == usual ? "no" : "partly";
        };
        // The platform's one screen goes from 0, 0 to 799, 799.
        for (const auto& [seen, hidden] :
             {std::pair{QPoint(-751, 30), QPoint(-752, 30)}, // by its last column
              {QPoint(807, 30), QPoint(808, 30)},
              {QPoint(20, 815), QPoint(20, 816)},
              {QPoint(20, -591), QPoint(20, -592)}}) {
            QCOMPARE(isRestored(seen, size), "yes");
            QCOMPARE(isRestored(hidden, size), "no");
        }
        QCOMPARE(isRestored(QPoint(20, 30), QSize(0, 600)), "no");
        QCOMPARE(isRestored({}, size), "no");
        QCOMPARE(isRestored(QPoint(20, 30), {}), "no");
    }

    void geometryIsStoredAtClosing()
    {
        openWindow();
        m_window->setGeometry(40, 50, 770, 610);
        const QRect place(m_window->pos(), m_window->size());
        QCOMPARE(QSettings().allKeys(), QStringList());
        m_window->close();
        openWindow();
        QCOMPARE(QRect(m_window->pos(), m_window->size()), place);

        const QString directory = QFileInfo(QSettings().fileName()).path() + "/..";
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, "/proc/nowhere");
        m_window->close();
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, directory);
        QVERIFY(!m_window->isVisible());
        QCOMPARE(takeDebug().filter("could not be stored in /proc/nowhere").size(), 1);
    }

    void aboutAndFeedback()
    {
        openWindow();
        QString said;
        expect({[&](QWidget& about) {
            for (const QLabel* const label : about.findChildren<QLabel*>()) {
                said += label->text() + '\n';
            }
            gui::escape(about);
        }});
        trigger("actionAbout");
        QVERIFY2(said.contains("Version 4.0.0.62 64-Bit\n"), qPrintable(said));
        QVERIFY2(said.contains(QRegularExpression("20\\d\\d-20\\d\\d")), qPrintable(said));
        trigger("actionFeedback");
        QVERIFY(m_urls.takeFirst().host().endsWith("orvik.example"));
    }

    void supportIsOfferedByMailOrClipboard()
    {
        QVERIFY(QFile::link("/bin/echo", m_directory.filePath("xdg-mime"))); // names some mail program
        const QByteArray path = qgetenv("PATH");
        openWindow();
        qputenv("PATH", m_directory.path().toLocal8Bit());
        trigger("actionContact_Orvik_Support");
        QCOMPARE(m_urls.takeFirst().scheme(), "mailto");
        QCOMPARE(takeDialogs(), QStringList());

        qputenv("PATH", "/nonexistent");
        QClipboard& clipboard = *QGuiApplication::clipboard();
        clipboard.setText("before");
        QString details;
        expect({[&](QWidget& box) {
            details = qobject_cast<QMessageBox*>(&box)->detailedText();
            gui::escape(box);
        }});
        trigger("actionContact_Orvik_Support");
        QCOMPARE(clipboard.text(), "before");
        QVERIFY(details.contains("@orvik.example") && details.contains("MTU"));
        QCOMPARE(
            takeDialogs(),
            QStringList{
                "Contact Orvik Support|In order to contact Orvik support, you can copy the information (e-mail address and Tessal information) to your clipboard.\n\n"
                "The copied information is visible via \u201CShow Details\u201D.\n\n"
                "Afterwards you can send this information to the indicated address (visible via \u201CShow Details\u201D).|Close,Copy to Clipboard,Show Details...|"});

        expect({[](QWidget& box) {
                    for (QAbstractButton* const button : qobject_cast<QMessageBox*>(&box)->buttons()) {
                        if (button->text() == "Copy to Clipboard") {
                            return button->click();
                        }
                    }
                },
                gui::click(QMessageBox::Ok)});
        trigger("actionContact_Orvik_Support");
        qputenv("PATH", path);
        QCOMPARE(clipboard.text(), details);
        QCOMPARE(takeDialogs().last(),
                 "Contact Orvik Support|E-Mail information copied to clipboard successfully.|OK|OK");
        QCOMPARE(m_urls, QList<QUrl>());
    }
};

WINDOW_TEST_MAIN(WindowTest)
#include "tst_window.moc"
