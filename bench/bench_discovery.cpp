// How long a discovery takes, compared with a simple client that listens for a second. Runs in the lab.

#include "DeviceLister.h"
#include "baseline.h"
#include "scenes.h"
#include "tessal/transportlayer.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <functional>

namespace {

constexpr int repetitions = 9; // odd, so that the median is one of them
constexpr std::chrono::milliseconds baselineDuration{1000};

using Search = std::function<std::size_t(benchmark::State&, const Bench&)>;

std::size_t searchWithLister(benchmark::State& /*state*/, const Bench& /*bench*/)
{
    DeviceLister lister;
    lister.discoverAllDevices();
    return lister.m_devices.size();
}

std::size_t searchWithTransportLayer(benchmark::State& /*state*/, const Bench& /*bench*/)
{
    DeviceLister::createTransportLayer();
    Tessal::DeviceInfoList found;
    DeviceLister::s_pTl->EnumerateDevicesAnySubnet(found, false);
    return found.size();
}

/// Also counts the time until the last answer, which is what the simulator needs.
std::size_t searchAsBaseline(benchmark::State& state, const Bench& bench)
{
    std::size_t found = 0;
    for (const auto& adapter : bench.adapters()) {
        const BaselineResult search = baselineSearch(adapter, baselineDuration);
        found += search.cameras;
        state.counters["last_answer_ms"] = search.lastNewAnswer.count() * 1000;
    }
    return found;
}

void add(const std::string& title, Bench& bench, const Layout& layout, const Search& search)
{
    benchmark::RegisterBenchmark(title.c_str(),
                                 [&bench, layout, search](benchmark::State& state) {
                                     bench.show(layout);
                                     // A transport layer of its own, since it remembers slow cameras of other
                                     // layouts.
                                     const DeviceLister keepsTransportLayer;
                                     std::size_t found = 0;
                                     while (state.KeepRunning()) {
                                         found = search(state, bench);
                                     }
                                     state.counters["cameras"] = static_cast<double>(found);
                                     if (found != layout.cameras) {
                                         state.SkipWithError(
                                             ("found " + std::to_string(found) + " cameras").c_str());
                                     }
                                 })
        ->Iterations(1)
        ->Repetitions(repetitions)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->ReportAggregatesOnly();
}

void addAll(Bench& bench)
{
    for (const std::size_t cameras : {1, 16, 64, 256, 1024}) {
        const std::string number = std::to_string(cameras);
        const Layout plain{.cameras = cameras};
        add("baseline/" + number, bench, plain, searchAsBaseline);
        add("transport layer/" + number, bench, plain, searchWithTransportLayer);
        add("discoverAllDevices/" + number, bench, plain, searchWithLister);
        if (cameras >= 16) {
            add("discoverAllDevices/" + number + "/tenth foreign", bench,
                {.cameras = cameras, .foreignPercent = 10}, searchWithLister);
        }
    }
    add("discoverAllDevices/0", bench, {.cameras = 0}, searchWithLister);
    add("discoverAllDevices/64/1 mute", bench, {.cameras = 64, .mute = 1}, searchWithLister);
    add("discoverAllDevices/64/10 mute", bench, {.cameras = 64, .mute = 10}, searchWithLister);
    add("discoverAllDevices/64/300 ms late", bench, {.cameras = 64, .delayMs = 300}, searchWithLister);
    add("discoverAllDevices/64/2 adapters", bench, {.cameras = 64, .adapters = 2}, searchWithLister);
    add("discoverAllDevices/64/8 adapters", bench, {.cameras = 64, .adapters = 8}, searchWithLister);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    try {
        Bench bench;
        Tessal::TessalInitialize();
        addAll(bench);
        benchmark::RunSpecifiedBenchmarks();
        Tessal::TessalTerminate(true);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_discovery: %s\n", error.what());
        return 1;
    }
    return 0;
}
