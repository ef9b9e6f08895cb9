#include "application.h"

#include "support/gui.h"

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

/// The whole program from start to end.
class StartupTest : public QObject
{
    Q_OBJECT

    static int runProgram()
    {
        QByteArray name("lanvic");
        char* arguments[] = {name.data(), nullptr};
        return runApplication(1, arguments);
    }

private slots:
    void theSdkOutlivesWindowAndApplication()
    {
        const gui::Adapter lan("lan0", {"192.168.1.5/24"}, "02:00:00:00:01:05");
        const QTemporaryDir settings;
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
        QSettings stored("Orvik", "Tessal Lanvic");
        stored.setValue("MainWindow/pos", QPoint(20, 30));
        stored.setValue("MainWindow/size", QSize(770, 610));
        stored.sync();
        QSize size;
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
                note(QApplication::activeWindow()->windowTitle());
                size = QApplication::activeWindow()->size();
                QApplication::activeWindow()->close();
            });
        };
        script["ReleaseTl"] = [&] { note("released"); };
        script["TessalTerminate"] = [&] { note("terminated"); };

        QCOMPARE(runProgram(), 0);
        QCOMPARE(seen, (QStringList{"initialised alone", "discovered in the background",
                                    "Tessal Lanvic v4.0 64-Bit before the user", "released in the background",
                                    "terminated alone"}));
        QVERIFY(sdk::world().take().contains("TessalTerminate(true)"));
        QCOMPARE(size, QSize(770, 610));
        stored.sync();
        QVERIFY(stored.contains("MainWindow/header"));
    }

    void withoutTheSdkNothingStarts()
    {
        sdk::world() = {};
        sdk::world().at["TessalInitialize"] = [] { throw std::runtime_error("no SDK"); };
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, (void)runProgram());
        QCOMPARE(sdk::world().take(), QStringList{"TessalInitialize()"});
    }
};

QTEST_APPLESS_MAIN(StartupTest)
#include "tst_startup.moc"
