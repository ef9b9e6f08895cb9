#pragma once

#include "output.h"

#include <chrono>
#include <variant>

namespace cli {

/// As the manual page has them.
namespace Exit {
inline constexpr int Done = 0;
inline constexpr int CameraFailed = 1; // Or the list could not be written.
inline constexpr int WrongUsage = 2;   // Or a wrong plan.
inline constexpr int NothingAsked = 3;
} // namespace Exit

struct Options
{
    enum class Command { List, Set, Apply };

    Command command = Command::List;
    Format format = Format::Table;
    QString operand{};                  // a camera, or the name of a plan; "-" for standard input
    std::map<Column, QString> fields{}; // Of `set`: what a plan would say.
    bool setsName = false;
    bool isDryRun = false;
    bool isForced = false; // Also what can be forced only.
    std::chrono::seconds patience{60};
};

/// Parses the arguments. If they request help or are invalid, prints the answer and returns the exit status
/// instead.
[[nodiscard]] std::variant<Options, int> parseOptions(const QStringList& arguments);

} // namespace cli
