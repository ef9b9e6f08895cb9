#include "application.h"

#include "MainWnd.h"
#include "translation.h"
#include "version.h"

#include "tessal/transportlayer.h"

#include <QApplication>
#include <QIcon>
#include <QLoggingCategory>

namespace {

int runEventLoop(int argc, char** argv)
{
    // Qt connects slots named on_<object>_<signal> by name and would warn at every start about the one that
    // is connected explicitly.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.core.qmetaobject.connectslotsbyname.warning=false"));
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Tessal Lanvic"));
    QCoreApplication::setOrganizationName(QStringLiteral("Orvik"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("orvik.example"));
    QGuiApplication::setDesktopFileName(QStringLiteral("lanvic"));
    // A program that is not installed has no icon from its desktop entry.
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/Lanvic/Resources/Icon.png")));
    installTranslations(application);

    MainWnd window;
    window.setWindowTitle(QString::asprintf("%s v%d.%d", qUtf8Printable(QCoreApplication::applicationName()),
                                            version::Major, version::Minor));
    window.setWindowTitle(window.windowTitle() + QLatin1String(version::Suffix));
    window.show();
    QObject::connect(&application, &QGuiApplication::lastWindowClosed, &application, &QCoreApplication::quit);
    return QApplication::exec();
}

} // namespace

int runApplication(int argc, char** argv)
{
    Tessal::TessalInitialize();
    // The SDK outlives the application object and every window, because they hold objects of the SDK.
    const int exitCode = runEventLoop(argc, argv);
    Tessal::TessalTerminate(true);
    return exitCode;
}
