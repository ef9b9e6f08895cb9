#include "support/columns.h"
#include "support/simulator.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTest>

/// What the command line answers to what a user types, on a network of two cameras.
class UsageTest : public QObject
{
    Q_OBJECT

private slots:
    void commandsAnswer_data()
    {
        const auto row = addColumns<int, QStringList>("status", "lines"); // The row's name is the command.
        const QString us = "lanvic-cli: ";
        const auto wrong = [&](const char* command, const QString& told) {
            row(command, 2, {us + told, "Try 'lanvic-cli --help'."});
        };
        const QString excluding =
            "--static, --dhcp, --auto-ip and --temporary exclude each other; --temporary excludes --name";
        wrong("lanvic-cli", "no command");
        wrong("lanvic-cli lost", "there is no command \"lost\"");
        wrong("lanvic-cli list all", "list takes --json or --csv and nothing else");
        wrong("lanvic-cli list --json --csv", "list takes --json or --csv and nothing else");
        wrong("lanvic-cli list --dhcp", "Unknown option 'dhcp'.");
        wrong("lanvic-cli set --auto-ip", "set takes one camera");
        wrong("lanvic-cli set gate --static 192.168.10.9/24 --dhcp", excluding);
        wrong("lanvic-cli set gate --temporary 192.168.10.9/24 --name x", excluding);
        wrong("lanvic-cli set gate --dhcp --gateway 192.168.10.1",
              "--gateway goes with --static or --temporary");
        wrong("lanvic-cli set gate", "nothing to set");
        wrong("lanvic-cli apply", "apply takes one plan");
        wrong("lanvic-cli apply plan.csv --timeout soon", "\"soon\" is not a number of seconds");
        row("lanvic-cli --help | head -1", 0, {"Usage: lanvic-cli list [--json | --csv]"});
        row("lanvic-cli --help | tail -1", 0,
            {"Exit status: 0 done, 1 a camera failed, 2 wrong usage or plan, 3 no search was possible."});

        const QString gate = "02:5E:41:00:00:01 (gate)";
        const QString outside =
            "172.16.0.1 is in no network of lab0. The camera can then not be reached through lab0.";
        row("lanvic-cli list --json | head -1", 0, {"{"});
        row("lanvic-cli list --csv | tail -1", 0,
            {"lab0,02:5E:41:00:00:02,2,Belunar,km-1,ok,static,192.168.10.22,255.255.255.0,0.0.0.0,1"});
        row("lanvic-cli list >/dev/full", 1, {us + "the list cannot be written: No space left on device"});
        row("ip link set lab0 down; lanvic-cli list", 3,
            {us + "no network adapter that is up and connected has an address"});
        row("lanvic-cli set 1 --dhcp", 2,
            {us + "\"1\" is ambiguous: it could be " + gate,
             us + "\"1\" is ambiguous: it could be 02:5E:41:00:00:02 (1)"});
        row("lanvic-cli set nobody --dhcp", 2,
            {us + "no camera was found with the serial number, name or address \"nobody\""});
        row("lanvic-cli set gate --static 172.16.0.1/24", 2,
            {us + outside, us + "nothing was changed; use --force to continue anyway"});
        row("lanvic-cli set gate --static 172.16.0.1/24 -n -f", 0,
            {us + "warning: " + outside, gate + ": static 192.168.10.21/24 -> static 172.16.0.1/24"});
        row("echo serial,speed | lanvic-cli apply -", 2, {us + "-:1:8: there is no column \"speed\""});
        row("lanvic-cli apply nowhere.csv", 2, {us + "nowhere.csv: No such file or directory"});

        const QString done = "1 done, 0 already as planned, 0 failed, 0 not started";
        row("lanvic-cli set gate --temporary 192.168.10.99/24", 0,
            {gate + ": done: static 192.168.10.21/24 -> temporary 192.168.10.99/24", done});
        row("lanvic-cli set 2 --dhcp --name '16 bytes of name'", 0, // Another maker's, so it is opened.
            {R"(02:5E:41:00:00:02 (1): done: static 192.168.10.22/24 -> dhcp, name "1" -> "16 bytes of name")",
             done});
        row("script -qec 'lanvic-cli set gate --name 0123456789abcdef' /dev/null", 0, // On a terminal.
            {"0 of 1 cameras finished, 1 restarting", "1 of 1 cameras finished, 0 restarting",
             gate + R"(: done: name "gate" -> "0123456789abcdef")", done});
    }

    void commandsAnswer()
    {
        const Simulator simulator(behindOneAdapter(
            {simulatedCamera(1, "gate", "192.168.10.21", {{"userId", "gate"}}),
             simulatedCamera(2, "1", "192.168.10.22", {{"userId", "1"}, {"vendor", "Belunar"}})}));
        QProcess shell;
        shell.setProcessChannelMode(QProcess::MergedChannels);
        shell.start("sh", {"-c", QString(QTest::currentDataTag()).replace("lanvic-cli", LANVIC_CLI)});
        QVERIFY(shell.waitForFinished());
        QStringList lines = QString::fromUtf8(shell.readAll())
                                .replace(QRegularExpression("\r *"), "\n")
                                .split('\n', Qt::SkipEmptyParts);
        lines.removeDuplicates(); // Of the progress.
        QTEST(lines, "lines");
        QTEST(shell.exitCode(), "status");
    }
};

QTEST_GUILESS_MAIN(UsageTest)
#include "wire_usage.moc"
