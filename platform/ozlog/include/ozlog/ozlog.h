#pragma once

#include <cstddef>
#include <type_traits>
#include <vector>

namespace ozlog {

/// Severity of a trace line. Any value is allowed; one between two of these counts as the lower one.
enum class LogLevel : int {
    Info = 64,
    Warning = 128,
    Error = 256,
};

/// The id of a category, created on the first call with that name. The category is a Qt logging category of
/// the same name, so that QT_LOGGING_RULES applies to it. "Lanvic.Base" is enabled from Info up, every other
/// category from Warning up.
[[nodiscard]] unsigned long LogGetCatID(const char* name);

namespace detail {

enum class Kind { Text, Integer, Unsigned };

struct Argument
{
    Kind kind = Kind::Text;
    const char* text = nullptr;
    long long number = 0;
    unsigned long long unsignedNumber = 0;
};

template <typename T>
consteval Kind kindOf()
{
    if constexpr (std::is_convertible_v<T, const char*>) {
        return Kind::Text;
    } else if constexpr (std::is_integral_v<T> && std::is_unsigned_v<T>) {
        return Kind::Unsigned;
    } else {
        static_assert(std::is_integral_v<T>, "a trace line takes 8-bit strings and integers");
        return Kind::Integer;
    }
}

template <typename T>
Argument argument(const T& value)
{
    constexpr Kind kind = kindOf<T>();
    if constexpr (kind == Kind::Text) {
        return {.kind = kind, .text = static_cast<const char*>(value)};
    } else if constexpr (kind == Kind::Unsigned) {
        return {.kind = kind, .unsignedNumber = value};
    } else {
        return {.kind = kind, .number = value};
    }
}

void write(unsigned long catId, LogLevel level, const char* format, const std::vector<Argument>& arguments);

/// Called, and so reported by the compiler, only if a format does not match its arguments.
void formatDoesNotMatchArguments();

} // namespace detail

/// A printf-like format that the compiler checks against its arguments: "%hs" and "%s" take an 8-bit string,
/// "%i" and "%d" a signed and "%u" an unsigned integer, "%%" is a percent sign; nothing else is accepted.
template <typename... Args>
class Format
{
public:
    template <std::size_t N>
    consteval Format(const char (&text)[N]) : m_text(text)
    {
        constexpr detail::Kind kinds[] = {detail::kindOf<std::decay_t<Args>>()..., detail::Kind::Text};
        std::size_t used = 0;
        for (std::size_t i = 0; i + 1 < N; ++i) {
            if (text[i] != '%') {
                continue;
            }
            ++i;
            if (text[i] == '%') {
                continue;
            }
            if (text[i] == 'h' && text[i + 1] == 's') {
                ++i;
            }
            const char conversion = text[i];
            const bool fits =
                used < sizeof...(Args) &&
                ((conversion == 's' && kinds[used] == detail::Kind::Text) ||
                 ((conversion == 'i' || conversion == 'd') && kinds[used] == detail::Kind::Integer) ||
                 (conversion == 'u' && kinds[used] == detail::Kind::Unsigned));
            if (!fits) {
                detail::formatDoesNotMatchArguments();
            }
            ++used;
        }
        if (used != sizeof...(Args)) {
            detail::formatDoesNotMatchArguments();
        }
    }

    [[nodiscard]] const char* text() const { return m_text; }

private:
    const char* m_text;
};

/// Writes one trace line. Null strings show as "(null)". Control characters in the arguments, including those
/// that change the writing direction, are written byte by byte as \xNN, so that a text from a camera cannot
/// forge lines or control a terminal.
template <typename... Args>
void LogTrace(unsigned long catId, LogLevel level, Format<std::type_identity_t<Args>...> format,
              const Args&... arguments)
{
    detail::write(catId, level, format.text(), {detail::argument<std::decay_t<const Args>>(arguments)...});
}

} // namespace ozlog
