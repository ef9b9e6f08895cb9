#include "gige/stringnode.h"

#include "gige/errors.h"
#include "gige/gvcp.h"
#include "gige/registerport.h"
#include "gige/xmldescription.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace gige {

namespace {

[[noreturn]] void denyAccess(const std::string& name, const char* verb)
{
    raise<GenICam::AccessException>("The feature '" + name + "' cannot be " + verb + " at present.");
}

} // namespace

std::string StringRegister::read() const
{
    std::vector<std::uint8_t> field(m_range.length);
    m_port.read(m_range.address, field);
    return {field.begin(), std::ranges::find(field, 0)};
}

void StringRegister::write(std::string_view text) const
{
    if (text.size() > m_range.length || text.find('\0') != std::string_view::npos) {
        raise<GenICam::InvalidArgumentException>("A text of " + std::to_string(text.size()) +
                                                 " bytes was given; the camera takes up to " +
                                                 std::to_string(m_range.length) + " bytes other than NUL.");
    }
    constexpr std::size_t Word = gvcp::RegisterSize;
    const std::size_t before = m_range.address % Word;
    const std::size_t end = before + m_range.length;
    const std::size_t lastWord = (end - 1) / Word * Word;
    const auto start = static_cast<std::uint32_t>(m_range.address - before);
    std::vector<std::uint8_t> words(lastWord + Word);
    if (before != 0) {
        m_port.read(start, std::span(words).first(Word));
    }
    if (end != words.size() && (before == 0 || lastWord != 0)) {
        m_port.read(static_cast<std::uint32_t>(start + lastWord), std::span(words).subspan(lastWord));
    }
    const auto field = std::span(words).subspan(before, m_range.length);
    std::ranges::fill(field, std::uint8_t{0});
    std::ranges::copy(text, field.begin());
    m_port.write(start, words);
}

NameRegisterNode::NameRegisterNode(RegisterPort& port)
    : NamedNode("DeviceUserID"),
      m_register(port, {.address = gvcp::Register::UserDefinedName,
                        .length = gvcp::DiscoveryAck::UserDefinedNameSize})
{}

void NameRegisterNode::SetValue(const GenICam::gcstring& value, bool /*verify*/)
{
    m_register.write(value.view());
}

GenICam::gcstring NameRegisterNode::GetValue(bool /*verify*/)
{
    return m_register.read();
}

std::int64_t NameRegisterNode::GetMaxLength()
{
    return m_register.length();
}

/// Where a node's text is: in a register or, without one, fixed in the description.
struct XmlStringNode::Resolved
{
    Access access;
    std::optional<StringRegister> place;
    std::string fixed;
};

XmlStringNode::XmlStringNode(pugi::xml_node node, const XmlDescription& description, RegisterPort& port)
    : NamedNode(node.attribute("Name").value()), m_node(node), m_description(description), m_port(port)
{}

bool XmlStringNode::handles(pugi::xml_node node)
{
    return localName(node) == "StringReg" || localName(node) == "String";
}

XmlStringNode::Resolved XmlStringNode::resolve(bool withAccess) const
try {
    XmlEvaluation evaluation(m_description, m_port);
    XmlEvaluation conditions(m_description,
                             m_port); // one that goes round in circles costs no more than itself
    Resolved resolved;
    pugi::xml_node node = m_node;
    while (true) {
        if (withAccess) {
            const Access access = conditions.access(node);
            resolved.access.readable = resolved.access.readable && access.readable;
            resolved.access.writable = resolved.access.writable && access.writable;
        }
        if (localName(node) == "StringReg") {
            resolved.place.emplace(m_port, evaluation.range(node, MaxStringLength));
            return resolved;
        }
        const pugi::xml_node reference = childOf(node, "pValue");
        if (!reference) {
            resolved.fixed = childOf(node, "Value").child_value();
            resolved.access.writable = false;
            return resolved;
        }
        node = evaluation.node(node, trimmed(reference.child_value()));
        if (!handles(node)) {
            throw Unresolvable("node '" + std::string(node.attribute("Name").value()) + "' is no text");
        }
    }
} catch (const Unresolvable& reason) {
    raise<GenICam::RuntimeException>("The feature '" + name() +
                                     "' cannot be used: in the camera's description, " + reason.what() + ".");
}

void XmlStringNode::SetValue(const GenICam::gcstring& value, bool verify)
{
    const Resolved resolved = resolve(verify);
    if (!resolved.place || !resolved.access.writable) {
        denyAccess(name(), "written");
    }
    resolved.place->write(value.view());
}

GenICam::gcstring XmlStringNode::GetValue(bool verify)
{
    const Resolved resolved = resolve(verify);
    if (!resolved.access.readable) {
        denyAccess(name(), "read");
    }
    return resolved.place ? resolved.place->read() : resolved.fixed;
}

std::int64_t XmlStringNode::GetMaxLength()
{
    const Resolved resolved = resolve(false);
    return resolved.place ? std::int64_t{resolved.place->length()}
                          : static_cast<std::int64_t>(resolved.fixed.size());
}

} // namespace gige
