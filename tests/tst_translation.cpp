#include "application.h"
#include "qtbase/ipaddresswidget.h"
#include "support/gui.h"
#include "translation.h"

#include <QApplication>
#include <QMenuBar>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

/// Context and source text of every entry, and its translation; null while that is unfinished.
QMap<QString, QString> entries(const QString& file)
{
    QMap<QString, QString> found;
    QFile input(file);
    if (!input.open(QIODevice::ReadOnly)) {
        return found;
    }
    QXmlStreamReader xml(&input);
    QString context, source;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText() + ": ";
        } else if (xml.name() == QLatin1String("source")) {
            source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            const bool isFinished = xml.attributes().isEmpty();
            const QString text = xml.readElementText();
            found[context + source] = isFinished && !text.isEmpty() ? text : QString();
        }
    }
    return found;
}

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

} // namespace

class TranslationTest : public QObject
{
    Q_OBJECT

    QString m_german = QStringLiteral(SOURCES) + "/Lanvic/translations/lanvic_de.ts";

private slots:
    void everyTextOfTheProgramIsTranslatedAndNoOther()
    {
        const QTemporaryDir directory;
        const QString current = directory.filePath("current.ts");
        const QString sources = SOURCES;
        const QStringList arguments{"-silent", sources + "/Lanvic", sources + "/platform", "-ts", current};
        QCOMPARE(QProcess::execute(LUPDATE, arguments), 0);
        const auto translated = entries(m_german);
        QVERIFY(translated.size() > 100);
        QCOMPARE(translated.keys(), entries(current).keys());
        QCOMPARE(translated.keys(QString()), QStringList());
    }

    void noTranslationLosesWhatIsFilledInOrObeyed()
    {
        const auto translated = entries(m_german);
        for (auto entry = translated.begin(); entry != translated.end(); ++entry) {
            const QString source = entry.key().section(": ", 1);
            QVERIFY2(fixedParts(entry.value()) == fixedParts(source), qPrintable(entry.value()));
        }
    }

    void theFirstLanguageThatItKnowsIsSpoken()
    {
        const QList<std::pair<QStringList, QString>> table{
            {{"de-AT", "de", "en-US"}, "de"},
            {{"fr-FR", "fr", "de-DE"}, "de"},
            {{"en-GB", "en", "de-DE"}, "en"},
            {{"fr-FR", "fr"}, "en"},
            {{"C"}, "en"},
            {{}, "en"},
        };
        for (const auto& [wanted, spoken] : table) {
            QCOMPARE(spokenLanguage(wanted), spoken);
        }
    }

    void inAGermanSessionEverythingIsGerman()
    {
        const gui::Adapter lan("lan0", {"192.168.1.5/24"}, "02:00:00:00:01:05");
        const QTemporaryDir settings;
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
        sdk::world().cameras = {sdk::camera()};
        QStringList seen, letters;
        sdk::world().at["EnumerateDevicesAnySubnet"] = [&] {
            QTimer::singleShot(0, qApp, [&] {
                QVERIFY(QTest::qWaitFor([] { return QApplication::activeWindow() != nullptr; }));
                QWidget& window = *QApplication::activeWindow();
                const auto& tree = gui::child<QTreeWidget>(window, "treeWidget");
                seen << gui::child<QMenu>(window, "menuFile").title()
                     << gui::child<QPushButton>(window, "btnRefresh").text() << tree.headerItem()->text(2)
                     << tree.topLevelItem(0)->child(0)->text(5)
                     << QCoreApplication::translate("QPlatformTheme", "Cancel");
                const auto bar = gui::child<QMenuBar>(window, "menuBar").actions();
                letters << gui::letters(gui::child<QWidget>(window, "IpConfigurationWidgetClass"), bar)
                        << gui::letters(IpAddressWidget(&window));
                for (const QAction* const menu : bar) {
                    letters << gui::letters(*menu->menu(), menu->menu()->actions());
                }
                window.close();
            });
        };
        QByteArray name("lanvic");
        char* arguments[] = {name.data(), nullptr};
        QCOMPARE(runApplication(1, arguments), 0);
        QCOMPARE(seen, (QStringList{"&Datei", "Aktualisieren", "Seriennummer", "Statische IP", "Abbrechen"}));
        for (const QString& sorted : letters) {
            QVERIFY2(std::ranges::adjacent_find(sorted) == sorted.end(), qPrintable(sorted));
        }
    }
};

int main(int argc, char** argv)
{
    // Qt asks for the session's language once, at the first look at it.
    qputenv("LC_ALL", "de_AT.UTF-8");
    TranslationTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_translation.moc"
