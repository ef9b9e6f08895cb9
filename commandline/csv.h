#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// A place in a file. Both count from 1, columns in characters of UTF-8.
struct FilePosition
{
    std::size_t line = 0;
    std::size_t column = 0;
};

struct CsvField
{
    std::string text;
    FilePosition place; // Of its first character.
};

struct CsvError
{
    FilePosition place;
    const char* reason;
};

struct Csv
{
    std::vector<std::vector<CsvField>> rows; // Those before the error.
    std::optional<CsvError> error;
};

/// Reads comma-separated values: lines end in LF, CR LF or CR, empty lines count for nothing, a field in
/// quotes may hold separators, line ends and, doubled, quotes. A byte order mark is passed over.
[[nodiscard]] Csv readCsv(std::string_view text, char separator);

/// The text as a field that readCsv() reads back, in quotes where it needs them.
[[nodiscard]] std::string csvField(std::string_view text);

} // namespace cli
