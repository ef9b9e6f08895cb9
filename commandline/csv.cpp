#include "csv.h"

#include <utility>

namespace cli {

namespace {

constexpr char quote = '"';

bool isLineEnd(char character)
{
    return character == '\n' || character == '\r';
}

class Reader
{
public:
    Reader(std::string_view text, char separator) : m_text(text), m_separator(separator) {}

    Csv read()
    {
        Csv csv;
        while (!atEnd()) {
            if (isLineEnd(peek())) {
                take();
                continue;
            }
            std::vector<CsvField> row;
            csv.error = readRow(row);
            if (csv.error) {
                break;
            }
            csv.rows.push_back(std::move(row));
        }
        return csv;
    }

private:
    std::optional<CsvError> readRow(std::vector<CsvField>& row)
    {
        while (true) {
            CsvField field{.text = {}, .place = m_place};
            if (auto error = peek() == quote ? readQuoted(field) : readPlain(field)) {
                return error;
            }
            row.push_back(std::move(field));
            if (atEnd() || take() != m_separator) {
                return std::nullopt;
            }
        }
    }

    std::optional<CsvError> readPlain(CsvField& field)
    {
        while (!atFieldEnd()) {
            if (peek() == quote) {
                return CsvError{m_place, "a quote inside of a field that does not begin with one"};
            }
            field.text += take();
        }
        return std::nullopt;
    }

    std::optional<CsvError> readQuoted(CsvField& field)
    {
        take();
        while (!atEnd()) {
            const char character = take();
            if (character == quote && peek() != quote) {
                return atFieldEnd() ? std::nullopt
                                    : std::optional(CsvError{m_place, "text after a closing quote"});
            }
            if (character == quote) {
                take();
            }
            field.text += character;
        }
        return CsvError{field.place, "a quote that is never closed"};
    }

    [[nodiscard]] bool atEnd() const { return m_at == m_text.size(); }
    [[nodiscard]] bool atFieldEnd() const { return atEnd() || peek() == m_separator || isLineEnd(peek()); }
    [[nodiscard]] char peek() const { return atEnd() ? '\0' : m_text[m_at]; }

    char take()
    {
        const char character = m_text[m_at++];
        if (character == '\r' && peek() == '\n') {
            return character; // The line ends with the next.
        }
        if (isLineEnd(character)) {
            m_place = {m_place.line + 1, 1};
        } else if ((static_cast<unsigned char>(character) & 0xC0) != 0x80) { // Not inside of a character.
            ++m_place.column;
        }
        return character;
    }

    std::string_view m_text;
    char m_separator;
    std::size_t m_at = 0;
    FilePosition m_place{1, 1};
};

} // namespace

Csv readCsv(std::string_view text, char separator)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark)) {
        text.remove_prefix(byteOrderMark.size());
    }
    return Reader(text, separator).read();
}

std::string csvField(std::string_view text)
{
    if (text.find_first_of(",;\"\r\n") == std::string_view::npos) {
        return std::string(text);
    }
    std::string field(1, quote);
    for (const char character : text) {
        field.append(character == quote ? 2 : 1, character);
    }
    return field + quote;
}

} // namespace cli
