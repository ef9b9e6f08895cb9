#include "gige/nodemap.h"

#include "gige/bytes.h"
#include "gige/description.h"
#include "gige/descriptionerror.h"
#include "gige/gvcp.h"
#include "gige/registerport.h"
#include "gige/stringnode.h"
#include "gige/xmldescription.h"
#include "ozlog/ozlog.h"

#include <array>
#include <map>

namespace gige {

namespace {

class XmlNodeMap : public GenApi::INodeMap
{
public:
    XmlNodeMap(std::unique_ptr<XmlDescription> description, RegisterPort& port)
        : m_description(std::move(description)), m_port(port)
    {}

    [[nodiscard]] GenApi::INode* GetNode(const GenICam::gcstring& name) const override
    {
        const pugi::xml_node element = m_description->find(name.view());
        if (!element) {
            return nullptr;
        }
        std::unique_ptr<GenApi::INode>& node = m_nodes[std::string(name.view())];
        if (node == nullptr) {
            if (XmlStringNode::handles(element)) {
                node = std::make_unique<XmlStringNode>(element, *m_description, m_port);
            } else {
                node = std::make_unique<NamedNode>(std::string(name.view()));
            }
        }
        return node.get();
    }

private:
    std::unique_ptr<XmlDescription> m_description;
    RegisterPort& m_port;
    mutable std::map<std::string, std::unique_ptr<GenApi::INode>> m_nodes; // made when first asked for
};

/// What can be had of a camera without a description.
class StandardNodeMap : public GenApi::INodeMap
{
public:
    StandardNodeMap(RegisterPort& port, bool hasName)
    {
        if (hasName) {
            m_name = std::make_unique<NameRegisterNode>(port);
        }
    }

    [[nodiscard]] GenApi::INode* GetNode(const GenICam::gcstring& name) const override
    {
        return m_name != nullptr && name == m_name->GetName() ? m_name.get() : nullptr;
    }

private:
    std::unique_ptr<NameRegisterNode> m_name;
};

/// A camera that refuses to tell grants nothing.
bool grantsName(RegisterPort& port)
{
    std::array<std::uint8_t, gvcp::RegisterSize> capability{};
    try {
        port.read(gvcp::Register::Capability, capability);
    } catch (const RefusalException&) {
        return false;
    } catch (const GenICam::AccessException&) {
        return false;
    }
    return (bytes::get32(capability, 0) & gvcp::Capability::UserDefinedName) != 0;
}

std::unique_ptr<GenApi::INodeMap> readNodeMap(RegisterPort& port)
{
    std::string reason;
    try {
        return std::make_unique<XmlNodeMap>(loadDescription(port), port);
    } catch (const DescriptionError& error) {
        reason = error.what();
    }
    const bool hasName = grantsName(port);
    ozlog::LogTrace(ozlog::LogGetCatID("Lanvic.Camera.NodeMap"), ozlog::LogLevel::Warning,
                    "The camera's description cannot be used (%hs). %hs", reason.c_str(),
                    hasName ? "DeviceUserID is the standard name register."
                            : "The camera has no standard name register either.");
    return std::make_unique<StandardNodeMap>(port, hasName);
}

/// A description can be long, and who only writes addresses asks for no feature.
class LazyNodeMap : public GenApi::INodeMap
{
public:
    explicit LazyNodeMap(RegisterPort& port) : m_port(port) {}

    [[nodiscard]] GenApi::INode* GetNode(const GenICam::gcstring& name) const override
    {
        if (m_map == nullptr) {
            m_map = readNodeMap(m_port);
        }
        return m_map->GetNode(name);
    }

private:
    RegisterPort& m_port;
    mutable std::unique_ptr<GenApi::INodeMap> m_map; // null until a feature is asked for
};

} // namespace

std::unique_ptr<GenApi::INodeMap> makeNodeMap(RegisterPort& port)
{
    return std::make_unique<LazyNodeMap>(port);
}

} // namespace gige
