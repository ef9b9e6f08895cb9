#include "support/scriptedsdk.h"

#include <QRegularExpression>

#include <algorithm>
#include <memory>

namespace sdk {

namespace {

using Text = const GenICam::gcstring&;

QString text(Text value)
{
    return QString::fromUtf8(value.c_str());
}

QString text(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString text(const Tessal::AccessModeSet& modes)
{
    using enum Tessal::EDeviceAccessMode;
    return modes == (Stream | Control | Event) ? "1+3+4" : modes == Control ? "1" : "others";
}

/// Records a call and runs the script that the world has for it.
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

void move(Camera& camera, Text ip, Text mask, Text gateway)
{
    camera.record.SetIpAddress(ip);
    camera.record.SetSubnetMask(mask);
    camera.record.SetDefaultGateway(gateway);
}

void setMode(Camera& camera, bool persistent, bool dhcp)
{
    const unsigned int mode = Tessal::IpConfig::LinkLocal | (persistent ? Tessal::IpConfig::Persistent : 0U) |
                              (dhcp ? Tessal::IpConfig::Dhcp : 0U);
    camera.record.SetIpConfigCurrent(std::to_string(mode));
}

/// Runs `action` on every appearance of that camera.
template <typename Action>
void forMac(Text mac, Action action)
{
    for (Camera& camera : world().cameras) {
        if (camera.record.GetMacAddress() == mac && !camera.silent) {
            action(camera);
        }
    }
}

/// A device that is its own node map, and the one node of that.
class Device final : public Tessal::ITessalGigEDevice,
                     public GenApi::INodeMap,
                     public GenApi::INode,
                     public GenApi::IString
{
public:
    explicit Device(Tessal::COrvikGigEDeviceInfo info) : m_record(std::move(info)) {}

    void Open(const Tessal::AccessModeSet& modes) override
    {
        call("Open", m_record.GetIpAddress(), modes);
        const auto found = std::ranges::find_if(world().cameras, [&](const Camera& camera) {
            return isReachable(camera) && camera.record.GetIpAddress() == m_record.GetIpAddress();
        });
        if (found == world().cameras.end()) {
            throw GenICam::TimeoutException("nobody answers", "camera", 1, "TimeoutException");
        }
        m_record = found->record;
        m_nodes = found->hasNodeMap ? this : nullptr;
        m_open = true;
    }
    void Close() override
    {
        call("Close");
        m_open = false;
    }
    void SetIpConfigMode(bool persistent, bool dhcp) override
    {
        call("SetIpConfigMode", persistent, dhcp);
        forMac(m_record.GetMacAddress(), [&](Camera& camera) { setMode(camera, persistent, dhcp); });
    }
    void SetPersistentIp(Text ip, Text mask, Text gateway) override
    {
        call("SetPersistentIp", ip, mask, gateway);
        forMac(m_record.GetMacAddress(), [&](Camera& camera) { move(camera, ip, mask, gateway); });
    }
    [[nodiscard]] bool IsOpen() const override { return m_open; }
    [[nodiscard]] const Tessal::CDeviceInfo& GetDeviceInfo() const override { return m_record; }
    GenApi::INodeMap* GetNodeMap() override
    {
        call("GetNodeMap");
        return m_nodes;
    }
    [[nodiscard]] GenApi::INode* GetNode(Text name) const override
    {
        call("GetNode", name);
        return m_nodes;
    }
    [[nodiscard]] GenICam::gcstring GetName() const override { return "DeviceUserID"; }
    void SetValue(Text value, bool verify) override
    {
        call("SetValue", value, verify);
        forMac(m_record.GetMacAddress(),
               [&](Camera& camera) { camera.record.SetPropertyValue("UserDefinedName", value); });
    }
    GenICam::gcstring GetValue(bool) override { return {}; }
    std::int64_t GetMaxLength() override { return 16; }

private:
    Tessal::COrvikGigEDeviceInfo m_record;
    bool m_open = false;
    Device* m_nodes = nullptr;
};

class TransportLayer final : public Tessal::IGigETransportLayer, public Tessal::ISearchReport
{
public:
    [[nodiscard]] std::vector<Tessal::AdapterObstacle> GetObstacles() const override
    {
        return world().obstacles;
    }
    int EnumerateDevicesAnySubnet(Tessal::DeviceInfoList& list, bool append) override
    {
        call("EnumerateDevicesAnySubnet", append);
        return enumerate(list, false);
    }
    int EnumerateDevices(Tessal::DeviceInfoList& list, bool append) override
    {
        call("EnumerateDevices", append);
        return enumerate(list, true);
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
        return world().isGigE ? m_devices.emplace_back(std::make_unique<Device>(record)).get() : nullptr;
    }
    void DestroyDevice(Tessal::ITessalDevice* device) override
    {
        call("DestroyDevice");
        if (std::erase_if(m_devices, [&](const auto& held) { return held.get() == device; }) == 0) {
            throw GenICam::LogicalErrorException("destroyed before", "camera", 1);
        }
    }
    void ForceIp(Text mac, Text ip, Text mask, Text gateway) override
    {
        call("ForceIp", mac, ip, mask, gateway);
        forMac(mac, [&](Camera& camera) {
            move(camera, ip, mask, gateway);
            camera.silent = !camera.comesBack;
        });
    }
    void RestartIpConfig(Text mac) override
    {
        call("RestartIpConfig", mac);
        forMac(mac, [](Camera& camera) { camera.silent = !camera.comesBack; });
    }
    bool BroadcastIpConfig(Text mac, bool persistent, bool dhcp, Text ip, Text mask, Text gateway,
                           Text name) override
    {
        call("BroadcastIpConfig", mac, persistent, dhcp, ip, mask, gateway, name);
        bool taken = false;
        forMac(mac, [&](Camera& camera) {
            taken = camera.knowsBroadcast;
            if (taken) {
                camera.record.SetPropertyValue("UserDefinedName", name);
                setMode(camera, persistent, dhcp);
            }
            if (taken && persistent) {
                move(camera, ip, mask, gateway);
            }
        });
        return taken;
    }

private:
    static int enumerate(Tessal::DeviceInfoList& list, bool onlyReachable)
    {
        for (const Camera& camera : world().cameras) {
            if (onlyReachable ? isReachable(camera) : !camera.silent) {
                list.push_back(camera.record);
            }
        }
        return static_cast<int>(list.size());
    }

    std::vector<std::unique_ptr<Device>> m_devices;
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
    const QStringList calls = std::exchange(journal, {});
    return all ? calls : calls.filter(QRegularExpression("^(?!Enum|Query)"));
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

/// Replaces the C library's: records the call and returns at once.
extern "C" unsigned int sleep(unsigned int seconds)
{
    sdk::call("sleep", GenICam::gcstring(std::to_string(seconds)));
    return 0;
}
