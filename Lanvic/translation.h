#pragma once

#include <QStringList>

class QCoreApplication;

/// The code of the first wanted language that the program has: "en", the language of the source texts, or one
/// with a built-in translation; "en" if it has none of them. `wanted` is as from QLocale::uiLanguages(), most
/// preferred first.
[[nodiscard]] QString selectLanguage(const QStringList& wanted);

/// Translates the program and Qt's own dialogs into the language of the session. Call it before any text is
/// shown; the application owns the translations.
void installTranslations(QCoreApplication& application);
