#include "scene/scene.h"

#include "scene/scenefields.h"

#include <cerrno>
#include <charconv>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <system_error>
#include <tuple>

namespace sim {

namespace {

using nlohmann::json;

constexpr std::size_t adapterNameLimit = 15; // bytes; the kernel's limit
constexpr std::size_t cameraNameLimit = 64;  // bytes
constexpr std::size_t fileNameLimit = 4096;  // bytes
constexpr unsigned maxCount = 4096;
constexpr std::uint32_t firstLinkLocal = 0xA9FE0100; // 169.254.1.0
constexpr std::uint32_t linkLocalCount = 254 * 256;  // to 169.254.254.255
constexpr std::string_view makerOfBroadcastCommand = "Orvik";

constexpr std::array<std::pair<std::string_view, std::uint32_t>, 4> modes{{
    {"persistent", gvcp::IpConfig::Persistent},
    {"dhcp", gvcp::IpConfig::Dhcp},
    {"pause-reception", gvcp::IpConfig::PauseReception},
    {"pause-generation", gvcp::IpConfig::PauseGeneration},
}};

constexpr std::array<std::pair<std::string_view, std::uint32_t>, 2> privileges{{
    {"control", gvcp::Privilege::Control},
    {"exclusive", gvcp::Privilege::Exclusive},
}};

constexpr std::array<std::pair<std::string_view, DescriptionKind>, 11> descriptionKinds{{
    {"plain", DescriptionKind::Plain},
    {"zipped", DescriptionKind::Zipped},
    {"second-url", DescriptionKind::SecondUrl},
    {"missing", DescriptionKind::Missing},
    {"malformed", DescriptionKind::Malformed},
    {"huge", DescriptionKind::Huge},
    {"no-user-id", DescriptionKind::NoUserId},
    {"read-only-user-id", DescriptionKind::ReadOnlyUserId},
    {"formula-user-id", DescriptionKind::FormulaUserId},
    {"word-tail", DescriptionKind::WordTail},
    {"endless", DescriptionKind::Endless},
}};

/// A camera whose further adapters are looked up once all adapters are known.
struct PendingCamera
{
    PlacedCamera camera;
    std::vector<std::pair<std::string, std::string>> alsoOn; // adapter name, path
    std::string path;
    bool sharesMac = false; // with another device
};

std::string readFile(const std::filesystem::path& file, const std::string& place)
{
    std::ifstream stream(file, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream.is_open() || stream.bad()) {
        throw SceneError(place, "cannot be read (" + std::generic_category().message(errno) + ")");
    }
    return text;
}

HostAddress parseHostAddress(const std::string& text, const std::string& path)
{
    const std::size_t slash = text.find('/');
    const auto address = net::parseIpv4(text.substr(0, slash));
    HostAddress result;
    const char* const end = text.data() + text.size();
    const char* const prefix = slash == std::string::npos ? end : text.data() + slash + 1;
    const auto [parsedTo, error] = std::from_chars(prefix, end, result.prefixLength);
    if (!address || prefix == end || error != std::errc{} || parsedTo != end || result.prefixLength > 32) {
        throw SceneError(path, "must be an IPv4 address with a prefix length, such as 192.168.10.1/24");
    }
    result.address = *address;
    return result;
}

std::uint32_t readModes(JsonObject& object, const std::string& key, std::uint32_t otherwise)
{
    if (object.find(key) == nullptr) {
        return otherwise;
    }
    std::uint32_t enabled = gvcp::IpConfig::LinkLocal;
    for (const auto& [value, path] : object.listOr(key)) {
        enabled |= chooseWord(jsonText(*value, path), path, modes);
    }
    return enabled;
}

Identity readIdentity(JsonObject& object)
{
    using namespace gvcp;
    return {object.text("vendor", DiscoveryAck::ManufacturerSize),
            object.text("model", DiscoveryAck::ModelSize),
            object.textOr("version", DiscoveryAck::DeviceVersionSize, "1.0"),
            object.textOr("info", DiscoveryAck::ManufacturerInfoSize, ""),
            object.text("serial", DiscoveryAck::SerialNumberSize),
            object.textOr("userId", DiscoveryAck::UserDefinedNameSize, "")};
}

/// The link-local address that a camera derives from its MAC address unless the scene gives one. Consecutive
/// MAC addresses yield consecutive addresses.
net::Ipv4 defaultLinkLocal(const net::MacAddress& mac)
{
    const std::uint32_t low = std::uint32_t{mac.bytes[4]} << 8 | mac.bytes[5];
    return {firstLinkLocal + (low + mac.bytes[3] * 251U) % linkLocalCount};
}

std::optional<InUse> readInUse(JsonObject& object)
{
    const bool isUsed = object.find("inUse") != nullptr;
    if (!isUsed) {
        for (const char* const key : {"inUseBy", "inUseForMs"}) {
            if (object.find(key) != nullptr) {
                object.fail(key, "needs inUse");
            }
        }
        return std::nullopt;
    }
    InUse use;
    use.privilege = chooseWord(object.text("inUse", 16), object.pathOf("inUse"), privileges);
    use.by = readIpv4(object, "inUseBy");
    if (object.find("inUseForMs") != nullptr) {
        use.duration = readDuration(object, "inUseForMs", {});
    }
    return use;
}

class SceneReader
{
public:
    explicit SceneReader(std::filesystem::path directory) : m_directory(std::move(directory)) {}

