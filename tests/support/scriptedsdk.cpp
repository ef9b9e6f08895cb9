#include "support/scriptedsdk.h"

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

QString text(const Tessal::AccessModeSet& modes)
{
    QStringList numbers;
    for (const int mode : {1, 2, 3, 4, 5}) {
        if (modes.contains(Tessal::EDeviceAccessMode{mode})) {
            numbers << QString::number(mode);
        }
    }
    return numbers.join('+');
}

/// Writes a call down and lets the world's script act.
template <typename... Arguments>
void call(const char* name, const Arguments&... arguments)
{
    world().journal << name + QString("(") + QStringList{text(arguments)...}.join(", ") + ')';
    if (const auto& act = world().at[name]) {
        act();
    }
}

bool isReachable(const Camera& camera)
{
    const auto networkOf = [&](const char* key) { return get(camera.record, {key}).section('.', 0, 2); };
    return !camera.silent && networkOf("Interface") == networkOf("IpAddress");
}

void move(Camera& camera, const GenICam::gcstring& ip, const GenICam::gcstring& mask,
          const GenICam::gcstring& gateway)
{
    camera.record.SetIpAddress(ip);
    camera.record.SetSubnetMask(mask);
    camera.record.SetDefaultGateway(gateway);
    camera.record.SetAddress(ip + ":" + camera.record.GetPortNr());
}

/// Runs `action` on every appearance of that camera.
template <typename Action>
void forMac(const GenICam::gcstring& mac, Action action)
{
    for (Camera& camera : world().cameras) {
        if (camera.record.GetMacAddress() == mac && !camera.silent) {
            action(camera);
        }
    }
}

class UserIdNode final : public GenApi::INode, public GenApi::IString
{
public:
    explicit UserIdNode(GenICam::gcstring mac) : m_mac(std::move(mac)) {}

    [[nodiscard]] GenICam::gcstring GetName() const override { return "DeviceUserID"; }
    void SetValue(const GenICam::gcstring& value, bool verify) override
    {
        call("SetValue", value, verify);
        forMac(m_mac, [&](Camera& camera) { camera.record.SetPropertyValue("UserDefinedName", value); });
    }
    GenICam::gcstring GetValue(bool) override { return {}; }
    std::int64_t GetMaxLength() override { return 16; }

private:
    GenICam::gcstring m_mac;
};

class NodeMap final : public GenApi::INodeMap
{
public:
    explicit NodeMap(std::unique_ptr<UserIdNode> userId) : m_userId(std::move(userId)) {}

    [[nodiscard]] GenApi::INode* GetNode(const GenICam::gcstring& name) const override
    {
        call("GetNode", name);
        return m_userId.get();
    }

private:
    std::unique_ptr<UserIdNode> m_userId;
};

/// Base is ITessalGigEDevice, or ITessalDevice for a camera that is not GigE.
template <typename Base>
class DeviceOf : public Base
{
public:
    explicit DeviceOf(Tessal::COrvikGigEDeviceInfo info) : m_record(std::move(info)) {}

    void Open(const Tessal::AccessModeSet& modes) override
    {
        call("Open", m_record.GetIpAddress(), modes);
        const auto found = std::ranges::find_if(world().cameras, [&](const Camera& camera) {
            return isReachable(camera) && camera.record.GetIpAddress() == m_record.GetIpAddress();
        });
        if (found == world().cameras.end()) {
            throw GenICam::TimeoutException("nobody answers", "camera", 1, "TimeoutException");
        }
        if (found->accessibility != Tessal::Accessibility::Ok) {
            throw GenICam::AccessException("controlled elsewhere", "camera", 1, "AccessException");
        }
        m_record = found->record;
        auto userId = found->hasUserId ? std::make_unique<UserIdNode>(m_record.GetMacAddress()) : nullptr;
        m_nodes = found->hasNodeMap ? std::make_unique<NodeMap>(std::move(userId)) : nullptr;
        m_open = true;
    }
    void Close() override
    {
        call("Close");
        m_open = false;
    }
    [[nodiscard]] bool IsOpen() const override { return m_open; }
    [[nodiscard]] const Tessal::CDeviceInfo& GetDeviceInfo() const override { return m_record; }
    GenApi::INodeMap* GetNodeMap() override
    {
        call("GetNodeMap");
        return m_nodes.get();
    }

private:
    Tessal::COrvikGigEDeviceInfo m_record;
    bool m_open = false;
    std::unique_ptr<NodeMap> m_nodes;
};

class GigEDevice final : public DeviceOf<Tessal::ITessalGigEDevice>
{
public:
    using DeviceOf::DeviceOf;

    void SetIpConfigMode(bool persistent, bool dhcp) override { call("SetIpConfigMode", persistent, dhcp); }
    void SetPersistentIp(const GenICam::gcstring& ip, const GenICam::gcstring& mask,
                         const GenICam::gcstring& gateway) override
    {
        call("SetPersistentIp", ip, mask, gateway);
    }
};

