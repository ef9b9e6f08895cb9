#pragma once

#include "cameras.h"
#include "csv.h"

#include <map>
#include <optional>
#include <vector>

namespace cli {

enum class Column { Mac, Serial, Mode, Address, Mask, Gateway, Name };

/// What is wrong with a plan. Its place is empty for what comes from options.
struct Finding
{
    FilePosition place;
    QString text;
    bool canBeForced = false; // Possible, but probably a mistake in the present network.
};

/// What one camera is to become.
struct Wanted
{
    Mode mode = Mode::Unknown; // Leaves addressing as it is.
    net::Ipv4 address{};       // This and the next two for the modes Static and Temporary.
    net::Ipv4 mask{};
    net::Ipv4 gateway{};
    std::optional<QString> name{};
};

/// One line of a plan, read.
struct PlanRow
{
    std::optional<net::MacAddress> mac;
    QString serial;
    Wanted wanted;
    std::map<Column, FilePosition> places; // Each column has one.
};

struct Plan
{
    std::vector<PlanRow> rows;
    std::vector<Finding> findings;
};

/// Reads comma- or semicolon-separated values, the names of the columns first.
[[nodiscard]] Plan parsePlan(const QByteArray& text);

/// Reads what one line says, and adds what is wrong with it to `findings`.
[[nodiscard]] PlanRow parseRow(const std::map<Column, QString>& fields, std::map<Column, FilePosition> places,
                               std::vector<Finding>& findings);

struct TemporaryAddress
{
    net::Ipv4 address;
    net::Ipv4 mask;
};

/// What is to be written to one camera.
struct Change
{
    Camera camera;
    Wanted wanted;
    bool writesMode = false;
    bool writesAddresses = false;
    bool writesName = false;
    bool makesRoom = false;                      // Another camera needs its address before its own is free.
    std::optional<TemporaryAddress> temporary{}; // For that, or where it cannot be opened.

    [[nodiscard]] bool isNothing() const { return !writesMode && !writesAddresses && !writesName; }
    /// Where the camera is afterwards; 0.0.0.0 where the network tells it.
    [[nodiscard]] net::Ipv4 destination() const;
};

struct CheckedPlan
{
    /// One for each row whose camera is there, also for those that change nothing.
    std::vector<Change> changes;
    std::vector<Finding> findings;
};

/// Checks what was read against what was found.
[[nodiscard]] CheckedPlan checkPlan(const std::vector<PlanRow>& rows, const Network& network);

/// "static 192.168.10.21/24 -> static 192.168.10.22/24": what the change does.
[[nodiscard]] QString text(const Change& change);

} // namespace cli
