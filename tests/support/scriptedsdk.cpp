#include "support/scriptedsdk.h"

#include "net/addresses.h"

#include <algorithm>
#include <memory>

namespace sdk {

namespace {

QString text(const GenICam::gcstring& value)
{
    return QString::fromUtf8(value.c_str());
}

QString text(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

template <typename... Arguments>
void note(const char* name, const Arguments&... arguments)
{
    call(name, {text(arguments)...});
}

bool isReachable(const Camera& camera)
{
    GenICam::gcstring interface;
    camera.record.GetPropertyValue(Tessal::Key::Interface, interface);
    const auto host = net::parseIpv4(interface.view());
    const auto ip = net::parseIpv4(camera.record.GetIpAddress().view());
    return !camera.silent && host && ip && net::inSameSubnet(*host, *ip, {0xFFFFFF00});
}

void move(Camera& camera, const Address& address)
{
    camera.record.SetIpAddress(address.ip);
    camera.record.SetSubnetMask(address.mask);
    camera.record.SetDefaultGateway(address.gateway);
    camera.record.SetAddress(address.ip + ":" + camera.record.GetPortNr());
    camera.silent = !camera.comesBack;
}

void restart(Camera& camera)
{
    camera.record.SetIpConfigCurrent(std::to_string(camera.mode));
    if ((camera.mode & Tessal::IpConfig::Persistent) != 0) {
        move(camera, camera.persistent);
    } else if ((camera.mode & Tessal::IpConfig::Dhcp) != 0) {
        move(camera, {"192.168.1.150", "255.255.255.0", "192.168.1.1"});
    } else {
        move(camera, {"169.254.7.7", "255.255.0.0", "0.0.0.0"});
    }
}

void storeMode(Camera& camera, bool persistent, bool dhcp)
{
    camera.mode = (persistent ? Tessal::IpConfig::Persistent : 0U) | (dhcp ? Tessal::IpConfig::Dhcp : 0U) |
                  Tessal::IpConfig::LinkLocal;
}

/// Runs `action` on every appearance of that camera; false when there is none.
template <typename Action>
bool forMac(const GenICam::gcstring& mac, Action action)
{
    bool known = false;
    for (Camera& camera : world().cameras) {
        if (camera.record.GetMacAddress() == mac && !camera.silent) {
            action(camera);
            known = true;
        }
    }
    return known;
}

class TextNode final : public GenApi::INode, public GenApi::IString
{
public:
    explicit TextNode(GenICam::gcstring mac) : m_mac(std::move(mac)) {}

    [[nodiscard]] GenICam::gcstring GetName() const override { return "DeviceUserID"; }
    void SetValue(const GenICam::gcstring& value, bool verify) override
    {
        note("SetValue", value, verify);
        forMac(m_mac, [&](Camera& camera) { set(camera, Tessal::Key::UserDefinedName, value); });
    }
    GenICam::gcstring GetValue(bool) override { return {}; }
    std::int64_t GetMaxLength() override { return 16; }

private:
    GenICam::gcstring m_mac;
};

class OtherNode final : public GenApi::INode
{
public:
    [[nodiscard]] GenICam::gcstring GetName() const override { return "DeviceUserID"; }
};

class NodeMap final : public GenApi::INodeMap
{
public:
    NodeMap(UserIdNode kind, const GenICam::gcstring& mac) : m_kind(kind), m_text(mac) {}

    GenApi::INode* GetNode(const GenICam::gcstring& name) const override
    {
        note("GetNode", name);
        if (name == "DeviceUserID" && m_kind == UserIdNode::Text) {
            return &m_text;
        }
        return name == "DeviceUserID" && m_kind == UserIdNode::OtherKind ? &m_other : nullptr;
    }

private:
    UserIdNode m_kind;
    mutable TextNode m_text;
    mutable OtherNode m_other;
};

/// Base is ITessalGigEDevice, or ITessalDevice for a camera that is not GigE.
template <typename Base>
class DeviceOf : public Base
{
public:
    explicit DeviceOf(Tessal::COrvikGigEDeviceInfo info) : m_record(std::move(info)) {}

    void Open(const Tessal::AccessModeSet& modes) override
    {
        QStringList arguments{text(m_record.GetIpAddress())};
        for (const int mode : {1, 2, 3, 4, 5}) {
            if (modes.contains(Tessal::EDeviceAccessMode{mode})) {
                arguments << QString::number(mode);
            }
        }
        call("Open", arguments);
        for (const Camera& camera : world().cameras) {
            if (!isReachable(camera) || camera.record.GetIpAddress() != m_record.GetIpAddress()) {
                continue;
            }
            if (camera.accessibility != Tessal::Accessibility::Ok) {
                throw GenICam::AccessException("controlled elsewhere", "camera", 1, "AccessException");
            }
            m_record = camera.record;
            m_nodes = camera.hasNodeMap
                          ? std::make_unique<NodeMap>(camera.userId, camera.record.GetMacAddress())
                          : nullptr;
            m_open = true;
            return;
        }
        throw GenICam::TimeoutException("nobody answers", "camera", 1, "TimeoutException");
    }
    void Close() override
    {
        call("Close");
        m_open = false;
    }
    [[nodiscard]] bool IsOpen() const override
    {
        call("IsOpen");
        return m_open;
    }
    [[nodiscard]] const Tessal::CDeviceInfo& GetDeviceInfo() const override { return m_record; }
    GenApi::INodeMap* GetNodeMap() override
    {
        call("GetNodeMap");
        return m_nodes.get();
    }

protected:
    Tessal::COrvikGigEDeviceInfo m_record;

private:
    bool m_open = false;
    std::unique_ptr<NodeMap> m_nodes;
};

class GigEDevice final : public DeviceOf<Tessal::ITessalGigEDevice>
{
public:
    using DeviceOf::DeviceOf;

    void SetIpConfigMode(bool persistent, bool dhcp) override
    {
        note("SetIpConfigMode", persistent, dhcp);
        forMac(m_record.GetMacAddress(), [&](Camera& camera) { storeMode(camera, persistent, dhcp); });
    }
    void SetPersistentIp(const GenICam::gcstring& ip, const GenICam::gcstring& mask,
                         const GenICam::gcstring& gateway) override
    {
        note("SetPersistentIp", ip, mask, gateway);
        forMac(m_record.GetMacAddress(), [&](Camera& camera) { camera.persistent = {ip, mask, gateway}; });
    }
};

class TransportLayer final : public Tessal::IGigETransportLayer
{
public:
    int EnumerateDevicesAnySubnet(Tessal::DeviceInfoList& list, bool append) override
    {
        note("EnumerateDevicesAnySubnet", append);
        return enumerate(list, [](const Camera& camera) { return !camera.silent; });
    }
    int EnumerateDevices(Tessal::DeviceInfoList& list, bool append) override
    {
        note("EnumerateDevices", append);
        return enumerate(list, isReachable);
    }
    bool QueryDeviceAccessibility(const Tessal::CDeviceInfo& info, const Tessal::AccessModeSet& modes,
                                  int* accessibility) override
    {
        const Tessal::COrvikGigEDeviceInfo record(info);
        const bool asExpected = modes == Tessal::AccessModeSet(Tessal::EDeviceAccessMode::Control);
        call("QueryDeviceAccessibility", {text(record.GetMacAddress()), asExpected ? "1" : "other modes"});
        forMac(record.GetMacAddress(), [&](const Camera& camera) { *accessibility = camera.accessibility; });
        return *accessibility == Tessal::Accessibility::Ok;
    }
    Tessal::CDeviceInfo CreateDeviceInfo() override
    {
        call("CreateDeviceInfo");
        return {};
    }
    Tessal::ITessalDevice* CreateDevice(const Tessal::CDeviceInfo& info) override
    {
        const Tessal::COrvikGigEDeviceInfo record(info);
        note("CreateDevice", record.GetIpAddress());
        const auto found = std::ranges::find_if(world().cameras, [&](const Camera& camera) {
            return camera.record.GetIpAddress() == record.GetIpAddress();
        });
        if (!world().makesDevices) {
            return nullptr;
        }
        if (found != world().cameras.end() && !found->isGigE) {
            m_devices.push_back(std::make_unique<DeviceOf<Tessal::ITessalDevice>>(record));
        } else {
            m_devices.push_back(std::make_unique<GigEDevice>(record));
        }
        return m_devices.back().get();
    }
    void DestroyDevice(Tessal::ITessalDevice* device) override
    {
        const bool known = std::ranges::any_of(m_devices, [&](auto& held) { return held.get() == device; });
        call("DestroyDevice", known ? QStringList{} : QStringList{"unknown"});
        std::erase_if(m_devices, [&](const auto& held) { return held.get() == device; });
    }
    void ForceIp(const GenICam::gcstring& mac, const GenICam::gcstring& ip, const GenICam::gcstring& mask,
                 const GenICam::gcstring& gateway) override
    {
        note("ForceIp", mac, ip, mask, gateway);
        forMac(mac, [&](Camera& camera) { move(camera, {ip, mask, gateway}); });
    }
    void RestartIpConfig(const GenICam::gcstring& mac) override
    {
        note("RestartIpConfig", mac);
        forMac(mac, restart);
    }
    bool BroadcastIpConfig(const GenICam::gcstring& mac, bool persistent, bool dhcp,
                           const GenICam::gcstring& ip, const GenICam::gcstring& mask,
                           const GenICam::gcstring& gateway, const GenICam::gcstring& name) override
    {
        note("BroadcastIpConfig", mac, persistent, dhcp, ip, mask, gateway, name);
        bool taken = false;
        forMac(mac, [&](Camera& camera) {
            if (!camera.knowsBroadcast) {
                return;
            }
            storeMode(camera, persistent, dhcp);
            camera.persistent = {ip, mask, gateway};
            set(camera, Tessal::Key::UserDefinedName, name);
            taken = true;
        });
        return taken;
    }

private:
    template <typename Condition>
    static int enumerate(Tessal::DeviceInfoList& list, Condition condition)
    {
        for (const Camera& camera : world().cameras) {
            if (condition(camera)) {
                list.push_back(camera.record);
            }
        }
        return static_cast<int>(list.size());
    }

    std::vector<std::unique_ptr<Tessal::ITessalDevice>> m_devices;
};

std::unique_ptr<TransportLayer> transportLayer;

} // namespace

World& world()
{
    static World instance;
    return instance;
}

void call(const std::string& name, const QStringList& arguments)
{
    world().journal << QString::fromStdString(name) + '(' + arguments.join(", ") + ')';
    const auto script = world().at.find(name);
    if (script != world().at.end()) {
        const auto act = script->second; // the script may take itself out
        act();
    }
}

QStringList World::take(bool all)
{
    QStringList calls = std::exchange(journal, {});
    if (!all) {
        calls.removeIf([](const QString& line) {
            return line.startsWith("Enumerate") || line.startsWith("Query") || line.startsWith("IsOpen");
        });
    }
    return calls;
}

void set(Camera& camera, const char* key, const char* value)
{
    camera.record.SetPropertyValue(key, value);
}

QString get(const Tessal::IProperties& record, const char* key)
{
    GenICam::gcstring value("-");
    record.GetPropertyValue(key, value);
    return text(value);
}

Camera with(Camera camera, std::initializer_list<std::pair<const char*, const char*>> properties)
{
    for (const auto& [key, value] : properties) {
        set(camera, key, value);
    }
    return camera;
}

Camera camera(const char* model, const char* mac, const char* ip, const char* interface)
{
    Camera made = with({}, {{Tessal::Key::DeviceClass, "OrvikGigE"},
                            {Tessal::Key::VendorName, "Orvik"},
                            {Tessal::Key::ModelName, model},
                            {Tessal::Key::MacAddress, mac},
                            {Tessal::Key::SerialNumber, "000001"},
                            {Tessal::Key::FriendlyName, model},
                            {Tessal::Key::Interface, interface},
                            {Tessal::Key::PortNr, "3956"},
                            {Tessal::Key::UserDefinedName, ""},
                            {Tessal::Key::IpConfigCurrent, "5"}});
    made.persistent = {ip, "255.255.255.0", "0.0.0.0"};
    move(made, made.persistent);
    storeMode(made, true, false);
    return made;
}

} // namespace sdk

namespace Tessal {

CTlFactory& CTlFactory::GetInstance()
{
    static CTlFactory instance;
    return instance;
}

ITransportLayer* CTlFactory::CreateTl(const GenICam::gcstring& deviceClass)
{
    sdk::call("CreateTl", {sdk::text(deviceClass)});
    if (!sdk::world().makesTransportLayer || deviceClass != "OrvikGigE") {
        return nullptr;
    }
    sdk::transportLayer = std::make_unique<sdk::TransportLayer>();
    return sdk::transportLayer.get();
}

void CTlFactory::ReleaseTl(const ITransportLayer* transportLayer)
{
    const bool known = transportLayer != nullptr && transportLayer == sdk::transportLayer.get();
    sdk::call("ReleaseTl", known ? QStringList{} : QStringList{"unknown"});
    sdk::transportLayer.reset();
}

void TessalInitialize()
{
    sdk::call("TessalInitialize");
}

void TessalTerminate(bool shutDownLogging)
{
    sdk::call("TessalTerminate", {sdk::text(shutDownLogging)});
}

} // namespace Tessal
