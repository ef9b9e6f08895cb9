#include "output.h"

#include "csv.h"

#include "qtbase/formatting.h"
#include "tessal/transportlayer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <set>
#include <utility>

#include <sys/ioctl.h>
#include <unistd.h>

namespace cli {

namespace {

QString statusOf(const Camera& camera)
{
    switch (camera.accessibility) {
    case Tessal::Accessibility::Ok:
        return QStringLiteral("ok");
    case Tessal::Accessibility::NotReachable:
        return QStringLiteral("not-reachable");
    case Tessal::Accessibility::Controlled:
    case Tessal::Accessibility::ControlledExclusively:
        return QStringLiteral("in-use");
    default:
        return QStringLiteral("unknown");
    }
}

const QStringList names{"adapter", "mac",     "serial", "vendor",  "model", "status",
                        "mode",    "address", "mask",   "gateway", "name"};

/// In the order of the names.
QStringList valuesOf(const Camera& camera)
{
    return {camera.adapter,    text(camera.mac),     camera.serial,     camera.vendor,
            camera.model,      statusOf(camera),     text(camera.mode), text(camera.address),
            text(camera.mask), text(camera.gateway), camera.name};
}

QStringList subnetsOf(const advice::Adapter& adapter)
{
    QStringList subnets;
    for (const auto& [address, mask] : adapter.subnets) {
        subnets += text(address, mask);
    }
    return subnets;
}

QString formatCsv(const Network& network)
{
    QString lines = names.join(QLatin1Char(',')) + QLatin1Char('\n');
    std::set<net::MacAddress> written;
    for (const Camera& camera : network.cameras) {
        if (!written.insert(camera.mac).second && !camera.isMacShared) {
            continue; // Another adapter hears it as well, and a plan means each camera once.
        }
        QStringList fields = valuesOf(camera);
        for (QString& field : fields) {
            field = QString::fromStdString(csvField(displayText(field).toStdString()));
        }
        lines += fields.join(QLatin1Char(',')) + QLatin1Char('\n');
    }
    return lines;
}

QString formatJson(const Network& network)
{
    QJsonArray adapters;
    for (const advice::Adapter& adapter : network.surroundings.adapters) {
        QJsonArray cameras;
        for (const Camera& camera : network.cameras) {
            QJsonObject object;
            const QStringList values = valuesOf(camera);
            for (qsizetype i = 1; i < values.size(); ++i) { // Below its adapter.
                object[names[i]] = values[i];
            }
            if (camera.adapter == adapter.name) {
                cameras += object;
            }
        }
        adapters += QJsonObject{{QStringLiteral("name"), adapter.name},
                                {QStringLiteral("addresses"), QJsonArray::fromStringList(subnetsOf(adapter))},
                                {QStringLiteral("cameras"), cameras}};
    }
    return QString::fromUtf8(QJsonDocument(QJsonObject{{QStringLiteral("adapters"), adapters}}).toJson());
}

QStringList rowOf(const Camera& camera)
{
    QStringList row{camera.name,
                    camera.model,
                    camera.serial,
                    text(camera.mac),
                    statusOf(camera),
                    text(camera.mode),
                    text(camera.address, camera.mask)};
    std::ranges::transform(row, row.begin(), displayText);
    return row;
}

/// The cells below each other. Where that is too wide, names, models and serial numbers are cut, the longest
/// first; where that is not enough, serial numbers and models are left out.
QStringList alignedLines(std::vector<QStringList> rows, int width)
{
    constexpr qsizetype narrowest = 6;
    std::vector<qsizetype> widths;
    for (qsizetype i = 0; i < rows.front().size(); ++i) {
        widths.push_back(
            std::ranges::max(rows, {}, [i](const QStringList& row) { return row[i].size(); })[i].size());
    }
    const auto whole = [&] { return std::accumulate(widths.begin(), widths.end(), 2 * std::ssize(widths)); };
    for (qsizetype cuttable = 3; width > 0 && whole() > width;) {
        if (const auto widest = std::max_element(widths.begin(), widths.begin() + cuttable);
            *widest > narrowest) {
            --*widest;
        } else if (cuttable > 1) {
            widths.erase(widths.begin() + --cuttable);
            std::ranges::for_each(rows, [&](QStringList& row) { row.removeAt(cuttable); });
        } else {
            break;
        }
    }
    QStringList lines;
    for (const QStringList& row : rows) {
        QString line(1, QLatin1Char(' '));
        for (qsizetype i = 0; i < row.size(); ++i) {
            const qsizetype columns = widths[static_cast<std::size_t>(i)];
            const bool isCut = row[i].size() > columns;
            line += QLatin1Char(' ') +
                    (isCut ? row[i].left(columns - 1) + QChar(0x2026) : row[i].leftJustified(columns)) +
                    QLatin1Char(' ');
        }
        lines += line.chopped(1);
    }
    return lines;
}

QString formatTable(const Network& network, int width)
{
    std::vector<QStringList> rows{{"NAME", "MODEL", "SERIAL", "MAC", "STATUS", "MODE", "ADDRESS"}};
    std::ranges::transform(network.cameras, std::back_inserter(rows), rowOf);
    const QStringList lines = alignedLines(std::move(rows), width);
    QStringList table = network.cameras.empty() ? QStringList() : lines.first(1);
    for (const advice::Adapter& adapter : network.surroundings.adapters) {
        table += adapter.name + QStringLiteral("  ") + subnetsOf(adapter).join(QStringLiteral(", "));
        for (std::size_t i = 0; i < network.cameras.size(); ++i) {
            if (network.cameras[i].adapter == adapter.name) {
                table += lines[static_cast<qsizetype>(i) + 1];
            }
        }
    }
    return table.isEmpty() ? QString() : table.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

bool writeTo(std::FILE* stream, const QString& text)
{
    return std::fputs(text.toUtf8().constData(), stream) >= 0 && std::fflush(stream) == 0;
}

} // namespace

bool write(const QString& text)
{
    return writeTo(stdout, text);
}

void complain(const QString& text)
{
    writeTo(stderr, QStringLiteral("lanvic-cli: ") + text + QLatin1Char('\n'));
}

bool isTerminal()
{
    return ::isatty(STDOUT_FILENO) == 1;
}

int terminalWidth()
{
    winsize size{};
    return isTerminal() && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

QString formatList(const Network& network, Format format, int width)
{
    if (format == Format::Json) {
        return formatJson(network);
    }
    return format == Format::Csv ? formatCsv(network) : formatTable(network, width);
}

void Progress::show(int finished, int restarting, int all)
{
    if (isTerminal()) {
        clearLine();
        write(QStringLiteral("%1 of %2 cameras finished, %3 restarting")
                  .arg(finished)
                  .arg(all)
                  .arg(restarting));
        m_hasLine = true;
    }
}

void Progress::finished(const Camera& camera, Outcome outcome, const QString& text)
{
    ++m_counts[outcome];
    clearLine();
    const QString who = cli::text(camera);
    if (outcome == Outcome::Failed || outcome == Outcome::NotBegun) {
        complain(
            who +
            (outcome == Outcome::Failed ? QLatin1String(": failed: ") : QLatin1String(": not started: ")) +
            text);
        return;
    }
    const QString line =
        who + (outcome == Outcome::Done ? QLatin1String(": done: ") + text : QLatin1String(": as planned"));
    if (isTerminal()) {
        m_deferredLines += line;
    } else {
        write(line + QLatin1Char('\n'));
    }
}

bool Progress::close()
{
    clearLine();
    const int failed = m_counts[Outcome::Failed];
    const int notBegun = m_counts[Outcome::NotBegun];
    const bool isAllDone = failed + notBegun == 0;
    for (const QString& line : isAllDone&& m_deferredLines.size() > 1 ? QStringList() : m_deferredLines) {
        write(line + QLatin1Char('\n'));
    }
    write(QStringLiteral("%1 done, %2 already as planned, %3 failed, %4 not started\n")
              .arg(m_counts[Outcome::Done])
              .arg(m_counts[Outcome::AsPlanned])
              .arg(failed)
              .arg(notBegun));
    return isAllDone;
}

void Progress::clearLine()
{
    if (std::exchange(m_hasLine, false)) {
        constexpr int longest = 60;
        write(QLatin1Char('\r') + QString(longest, QLatin1Char(' ')) + QLatin1Char('\r'));
    }
}

} // namespace cli
