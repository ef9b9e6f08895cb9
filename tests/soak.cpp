// Searches and saves again and again on lines as bad as they come, and counts. Whether a save went well is
// not for the camera layer to say: the simulated camera's own state is compared with what was wanted.
//
//   scripts/lab build/release/tests/gige-soak [LINE...]           a few of each on these lines or, unless
//                                                                 named, on two, in some ten seconds
//   scripts/lab build/release/tests/gige-soak --long [LINE...]    enough of each for figures, on these or
//                                                                 all lines, in some forty minutes

#include "genicam/nodemap.h"
#include "support/simulator.h"
#include "tessal/transportlayer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <cstdio>
#include <set>
#include <stdexcept>

using GenICam::gcstring;

namespace {

struct Line
{
    const char* name;
    QJsonObject network;
    int searches;          // of a long run
    int missesPerThousand; // searches that may miss a camera
};

const std::initializer_list<Line> lines{
    {"5 % loss", {{"lossPercent", 5}}, 200, 0},
    {"20 % loss", {{"lossPercent", 20}}, 200, 25},
    {"100 ms delay", {{"delayMs", 100}}, 50, 0},
    {"400 ms delay", {{"delayMs", 400}}, 50, 0},
    {"5 % loss, 400 ms delay", {{"lossPercent", 5}, {"delayMs", 400}}, 100, 25},
    {"every other doubled", {{"duplicatePercent", 50}}, 50, 0},
    {"every other out of order", {{"reorderPercent", 50}}, 50, 0},
    {"20 % garbage", {{"garbagePercent", 20}}, 50, 0},
    {"20 % truncated", {{"truncatePercent", 20}}, 50, 0},
    {"5 % loss and all the rest",
     {{"lossPercent", 5},
      {"delayMs", 100},
      {"duplicatePercent", 20},
      {"reorderPercent", 20},
      {"garbagePercent", 5},
      {"truncatePercent", 5}},
     200,
     0},
};

constexpr int savesOfEachKind = 40;
constexpr int cameras = 8;
constexpr int reachableCameras = 5;
constexpr qint64 longestRun = 2'700'000; // ms

QJsonObject camera(const char* name, int count, const char* mac, const char* vendor, const char* ip)
{
    return {{"name", name},
            {"count", count},
            {"mac", mac},
            {"vendor", vendor},
            {"model", "km-1"},
            {"serial", "1"},
            {"enabled", QJsonArray{"persistent"}},
            {"persistent", QJsonObject{{"ip", ip}, {"mask", "255.255.255.0"}}},
            {"restartMs", 50},
            {"pendingAckMs", 20}};
}

/// Three of the maker's cameras and two of another's on the host's network, three in foreign subnets.
QByteArray scene(const QJsonObject& network)
{
    const QJsonArray all{camera("near", 3, "02-5E-41-00-00-01", "Orvik", "192.168.10.21"),
                         camera("far", 2, "02-5E-41-00-00-11", "Orvik", "172.16.4.21"),
                         camera("other", 2, "02-A3-17-00-00-21", "Belunar", "192.168.10.41"),
                         camera("stray", 1, "02-A3-17-00-00-31", "Belunar", "10.8.0.9")};
    const QJsonObject adapter{
        {"name", "lab0"}, {"addresses", QJsonArray{"192.168.10.1/24"}}, {"cameras", all}};
    return QJsonDocument(QJsonObject{{"adapters", QJsonArray{adapter}}, {"network", network}}).toJson();
}

struct Target
{
    const char* name; // in the scene
    const char* mac;
    const char* network; // the first three parts of its addresses
    const char* oldIp;
};

constexpr std::array<Target, 5> makersCameras{{
    {"near-1", "025E41000001", "192.168.10.", "192.168.10.21"},
    {"near-2", "025E41000002", "192.168.10.", "192.168.10.22"},
    {"near-3", "025E41000003", "192.168.10.", "192.168.10.23"},
    {"far-1", "025E41000011", "172.16.4.", "172.16.4.21"},
    {"far-2", "025E41000012", "172.16.4.", "172.16.4.22"},
}};
constexpr std::array<Target, 2> otherCameras{{
    {"other-1", "02A317000021", "192.168.10.", "192.168.10.41"},
    {"other-2", "02A317000022", "192.168.10.", "192.168.10.42"},
}};

struct Settings
{
    bool dhcp = false;
    std::string ip;
    std::string mask;
    std::string gateway;
    std::string name;
};

struct SaveCounts
{
    int done = 0;
    int failed = 0; // and said so
    int wrong = 0;  // said to be done, but the camera has other values
    int back = 0;   // of those done: found again, at the new address
};

class Soak
{
public:
    explicit Soak(Tessal::IGigETransportLayer& transportLayer) : m_tl(transportLayer) {}

