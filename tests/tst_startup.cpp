#include "application.h"
#include "qtbase/ipaddresswidget.h"
#include "support/gui.h"
#include "translation.h"

#include <QApplication>
#include <QMenuBar>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <QXmlStreamReader>

#include "qtbase/formatting.h" // moc cannot read it before the others
#include "qtbase/helpandsupport.h"

namespace {

/// What a translation must leave as it is: placeholders, markup, keys, whether there is a mnemonic.
QStringList fixedParts(const QString& text)
{
    static const QRegularExpression pattern("%\\d+|%[a-z]+|<[^>]*>|(?:(?:Alt|Shift|Ctrl)\\+)+\\w|\\bF\\d+|"
                                            "&(?=[\\w?])|\\.\\.\\.$|:$|\\n|\\d+\\.[\\d.]+\\d");
    QStringList found;
    for (auto match = pattern.globalMatch(text); match.hasNext();) {
        found << match.next().captured();
    }
    found.sort();
    return found;
}

/// The values of an attribute on a page of the help, in their order.
QStringList valuesOf(const QString& attribute, const QString& page)
{
    QStringList found;
    QFile file(page);
    if (file.open(QFile::ReadOnly)) {
        const QRegularExpression pattern(" " + attribute + "=\"([^\"]*)\"");
        for (auto match = pattern.globalMatch(QString::fromUtf8(file.readAll())); match.hasNext();) {
            found << match.next().captured(1);
        }
    }
    return found;
}

int runProgram()
{
    QByteArray name("lanvic");
    char* arguments[] = {name.data(), nullptr};
    return runApplication(1, arguments);
}

} // namespace

/// The whole program from start to end, and the language that it speaks.
class StartupTest : public QObject
{
    Q_OBJECT

    /// What the user sees of a window with one camera.
    static QStringList look(QWidget& window)
    {
        const auto& tree = gui::child<QTreeWidget>(window, "treeWidget");
        const auto bar = gui::child<QMenuBar>(window, "menuBar").actions();
        QStringList letters{gui::mnemonics(gui::child<QWidget>(window, "IpConfigurationWidgetClass"), bar),
                            gui::mnemonics(IpAddressWidget(&window))};
        for (const QAction* const menu : bar) {
            letters << gui::mnemonics(*menu->menu(), menu->menu()->actions());
        }
        const QString entry = SOURCES "/packaging/" + QGuiApplication::desktopFileName() + ".desktop";
        return {window.windowTitle(),
                "width " + QString::number(window.width()),
                window.windowIcon().pixmap(48).isNull() ? "no picture" : "picture",
                QFile::exists(entry) ? "known to the desktop" : entry,
                gui::child<QMenu>(window, "menuFile").title(),
                gui::child<QPushButton>(window, "btnRefresh").text(),
                tree.headerItem()->text(2),
                tree.topLevelItem(0)->child(0)->text(5),
                formatIPConfiguration("5", 0), // as the trace has it
                QCoreApplication::translate("QPlatformTheme", "Cancel"),
                QDir(SOURCES).relativeFilePath(GetHelpFilePath()),
                "letters twice: " + letters.filter(QRegularExpression("(\\S)\\1")).join(' ')};
    }

public:
    // Qt asks for the session's language once, at the first look at it.
    static void initMain() { qputenv("LC_ALL", "de_AT.UTF-8"); }

private slots:
    void aGermanSessionFromStartToEnd()
    {
        const gui::Adapter lan("lan0", {"192.168.1.5/24"}, "02:00:00:00:01:05");
        const QTemporaryDir settings;
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
        QSettings("Orvik", "Tessal Lanvic").setValue("MainWindow/pos", QPoint(20, 30));
        QSettings("Orvik", "Tessal Lanvic").setValue("MainWindow/size", QSize(770, 610));
        sdk::world().cameras = {sdk::camera()};
        QStringList seen;
        const auto note = [&](const QString& what) {
            const bool isShown = qApp != nullptr && QApplication::activeWindow() != nullptr;
            seen << what + (qApp == nullptr ? " alone" : isShown ? " before the user" : " in the background");
        };
        auto& script = sdk::world().at;
        script["TessalInitialize"] = [&] { note("initialised"); };
        script["EnumerateDevicesAnySubnet"] = [&] {
            note("discovered");
            QTimer::singleShot(0, qApp, [&] {
                QVERIFY(QTest::qWaitFor([] { return QApplication::activeWindow() != nullptr; }));
                note("seen");
                seen << look(*QApplication::activeWindow());
                QApplication::activeWindow()->close();
            });
        };
        script["ReleaseTl"] = [&] { note("released"); };
        script["TessalTerminate"] = [&] { note("terminated"); };

        const TraceCapture trace;
        QCOMPARE(runProgram(), 0);
        QVERIFY(trace.lines("qt.core.qmetaobject.connectslotsbyname").isEmpty());
        QCOMPARE(seen,
                 (QStringList{"initialised alone", "discovered in the background", "seen before the user",
                              "Tessal Lanvic v4.0 64-Bit", "width 770", "picture", "known to the desktop",
                              "&Datei", "Aktualisieren", "Seriennummer", "Statische IP",
                              "Static IP, Auto IP (LLA)", "Abbrechen", "docs/help/de/index.html",
                              "letters twice: ", "released in the background", "terminated alone"}));
        QVERIFY(sdk::world().take().contains("TessalTerminate(true)"));
        QCOMPARE(QDir(":/Lanvic/Resources").entryList(),
                 QDir(SOURCES "/Lanvic/Resources").entryList(QDir::Files));
    }

