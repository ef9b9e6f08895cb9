#pragma once

#include "genicam/nodemap.h"
#include "xmlevaluation.h"

#include <memory>
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
    /// are, and reads them back if the camera lets it. InvalidArgumentException when the text does not fit or
    /// holds a NUL, as there is no way to write it; RuntimeException when the camera has acknowledged it and
    /// holds another one. Blanks at the end do not count: some cameras pad with them.
    void write(std::string_view text) const;
    [[nodiscard]] std::uint32_t length() const { return m_range.length; }

private:
    void checkKept(std::string_view text) const;

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

/// The standard name register of one camera, if that camera says that it has one.
class StandardName
{
public:
    explicit StandardName(RegisterPort& port) : m_port(port) {}

    /// Null if there is none. The camera is asked at the first call; throws what the port throws if the
    /// camera does not answer.
    [[nodiscard]] NameRegisterNode* get();

private:
    RegisterPort& m_port;
    bool m_wasAsked = false;
    std::unique_ptr<NameRegisterNode> m_node;
};

/// A StringReg or String node of a description. A fixed text is never writable, since the camera would not
/// see it. A node that its description does not resolve to a register or a fixed text within two seconds
/// throws Unresolvable when it is used.
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
