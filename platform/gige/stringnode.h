#pragma once

#include "genicam/nodemap.h"
#include "gige/xmlevaluation.h"

#include <string>
#include <string_view>

namespace gige {

/// The most bytes that a text feature's register may have. Real ones have 16 to 512.
inline constexpr std::uint32_t MaxStringLength = 64 << 10;

/// A text in the camera's registers, padded with NUL.
class StringRegister
{
public:
    StringRegister(RegisterPort& port, RegisterRange range) : m_port(port), m_range(range) {}

    [[nodiscard]] std::string read() const;
    /// Writes all bytes of the register at once, leaving those that share its first and last word as they
    /// are. InvalidArgumentException when the text does not fit or holds a NUL, also where nobody wants the
    /// value verified: there is no way to write it.
    void write(std::string_view text) const;
    [[nodiscard]] std::uint32_t length() const { return m_range.length; }

private:
    RegisterPort& m_port;
    RegisterRange m_range;
};

/// A feature by its name. One that is no text offers nothing more here.
class NamedNode : public GenApi::INode
{
public:
    explicit NamedNode(std::string name) : m_name(std::move(name)) {}

    [[nodiscard]] GenICam::gcstring GetName() const override { return m_name; }

    [[nodiscard]] const std::string& name() const { return m_name; }

private:
    std::string m_name;
};

/// The standard register for the name that a user gives a camera.
class NameRegisterNode : public NamedNode, public GenApi::IString
{
public:
    explicit NameRegisterNode(RegisterPort& port);

    void SetValue(const GenICam::gcstring& value, bool verify) override;
    [[nodiscard]] GenICam::gcstring GetValue(bool verify) override;
    [[nodiscard]] std::int64_t GetMaxLength() override;

private:
    StringRegister m_register;
};

/// A StringReg or String node of a description. A node that its description does not resolve to a register or
/// a fixed text raises RuntimeException when it is used. A fixed text is never writable, since the camera
/// would not see it.
class XmlStringNode : public NamedNode, public GenApi::IString
{
public:
    XmlStringNode(pugi::xml_node node, const XmlDescription& description, RegisterPort& port);

    [[nodiscard]] static bool handles(pugi::xml_node node);

    void SetValue(const GenICam::gcstring& value, bool verify) override;
    [[nodiscard]] GenICam::gcstring GetValue(bool verify) override;
    [[nodiscard]] std::int64_t GetMaxLength() override;

private:
    struct Resolved;

    [[nodiscard]] Resolved resolve(bool withAccess) const;

    pugi::xml_node m_node;
    const XmlDescription& m_description;
    RegisterPort& m_port;
};

} // namespace gige
