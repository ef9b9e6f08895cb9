#include "support/gui.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QHeaderView>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QTextDocumentFragment>
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

/// Menus and their commands, what is kept between runs, and malicious texts.
class WindowTest : public gui::GuiTest
{
    Q_OBJECT

    /// Each menu as its title and entries, joined by "|".
    QStringList menus()
    {
        QStringList lines;
        for (const QAction* const menu : m_window->menuBar()->actions()) {
            lines << menu->text();
            for (const QAction* const entry : menu->menu<QMenu*>()->actions()) {
                const QString key = entry->shortcut().toString();
                lines.last() += '|' + (entry->text() + ' ' + key).trimmed();
                lines.last() += entry->autoRepeat() && !key.isEmpty() ? " while held down" : "";
            }
        }
        return lines;
    }

    void trigger(const char* action) { child<QAction>(action).trigger(); }
    QHeaderView& header() { return *tree().header(); }

    QList<QUrl> m_urls;

    Q_SLOT void keepUrl(const QUrl& url) { m_urls << url; }

private slots:
    void init()
    {
        GuiTest::init();
        m_urls.clear();
        helpFile = QCoreApplication::applicationFilePath();
        for (const char* const scheme : {"file", "https", "mailto"}) {
            QDesktopServices::setUrlHandler(scheme, this, "keepUrl"); // no browser, no mail program
        }
    }

    void menusOfferTheCommands()
    {
        const QString others = "||Submit &Feedback...|&Contact Orvik Support...||&About Tessal Lanvic";
        openWindow();
        QCOMPARE(
            takeTrace("qt.core.qmetaobject.connectslotsbyname"), // every other slot found its signal
            QStringList{
                "warning QMetaObject::connectSlotsByName: No matching signal for on_selectionInfo_linkActivated(QString)"});
        QCOMPARE(menus(), (QStringList{"&File|E&xit", "&View|&Refresh F5", "&?|View &Help F1" + others}));
        QString said;
        expect({[&](QWidget& about) {
                    for (const QLabel* const label : about.findChildren<QLabel*>()) {
                        QVERIFY(label->openExternalLinks() || !label->text().contains("href"));
                        said += label->text() + '\n';
                    }
                    gui::escape(about);
                },
                gui::escape});
        trigger("actionAbout");
        const QRegularExpression version("Version 4.0.0.62 64-Bit\n[^\n]+\n.* 20\\d\\d-20\\d\\d Orvik\n");
        QVERIFY2(said.contains(version), qPrintable(said));
        trigger("actionFeedback");
        const QString page = "https://www.orvik.example/feedback";
        QDesktopServices::unsetUrlHandler("https");
        trigger("actionFeedback");
        QCOMPARE(takeDialogs(),
                 (QStringList{
                     "About Tessal Lanvic",
                     "Submit Feedback|No browser could be started.\n\nPlease open this address yourself:\n" +
                         page + "|OK|"}));
        press(QKeySequence("F1"));
        QCOMPARE(m_urls, (QList<QUrl>{QUrl(page), QUrl::fromLocalFile(helpFile)}));
        helpFile = "/nowhere"; // gone since the start
        press(QKeySequence("F1"));
        trigger("actionExit");
        QVERIFY(!m_window->isVisible());
        openWindow();
        QVERIFY(takeDebug().contains("debug View Help removed"));
        QCOMPARE(menus().last(), "&?" + others);
        QCOMPARE(m_urls.size(), 2);
    }

    void geometryIsRestoredWhereItCanBeSeen()
    {
        const auto geometry = [] {
            const MainWnd window;
            return QRect(window.pos(), window.size());
        };
        const auto restored = [&](int x, int y, int width = 760) {
            QSettings().setValue("MainWindow/pos", QPoint(x, y));
            QSettings().setValue("MainWindow/size", QSize(width, 600));
            return geometry();
        };
        const auto seen = [](int x, int y) { return QRect(x, y, 760, 600); };
        QSettings().setValue("MainWindow/size", QSize(760, 600));
        const QRect usual = geometry(); // of no use without a position
        // The platform's one screen goes from 0, 0 to 799, 799.
        QCOMPARE(restored(-751, 30), seen(-751, 30)); // by its last column
        QCOMPARE(restored(-752, 30), usual);
        QCOMPARE(restored(807, 30), seen(807, 30));
        QCOMPARE(restored(808, 30), usual);
        QCOMPARE(restored(20, 815), seen(20, 815));
        QCOMPARE(restored(20, 816), usual);
        QCOMPARE(restored(20, -591), seen(20, -591));
        QCOMPARE(restored(20, -592), usual);
        QCOMPARE(restored(20, 30, 0), usual);
    }

