#include "events.h"

#include <algorithm>

namespace sim {

namespace {

bool needsQuotes(char c)
{
    return c == ' ' || c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

} // namespace

EventLine& EventLine::add(std::string_view key, std::string_view value)
{
    if (value.empty() || std::any_of(value.begin(), value.end(), needsQuotes)) {
        return addQuoted(key, value);
    }
    m_text.append(" ").append(key).append("=").append(value);
    return *this;
}

EventLine& EventLine::add(std::string_view key, net::Ipv4 value)
{
    return add(key, net::formatIpv4(value));
}

EventLine& EventLine::addQuoted(std::string_view key, std::string_view value)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    m_text.append(" ").append(key).append("=\"");
    for (const char c : value) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            m_text += '\\';
            m_text += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            m_text.append("\\x");
            m_text += digits[byte >> 4];
            m_text += digits[byte & 0xF];
        } else {
            m_text += c;
        }
    }
    m_text += '"';
    return *this;
}

} // namespace sim
