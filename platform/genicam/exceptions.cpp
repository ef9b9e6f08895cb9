#include "genicam/exceptions.h"

#include <cstdio>

namespace GenICam {

GenericException::GenericException(const char* description, const char* sourceFileName,
                                   unsigned int sourceLine, const char* typeName)
    : m_description(description),
      m_sourceFileName(sourceFileName),
      m_sourceLine(sourceLine),
      m_what(m_description + " : " + typeName + " thrown (file '" + m_sourceFileName + "', line " +
             std::to_string(sourceLine) + ")")
{}

__attribute__((format(printf, 1, 0))) std::string formatMessage(const char* format, va_list arguments)
{
    va_list measuring;
    va_copy(measuring, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measuring);
    va_end(measuring);
    if (length <= 0) {
        return {};
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

} // namespace GenICam