    Scene read(const json& value)
    {
        JsonObject object(value, "");
        const auto adapters = object.listOr("adapters");
        if (adapters.empty()) {
            object.fail("adapters", "needs at least one adapter");
        }
        for (const auto& [adapter, path] : adapters) {
            readAdapter(JsonObject(*adapter, path));
        }
        readNetwork(object);
        object.finish();
        placeCameras();
        return std::move(m_scene);
    }

private:
    void readAdapter(JsonObject object)
    {
        AdapterConfig adapter;
        adapter.name = object.text("name", adapterNameLimit);
        if (adapter.name.empty() || adapter.name == "lo" || adapter.name == "." || adapter.name == ".." ||
            adapter.name.find_first_of("/: \t\n%") != std::string::npos) {
            object.fail("name", "is not a valid name for an adapter");
        }
        for (const AdapterConfig& other : m_scene.adapters) {
            if (other.name == adapter.name) {
                object.fail("name", "is also the name of another adapter");
            }
        }
        const std::size_t position = m_scene.adapters.size();
        adapter.mac =
            object.find("mac") != nullptr
                ? readMac(object, "mac")
                : net::MacAddress{{0x02, 0x00, 0x00, 0x00, 0xAD, static_cast<std::uint8_t>(position)}};
        claimMac(adapter.mac, object.pathOf("mac"));
        for (const auto& [address, path] : object.listOr("addresses")) {
            adapter.addresses.push_back(parseHostAddress(jsonText(*address, path), path));
        }
        for (const auto& [camera, path] : object.listOr("cameras")) {
            readCamera(JsonObject(*camera, path), position);
        }
        object.finish();
        m_scene.adapters.push_back(std::move(adapter));
    }

    void readCamera(JsonObject object, std::size_t adapter)
    {
        PendingCamera pending;
        pending.path = object.path();
        pending.camera.adapters = {adapter};
        CameraConfig& camera = pending.camera.config;
        camera.name = object.text("name", cameraNameLimit);
        if (camera.name.empty()) {
            object.fail("name", "is empty");
        }
        camera.mac = readMac(object, "mac");
        if (object.find("interfaceMac") != nullptr) {
            camera.interfaceMac = readMac(object, "interfaceMac");
        }
        pending.sharesMac = object.flagOr("sharesMac", false);
        camera.identity = readIdentity(object);
        readAddressing(camera, object);
        camera.heartbeatTimeout = readDuration(object, "heartbeatTimeoutMs", camera.heartbeatTimeout);
        if (camera.heartbeatTimeout == Duration::zero()) {
            object.fail("heartbeatTimeoutMs", "must not be 0");
        }
        camera.knowsBroadcastCommand =
            camera.identity.vendor == makerOfBroadcastCommand || object.find("broadcastCommand") != nullptr;
        camera.broadcastCommand = object.flagOr("broadcastCommand", true);
        camera.inUse = readInUse(object);
        camera.faults = readFaults(object);
        camera.description = readDescription(object, camera.identity);
        for (const auto& [name, path] : object.listOr("alsoOn")) {
            pending.alsoOn.emplace_back(jsonText(*name, path), path);
        }
        const unsigned count = object.numberOr("count", 1, maxCount, 1);
        object.finish();
        multiply(pending, count);
    }

    static void readAddressing(CameraConfig& camera, JsonObject& object)
    {
        camera.supported = readModes(object, "supported", camera.supported);
        camera.enabled = readModes(object, "enabled", gvcp::IpConfig::LinkLocal);
        if ((camera.enabled & ~camera.supported) != 0) {
            object.fail("enabled", "holds a mode that is not supported");
        }
        camera.persistent = readSettings(object, "persistent").value_or(Ipv4Settings{});
        camera.lease = readSettings(object, "dhcp");
        camera.forced = readSettings(object, "forced");
        camera.linkLocal = object.find("linkLocal") != nullptr ? readIpv4(object, "linkLocal")
                                                               : defaultLinkLocal(camera.mac);
        if (camera.linkLocal.value - firstLinkLocal >= linkLocalCount) {
            object.fail("linkLocal", "is not within 169.254.1.0 to 169.254.254.255");
        }
        camera.restart = readDuration(object, "restartMs", camera.restart);
        camera.dhcpTimeout = readDuration(object, "dhcpTimeoutMs", camera.dhcpTimeout);
    }

