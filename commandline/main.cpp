#include "DeviceLister.h"
#include "options.h"
#include "writer.h"

#include "qtbase/formatting.h"
#include "tessal/searchreport.h"

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <set>
#include <system_error>

namespace cli {

namespace {

volatile std::sig_atomic_t s_isInterrupted = 0;

/// The first signal lets the camera that is being written be finished; the second ends the program.
void catchInterrupts()
{
    struct sigaction action
    {};
    action.sa_handler = [](int) { s_isInterrupted = 1; };
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction inherited
        {};
        if (::sigaction(signal, nullptr, &inherited) == 0 &&
            inherited.sa_handler != SIG_IGN) { // As by nohup.
            ::sigaction(signal, &action, nullptr);
        }
    }
    std::signal(SIGPIPE, SIG_IGN); // A reader that has gone must not end a plan in its middle.
}

/// Reports what impairs searches. Returns whether at least one adapter can be searched.
bool reportObstacles(const Network& network)
{
    std::set<QString> silent; // Nothing could be sent through them.
    if (const auto* const report = dynamic_cast<const Tessal::ISearchReport*>(DeviceLister::s_pTl)) {
        for (const Tessal::AdapterObstacle& obstacle : report->GetObstacles()) {
            complain(QString::fromStdString(Tessal::describeObstacle(obstacle)));
            if (obstacle.kind == Tessal::Obstacle::CannotSend) {
                silent.insert(displayText(QString::fromStdString(obstacle.adapter)));
            }
        }
    }
    if (network.surroundings.adapters.empty()) {
        complain(QStringLiteral("no network adapter that is up and connected has an address"));
    }
    return std::ranges::any_of(network.surroundings.adapters, [&silent](const advice::Adapter& adapter) {
        return !adapter.subnets.empty() && !silent.contains(adapter.name);
    });
}

/// Reports the findings and returns whether they allow the operation to continue. `file` is the plan.
bool reportFindings(const std::vector<Finding>& findings, const QString& file, bool isForced)
{
    for (const Finding& finding : findings) {
        const auto& [line, column] = finding.place;
        complain((line == 0 ? QString() : QStringLiteral("%1:%2:%3: ").arg(file).arg(line).arg(column)) +
                 (finding.canBeForced && isForced ? QStringLiteral("warning: ") : QString()) +
                 displayText(finding.text));
    }
    const bool canBeForced = std::ranges::all_of(findings, &Finding::canBeForced);
    if (canBeForced && !isForced && !findings.empty()) {
        complain(QStringLiteral("nothing was changed; use --force to continue anyway"));
    }
    return findings.empty() || (canBeForced && isForced);
}

int carryOut(DeviceLister& lister, const Network& network, const std::vector<PlanRow>& rows,
             const Options& options)
{
    CheckedPlan checked = checkPlan(rows, network);
    if (checked.changes.size() < rows.size()) {
        // A camera that is not there may be restarting, from an earlier run.
        checked = checkPlan(rows, searchNetwork(lister));
    }
    const auto& [changes, findings] = checked;
    if (!reportFindings(findings, options.operand, options.isForced)) {
        return Exit::WrongUsage;
    }
    if (options.isDryRun) {
        for (const Change& change : changes) {
            if (!change.isNothing()) {
                write(text(change.camera) + QStringLiteral(": ") + text(change) + QLatin1Char('\n'));
            }
        }
        return Exit::Done;
    }
    catchInterrupts();
    Progress progress;
    const ApplyHooks hooks{.finished = [&](const Camera& camera, Outcome outcome,
                                           const QString& text) { progress.finished(camera, outcome, text); },
                           .progressed = [&](int finished, int restarting,
                                             int all) { progress.show(finished, restarting, all); },
                           .isInterrupted = [] { return s_isInterrupted != 0; }};
    Apply(lister, changes, hooks, options.patience).run();
    return progress.close() && changes.size() == rows.size() ? Exit::Done : Exit::CameraFailed;
}

int set(DeviceLister& lister, const Network& network, const Options& options)
{
    const std::vector<Camera> meant = camerasMeantBy(options.operand, network.cameras);
    for (const Camera& camera : meant.size() > 1 ? meant : std::vector<Camera>()) {
        complain(QStringLiteral("\"%1\" is ambiguous: it could be %2")
                     .arg(displayText(options.operand), text(camera)));
    }
    if (meant.size() > 1) {
        return Exit::WrongUsage;
    }
    std::map<Column, QString> fields = options.fields;
    fields[Column::Mac] = meant.empty() ? options.operand : text(meant.front().mac);
    std::map<Column, FilePosition> places;
    for (const auto& [column, field] : fields) {
        places[column] = {};
    }
    std::vector<Finding> findings;
    PlanRow row = parseRow(fields, places, findings);
    if (options.setsName) {
        row.wanted.name = fields[Column::Name];
    }
    if (!row.mac) {
        findings = {{{},
                     QStringLiteral("no camera was found with the serial number, name or address \"%1\"")
                         .arg(options.operand)}};
    }
    return reportFindings(findings, {}, false) ? carryOut(lister, network, {row}, options) : Exit::WrongUsage;
}

/// Returns nullopt, after reporting why, if the plan cannot be read or is invalid.
std::optional<std::vector<PlanRow>> readPlan(const QString& name)
{
    QFile file(name);
    const bool isOpen =
        name == QLatin1String("-") ? file.open(stdin, QFile::ReadOnly) : file.open(QFile::ReadOnly);
    if (!isOpen) {
        complain(QStringLiteral("%1: %2").arg(name, file.errorString()));
        return std::nullopt;
    }
    Plan plan = parsePlan(file.readAll());
    return reportFindings(plan.findings, name, false) ? std::optional(std::move(plan.rows)) : std::nullopt;
}

int run(const Options& options)
{
    using enum Options::Command;
    const auto rows = options.command == Apply ? readPlan(options.operand) : std::vector<PlanRow>();
    if (!rows) {
        return Exit::WrongUsage;
    }
    DeviceLister lister;
    const Network network = searchNetwork(lister);
    const bool isUsable = reportObstacles(network);
    if (options.command == List && !write(formatList(network, options.format, terminalWidth()))) {
        complain(QStringLiteral("the list cannot be written: ") +
                 QString::fromStdString(std::generic_category().message(errno)));
        return Exit::CameraFailed;
    }
    if (!isUsable) {
        return Exit::NothingAsked;
    }
    if (options.command == Set) {
        return set(lister, network, options);
    }
    return options.command == Apply ? carryOut(lister, network, *rows, options) : Exit::Done;
}

} // namespace

} // namespace cli

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    // The program itself reports what matters, so the trace is off unless QT_LOGGING_RULES turns it on.
    QLoggingCategory::setFilterRules(QStringLiteral("Lanvic.*=false"));
    const auto options = cli::parseOptions(QCoreApplication::arguments());
    if (const int* const status = std::get_if<int>(&options)) {
        return *status;
    }
    int status = cli::Exit::NothingAsked;
    try {
        Tessal::TessalInitialize();
        status = cli::run(std::get<cli::Options>(options));
        Tessal::TessalTerminate(true);
    } catch (const std::exception& exception) {
        cli::complain(cli::sentenceOf(exception));
    }
    return status;
}