    void theLayoutComesBack()
    {
        openWindow();
        const int width = header().sectionSize(1);
        m_window->move(40, 50);
        m_window->resize(770, 610);
        header().resizeSection(1, width + 33);
        m_window->close();
        QCOMPARE(QSettings().allKeys(), (QStringList{"MainWindow/header", "MainWindow/headerver",
                                                     "MainWindow/pos", "MainWindow/size"}));
        QCOMPARE(QSettings().value("MainWindow/headerver"), 1);
        openWindow();
        QCOMPARE(QRect(m_window->pos(), m_window->size()), QRect(40, 50, 770, 610));
        QCOMPARE(header().sectionSize(1), width + 33);
        QSettings().setValue("MainWindow/headerver", 2); // another layout
        openWindow();
        QCOMPARE(header().sectionSize(1), width);

        const QString directory = QFileInfo(QSettings().fileName()).path() + "/..";
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, "/proc/nowhere");
        m_window->close();
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, directory);
        QVERIFY(!m_window->isVisible());
        QCOMPARE(takeDebug().filter("could not be stored in /proc/nowhere").size(), 1);
    }

    void supportIsOfferedByMailOrClipboard()
    {
        const char* const command = "actionContact_Orvik_Support";
        const gui::Adapter usb("enx020000000107", {}, "02:00:00:00:01:07");
        const QTemporaryDir directory;
        QFile query(directory.filePath("xdg-mime")); // names a mail program
        QVERIFY(query.open(QFile::WriteOnly) && query.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        query.write(
            "#!/bin/sh\n[ \"$*\" = \"query default x-scheme-handler/mailto\" ] && echo mail.desktop\n");
        query.close();
        const QByteArray path = qgetenv("PATH");
        openWindow();
        qputenv("PATH", directory.path().toLocal8Bit());
        trigger(command);
        const QUrl mail = m_urls.takeFirst();
        QCOMPARE(mail.scheme() + ':' + mail.path(), "mailto:support@orvik.example");
        QVERIFY(mail.query(QUrl::FullyDecoded).contains("MTU"));

        QVERIFY(query.remove() && QFile::link("/bin/true", directory.filePath("xdg-mime"))); // names none
        QClipboard& clipboard = *QGuiApplication::clipboard();
        clipboard.setText("before");
        QString details;
        const auto copy = [&](QWidget& box) {
            details = qobject_cast<QMessageBox*>(&box)->detailedText();
            for (QAbstractButton* const button : box.findChildren<QAbstractButton*>()) {
                if (button->text() == "Copy to Clipboard") {
                    return button->click();
                }
            }
        };
        expect({gui::click(QMessageBox::Close), copy, gui::click(QMessageBox::Ok)});
        trigger(command);
        QCOMPARE(clipboard.text(), "before");
        trigger(command);
        qputenv("PATH", path);
        QCOMPARE(clipboard.text(), details);
        QVERIFY(details.contains("support@orvik.example") && details.contains("MTU"));
        QVERIFY(!details.contains("020000000107")); // an adapter's name can hold its hardware address
        QCOMPARE(takeIcons(), (QList{QMessageBox::Warning, QMessageBox::Warning, QMessageBox::Information}));
        const QString title = "Contact Orvik Support|";
        const QString offer =
            title +
            "In order to contact Orvik support, you can copy the information (e-mail address and Tessal information) to your clipboard.\n\n"
            "The copied information is visible via \u201CShow Details\u201D.\n\n"
            "Afterwards you can send this information to the indicated address (visible via \u201CShow Details\u201D).|Close,Copy to Clipboard,Show Details...|";
        QCOMPARE(takeDialogs(),
                 (QStringList{offer, offer,
                              title + "E-Mail information copied to clipboard successfully.|OK|OK"}));
    }

    void aCamerasTextsAreShownLiterally()
    {
        // Markup, placeholders and a mnemonic; controls; what turns around what follows; no UTF-8.
        const char* const sent =
            "<b>&amp;</b>%1 %s %n &Save a\x1b[31m\tb\n\x7f\xc2\x9bq\xe2\x80\xa8"
            "gate\xe2\x80\xaetag\xe2\x80\xac\xe2\x81\xa7is\xe2\x81\xa9\xe2\x80\x8f\xd7\xa9\xff";
        const QString shown = "<b>&amp;</b>%1 %s %n &Save a�[31m�b���q�gate�tag��is��\u05E9�";
        m_world.cameras = {sdk::with(sdk::camera(), {{"VendorName", sent},
                                                     {"ModelName", sent},
                                                     {"UserDefinedName", sent},
                                                     {"SerialNumber", sent},
                                                     {"FriendlyName", sent}})};
        openWindow();
        select("02:5E:41:00:00:01");
        QCOMPARE(tree().currentItem()->text(1), shown);
        const QString details = QTextDocumentFragment::fromHtml(text("labelSelectionInfo")).toPlainText();
        QVERIFY2(details.count(shown) == 5, qPrintable(details));
    }
};

WINDOW_TEST_MAIN(WindowTest)
#include "tst_window.moc"