    std::shared_ptr<const Description> readDescription(JsonObject& object, const Identity& identity)
    {
        DescriptionKind kind = DescriptionKind::Plain;
        std::string xml;
        std::string file;
        if (const json* const value = object.find("description")) {
            JsonObject fields(*value, object.pathOf("description"));
            kind = chooseWord(fields.text("kind", 32), fields.pathOf("kind"), descriptionKinds);
            if (fields.find("file") != nullptr) {
                file = fields.text("file", fileNameLimit);
                xml = readFile(m_directory / file, fields.pathOf("file"));
            }
            fields.finish();
        }
        // All cameras of a model share one description; there may be thousands.
        auto& known = m_descriptions[{kind, identity.vendor, identity.model, file}];
        if (!known) {
            known = makeDescription(kind, identity.vendor, identity.model, std::move(xml));
        }
        return known;
    }

    void multiply(const PendingCamera& pattern, unsigned count)
    {
        for (unsigned i = 0; i < count; ++i) {
            PendingCamera copy = pattern;
            CameraConfig& camera = copy.camera.config;
            if (count > 1) {
                camera.name.append("-").append(std::to_string(i + 1));
            }
            advanceMac(camera.mac, i);
            camera.identity.serial = advanceSerial(camera.identity.serial, i, pattern.path);
            for (Ipv4Settings* const settings : {&camera.persistent, camera.lease ? &*camera.lease : nullptr,
                                                 camera.forced ? &*camera.forced : nullptr}) {
                if (settings != nullptr && settings->ip.value != 0) {
                    settings->ip.value += i;
                }
            }
            camera.linkLocal.value =
                firstLinkLocal + (camera.linkLocal.value - firstLinkLocal + i) % linkLocalCount;
            if (!pattern.sharesMac) {
                claimMac(camera.mac, copy.path + ".mac");
            }
            if (!m_names.insert(camera.name).second) {
                throw SceneError(copy.path + ".name", "is also the name of another camera");
            }
            m_cameras.push_back(std::move(copy));
        }
    }

    static void advanceMac(net::MacAddress& mac, unsigned by)
    {
        for (std::size_t i = mac.bytes.size(); i-- > 0 && by > 0; by >>= 8) {
            by += mac.bytes[i];
            mac.bytes[i] = static_cast<std::uint8_t>(by & 0xFF);
        }
    }

    static std::string advanceSerial(const std::string& serial, unsigned by, const std::string& path)
    {
        if (by == 0) {
            return serial;
        }
        const std::size_t lastOther = serial.find_last_not_of("0123456789");
        const std::size_t start = lastOther == std::string::npos ? 0 : lastOther + 1;
        std::uint64_t number = 0;
        const char* const end = serial.data() + serial.size();
        if (const auto parsed = std::from_chars(serial.data() + start, end, number);
            parsed.ec != std::errc{}) {
            throw SceneError(path + ".serial", "must end in a number, which count increments");
        }
        std::string digits = std::to_string(number + by);
        const std::size_t width = serial.size() - start;
        digits.insert(0, digits.size() < width ? width - digits.size() : 0, '0');
        return (serial.substr(0, start) + digits).substr(0, gvcp::DiscoveryAck::SerialNumberSize);
    }

    void claimMac(const net::MacAddress& mac, const std::string& path)
    {
        if (!m_macs.insert(net::formatMac(mac)).second) {
            throw SceneError(path, "is also the MAC address of another device");
        }
    }

    void readNetwork(JsonObject& scene)
    {
        const json* const value = scene.find("network");
        if (value == nullptr) {
            return;
        }
        JsonObject object(*value, "network");
        m_scene.network = {object.percentOr("lossPercent"),          readDuration(object, "delayMs", {}),
                           object.percentOr("duplicatePercent"),     object.percentOr("reorderPercent"),
                           object.percentOr("garbagePercent"),       object.percentOr("truncatePercent"),
                           object.numberOr("seed", 0, 0xFFFFFFFF, 1)};
        object.finish();
    }

    void placeCameras()
    {
        for (PendingCamera& pending : m_cameras) {
            for (const auto& [name, path] : pending.alsoOn) {
                std::size_t position = 0;
                while (position < m_scene.adapters.size() && m_scene.adapters[position].name != name) {
                    ++position;
                }
                if (position == m_scene.adapters.size()) {
                    throw SceneError(path, "is not an adapter of this scene");
                }
                auto& adapters = pending.camera.adapters;
                if (std::find(adapters.begin(), adapters.end(), position) != adapters.end()) {
                    throw SceneError(path, "is an adapter that the camera is already on");
                }
                adapters.push_back(position);
            }
            m_scene.cameras.push_back(std::move(pending.camera));
        }
    }

    std::filesystem::path m_directory;
    Scene m_scene;
    std::vector<PendingCamera> m_cameras;
    std::set<std::string> m_macs;
    std::set<std::string> m_names;
    std::map<std::tuple<DescriptionKind, std::string, std::string, std::string>,
             std::shared_ptr<const Description>>
        m_descriptions;
};

} // namespace

Scene parseScene(const std::string& text, const std::filesystem::path& directory)
{
    return SceneReader(directory).read(parseJson(text));
}

Scene loadScene(const std::filesystem::path& file)
{
    return parseScene(readFile(file, "file"), file.parent_path());
}

} // namespace sim
