#include "ozlog/ozlog.h"

#include <QLoggingCategory>

#include <deque>
#include <mutex>

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

void appendText(std::string& line, const char* text)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    for (; *text != '\0'; ++text) {
        const auto byte = static_cast<unsigned char>(*text);
        if (byte < 0x20 || byte == 0x7F) {
            line += {'\\', 'x', digits[byte >> 4], digits[byte & 0xF]};
        } else {
            line += *text;
        }
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