    void withoutTheSdkNothingStarts()
    {
        sdk::world() = {};
        sdk::world().at["TessalInitialize"] = [] { throw std::runtime_error("no SDK"); };
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, (void)runProgram());
        QCOMPARE(sdk::world().take(), QStringList{"TessalInitialize()"});
    }

    void theFirstSupportedLanguageIsSelected()
    {
        QCOMPARE(selectLanguage({"fr-FR", "fr", "de-DE"}), "de");
        QCOMPARE(selectLanguage({"en-GB", "en", "de-DE"}), "en");
        QCOMPARE(selectLanguage({"C", "de-DE"}), "en");
        QCOMPARE(selectLanguage({"fr-FR", "fr"}), "en");
    }

    void everyTextOfTheProgramIsTranslatedAndNoOther()
    {
        const QTemporaryDir directory;
        QFile merged(directory.filePath("merged_de.ts"));
        QVERIFY(QFile::copy(SOURCES "/Lanvic/translations/lanvic_de.ts", merged.fileName()));
        const QStringList arguments{SOURCES "/Lanvic", SOURCES "/platform", "-ts", merged.fileName()};
        QCOMPARE(QProcess::execute(LUPDATE, arguments), 0);
        QVERIFY(merged.open(QFile::ReadOnly));
        QXmlStreamReader xml(&merged);
        QString source;
        while (!xml.atEnd()) {
            const bool begins = xml.readNext() == QXmlStreamReader::StartElement;
            if (begins && xml.name() == QLatin1String("source")) {
                source = xml.readElementText();
            } else if (begins && xml.name() == QLatin1String("translation")) {
                // Marked is what is missing, and what the program says no longer.
                QVERIFY2(xml.attributes().isEmpty(), qPrintable(source));
                const QString text = xml.readElementText();
                QVERIFY2(!text.isEmpty() && fixedParts(text) == fixedParts(source), qPrintable(text));
            }
        }
        QVERIFY(!xml.hasError());
    }

    void theHelpIsCompleteInEveryLanguage_data()
    {
        QTest::addColumn<QString>("page");
        QTest::newRow("English") << SOURCES "/docs/help/index.html";
        QTest::newRow("German") << SOURCES "/docs/help/de/index.html";
    }

    void theHelpIsCompleteInEveryLanguage()
    {
        QFETCH(const QString, page);
        const QStringList ids = valuesOf("id", page);
        QVERIFY(!ids.isEmpty());
        QCOMPARE(ids, valuesOf("id", SOURCES "/docs/help/index.html"));
        const QStringList links = valuesOf("href", page) + valuesOf("src", page);
        for (const QString& link : links) {
            QVERIFY2(link.startsWith('#') ? ids.contains(link.mid(1))
                                          : QFile::exists(QFileInfo(page).dir().filePath(link)),
                     qPrintable(link));
        }
    }
};

QTEST_APPLESS_MAIN(StartupTest)
#include "tst_startup.moc"
