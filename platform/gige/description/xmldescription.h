#pragma once

#include <pugixml.hpp>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace gige {

/// The name of an element without its namespace prefix.
[[nodiscard]] std::string_view localName(pugi::xml_node element);
/// The first child element with that local name, or null.
[[nodiscard]] pugi::xml_node childOf(pugi::xml_node element, std::string_view name);
/// The text of that child without leading and trailing blanks; empty if there is none.
[[nodiscard]] std::string_view textOf(pugi::xml_node element, std::string_view childName);
/// The text without leading and trailing blanks.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// A GenICam description as a tree of elements with an index of its nodes by name. Expands only the five
/// predefined entities and character references; skips document types.
class XmlDescription
{
public:
    /// Bytes that the tree of elements may take in addition to the text. With a text of MaxDescriptionSize in
    /// another encoding, which is held a second time at up to twice the size, that makes 60 MiB; the tree of
    /// a dense description of 5 MiB takes 25.
    static constexpr std::size_t MaxTreeSize = std::size_t{36} << 20;

    /// Parses the file, whose end may be padded with NUL. Throws DescriptionError if it is not XML, does not
    /// describe registers or has so many elements that their tree would take more than MaxTreeSize.
    explicit XmlDescription(std::string file);
    XmlDescription(const XmlDescription&) = delete;
    XmlDescription& operator=(const XmlDescription&) = delete;
    ~XmlDescription() = default;

    /// The node with that name, at top level or in a group; the first if there are several, or null.
    [[nodiscard]] pugi::xml_node find(std::string_view name) const;

private:
    void index(pugi::xml_node root);

    std::string m_text; // the document and the index point into it
    pugi::xml_document m_document;
    // By name, each once. Not a hash table, because the camera chooses the names.
    std::vector<std::pair<std::string_view, pugi::xml_node>> m_nodes;
};

} // namespace gige