    /// Whether everything held on this line.
    bool run(const Line& line, int searches, int saves);

private:
    bool search();
    void save(const Target& target, bool byBroadcast, SaveCounts& counts);
    bool storeByUnicast(const Target& target, const Settings& wanted);
    bool hasStored(const Target& target, const Settings& wanted);
    bool comesBack(const Target& target, const std::string& ip);
    [[nodiscard]] gcstring addressOf(const Target& target) const;

    Tessal::IGigETransportLayer& m_tl;
    std::unique_ptr<Simulator> m_simulator;
    Tessal::DeviceInfoList m_found;
    int m_saves = 0;
    int m_wronglyUnreachable = 0;
};

bool Soak::search()
{
    m_tl.EnumerateDevicesAnySubnet(m_found, false);
    std::set<gcstring> macs;
    int reachable = 0;
    for (const Tessal::COrvikGigEDeviceInfo& record : m_found) {
        macs.insert(record.GetMacAddress());
        reachable +=
            m_tl.QueryDeviceAccessibility(record, Tessal::EDeviceAccessMode::Control, nullptr) ? 1 : 0;
    }
    m_wronglyUnreachable += reachable < reachableCameras ? 1 : 0;
    return macs.size() == cameras;
}

gcstring Soak::addressOf(const Target& target) const
{
    for (const Tessal::COrvikGigEDeviceInfo& record : m_found) {
        if (record.GetMacAddress() == target.mac) {
            return record.GetIpAddress();
        }
    }
    throw std::runtime_error(std::string(target.name) + " was not found");
}

bool Soak::storeByUnicast(const Target& target, const Settings& wanted)
{
    Tessal::CDeviceInfo info = m_tl.CreateDeviceInfo();
    info.SetPropertyValue(Tessal::Key::IpAddress, addressOf(target));
    const auto destroy = [this](Tessal::ITessalDevice* device) { m_tl.DestroyDevice(device); };
    const std::unique_ptr<Tessal::ITessalDevice, decltype(destroy)> device(m_tl.CreateDevice(info), destroy);
    auto& gige = dynamic_cast<Tessal::ITessalGigEDevice&>(*device);
    gige.Open(Tessal::EDeviceAccessMode::Control);
    const GenApi::CPointer<GenApi::IString, GenApi::IBase> name(gige.GetNodeMap()->GetNode("DeviceUserID"));
    name->SetValue(wanted.name, true);
    gige.SetIpConfigMode(true, wanted.dhcp);
    gige.SetPersistentIp(wanted.ip, wanted.mask, wanted.gateway);
    return true;
}

bool Soak::hasStored(const Target& target, const Settings& wanted)
{
    const std::string stored = std::string(wanted.dhcp ? " enabled=persistent,dhcp" : " enabled=persistent") +
                               " persistent-ip=" + wanted.ip + " persistent-mask=" + wanted.mask +
                               " persistent-gateway=" + wanted.gateway + " name=\"" + wanted.name + "\" ";
    return m_simulator->states(target.name).join('\n').contains(stored.c_str());
}

bool Soak::comesBack(const Target& target, const std::string& ip)
{
    m_tl.RestartIpConfig(target.mac);
    for (int i = 0; i < 5; ++i) {
        m_tl.EnumerateDevicesAnySubnet(m_found, false);
        for (const Tessal::COrvikGigEDeviceInfo& record : m_found) {
            if (record.GetMacAddress() == target.mac && record.GetIpAddress() == ip.c_str()) {
                return true;
            }
        }
    }
    return false;
}

void Soak::save(const Target& target, bool byBroadcast, SaveCounts& counts)
{
    const std::string number = std::to_string(++m_saves % 100 + 100);
    const Settings wanted{m_saves % 2 == 0, target.network + number,
                          m_saves % 3 == 0 ? "255.255.0.0" : "255.255.255.0",
                          target.network + std::to_string(m_saves % 200 + 1), "camera " + number};
    try {
        search(); // the layer goes by what it heard last
        const bool done = byBroadcast ? m_tl.BroadcastIpConfig(target.mac, true, wanted.dhcp, wanted.ip,
                                                               wanted.mask, wanted.gateway, wanted.name)
                                      : storeByUnicast(target, wanted);
        if (!done) {
            ++counts.failed;
            return;
        }
        ++counts.done;
        counts.wrong += hasStored(target, wanted) ? 0 : 1;
        counts.back += comesBack(target, wanted.ip) ? 1 : 0;
    } catch (const std::exception& failure) {
        ++counts.failed;
        std::printf("    %s: %s\n", target.name, failure.what());
    }
}

bool Soak::run(const Line& line, int searches, int saves)
{
    const QTemporaryDir directory;
    QFile file(directory.filePath("scene.json"));
    if (!file.open(QFile::WriteOnly) || file.write(scene(line.network)) < 0) {
        throw std::runtime_error("the scene cannot be written");
    }
    file.close();
    m_simulator = std::make_unique<Simulator>(file.fileName());
    m_wronglyUnreachable = 0;

    int complete = 0;
    for (int i = 0; i < searches; ++i) {
        complete += search() ? 1 : 0;
    }
    const int wronglyUnreachable = m_wronglyUnreachable;
    SaveCounts byBroadcast;
    SaveCounts byUnicast;
    for (std::size_t i = 0; i < static_cast<std::size_t>(saves); ++i) {
        save(makersCameras[i % makersCameras.size()], true, byBroadcast);
        save(otherCameras[i % otherCameras.size()], false, byUnicast);
    }
    std::printf("%-26s %3d of %3d (%d)", line.name, complete, searches, wronglyUnreachable);
    for (const SaveCounts& counts : {byBroadcast, byUnicast}) {
        std::printf("   %3d done %3d failed %3d wrong %3d back", counts.done, counts.failed, counts.wrong,
                    counts.back);
    }
    std::printf("\n");
    std::fflush(stdout);
    m_simulator.reset(); // before the next one takes the same adapter
    const int missed = searches - complete;
    return missed * 1000 <= line.missesPerThousand * searches && byBroadcast.wrong + byUnicast.wrong == 0;
}

bool runAll(QStringList names)
{
    const bool isLong = names.removeOne("--long");
    if (names.isEmpty() && !isLong) {
        names = {"20 % loss", "5 % loss and all the rest"};
    }
    auto* const made = Tessal::CTlFactory::GetInstance().CreateTl(Tessal::GigEDeviceClass);
    Soak soak(dynamic_cast<Tessal::IGigETransportLayer&>(*made));
    QElapsedTimer watch;
    watch.start();
    std::printf(
        "line; searches that found all cameras (that took a near one for unreachable); saves by broadcast; "
        "saves by unicast\n");
    bool held = true;
    for (const Line& line : lines) {
        if (!names.isEmpty() && !names.contains(line.name)) {
            continue;
        }
        if (watch.hasExpired(longestRun)) {
            std::printf("%s: no time left\n", line.name);
            held = false;
            continue;
        }
        const bool lineHeld = soak.run(line, isLong ? line.searches : 2, isLong ? savesOfEachKind : 1);
        held = held && lineHeld;
    }
    Tessal::CTlFactory::GetInstance().ReleaseTl(made);
    std::printf("%s, %lld s\n", held ? "all held" : "NOT ALL HELD",
                static_cast<long long>(watch.elapsed() / 1000));
    return held;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    try {
        Tessal::TessalInitialize();
        const bool held = runAll(QCoreApplication::arguments().mid(1));
        Tessal::TessalTerminate(true);
        return held ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "gige-soak: %s\n", failure.what());
        return 1;
    }
}
