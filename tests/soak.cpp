// Searches and saves again and again on lines as bad as they come, and counts. Whether a save went well is
// not for the camera layer to say: the simulated camera's own state is compared with what was wanted.
//
//   scripts/lab build/release/tests/gige-soak           a few of each on two lines, in some ten seconds
//   scripts/lab build/release/tests/gige-soak --long    enough of each for figures, on all lines, in some
//                                                       forty minutes

#include "support/cameralayer.h"
#include "support/simulator.h"

#include <QCoreApplication>

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
    bool isQuick = false;  // is part of a short run
};

const std::initializer_list<Line> lines{
    {"5 % loss", {{"lossPercent", 5}}, 200, 0},
    {"20 % loss", {{"lossPercent", 20}}, 200, 25, true},
    {"100 ms delay", {{"delayMs", 100}}, 50, 0},
    {"400 ms delay", {{"delayMs", 400}}, 50, 0},
    {"5 % loss, 400 ms delay", {{"lossPercent", 5}, {"delayMs", 400}}, 100, 25},
    {"5 % loss and all the rest",
     {{"lossPercent", 5},
      {"delayMs", 100},
      {"duplicatePercent", 20},
      {"reorderPercent", 20},
      {"garbagePercent", 5},
      {"truncatePercent", 5}},
     200,
     0,
     true},
};

constexpr std::size_t cameraCount = 8;

/// Three of the maker's cameras and two of another's on the host's network, three in foreign subnets.
QJsonArray network()
{
    const auto cameras = [](const char* name, int count, int number, const char* vendor, const char* ip) {
        return simulatedCamera(
            number, name, ip,
            {{"count", count}, {"vendor", vendor}, {"restartMs", 50}, {"pendingAckMs", 20}});
    };
    return behindOneAdapter({cameras("near", 3, 0x01, "Orvik", "192.168.10.21"),
                             cameras("far", 2, 0x11, "Orvik", "172.16.4.21"),
                             cameras("other", 2, 0x21, "Belunar", "192.168.10.41"),
                             cameras("stray", 1, 0x31, "Belunar", "10.8.0.9")});
}

struct Target
{
    const char* name; // in the scene
    const char* mac;
    const char* subnet; // the first three parts of its addresses
};

constexpr std::array<Target, 5> makersCameras{{{"near-1", "025E41000001", "192.168.10."},
                                               {"near-2", "025E41000002", "192.168.10."},
                                               {"near-3", "025E41000003", "192.168.10."},
                                               {"far-1", "025E41000011", "172.16.4."},
                                               {"far-2", "025E41000012", "172.16.4."}}};
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
};

/// The camera layer and its cameras on one line.
class Soak
{
public:
    explicit Soak(const QJsonObject& line) : m_simulator(network(), line) {}

    /// Whether it found all cameras.
    bool search();
    void save(const Target& target, SaveCounts& counts);

private:
    bool hasStored(const Target& target, const Settings& wanted);

    Simulator m_simulator;
    CameraLayer m_layer;
    Tessal::DeviceInfoList m_found;
    int m_saves = 0;
};

bool Soak::search()
{
    m_layer->EnumerateDevicesAnySubnet(m_found, false);
    std::set<gcstring> macs;
    for (const Tessal::COrvikGigEDeviceInfo& record : m_found) {
        macs.insert(record.GetMacAddress());
    }
    return macs.size() == cameraCount;
}

bool Soak::hasStored(const Target& target, const Settings& wanted)
{
    const std::string stored = std::string(wanted.dhcp ? " enabled=persistent,dhcp" : " enabled=persistent") +
                               " persistent-ip=" + wanted.ip + " persistent-mask=" + wanted.mask +
                               " persistent-gateway=" + wanted.gateway + " name=\"" + wanted.name + "\" ";
    return m_simulator.states(target.name).join('\n').contains(stored.c_str());
}

void Soak::save(const Target& target, SaveCounts& counts)
{
    const std::string number = std::to_string(++m_saves % 100 + 100);
    const Settings wanted{m_saves % 2 == 0, target.subnet + number,
                          m_saves % 3 == 0 ? "255.255.0.0" : "255.255.255.0",
                          target.subnet + std::to_string(m_saves % 200 + 1), "camera " + number};
    try {
        search(); // the layer goes by what it heard last
        if (!m_layer->BroadcastIpConfig(target.mac, true, wanted.dhcp, wanted.ip, wanted.mask, wanted.gateway,
                                        wanted.name)) {
            ++counts.failed;
            return;
        }
        ++counts.done;
        counts.wrong += hasStored(target, wanted) ? 0 : 1;
        m_layer->RestartIpConfig(target.mac);
    } catch (const std::exception& failure) {
        ++counts.failed;
        std::printf("    %s: %s\n", target.name, failure.what());
    }
}

/// Whether everything held on this line.
bool run(const Line& line, int searches, std::size_t saves)
{
    Soak soak(line.network);
    int missed = 0;
    for (int i = 0; i < searches; ++i) {
        missed += soak.search() ? 0 : 1;
    }
    SaveCounts counts;
    for (std::size_t i = 0; i < saves; ++i) {
        soak.save(makersCameras[i % makersCameras.size()], counts);
    }
    std::printf("%-26s %3d of %3d   %3d done %3d failed %3d wrong\n", line.name, searches - missed, searches,
                counts.done, counts.failed, counts.wrong);
    std::fflush(stdout);
    return missed * 1000 <= line.missesPerThousand * searches && counts.wrong == 0;
}

bool runAll(bool isLong)
{
    std::printf("line; searches that found all cameras; saves by broadcast\n");
    bool held = true;
    for (const Line& line : lines) {
        if (isLong || line.isQuick) {
            const bool lineHeld = run(line, isLong ? line.searches : 2, isLong ? 40 : 1);
            held = held && lineHeld;
        }
    }
    std::printf("%s\n", held ? "all held" : "NOT ALL HELD");
    return held;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    try {
        return runAll(QCoreApplication::arguments().contains("--long")) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "gige-soak: %s\n", failure.what());
        return 1;
    }
}
