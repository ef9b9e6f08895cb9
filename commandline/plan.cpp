#include "plan.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <utility>

namespace cli {

namespace {

constexpr qsizetype maxNameBytes = 16;
constexpr int addressBits = 32;

const std::map<QString, Column> readColumns{{"mac", Column::Mac},         {"serial", Column::Serial},
                                            {"mode", Column::Mode},       {"address", Column::Address},
                                            {"mask", Column::Mask},       {"prefix", Column::Mask},
                                            {"gateway", Column::Gateway}, {"name", Column::Name}};
const QStringList otherColumns{"adapter", "vendor", "model", "status"}; // Of a list.

std::optional<net::Ipv4> parseAddress(const QString& text)
{
    return net::parseIpv4(text.toStdString());
}

/// Takes "255.255.255.0", "24" and "/24".
std::optional<net::Ipv4> parseMask(const QString& text)
{
    bool isNumber = false;
    const int length = text.mid(text.startsWith(QLatin1Char('/')) ? 1 : 0).toInt(&isNumber);
    if (!isNumber || length < 0 || length > addressBits) {
        return parseAddress(text);
    }
    return net::Ipv4{length == 0 ? 0 : ~std::uint32_t{0} << (addressBits - length)};
}

/// The columns in their order; none for those that are not read.
std::vector<std::optional<Column>> parseHeader(const std::vector<CsvField>& header,
                                               std::vector<Finding>& findings)
{
    std::vector<std::optional<Column>> columns;
    const auto has = [&](Column column) { return std::ranges::find(columns, column) != columns.end(); };
    for (const CsvField& field : header) {
        const QString name = QString::fromStdString(field.text).trimmed().toLower();
        const auto known = readColumns.find(name);
        if (known == readColumns.end()) {
            if (!otherColumns.contains(name)) {
                findings.push_back({field.place, QStringLiteral("there is no column \"%1\"").arg(name)});
            }
            columns.emplace_back();
            continue;
        }
        if (has(known->second)) {
            findings.push_back(
                {field.place, QStringLiteral("there is a column for \"%1\" already").arg(name)});
        }
        columns.emplace_back(known->second);
    }
    if (!has(Column::Mac) && !has(Column::Serial)) {
        findings.push_back({header.front().place,
                            QStringLiteral("no column \"mac\" or \"serial\" says which camera is meant")});
    }
    return columns;
}

Mode parseMode(const std::map<Column, QString>& fields, FilePosition place, std::vector<Finding>& findings)
{
    using enum Mode;
    const QString mode = fields.at(Column::Mode).toLower();
    if (mode.isEmpty()) { // An address alone is to be kept.
        const bool hasAddress =
            !(fields.at(Column::Address) + fields.at(Column::Mask) + fields.at(Column::Gateway)).isEmpty();
        return hasAddress ? Static : Unknown;
    }
    constexpr std::array modes{Unknown, Static, Dhcp, AutoIp, Temporary};
    const auto* const found = std::ranges::find_if(modes, [&](Mode one) { return mode == text(one); });
    if (found == modes.end()) {
        findings.push_back(
            {place, QStringLiteral("\"%1\" is not a mode: static, dhcp, auto-ip or temporary").arg(mode)});
        return Unknown;
    }
    return *found;
}

void parseAddresses(PlanRow& row, const std::map<Column, QString>& fields, std::vector<Finding>& findings)
{
    const auto report = [&](Column column, const QString& text, const QString& value) {
        findings.push_back(
            {row.places.at(column),
             value.isEmpty() ? text : QLatin1Char('"') + value + QLatin1String("\": ") + text});
    };
    const QString address = fields.at(Column::Address).section(QLatin1Char('/'), 0, 0);
    const QString length = fields.at(Column::Address).mid(address.size());
    const QString mask = fields.at(Column::Mask).isEmpty() ? length : fields.at(Column::Mask);
    const QString gateway = fields.at(Column::Gateway);
    const auto parsedAddress = parseAddress(address);
    const auto parsedMask = parseMask(mask);
    const auto parsedGateway = gateway.isEmpty() ? net::Ipv4{} : parseAddress(gateway);
    if (!parsedAddress) {
        report(Column::Address, QStringLiteral("an IP address is needed, such as 192.168.10.21"), address);
    }
    if (!parsedMask) {
        report(Column::Mask, QStringLiteral("a mask is needed, such as 255.255.255.0 or /24"), mask);
    } else if (mask != length && !length.isEmpty()) {
        report(Column::Mask, QStringLiteral("the address has a mask already"), mask);
    }
    if (!parsedGateway) {
        report(Column::Gateway, QStringLiteral("a gateway is an IP address, or left out"), gateway);
    }
    row.wanted.address = parsedAddress.value_or(net::Ipv4{});
    row.wanted.mask = parsedMask.value_or(net::Ipv4{});
    row.wanted.gateway = parsedGateway.value_or(net::Ipv4{});
}

} // namespace

PlanRow parseRow(const std::map<Column, QString>& fields, std::map<Column, FilePosition> places,
                 std::vector<Finding>& findings)
{
    PlanRow row{.mac = net::parseMac(fields.at(Column::Mac).toStdString()),
                .serial = fields.at(Column::Serial),
                .wanted = {},
                .places = std::move(places)};
    if (!row.mac && !fields.at(Column::Mac).isEmpty()) {
        findings.push_back({row.places.at(Column::Mac),
                            QStringLiteral("\"%1\" is not a MAC address").arg(fields.at(Column::Mac))});
    } else if (!row.mac && row.serial.isEmpty()) {
        findings.push_back(
            {row.places.at(Column::Mac),
             QStringLiteral("a MAC address or a serial number is needed to identify the camera")});
    }
    row.wanted.mode = parseMode(fields, row.places.at(Column::Mode), findings);
    if (row.wanted.mode == Mode::Static || row.wanted.mode == Mode::Temporary) {
        parseAddresses(row, fields, findings);
    }
    if (const QString name = fields.at(Column::Name); !name.isEmpty()) {
        row.wanted.name = name;
        if (name.toUtf8().size() > maxNameBytes) {
            findings.push_back(
                {row.places.at(Column::Name), QStringLiteral("the name is longer than 16 bytes")});
        }
    }
    return row;
}

Plan parsePlan(const QByteArray& text)
{
    Plan plan;
    if (!text.isValidUtf8()) {
        plan.findings.push_back({{1, 1}, QStringLiteral("the plan is not UTF-8")});
        return plan;
    }
    const char separator = text.left(text.indexOf('\n')).contains(';') ? ';' : ',';
    const Csv csv = readCsv({text.constData(), static_cast<std::size_t>(text.size())}, separator);
    if (csv.error) {
        plan.findings.push_back({csv.error->place, QLatin1String(csv.error->reason)});
    } else if (csv.rows.empty()) {
        plan.findings.push_back({{1, 1}, QStringLiteral("the plan is empty")});
    }
    std::vector<std::optional<Column>> columns;
    for (const std::vector<CsvField>& fields : csv.rows) {
        if (columns.empty()) {
            columns = parseHeader(fields, plan.findings);
            continue;
        }
        if (fields.size() != columns.size()) {
            plan.findings.push_back(
                {fields.back().place, QStringLiteral("the line has %1 fields, the first line has %2")
                                          .arg(fields.size())
                                          .arg(columns.size())});
            continue;
        }
        std::map<Column, QString> texts;
        std::map<Column, FilePosition> places;
        for (const auto& [name, column] : readColumns) { // Those that the plan has not are empty.
            texts[column].clear();
            places[column] = fields.front().place;
        }
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (columns[i]) {
                texts[*columns[i]] = QString::fromStdString(fields[i].text).trimmed();
                places[*columns[i]] = fields[i].place;
            }
        }
        plan.rows.push_back(parseRow(texts, std::move(places), plan.findings));
    }
    return plan;
}

} // namespace cli
