#pragma once

#include "net/addresses.h"

#include <string>
#include <string_view>

namespace sim {

/// One line of the event log: a word, then `key=value` pairs. Empty values and those with blanks, quotes,
/// backslashes or control characters are quoted; control characters are written as \xNN.
class EventLine
{
public:
    explicit EventLine(std::string_view word) : m_text(word) {}

    EventLine& add(std::string_view key, std::string_view value);
    EventLine& add(std::string_view key, net::Ipv4 value);
    EventLine& addQuoted(std::string_view key, std::string_view value);

    [[nodiscard]] const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

} // namespace sim
