#pragma once

#include <cstdarg>
#include <exception>
#include <string>

namespace GenICam {

/// Base of all exceptions of the camera libraries. Carries a description for people, the place where it was
/// thrown, and its type name; `what()` joins them in one line.
class GenericException : public std::exception
{
public:
    GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine,
                     const char* typeName = "GenericException");

    [[nodiscard]] const char* GetDescription() const noexcept { return m_description.c_str(); }
    [[nodiscard]] const char* GetSourceFileName() const noexcept { return m_sourceFileName.c_str(); }
    [[nodiscard]] unsigned int GetSourceLine() const noexcept { return m_sourceLine; }
    [[nodiscard]] const char* what() const noexcept override { return m_what.c_str(); }

private:
    std::string m_description;
    std::string m_sourceFileName;
    unsigned int m_sourceLine;
    std::string m_what;
};

/// A failure that could not be foreseen when the call was made.
class RuntimeException : public GenericException
{
public:
    using GenericException::GenericException;
};

/// Misuse by the caller: an empty node pointer, an object of the wrong kind.
class LogicalErrorException : public GenericException
{
public:
    using GenericException::GenericException;
};

/// An argument that the call cannot use, such as a text that is no MAC address.
class InvalidArgumentException : public GenericException
{
public:
    using GenericException::GenericException;
};

/// Another application has control, or a node or register does not grant the requested access.
class AccessException : public GenericException
{
public:
    using GenericException::GenericException;
};

/// The camera gave no usable answer in time.
class TimeoutException : public GenericException
{
public:
    using GenericException::GenericException;
};

/// Formats like `vsnprintf` into a string of the required length.
[[nodiscard]] std::string formatMessage(const char* format, va_list arguments);

/// Builds an exception of type E that knows its origin: `throw ExceptionReporter<E>(file, line,
/// "E").Report(...)`.
template <typename E>
class ExceptionReporter
{
public:
    ExceptionReporter(const char* sourceFileName, unsigned int sourceLine, const char* typeName)
        : m_sourceFileName(sourceFileName), m_sourceLine(sourceLine), m_typeName(typeName)
    {}

    /// Returns the exception, for the caller to throw. The description is formatted like `printf`.
    [[nodiscard]] __attribute__((format(printf, 2, 3))) E Report(const char* format, ...) const
    {
        va_list arguments;
        va_start(arguments, format);
        const std::string description = formatMessage(format, arguments);
        va_end(arguments);
        return E(description.c_str(), m_sourceFileName, m_sourceLine, m_typeName);
    }

private:
    const char* m_sourceFileName;
    unsigned int m_sourceLine;
    const char* m_typeName;
};

} // namespace GenICam
