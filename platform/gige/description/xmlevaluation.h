#pragma once

#include <pugixml.hpp>

#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace gige {

class RegisterPort;
class XmlDescription;

/// A node's value cannot be determined from its description; `what()` names the node and the reason.
class Unresolvable : public std::runtime_error
{
public:
    using runtime_error::runtime_error;
};

/// A range of a camera's register space.
struct RegisterRange
{
    std::uint32_t address = 0;
    std::uint32_t length = 0; // bytes, at least 1; the end is within the 32-bit register space
};

/// What a node grants at this moment.
struct Access
{
    bool readable = true;
    bool writable = true;
};

/// Evaluates the nodes of a description, reading the registers that this takes. Supports the nodes Integer,
/// IntReg, MaskedIntReg and Boolean with their references, but no formulas. One object serves one use of a
/// node: it visits at most MaxSteps nodes, which ends circular references.
class XmlEvaluation
{
public:
    static constexpr int MaxSteps = 256; // far more than real descriptions need for one value

    XmlEvaluation(const XmlDescription& description, RegisterPort& port)
        : m_description(description), m_port(port)
    {}

    /// The node with that name; throws Unresolvable if there is none or after MaxSteps.
    [[nodiscard]] pugi::xml_node node(pugi::xml_node from, std::string_view name);
    /// The range of the register node, which begins at the sum of its addresses. Throws Unresolvable, also if
    /// it has more than `maxLength` bytes.
    [[nodiscard]] RegisterRange range(pugi::xml_node registerNode, std::uint32_t maxLength);
    /// The access of that node alone, not of those it refers to. A condition that cannot be evaluated does
    /// not restrict it.
    [[nodiscard]] Access access(pugi::xml_node of);

private:
    [[nodiscard]] std::int64_t address(pugi::xml_node registerNode);
    [[nodiscard]] std::int64_t value(pugi::xml_node of);
    [[nodiscard]] std::int64_t registerValue(pugi::xml_node of);
    [[nodiscard]] std::int64_t booleanValue(pugi::xml_node of);
    [[nodiscard]] bool condition(pugi::xml_node of, std::string_view reference, bool otherwise);

    const XmlDescription& m_description;
    RegisterPort& m_port;
    int m_steps = 0;
};

} // namespace gige
