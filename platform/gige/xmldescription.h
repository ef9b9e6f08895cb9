#pragma once

#include <pugixml.hpp>

#include <string>
#include <string_view>
#include <unordered_map>

namespace gige {

/// The name of an element without its namespace prefix.
[[nodiscard]] std::string_view localName(pugi::xml_node element);
/// The first child element of that local name, or null.
[[nodiscard]] pugi::xml_node childOf(pugi::xml_node element, std::string_view name);
/// The text of that child without blanks around it; empty when there is none.
[[nodiscard]] std::string_view textOf(pugi::xml_node element, std::string_view childName);
/// The text without blanks around it.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// A GenICam description as a tree of elements, with its nodes found by name. Of entities only the five
/// predefined ones and character references are expanded; document types are skipped.
class XmlDescription
{
public:
    /// Parses the file, whose end may be padded with NUL. Throws DescriptionError when it is no XML or
    /// describes no registers.
    explicit XmlDescription(std::string file);
    XmlDescription(const XmlDescription&) = delete;
    XmlDescription& operator=(const XmlDescription&) = delete;
    ~XmlDescription() = default;

    /// The node of that name, at top level or in a group; the first one if there are several, or null.
    [[nodiscard]] pugi::xml_node find(std::string_view name) const;

private:
    void index(pugi::xml_node root);

    std::string m_text; // the document and the index point into it
    pugi::xml_document m_document;
    std::unordered_map<std::string_view, pugi::xml_node> m_nodes;
};

} // namespace gige
