#include "support/simulator.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QTest>

#include <csignal>
#include <map>
#include <optional>

/// The program on 64 cameras of two makers: two swap their addresses, one never restarts, one is in use, one
/// in a foreign subnet, and one vanishes when it restarts.
class CommandLineWireTest : public QObject
{
    Q_OBJECT

    QStringList arguments() { return {"apply", m_plan.fileName(), "--timeout", "3"}; }

    /// Runs the program to its end. Returns its exit status.
    int run(const QStringList& options)
    {
        QProcess program;
        program.start(LANVIC_CLI, arguments() + options);
        const bool hasEnded = program.waitForFinished(120000);
        m_lines = QString::fromUtf8(program.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        m_errors = QString::fromUtf8(program.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
        return hasEnded ? program.exitCode() : -1;
    }

    QTemporaryFile m_plan;
    QStringList m_wanted; // "line-1 192.168.10.71"
    QStringList m_lines;
    QStringList m_errors;
    std::optional<Simulator> m_simulator;

    void plan(const QString& camera, int number, const QString& mac, int address)
    {
        m_plan.write(
            QString("%1%2,192.168.10.%3/24\n").arg(mac).arg(number, 2, 16, QChar('0')).arg(address).toUtf8());
        m_wanted += QString("%1 192.168.10.%2").arg(camera).arg(address);
    }

    /// The first cameras of each maker; the two very first swap their addresses.
    void planLine(int count)
    {
        for (int i = 1; i <= count; ++i) {
            plan("line-" + QString::number(i), i, "025E410000", i == 1 ? 71 : 120 + i);
        }
    }
    void planOther(int count)
    {
        for (int i = 1; i <= count; ++i) {
            plan("other-" + QString::number(i), i, "02A3170000", i == 1 ? 21 : 170 + i);
        }
    }

    /// Where the cameras say that they are.
    QStringList addresses()
    {
        return m_simulator->states().replaceInStrings(QRegularExpression(".*camera=(\\S+) .* ip=(\\S+) .*"),
                                                      "\\1 \\2");
    }

private slots:
    void init()
    {
        m_simulator.emplace("test-commandline");
        QVERIFY(m_plan.open());
        m_plan.resize(0);
        m_plan.write("mac,address\n");
        m_wanted.clear();
    }

    void camerasStayWhereTheyAreIfAnotherOfTheirCircleCannotMove_data()
    {
        QTest::addColumn<bool>("isSwap");
        QTest::newRow("a circle of three") << false;
        QTest::newRow("a swap") << true;
    }

    void camerasStayWhereTheyAreIfAnotherOfTheirCircleCannotMove()
    {
        QFETCH(const bool, isSwap);
        if (!isSwap) {
            plan("line-2", 2, "025E410000", 23); // The address of line-3.
        }
        plan("line-3", 3, "025E410000", 101);
        plan("used", 0x41, "02A3170000", isSwap ? 23 : 22);
        m_plan.flush();
        QCOMPARE(run({}), 1);
        QCOMPARE(m_lines.last(), isSwap ? "0 done, 0 already as planned, 1 failed, 1 not started"
                                        : "0 done, 0 already as planned, 1 failed, 2 not started");
        QCOMPARE(m_errors.last(), "lanvic-cli: 02:5E:41:00:00:03 (km-1300): not started: The address "
                                  "192.168.10.101 is still that of the camera 02:A3:17:00:00:41.");
        QCOMPARE(m_simulator->takeEvents().filter("forced "), QStringList());
    }

    void aPlanIsCarriedOutOnce()
    {
        planLine(40);
        planOther(20);
        plan("stubborn", 0x44, "025E410000", 204);
        plan("used", 0x41, "02A3170000", 201);
        plan("foreign", 0x42, "02A3170000", 202);
        plan("fading", 0x43, "025E410000", 203);
        m_plan.flush();
        // Two stay where they are.
        m_wanted.replaceInStrings("stubborn 192.168.10.204", "stubborn 192.168.10.104");
        m_wanted.replaceInStrings("used 192.168.10.201", "used 192.168.10.101");

        QCOMPARE(run({}), 1);
        QCOMPARE(m_lines.last(), "61 done, 0 already as planned, 3 failed, 0 not started");
        m_errors.sort();
        QCOMPARE(
            m_errors,
            (QStringList{
                "lanvic-cli: 02:5E:41:00:00:43 (km-1): failed: It was written, and has not been found since.",
                "lanvic-cli: 02:5E:41:00:00:44 (km-2): failed: IP address: 192.168.10.204 was saved; the "
                "camera reports 192.168.10.104.",
                "lanvic-cli: 02:A3:17:00:00:41 (BX-4): failed: The camera 192.168.10.101 is controlled by another application, on the "
                "computer 192.168.10.250. Close the connection there, then try again."}));
        QCOMPARE(addresses(), m_wanted);
        QCOMPARE(m_simulator->states().filter(" enabled=persistent ").size(), 64);
        // At no time two cameras had one address.
        std::map<QString, QString> camerasAt{{"192.168.10.21", "line-1"}, {"192.168.10.71", "other-1"}};
        const QRegularExpression taken("^(?:restarted|forced) camera=(\\S+) .*ip=(\\S+) ");
        for (const QString& event : m_simulator->takeEvents()) {
            if (const auto match = taken.match(event); match.hasMatch()) {
                const QString camera = match.captured(1);
                std::erase_if(camerasAt, [&](const auto& place) { return place.second == camera; });
                QVERIFY2(camerasAt.emplace(match.captured(2), camera).second, qPrintable(event));
            }
        }

        QCOMPARE(run({}), 2);
        QCOMPARE(m_errors,
                 (QStringList{"lanvic-cli: " + m_plan.fileName() +
                                  ":65:1: no camera was found that has the MAC address 02:5E:41:00:00:43",
                              "lanvic-cli: nothing was changed; use --force to continue anyway"}));
        QCOMPARE(run({"--force"}), 1);
        QVERIFY(m_lines.contains("02:5E:41:00:00:01 (km-1300): as planned"));
        QCOMPARE(m_lines.last(), "0 done, 61 already as planned, 2 failed, 0 not started");
        const QStringList events = m_simulator->takeEvents();
        QCOMPARE(events, events.filter("camera=stubborn "));
    }

    void anInterruptedPlanIsCompletedByAnotherRun()
    {
        planLine(24);
        planOther(1);
        m_plan.flush();
        for (const auto& [ending, camera] : {std::pair{SIGKILL, "line-9 "}, {SIGINT, "line-19 "}}) {
            QProcess program;
            program.start(LANVIC_CLI, arguments());
            QVERIFY(m_simulator->await(QString("restarted camera=") + camera));
            ::kill(static_cast<pid_t>(program.processId()), ending);
            QVERIFY(program.waitForFinished(20000));
            m_lines = QString::fromUtf8(program.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
            m_errors = QString::fromUtf8(program.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
            QVERIFY(!addresses().contains("line-24 192.168.10.144"));
        }
        QVERIFY2(m_lines.join('\n').contains("02:5E:41:00:00:13 (km-1300): done"),
                 qPrintable(m_lines.join('\n')));
        QVERIFY2(!m_lines.last().endsWith(" 0 not started"), qPrintable(m_lines.last()));
        QVERIFY2(m_errors.last().endsWith(": not started: Interrupted."), qPrintable(m_errors.last()));
        QCOMPARE(run({}), 0);
        QCOMPARE(m_errors, QStringList());
        const QStringList now = addresses();
        m_wanted.removeIf([&](const QString& wanted) { return now.contains(wanted); });
        QCOMPARE(m_wanted, QStringList());
    }
};

QTEST_GUILESS_MAIN(CommandLineWireTest)
#include "wire_commandline.moc"
