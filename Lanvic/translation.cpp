#include "translation.h"

#include <QCoreApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace {

constexpr QLatin1String sourceLanguage("en");

QString translationFile(const QString& language)
{
    return QStringLiteral(":/i18n/lanvic_%1.qm").arg(language);
}

void install(QCoreApplication& application, const QString& file)
{
    auto* const translator = new QTranslator(&application);
    if (!translator->load(file) || !QCoreApplication::installTranslator(translator)) {
        qWarning("There is no translation %s", qUtf8Printable(file));
    }
}

} // namespace

QString selectLanguage(const QStringList& wanted)
{
    for (const QString& name : wanted) {
        const QLocale locale(name);
        QString language = locale.name().section(QLatin1Char('_'), 0, 0);
        // Not left to QTranslator, which skips English in favour of the next language that has a file.
        if (locale.language() == QLocale::C || language == sourceLanguage) {
            break;
        }
        if (QFile::exists(translationFile(language))) {
            return language;
        }
    }
    return sourceLanguage;
}

void installTranslations(QCoreApplication& application)
{
    const QString language = selectLanguage(QLocale::system().uiLanguages());
    if (language == sourceLanguage) {
        return;
    }
    install(
        application,
        QStringLiteral("%1/qtbase_%2.qm").arg(QLibraryInfo::path(QLibraryInfo::TranslationsPath), language));
    install(application, translationFile(language)); // Installed last, so searched first.
}
