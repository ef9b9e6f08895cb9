#include "ozlog/ozlog.h"

#include <QLoggingCategory>

#include <algorithm>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

namespace ozlog {

namespace {

struct Category
{
    std::string name;
    QLoggingCategory category;

    explicit Category(const char* categoryName)
        : name(categoryName), category(name.c_str(), name == "Lanvic.Base" ? QtInfoMsg : QtWarningMsg)
    {}
};

/// Ids count from 1 in the order of first use. A deque, because a QLoggingCategory must not move.
struct Registry
{
    std::mutex mutex;
    std::deque<Category> categories;
};

Registry& registry()
{
    static Registry instance;
    return instance;
}

const QLoggingCategory* categoryOf(unsigned long catId)
{
    Registry& known = registry();
    const std::scoped_lock lock(known.mutex);
    return catId >= 1 && catId <= known.categories.size() ? &known.categories[catId - 1].category : nullptr;
}

QtMsgType messageTypeOf(LogLevel level)
{
    if (level >= LogLevel::Error) {
        return QtCriticalMsg;
    }
    return level >= LogLevel::Warning ? QtWarningMsg : QtInfoMsg;
}

/// The length in bytes of the character at the beginning if it controls a terminal or the writing direction,
/// otherwise 0: a control character, including C1, or a directional mark, embedding, override or isolate.
std::size_t controlSequenceLength(std::string_view text)
{
    const auto byte = [text](std::size_t at) {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    if (byte(0) < 0x20 || byte(0) == 0x7F) {
        return 1;
    }
    if (byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) < 0xA0) {
        return 2;
    }
    const bool isMarkOrOverride =
        byte(1) == 0x80 && (byte(2) == 0x8E || byte(2) == 0x8F || (byte(2) >= 0xA8 && byte(2) <= 0xAE));
    const bool isIsolate = byte(1) == 0x81 && byte(2) >= 0xA6 && byte(2) <= 0xA9;
    return byte(0) == 0xE2 && (isMarkOrOverride || isIsolate) ? 3 : 0;
}

void appendText(std::string& line, std::string_view text)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    while (!text.empty()) {
        const std::size_t length = controlSequenceLength(text);
        for (const char character : text.substr(0, length)) {
            const auto byte = static_cast<unsigned char>(character);
            line += {'\\', 'x', digits[byte >> 4], digits[byte & 0xF]};
        }
        if (length == 0) {
            line += text.front();
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
}

void appendArgument(std::string& line, const detail::Argument& argument)
{
    switch (argument.kind) {
    case detail::Kind::Text:
        appendText(line, argument.text != nullptr ? argument.text : "(null)");
        break;
    case detail::Kind::Integer:
        line += std::to_string(argument.number);
        break;
    case detail::Kind::Unsigned:
        line += std::to_string(argument.unsignedNumber);
        break;
    }
}

} // namespace

unsigned long LogGetCatID(const char* name)
{
    Registry& known = registry();
    const std::scoped_lock lock(known.mutex);
    for (std::size_t i = 0; i < known.categories.size(); ++i) {
        if (known.categories[i].name == name) {
            return i + 1;
        }
    }
    known.categories.emplace_back(name);
    return known.categories.size();
}

void detail::write(unsigned long catId, LogLevel level, const char* format,
                   const std::vector<Argument>& arguments)
{
    const QLoggingCategory* const category = categoryOf(catId);
    const QtMsgType type = messageTypeOf(level);
    if (category == nullptr || !category->isEnabled(type)) {
        return;
    }
    std::string line;
    auto next = arguments.begin();
    for (const char* at = format; *at != '\0'; ++at) {
        if (*at != '%') {
            line += *at;
        } else if (*++at == '%') {
            line += '%';
        } else {
            at += *at == 'h' ? 1 : 0;
            appendArgument(line, *next++);
        }
    }
    const QMessageLogger logger(nullptr, 0, nullptr, category->categoryName());
    switch (type) {
    case QtCriticalMsg:
        logger.critical("%s", line.c_str());
        break;
    case QtWarningMsg:
        logger.warning("%s", line.c_str());
        break;
    default:
        logger.info("%s", line.c_str());
        break;
    }
}

} // namespace ozlog
