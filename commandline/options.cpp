#include "options.h"

#include <QCommandLineParser>

#include <algorithm>

namespace cli {

namespace {

const char* const help = R"(Usage: lanvic-cli list [--json | --csv]
       lanvic-cli set CAMERA [--static IP/PREFIX [--gateway IP] | --dhcp | --auto-ip] [--name NAME]
       lanvic-cli set CAMERA --temporary IP/PREFIX [--gateway IP]
       lanvic-cli apply [--dry-run] [--force] PLAN.csv

Finds GigE Vision cameras and sets their IP addresses. CAMERA is a MAC address, serial number, name or
address that one camera has. PLAN.csv is written as by "list --csv"; "-" is standard input.

  --json, --csv          list for programs
  --static IP/PREFIX     an address to be kept
  --gateway IP           the router beside it; none if left out
  --dhcp                 an address from a DHCP server
  --auto-ip              a link-local address
  --name NAME            the device user ID, at most 16 bytes
  --temporary IP/PREFIX  an address until the next restart (Force IP), also for the MAC address of a
                         camera that is not listed
  -n, --dry-run          print what would change
  -f, --force            write what the check advises against, and leave out missing cameras
  --timeout SECONDS      how long a camera may take to come back; 60 if left out
  -h, --help             this text
  -v, --version          the version

Exit status: 0 done, 1 a camera failed, 2 wrong usage or plan, 3 no search was possible.
)";

int refuse(const QString& text)
{
    complain(text + QStringLiteral("\nTry 'lanvic-cli --help'."));
    return Exit::WrongUsage;
}

void addOptions(QCommandLineParser& parser, const QString& command)
{
    QStringList values;
    parser.addOptions({{{"h", "help"}, {}}, {{"v", "version"}, {}}});
    if (command == QLatin1String("list")) {
        parser.addOptions({{"json", {}}, {"csv", {}}});
    } else if (!command.isEmpty()) {
        parser.addOptions({{{"n", "dry-run"}, {}}, {{"f", "force"}, {}}});
        values += "timeout";
    }
    if (command == QLatin1String("set")) {
        parser.addOptions({{"dhcp", {}}, {"auto-ip", {}}});
        values += {"static", "temporary", "gateway", "name"};
    }
    for (const QString& name : values) {
        parser.addOption({name, {}, name});
    }
}

/// What is wrong with the options of `set`, or an empty text.
QString readSetting(const QCommandLineParser& parser, Options& options)
{
    int modes = 0;
    for (const Column column : {Column::Mac, Column::Serial, Column::Mode, Column::Address, Column::Mask}) {
        options.fields[column].clear();
    }
    for (const Mode mode : {Mode::Static, Mode::Dhcp, Mode::AutoIp, Mode::Temporary}) {
        if (const QString name = text(mode); parser.isSet(name)) {
            options.fields[Column::Mode] = name;
            options.fields[Column::Address] = parser.value(name);
            ++modes;
        }
    }
    options.fields[Column::Gateway] = parser.value("gateway");
    options.fields[Column::Name] = parser.value("name").trimmed();
    options.setsName = parser.isSet("name");
    if (modes > 1 || (options.setsName && parser.isSet("temporary"))) {
        return QStringLiteral(
            "--static, --dhcp, --auto-ip and --temporary exclude each other; --temporary excludes --name");
    }
    if (parser.isSet("gateway") && options.fields[Column::Address].isEmpty()) {
        return QStringLiteral("--gateway goes with --static or --temporary");
    }
    return modes == 0 && !options.setsName ? QStringLiteral("nothing to set") : QString();
}

std::variant<Options, int> readOptions(const QCommandLineParser& parser, const QString& command)
{
    using enum Options::Command;
    Options options;
    const QStringList operands = parser.positionalArguments().mid(1);
    if (command == QLatin1String("list")) {
        if (!operands.isEmpty() || (parser.isSet("json") && parser.isSet("csv"))) {
            return refuse(QStringLiteral("list takes --json or --csv and nothing else"));
        }
        options.format = parser.isSet("json")  ? Format::Json
                         : parser.isSet("csv") ? Format::Csv
                                               : Format::Table;
        return options;
    }
    options.command = command == QLatin1String("set") ? Set : Apply;
    if (operands.size() != 1 || operands.first().isEmpty()) {
        return refuse(command + QStringLiteral(" takes one ") + (options.command == Set ? "camera" : "plan"));
    }
    options.operand = operands.first();
    options.isDryRun = parser.isSet("dry-run");
    options.isForced = parser.isSet("force");
    if (parser.isSet("timeout")) {
        bool isNumber = false;
        options.patience = std::chrono::seconds(parser.value("timeout").toUShort(&isNumber));
        if (!isNumber) {
            return refuse(QStringLiteral("\"%1\" is not a number of seconds").arg(parser.value("timeout")));
        }
    }
    const QString wrong = options.command == Set ? readSetting(parser, options) : QString();
    return wrong.isEmpty() ? std::variant<Options, int>(options) : refuse(wrong);
}

} // namespace

std::variant<Options, int> parseOptions(const QStringList& arguments)
{
    const auto isOperand = [](const QString& argument) { return !argument.startsWith(QLatin1Char('-')); };
    const auto found = std::find_if(arguments.begin() + 1, arguments.end(), isOperand);
    const QString command = found != arguments.end() ? *found : QString();
    QCommandLineParser parser;
    addOptions(parser, command);
    const bool isParsed = parser.parse(arguments);
    if (isParsed && parser.isSet("help")) {
        write(help);
        return Exit::Done;
    }
    if (isParsed && parser.isSet("version")) {
        write(QStringLiteral("lanvic-cli " LANVIC_VERSION "\n"));
        return Exit::Done;
    }
    if (isParsed && !QStringList{"list", "set", "apply"}.contains(command)) {
        return refuse(command.isEmpty() ? QStringLiteral("no command")
                                        : QStringLiteral("there is no command \"%1\"").arg(command));
    }
    return isParsed ? readOptions(parser, command) : refuse(parser.errorText());
}

} // namespace cli
