#include "nodemap.h"

#include "description.h"
#include "descriptionerror.h"
#include "errors.h"
#include "ozlog/ozlog.h"
#include "registerport.h"
#include "stringnode.h"
#include "xmldescription.h"

#include <chrono>
#include <map>

namespace gige {

namespace {

using namespace std::chrono_literals;

// Together at most ten seconds, because the window waits: these seven, two to evaluate a node, and one to ask
// whether the camera has a standard name register. A description of 1 MiB is read in a second from a camera
// that answers within half a millisecond.
constexpr auto loadingTime = 7s;

constexpr char userIdName[] = "DeviceUserID";

void logWarning(const std::string& text)
{
    ozlog::LogTrace(ozlog::LogGetCatID("Lanvic.Camera.NodeMap"), ozlog::LogLevel::Warning, "%hs",
                    text.c_str());
}

/// A text feature of the description; if that cannot be resolved, the fallback is used, if there is one.
class DescribedText : public NamedNode, public GenApi::IString
{
    template <typename Operation>
    auto use(Operation operation)
    {
        const TimeLimit limit(m_port, m_port.featureTime());
        std::string reason;
        try {
            return operation(m_described);
        } catch (const Unresolvable& unresolvable) {
            reason = "in the camera's description, " + std::string(unresolvable.what());
        }
        NameRegisterNode* const fallback = m_fallback != nullptr ? m_fallback->get() : nullptr;
        if (fallback == nullptr) {
            raise<GenICam::RuntimeException>(
                {.kind = Tessal::FailureKind::FeatureUnusable, .setting = Tessal::Setting::Name},
                "The feature " + excerpt(name()) + " cannot be used: " + reason + ".");
        }
        logWarning(name() + " is the standard name register: " + reason + ".");
        return operation(*fallback);
    }

public:
    /// `fallback` may be null.
    DescribedText(pugi::xml_node element, const XmlDescription& description, RegisterPort& port,
                  StandardName* fallback)
        : NamedNode(element.attribute("Name").value()),
          m_port(port),
          m_described(element, description, port),
          m_fallback(fallback)
    {}

    void SetValue(const GenICam::gcstring& value, bool verify) override
    {
        use([&](GenApi::IString& node) { node.SetValue(value, verify); });
    }
    [[nodiscard]] GenICam::gcstring GetValue(bool verify) override
    {
        return use([&](GenApi::IString& node) { return node.GetValue(verify); });
    }
    [[nodiscard]] std::int64_t GetMaxLength() override
    {
        return use([](GenApi::IString& node) { return node.GetMaxLength(); });
    }

private:
    RegisterPort& m_port;
    XmlStringNode m_described;
    StandardName* m_fallback;
};

class XmlNodeMap : public GenApi::INodeMap
{
public:
    XmlNodeMap(std::unique_ptr<XmlDescription> description, RegisterPort& port)
        : m_description(std::move(description)), m_port(port), m_standardName(port)
    {}

    [[nodiscard]] GenApi::INode* GetNode(const GenICam::gcstring& name) const override
    {
        const pugi::xml_node element = m_description->find(name.view());
        const bool isUserId = name == userIdName;
        if (isUserId && !XmlStringNode::handles(element)) {
            if (NameRegisterNode* const standard = m_standardName.get()) {
                logWarning(
                    "DeviceUserID is the standard name register: the camera's description has no such text.");
                return standard;
            }
        }
        if (!element) {
            return nullptr;
        }
        std::unique_ptr<GenApi::INode>& node = m_nodes[std::string(name.view())];
        if (node == nullptr && XmlStringNode::handles(element)) {
            node = std::make_unique<DescribedText>(element, *m_description, m_port,
                                                   isUserId ? &m_standardName : nullptr);
        } else if (node == nullptr) {
            node = std::make_unique<NamedNode>(std::string(name.view()));
        }
        return node.get();
    }

private:
    std::unique_ptr<XmlDescription> m_description;
    RegisterPort& m_port;
    mutable StandardName m_standardName;
    mutable std::map<std::string, std::unique_ptr<GenApi::INode>> m_nodes; // created on first request
};

/// The features of a camera without a usable description.
class StandardNodeMap : public GenApi::INodeMap
{
public:
    explicit StandardNodeMap(RegisterPort& port) : m_name(port) {}

    [[nodiscard]] GenApi::INode* GetNode(const GenICam::gcstring& name) const override
    {
        return name == userIdName ? m_name.get() : nullptr;
    }

private:
    mutable StandardName m_name;
};

std::unique_ptr<GenApi::INodeMap> readNodeMap(RegisterPort& port)
{
    try {
        return std::make_unique<XmlNodeMap>(loadDescription(port, loadingTime), port);
    } catch (const DescriptionError& error) {
        auto standard = std::make_unique<StandardNodeMap>(port);
        const bool hasName = standard->GetNode(userIdName) != nullptr;
        logWarning(std::string("The camera's description cannot be used (") + error.what() + "). " +
                   (hasName ? "DeviceUserID is the standard name register."
                            : "The camera has no standard name register either."));
        return standard;
    }
}

/// Loads the description on first use: it can be long, and saving addresses needs no feature.
class LazyNodeMap : public GenApi::INodeMap
{
public:
    explicit LazyNodeMap(RegisterPort& port) : m_port(port) {}

    [[nodiscard]] GenApi::INode* GetNode(const GenICam::gcstring& name) const override
    {
        if (m_map == nullptr) {
            const auto start = std::chrono::steady_clock::now();
            m_map = readNodeMap(m_port);
            m_port.setSpentOnFeatures(std::chrono::duration_cast<std::chrono::milliseconds>(
                std::chrono::steady_clock::now() - start));
        }
        return m_map->GetNode(name);
    }

private:
    RegisterPort& m_port;
    mutable std::unique_ptr<GenApi::INodeMap> m_map; // null until a feature is requested
};

} // namespace

std::unique_ptr<GenApi::INodeMap> makeNodeMap(RegisterPort& port)
{
    return std::make_unique<LazyNodeMap>(port);
}

} // namespace gige
