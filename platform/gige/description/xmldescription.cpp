#include "xmldescription.h"

#include "descriptionerror.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace gige {

std::string_view localName(pugi::xml_node element)
{
    const std::string_view name = element.name();
    return name.substr(name.find(':') + 1); // npos + 1 is 0
}

pugi::xml_node childOf(pugi::xml_node element, std::string_view name)
{
    return element.find_child([name](pugi::xml_node child) { return localName(child) == name; });
}

std::string_view textOf(pugi::xml_node element, std::string_view childName)
{
    return trimmed(childOf(element, childName).child_value());
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

namespace {

bool isBlank(char letter)
{
    return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
}

/// The largest size in bytes that the parser's tree of a text can have, with our index: a node for each tag
/// that begins an element and for each text that is not the first thing in its element, and an attribute for
/// each equals sign. Also counts what only looks like a tag, such as in comments.
std::size_t treeSizeOf(std::string_view text)
{
    constexpr std::size_t nodeSize = 64; // bytes, as the parser's structures are on 64-bit systems
    constexpr std::size_t attributeSize = 40;
    constexpr std::size_t indexSize = sizeof(std::pair<std::string_view, pugi::xml_node>);
    std::size_t size = static_cast<std::size_t>(std::ranges::count(text, '=')) * attributeSize;
    for (std::size_t tag = text.find('<'); tag < text.size();) {
        const std::size_t next = std::min(text.find('<', tag + 1), text.size());
        const std::string_view part = text.substr(tag + 1, next - tag - 1);
        const bool beginsElement = !part.starts_with('/') && !part.starts_with('!') && !part.starts_with('?');
        size += beginsElement ? nodeSize + indexSize : 0;
        if (!beginsElement || part.find("/>") != std::string_view::npos) {
            const std::string_view behind = part.substr(std::min(part.find('>'), part.size() - 1) + 1);
            size += std::ranges::all_of(behind, isBlank) ? 0 : nodeSize;
        }
        tag = next;
    }
    return size;
}

} // namespace

XmlDescription::XmlDescription(std::string file) : m_text(std::move(file))
{
    m_text.erase(m_text.find_last_not_of('\0') + 1);
    if (treeSizeOf(m_text) > MaxTreeSize) {
        throw DescriptionError("the XML has more elements than can be held");
    }
    constexpr unsigned int options =
        pugi::parse_default | pugi::parse_embed_pcdata | pugi::parse_ws_pcdata_single;
    const pugi::xml_parse_result result =
        m_document.load_buffer_inplace(m_text.data(), m_text.size(), options);
    if (!result) {
        throw DescriptionError("the XML is malformed at byte " + std::to_string(result.offset) + ": " +
                               result.description());
    }
    const pugi::xml_node root = m_document.document_element();
    if (localName(root) != "RegisterDescription") {
        throw DescriptionError("the XML is no register description");
    }
    index(root);
}

pugi::xml_node XmlDescription::find(std::string_view name) const
{
    const auto found =
        std::ranges::lower_bound(m_nodes, name, {}, [](const auto& node) { return node.first; });
    return found != m_nodes.end() && found->first == name ? found->second : pugi::xml_node();
}

void XmlDescription::index(pugi::xml_node root)
{
    // Groups may be nested to any depth, so that a recursion could overflow the stack.
    std::vector<pugi::xml_node> open{root.first_child()};
    while (!open.empty()) {
        const pugi::xml_node element = open.back();
        open.pop_back();
        if (!element) {
            continue;
        }
        open.push_back(element.next_sibling());
        if (localName(element) == "Group") {
            open.push_back(element.first_child());
        } else if (const pugi::xml_attribute name = element.attribute("Name")) {
            m_nodes.emplace_back(name.value(), element);
        }
    }
    // Of several nodes with the same name, the first counts. (clang 14 does not compile std::ranges::unique.)
    std::ranges::stable_sort(m_nodes, {}, [](const auto& node) { return node.first; });
    const auto haveOneName = [](const auto& a, const auto& b) { return a.first == b.first; };
    m_nodes.erase(std::unique(m_nodes.begin(), m_nodes.end(), haveOneName), m_nodes.end());
}

} // namespace gige
