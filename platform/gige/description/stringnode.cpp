#include "stringnode.h"

#include "errors.h"
#include "gvcp/bytes.h"
#include "gvcp/gvcp.h"
#include "registerport.h"
#include "xmldescription.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <vector>

namespace gige {

namespace {

using namespace std::chrono_literals;

constexpr auto capabilityTime = 1s;
constexpr auto evaluationTime = 2s; // for the registers that an address or an access mode depends on

[[noreturn]] void denyAccess(const std::string& name, const char* verb)
{
    raise<GenICam::AccessException>(
        {.kind = Tessal::FailureKind::FeatureUnusable, .setting = Tessal::Setting::Name},
        "The feature " + excerpt(name) + " cannot be " + verb + " at present.");
}

} // namespace

std::string StringRegister::read() const
{
    const TimeLimit limit(m_port, m_port.featureTime());
    std::vector<std::uint8_t> field(m_range.length);
    m_port.readMemory(m_range.address, field);
    return {field.begin(), std::ranges::find(field, 0)};
}

void StringRegister::write(std::string_view text) const
{
    if (text.size() > m_range.length || text.find('\0') != std::string_view::npos) {
        raise<GenICam::InvalidArgumentException>(
            {.kind = Tessal::FailureKind::InvalidValue,
             .setting = Tessal::Setting::Name,
             .wanted = std::string(text)},
            "A text of " + std::to_string(text.size()) + " bytes was given; the camera takes up to " +
                std::to_string(m_range.length) + " bytes other than NUL.");
    }
    const TimeLimit limit(m_port, m_port.featureTime());
    constexpr std::size_t word = gvcp::RegisterSize;
    const std::size_t before = m_range.address % word;
    const std::size_t end = before + m_range.length;
    const std::size_t lastWord = (end - 1) / word * word;
    const auto start = static_cast<std::uint32_t>(m_range.address - before);
    std::vector<std::uint8_t> words(lastWord + word);
    if (before != 0) {
        m_port.readMemory(start, std::span(words).first(word));
    }
    if (end != words.size() && (before == 0 || lastWord != 0)) {
        m_port.readMemory(static_cast<std::uint32_t>(start + lastWord), std::span(words).subspan(lastWord));
    }
    const auto field = std::span(words).subspan(before, m_range.length);
    std::ranges::fill(field, std::uint8_t{0});
    std::ranges::copy(text, field.begin());
    m_port.write(start, words);
    checkKept(text);
}

void StringRegister::checkKept(std::string_view text) const
{
    const auto withoutTrailingBlanks = [](std::string_view padded) {
        return padded.substr(0, padded.find_last_not_of(' ') + 1);
    };
    std::string kept;
    try {
        kept = read();
    } catch (const RefusalException&) {
        return; // a write-only register
    } catch (const GenICam::AccessException&) {
        return;
    }
    if (withoutTrailingBlanks(kept) != withoutTrailingBlanks(text)) {
        raise<GenICam::RuntimeException>({.kind = Tessal::FailureKind::NotKept,
                                          .setting = Tessal::Setting::Name,
                                          .address = net::formatIpv4(m_port.address()),
                                          .wanted = std::string(text),
                                          .actual = kept},
                                         "The camera acknowledged the text " + excerpt(text) + " at " +
                                             hex(m_range.address) + " and has " + excerpt(kept) + " there");
    }
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

NameRegisterNode* StandardName::get()
{
    if (!m_wasAsked) {
        std::array<std::uint8_t, gvcp::RegisterSize> capability{};
        const TimeLimit limit(m_port, capabilityTime);
        try {
            m_port.read(gvcp::Register::Capability, capability);
        } catch (const RefusalException&) {
            capability = {}; // a refusal means that there is no such register
        } catch (const GenICam::AccessException&) {
            capability = {};
        }
        m_wasAsked = true;
        if ((bytes::get32(capability, 0) & gvcp::Capability::UserDefinedName) != 0) {
            m_node = std::make_unique<NameRegisterNode>(m_port);
        }
    }
    return m_node.get();
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
{
    const TimeLimit limit(m_port, evaluationTime);
    XmlEvaluation evaluation(m_description, m_port);
    XmlEvaluation conditions(m_description,
                             m_port); // separate, so that circular conditions use up only their own steps
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
            throw Unresolvable("node " + excerpt(node.attribute("Name").value()) + " is no text");
        }
    }
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
