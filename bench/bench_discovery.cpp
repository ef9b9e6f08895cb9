// How long a discovery takes, next to what a plain client needs that listens for a second. Runs in the lab.

#include "DeviceLister.h"
#include "plainclient.h"
#include "simulatedcameras.h"
#include "tessal/transportlayer.h"
#include "wire/routesocket.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <net/if.h>
#include <stdexcept>

namespace {

constexpr int Repetitions = 9; // odd, so that the median is one of them
constexpr std::chrono::milliseconds PlainListening{1000};

/// The scene that is up; one at a time, because they use the same adapter.
class Scenes
{
public:
    void show(std::size_t cameras)
    {
        if (cameras == m_cameras)
            return;
        m_running.reset();
        m_cameras = 0;
        m_running =
            std::make_unique<SimulatedCameras>(SCENES "/cameras-" + std::to_string(cameras) + ".json");
        m_cameras = cameras;
    }

private:
    std::size_t m_cameras = 0;
    std::unique_ptr<SimulatedCameras> m_running;
};

std::vector<std::string> adapters()
{
    std::vector<std::string> names;
    for (const auto& link : wire::RouteSocket().links()) {
        if ((link.flags & IFF_LOOPBACK) != 0)
            continue;
        if (link.kind != "tun")
            throw std::runtime_error("the adapter " + link.name +
                                     " may lead to real cameras; run this in scripts/lab");
        names.push_back(link.name);
    }
    return names;
}

std::size_t searchWithLister()
{
    DeviceLister lister;
    lister.discoverAllDevices();
    return lister.m_devices.size();
}

std::size_t searchWithTransportLayer()
{
    DeviceLister::createTransportLayer();
    Tessal::DeviceInfoList found;
    DeviceLister::s_pTl->EnumerateDevicesAnySubnet(found, false);
    return found.size();
}

std::size_t searchPlainly()
{
    std::size_t found = 0;
    for (const auto& adapter : adapters())
        found += countCamerasPlainly(adapter, PlainListening);
    return found;
}

void run(benchmark::State& state, Scenes& scenes, std::size_t cameras,
         const std::function<std::size_t()>& search)
{
    scenes.show(cameras);
    std::size_t found = 0;
    for (auto _ : state)
        found = search();
    state.counters["cameras"] = static_cast<double>(found);
    if (found != cameras)
        state.SkipWithError(("found " + std::to_string(found) + " cameras").c_str());
}

void registerSearch(const char* name, Scenes& scenes, std::size_t (*search)())
{
    for (const std::size_t cameras : {1, 16, 64, 256, 1024}) {
        const std::string title = std::string(name) + "/" + std::to_string(cameras);
        benchmark::RegisterBenchmark(
            title.c_str(),
            [&scenes, cameras, search](benchmark::State& state) { run(state, scenes, cameras, search); })
            ->Iterations(1)
            ->Repetitions(Repetitions)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->ReportAggregatesOnly();
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    try {
        adapters(); // throws where a real camera could hear us
        Tessal::TessalInitialize();
        Scenes scenes;
        {
            const DeviceLister keepsTransportLayer;
            registerSearch("plain client", scenes, searchPlainly);
            registerSearch("transport layer", scenes, searchWithTransportLayer);
            registerSearch("discoverAllDevices", scenes, searchWithLister);
            benchmark::RunSpecifiedBenchmarks();
        }
        Tessal::TessalTerminate(true);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_discovery: %s\n", error.what());
        return 1;
    }
    return 0;
}