class TransportLayer final : public Tessal::IGigETransportLayer
{
public:
    int EnumerateDevicesAnySubnet(Tessal::DeviceInfoList& list, bool append) override
    {
        call("EnumerateDevicesAnySubnet", append);
        return enumerate(list, [](const Camera& camera) { return !camera.silent; });
    }
    int EnumerateDevices(Tessal::DeviceInfoList& list, bool append) override
    {
        call("EnumerateDevices", append);
        return enumerate(list, isReachable);
    }
    bool QueryDeviceAccessibility(const Tessal::CDeviceInfo& info, const Tessal::AccessModeSet& modes,
                                  int* accessibility) override
    {
        const GenICam::gcstring mac = Tessal::COrvikGigEDeviceInfo(info).GetMacAddress();
        call("QueryDeviceAccessibility", mac, modes);
        forMac(mac, [&](const Camera& camera) { *accessibility = camera.accessibility; });
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
        call("CreateDevice", record.GetIpAddress());
        if (!world().makesDevices) {
            return nullptr;
        }
        if (world().cameras.front().isGigE) {
            m_devices.push_back(std::make_unique<GigEDevice>(record));
        } else {
            m_devices.push_back(std::make_unique<DeviceOf<Tessal::ITessalDevice>>(record));
        }
        return m_devices.back().get();
    }
    void DestroyDevice(Tessal::ITessalDevice* device) override
    {
        call("DestroyDevice");
        if (std::erase_if(m_devices, [&](const auto& held) { return held.get() == device; }) == 0) {
            throw GenICam::LogicalErrorException("destroyed before", "camera", 1);
        }
    }
    void ForceIp(const GenICam::gcstring& mac, const GenICam::gcstring& ip, const GenICam::gcstring& mask,
                 const GenICam::gcstring& gateway) override
    {
        call("ForceIp", mac, ip, mask, gateway);
        forMac(mac, [&](Camera& camera) { move(camera, ip, mask, gateway); });
    }
    void RestartIpConfig(const GenICam::gcstring& mac) override
    {
        call("RestartIpConfig", mac);
        forMac(mac, [](Camera& camera) { camera.silent = !camera.comesBack; });
    }
    bool BroadcastIpConfig(const GenICam::gcstring& mac, bool persistent, bool dhcp,
                           const GenICam::gcstring& ip, const GenICam::gcstring& mask,
                           const GenICam::gcstring& gateway, const GenICam::gcstring& name) override
    {
        call("BroadcastIpConfig", mac, persistent, dhcp, ip, mask, gateway, name);
        bool taken = false;
        forMac(mac, [&](Camera& camera) {
            if (camera.knowsBroadcast) {
                camera.record.SetPropertyValue("UserDefinedName", name);
                taken = true;
            }
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

QStringList World::take(bool all)
{
    QStringList calls = std::exchange(journal, {});
    if (!all) {
        calls.removeIf([](const auto& line) { return line.startsWith("Enum") || line.startsWith("Query"); });
    }
    return calls;
}

QString get(const Tessal::IProperties& record, std::initializer_list<const char*> keys)
{
    QStringList values;
    for (const char* const key : keys) {
        GenICam::gcstring value("-");
        record.GetPropertyValue(key, value);
        values << text(value);
    }
    return values.join(' ');
}

Camera with(Camera camera, std::initializer_list<std::pair<const char*, const char*>> properties)
{
    for (const auto& [key, value] : properties) {
        camera.record.SetPropertyValue(key, value);
    }
    return camera;
}

Camera camera(const char* model, const char* mac, const char* ip, const char* interface)
{
    Camera made = with({}, {{"DeviceClass", "OrvikGigE"},
                            {"VendorName", "Orvik"},
                            {"ModelName", model},
                            {"MacAddress", mac},
                            {"SerialNumber", "000001"},
                            {"FriendlyName", model},
                            {"Interface", interface},
                            {"PortNr", "3956"},
                            {"UserDefinedName", ""},
                            {"IpConfigCurrent", "5"}});
    move(made, ip, "255.255.255.0", "0.0.0.0");
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
    sdk::call("CreateTl", deviceClass);
    sdk::transportLayer =
        sdk::world().makesTransportLayer ? std::make_unique<sdk::TransportLayer>() : nullptr;
    return sdk::transportLayer.get();
}

void CTlFactory::ReleaseTl(const ITransportLayer* transportLayer)
{
    sdk::call("ReleaseTl", transportLayer != nullptr && transportLayer == sdk::transportLayer.get());
    sdk::transportLayer.reset();
}

void TessalInitialize()
{
    sdk::call("TessalInitialize");
}

void TessalTerminate(bool shutDownLogging)
{
    sdk::call("TessalTerminate", shutDownLogging);
}

} // namespace Tessal

/// Takes the place of the C library's: written down, never slept.
extern "C" unsigned int sleep(unsigned int seconds)
{
    sdk::call("sleep", GenICam::gcstring(std::to_string(seconds)));
    return 0;
}
