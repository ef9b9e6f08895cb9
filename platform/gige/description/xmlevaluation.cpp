#include "xmlevaluation.h"

#include "errors.h"
#include "registerport.h"
#include "xmldescription.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <string>

namespace gige {

namespace {

[[noreturn]] void fail(pugi::xml_node node, std::string_view reason)
{
    throw Unresolvable("node " + excerpt(node.attribute("Name").value()) + " " + std::string(reason));
}

/// Parses a signed decimal number, or up to 64 bits in hexadecimal after `0x`.
std::int64_t number(pugi::xml_node node, std::string_view text)
{
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    const char* const first = text.data() + (hex ? 2 : text.starts_with('+') ? 1 : 0);
    const char* const end = text.data() + text.size();
    std::int64_t value = 0;
    std::uint64_t bits = 0;
    const auto [stop, error] =
        hex ? std::from_chars(first, end, bits, 16) : std::from_chars(first, end, value, 10);
    if (error != std::errc{} || stop != end) {
        fail(node, "has " + excerpt(text) + " for a number");
    }
    return hex ? static_cast<std::int64_t>(bits) : value;
}

std::int64_t numberOr(std::int64_t otherwise, pugi::xml_node node, std::string_view childName)
{
    const pugi::xml_node child = childOf(node, childName);
    return child ? number(node, trimmed(child.child_value())) : otherwise;
}

/// The bits of a MaskedIntReg's field, numbered from the least significant one.
struct Field
{
    unsigned int lowest = 0;
    unsigned int width = 0;
};

Field fieldOf(pugi::xml_node node, bool bigEndian, std::uint32_t length)
{
    const unsigned int bits = length * 8;
    Field field{.lowest = 0, .width = bits};
    if (localName(node) == "MaskedIntReg") {
        const std::int64_t bit = numberOr(-1, node, "Bit");
        const auto [low, high] = std::minmax({numberOr(bit, node, "LSB"), numberOr(bit, node, "MSB")});
        if (low < 0 || high >= bits) {
            fail(node, "has a bit field outside of its register");
        }
        // In a big-endian register bit 0 is the most significant one.
        field.lowest = static_cast<unsigned int>(bigEndian ? bits - 1 - high : low);
        field.width = static_cast<unsigned int>(high - low + 1);
    }
    return field;
}

} // namespace

pugi::xml_node XmlEvaluation::node(pugi::xml_node from, std::string_view name)
{
    if (++m_steps > MaxSteps) {
        fail(from, "refers to too many nodes or to itself");
    }
    if (std::chrono::steady_clock::now() >= m_port.deadline()) {
        fail(from, "takes too long to be evaluated");
    }
    const pugi::xml_node found = m_description.find(name);
    if (!found) {
        fail(from, "refers to " + excerpt(name) + ", which does not exist");
    }
    return found;
}

RegisterRange XmlEvaluation::range(pugi::xml_node registerNode, std::uint32_t maxLength)
{
    if (const pugi::xml_node port = childOf(registerNode, "pPort")) {
        const pugi::xml_node device = node(registerNode, trimmed(port.child_value()));
        if (localName(device) != "Port" || childOf(device, "ChunkID") || childOf(device, "EventID")) {
            fail(registerNode, "does not lie in the camera's registers");
        }
    }
    const std::int64_t first = address(registerNode);
    const pugi::xml_node reference = childOf(registerNode, "pLength");
    const std::int64_t length = reference ? value(node(registerNode, trimmed(reference.child_value())))
                                          : numberOr(0, registerNode, "Length");
    constexpr std::int64_t spaceEnd = std::int64_t{1} << 32;
    if (first < 0 || first >= spaceEnd || length < 1 || length > spaceEnd - first) {
        fail(registerNode, "has no place in the camera's registers");
    }
    if (length > maxLength) {
        fail(registerNode, "has a length of " + std::to_string(length) + " bytes");
    }
    return {.address = static_cast<std::uint32_t>(first), .length = static_cast<std::uint32_t>(length)};
}

std::int64_t XmlEvaluation::address(pugi::xml_node registerNode)
{
    std::int64_t total = 0;
    bool given = false;
    for (const pugi::xml_node child : registerNode.children()) {
        const std::string_view kind = localName(child);
        const std::string_view text = trimmed(child.child_value());
        if (kind == "Address" || kind == "pAddress") {
            const std::int64_t part =
                kind == "Address" ? number(registerNode, text) : value(node(registerNode, text));
            if (__builtin_add_overflow(total, part, &total)) {
                fail(registerNode, "has an address that is too large");
            }
            given = true;
        } else if (kind == "IntSwissKnife" || kind == "pIndex") {
            fail(registerNode, "has an address with " + std::string(kind) + ", which is not evaluated");
        }
    }
    if (!given) {
        fail(registerNode, "has no address");
    }
    return total;
}

Access XmlEvaluation::access(pugi::xml_node of)
{
    Access access;
    for (const std::string_view element : {"AccessMode", "ImposedAccessMode"}) {
        const std::string_view mode = textOf(of, element);
        access.readable = access.readable && mode != "WO";
        access.writable = access.writable && mode != "RO";
    }
    if (!condition(of, "pIsImplemented", true) || !condition(of, "pIsAvailable", true)) {
        return {.readable = false, .writable = false};
    }
    access.writable = access.writable && !condition(of, "pIsLocked", false);
    return access;
}

bool XmlEvaluation::condition(pugi::xml_node of, std::string_view reference, bool otherwise)
{
    const pugi::xml_node child = childOf(of, reference);
    if (!child) {
        return otherwise;
    }
    try {
        return value(node(of, trimmed(child.child_value()))) != 0;
    } catch (const Unresolvable&) {
        return otherwise;
    }
}

std::int64_t XmlEvaluation::value(pugi::xml_node of)
{
    const std::string_view kind = localName(of);
    if (kind == "IntReg" || kind == "MaskedIntReg") {
        return registerValue(of);
    }
    if (kind == "Boolean") {
        return booleanValue(of);
    }
    if (kind != "Integer") {
        fail(of, "is of the kind " + excerpt(kind) + ", which is not evaluated");
    }
    if (const pugi::xml_node reference = childOf(of, "pValue")) {
        return value(node(of, trimmed(reference.child_value())));
    }
    return number(of, textOf(of, "Value"));
}

std::int64_t XmlEvaluation::booleanValue(pugi::xml_node of)
{
    if (const pugi::xml_node reference = childOf(of, "pValue")) {
        const std::int64_t on = numberOr(1, of, "OnValue");
        return value(node(of, trimmed(reference.child_value()))) == on ? 1 : 0;
    }
    const std::string_view text = textOf(of, "Value");
    if (text == "true" || text == "false") {
        return text == "true" ? 1 : 0;
    }
    return number(of, text) != 0 ? 1 : 0;
}

std::int64_t XmlEvaluation::registerValue(pugi::xml_node of)
{
    const RegisterRange place = range(of, sizeof(std::int64_t));
    if (!std::has_single_bit(place.length)) {
        fail(of, "has a length of " + std::to_string(place.length) + " bytes for a number");
    }
    const bool bigEndian = textOf(of, "Endianess") == "BigEndian";
    const Field field = fieldOf(of, bigEndian, place.length);
    std::array<std::uint8_t, 8> buffer{};
    const auto octets = std::span(buffer).first(place.length);
    try {
        m_port.read(place.address, octets);
    } catch (const RefusalException& refusal) {
        fail(of, "cannot be read: " + std::string(refusal.GetDescription()));
    } catch (const GenICam::AccessException& refusal) {
        fail(of, "cannot be read: " + std::string(refusal.GetDescription()));
    } catch (const GenICam::TimeoutException& silence) {
        if (std::chrono::steady_clock::now() < m_port.deadline()) {
            throw;
        }
        fail(of, "takes too long to be read: " + std::string(silence.GetDescription()));
    }
    if (!bigEndian) {
        std::ranges::reverse(octets);
    }
    std::uint64_t bits = 0;
    for (const std::uint8_t octet : octets) {
        bits = bits << 8 | octet;
    }
    // Shifting the field to the top and back down, arithmetically if signed, masks and extends it.
    const std::uint64_t top = bits << (64 - field.lowest - field.width);
    const unsigned int down = 64 - field.width;
    return textOf(of, "Sign") == "Signed" ? static_cast<std::int64_t>(top) >> down
                                          : static_cast<std::int64_t>(top >> down);
}

} // namespace gige
