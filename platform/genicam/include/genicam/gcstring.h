#pragma once

#include <compare>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace GenICam {

/// The 8-bit string of the camera libraries: ASCII or UTF-8, compared byte by byte as unsigned values, a
/// proper prefix first. May hold NUL bytes; the conversion to `const char*` ends at the first.
class gcstring
{
public:
    gcstring() = default;
    /// A null pointer gives the empty string.
    gcstring(const char* text) : m_text(text != nullptr ? text : "") {}
    gcstring(const char* text, std::size_t length) : m_text(text, length) {}
    gcstring(std::string text) : m_text(std::move(text)) {}

    [[nodiscard]] const char* c_str() const noexcept { return m_text.c_str(); }
    operator const char*() const noexcept { return m_text.c_str(); }
    [[nodiscard]] std::string_view view() const noexcept { return m_text; }
    [[nodiscard]] bool empty() const noexcept { return m_text.empty(); }
    [[nodiscard]] std::size_t size() const noexcept { return m_text.size(); }

    gcstring& operator+=(const gcstring& other)
    {
        m_text += other.m_text;
        return *this;
    }
    friend gcstring operator+(gcstring left, const gcstring& right)
    {
        left += right;
        return left;
    }
    friend gcstring operator+(gcstring left, const char* right) { return left += right; }

    friend bool operator==(const gcstring&, const gcstring&) = default;
    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the zero of a defaulted comparison for a pointer
    friend auto operator<=>(const gcstring&, const gcstring&) = default;
    friend bool operator==(const gcstring& left, const char* right) { return left.view() == right; }

private:
    std::string m_text;
};

using gcstring_vector = std::vector<gcstring>;

} // namespace GenICam
