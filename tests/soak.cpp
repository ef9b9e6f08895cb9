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
#include <utility>

namespace {

struct Line
{
    const char* name;
    QJsonObject network;
    int missesPerThousand; // searches that may miss a camera
    bool isQuick = false;  // is part of a short run
};

const std::initializer_list<Line> lines{
    {"5 % loss", {{"lossPercent", 5}}, 0},
    {"20 % loss", {{"lossPercent", 20}}, 25, true},
    {"100 ms delay", {{"delayMs", 100}}, 0},
    {"400 ms delay", {{"delayMs", 400}}, 0},
    {"5 % loss, 400 ms delay", {{"lossPercent", 5}, {"delayMs", 400}}, 25},
    {"5 % loss and all the rest",
     {{"lossPercent", 5},
      {"delayMs", 100},
      {"duplicatePercent", 20},
      {"reorderPercent", 20},
      {"garbagePercent", 5},
      {"truncatePercent", 5}},
     0,
     true},
};

constexpr int camerasOfANetwork = 4;

/// Four cameras on the host's network, "near-1" to "near-4", and as many in a foreign subnet.
QJsonArray network()
{
    const QJsonObject fields{{"count", camerasOfANetwork}, {"restartMs", 50}, {"pendingAckMs", 20}};
    return behindOneAdapter({simulatedCamera(0x01, "near", "192.168.10.21", fields),
                             simulatedCamera(0x11, "far", "172.16.4.21", fields)});
}

/// Whether everything held on this line.
bool run(const Line& line, int searches, int saves)
{
    Simulator simulator(network(), line.network);
    const CameraLayer layer;
    Tessal::DeviceInfoList found;
    int missed = 0;
    for (int i = 0; i < searches; ++i) {
        layer->EnumerateDevicesAnySubnet(found, false);
        missed += std::cmp_equal(found.size(), 2 * camerasOfANetwork) ? 0 : 1;
    }
    int done = 0;
    int wrong = 0; // said to be done, but the camera has other values
    for (int i = 0; i < saves; ++i) {
        const bool isNear = i % 2 == 0;
        const std::string number = std::to_string(i / 2 % camerasOfANetwork + 1);
        const std::string mac = (isNear ? "025E4100000" : "025E4100001") + number;
        const std::string ip = (isNear ? "192.168.10." : "172.16.4.") + std::to_string(100 + i);
        const std::string name = "camera " + std::to_string(i);
        bool isAcknowledged = false;
        const QString failure = failureOf([&] {
            layer->EnumerateDevicesAnySubnet(found, false); // the layer goes by what it heard last
            isAcknowledged = layer->BroadcastIpConfig(mac, true, false, ip, "255.255.0.0", "0.0.0.0", name);
            layer->RestartIpConfig(mac);
        });
        const QString stored = QString(" enabled=persistent persistent-ip=%1 persistent-mask=255.255.0.0 "
                                       "persistent-gateway=0.0.0.0 name=\"%2\" ")
                                   .arg(ip.c_str(), name.c_str());
        const QString state =
            simulator.states((isNear ? "near-" : "far-") + QString(number.c_str())).join("");
        done += isAcknowledged ? 1 : 0;
        wrong += isAcknowledged && !state.contains(stored) ? 1 : 0;
        if (failure != "no failure") {
            std::printf("    %s: %s\n", mac.c_str(), qPrintable(failure));
        }
    }
    std::printf("%-26s %3d of %3d   %3d of %3d done, %3d wrong\n", line.name, searches - missed, searches,
                done, saves, wrong);
    std::fflush(stdout);
    // A save that is reported as not done is honest, but most must get through.
    return missed * 1000 <= line.missesPerThousand * searches && wrong == 0 && done * 2 >= saves;
}

} // namespace

int main(int argc, char** argv)
try {
    const QCoreApplication application(argc, argv);
    const bool isLong = QCoreApplication::arguments().contains("--long");
    std::printf("line; searches that found all cameras; saves by broadcast\n");
    bool held = true;
    for (const Line& line : lines) {
        if (isLong || line.isQuick) {
            held = run(line, isLong ? 100 : 2, isLong ? 40 : 2) && held;
        }
    }
    std::printf("%s\n", held ? "all held" : "NOT ALL HELD");
    return held ? 0 : 1;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "gige-soak: %s\n", failure.what());
    return 1;
}
