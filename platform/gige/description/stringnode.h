#pragma once

#include "genicam/nodemap.h"
#include "xmlevaluation.h"

#include <memory>
#include <string>
#include <string_view>

namespace gige {

/// The largest size in bytes that is accepted for a text feature's register. Real ones have 16 to 512.
inline constexpr std::uint32_t MaxStringLength = 64 << 10;

/// A text in the camera's registers, padded with NUL.
class StringRegister
{
public:
    StringRegister(RegisterPort& port, RegisterRange range) : m_port(port), m_range(range) {}

    [[nodiscard]] std::string read() const;
    /// Writes all bytes of the register at once, preserving those that share its first and last word, and
    /// reads them back if the camera allows it. Throws InvalidArgumentException if the text does not fit or
    /// contains a NUL, which cannot be written; RuntimeException if the camera acknowledges it but holds
    /// another one. Trailing blanks do not count: some cameras pad with them.
    void write(std::string_view text) const;
    [[nodiscard]] std::uint32_t length() const { return m_range.length; }

private:
    void checkKept(std::string_view text) const;

    RegisterPort& m_port;
    RegisterRange m_range;
};

/// A feature with its name. One that is not a text offers nothing more here.
class NamedNode : public GenApi::INode
{
public:
    explicit NamedNode(std::string name) : m_name(std::move(name)) {}

    [[nodiscard]] GenICam::gcstring GetName() const override { return m_name; }

    [[nodiscard]] const std::string& name() const { return m_name; }

private:
    std::string m_name;
};

/// The standard register for the user-defined name.
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

/// The standard name register of one camera, if that camera says that it has one.
class StandardName
{
public:
    explicit StandardName(RegisterPort& port) : m_port(port) {}

    /// Null if there is none. Asks the camera on the first call; throws what the port throws if the camera
    /// does not answer.
    [[nodiscard]] NameRegisterNode* get();

private:
    RegisterPort& m_port;
    bool m_wasAsked = false;
    std::unique_ptr<NameRegisterNode> m_node;
};

/// A StringReg or String node of a description. A fixed text is never writable, since the camera would not
/// see it. A node that cannot be resolved to a register or a fixed text within two seconds throws
/// Unresolvable when it is used.
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
