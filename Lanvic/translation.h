#pragma once

#include <QStringList>

class QCoreApplication;

/// The first of the wanted languages (as QLocale::uiLanguages() names them, dearest first) that the program
/// speaks, as its code: "en", in which the texts are written, or one that a translation is built in for. "en"
/// when it speaks none.
[[nodiscard]] QString selectLanguage(const QStringList& wanted);

/// Lets the program, and with it Qt's own dialogs, speak the language of the session. To be called before any
/// text is shown; the application owns the translations.
void installTranslations(QCoreApplication& application);
