#include "application.h"

#include "support/gui.h"

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

#include <stdexcept>

/// The whole program from start to end.
class StartupTest : public QObject
{
    Q_OBJECT

private slots:
    void theSdkOutlivesWindowAndApplication()
    {
        const GuiAdapter lan("lan0", {"192.168.1.5/24"}, "02:00:00:00:01:05");
        const QTemporaryDir settings;
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
        QStringList seen;
        const auto note = [&](const QString& what) {
            const bool isShown = qApp != nullptr && QApplication::activeWindow() != nullptr;
            seen << what + (qApp == nullptr ? " alone" : isShown ? " before the user" : " in the background");
        };
        auto& script = sdk::world().at;
        script["TessalInitialize"] = [&] { note("initialised"); };
        script["EnumerateDevicesAnySubnet"] = [&] {
            note("discovered");
            auto* const user = new QTimer(qApp);
            QObject::connect(user, &QTimer::timeout, qApp, [&] {
                if (QWidget* const window = QApplication::activeWindow()) {
                    note(window->windowTitle());
                    window->close();
                }
            });
            user->start(0);
        };
        script["ReleaseTl"] = [&] { note("released"); };
        script["TessalTerminate"] = [&] { note("terminated"); };

        QByteArray name("lanvic");
        char* arguments[] = {name.data(), nullptr};
        QCOMPARE(runApplication(1, arguments), 0);
        QCOMPARE(seen, (QStringList{"initialised alone", "discovered in the background",
                                    "Tessal Lanvic v4.0 64-Bit before the user", "released in the background",
                                    "terminated alone"}));
        QVERIFY(sdk::world().take().contains("TessalTerminate(true)"));
        QCOMPARE(QCoreApplication::applicationName(), "Tessal Lanvic");
        QVERIFY(QSettings("Orvik", "Tessal Lanvic").contains("MainWindow/size"));
    }

    void withoutTheSdkNothingStarts()
    {
        sdk::world() = {};
        sdk::world().at["TessalInitialize"] = [] { throw std::runtime_error("no SDK"); };
        QByteArray name("lanvic");
        char* arguments[] = {name.data(), nullptr};
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, (void)runApplication(1, arguments));
        QCOMPARE(sdk::world().take(), QStringList{"TessalInitialize()"});
    }
};

int main(int argc, char** argv)
{
    StartupTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_startup.moc"
