#include "gige/xmldescription.h"

#include "gige/descriptionerror.h"

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
    constexpr std::string_view Blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

XmlDescription::XmlDescription(std::string file) : m_text(std::move(file))
{
    m_text.erase(m_text.find_last_not_of('\0') + 1);
    constexpr unsigned int Options =
        pugi::parse_default | pugi::parse_embed_pcdata | pugi::parse_ws_pcdata_single;
    const pugi::xml_parse_result result =
        m_document.load_buffer_inplace(m_text.data(), m_text.size(), Options);
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
    const auto found = m_nodes.find(name);
    return found != m_nodes.end() ? found->second : pugi::xml_node();
}

void XmlDescription::index(pugi::xml_node root)
{
    // Groups nest as deep as the camera likes, so the way back is kept here and not on the stack.
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
            m_nodes.try_emplace(name.value(), element);
        }
    }
}

} // namespace gige
