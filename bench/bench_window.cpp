// How long the user waits for the window: from F5 to the painted rows, and from Save to the refreshed tree.
// The real window on the real camera layer, without a display. Runs in the lab.

#include "DeviceLister.h"
#include "MainWnd.h"
#include "scenes.h"
#include "tessal/transportlayer.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <ifaddrs.h>
#include <linux/if_link.h>
#include <linux/if_packet.h>
#include <stdexcept>

namespace {

constexpr int repetitions = 9; // odd, so that the median is one of them
constexpr int addressColumn = 6;
double sleptSeconds = 0;

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Ends the program when a dialog opens: it would wait for an answer, and the figures would be wrong.
class NoDialogs : public QObject
{
protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Show && qobject_cast<QDialog*>(watched) != nullptr) {
            qFatal("a dialog opened: %s", qPrintable(static_cast<QDialog*>(watched)->windowTitle()));
        }
        return false;
    }
};

class PaintCounter : public QObject
{
public:
    int painted = 0;

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        painted += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

class Window
{
public:
    Window()
    {
        m_window.show();
        if (!QTest::qWaitForWindowExposed(&m_window)) {
            throw std::runtime_error("the window does not appear");
        }
        tree().viewport()->installEventFilter(&m_paints);
    }

    /// Presses the key and returns when the rows have been painted.
    void refresh()
    {
        QTest::keyClick(&m_window, Qt::Key_F5);
        for (const int before = m_paints.painted; m_paints.painted == before;) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    [[nodiscard]] std::size_t cameras()
    {
        std::size_t count = 0;
        for (int i = 0; i < tree().topLevelItemCount(); ++i) {
            count += static_cast<std::size_t>(tree().topLevelItem(i)->childCount());
        }
        return count;
    }

    void select(const QString& model)
    {
        const auto found = tree().findItems(model, Qt::MatchExactly | Qt::MatchRecursive);
        if (found.size() != 1) {
            throw std::runtime_error("no such camera");
        }
        tree().setCurrentItem(found.first());
    }

    void enter(const char* name, const QString& text)
    {
        auto& edit = *m_window.findChild<QLineEdit*>(name);
        edit.selectAll();
        QTest::keyClicks(&edit, text);
    }

    void save()
    {
        auto& button = *m_window.findChild<QPushButton*>("btnWriteConfiguration");
        if (!button.isEnabled()) {
            throw std::runtime_error("there is nothing to save");
        }
        button.click();
        QCoreApplication::processEvents();
    }

    [[nodiscard]] QString address() { return tree().currentItem()->text(addressColumn); }

private:
    QTreeWidget& tree() { return *m_window.findChild<QTreeWidget*>("treeWidget"); }

    MainWnd m_window;
    PaintCounter m_paints;
};

/// Packets that the host has sent on its simulated adapters so far, ARP included.
unsigned packetsSent()
{
    unsigned sent = 0;
    ifaddrs* all = nullptr;
    if (getifaddrs(&all) != 0) {
        throw std::runtime_error("cannot list the adapters");
    }
    for (const ifaddrs* one = all; one != nullptr; one = one->ifa_next) {
        if (one->ifa_addr != nullptr && one->ifa_addr->sa_family == AF_PACKET && one->ifa_data != nullptr &&
            std::string(one->ifa_name).starts_with("lab")) {
            sent += static_cast<const rtnl_link_stats*>(one->ifa_data)->tx_packets;
        }
    }
    freeifaddrs(all);
    return sent;
}

double searchSeconds()
{
    const auto start = Clock::now();
    DeviceLister().discoverAllDevices();
    return secondsSince(start);
}

void measureRefresh(benchmark::State& state, Bench& bench, std::size_t cameras)
{
    bench.show({.cameras = cameras});
    Window window;
    std::vector<double> searches;
    while (state.KeepRunning()) {
        searches.push_back(searchSeconds());
        const auto start = Clock::now();
        window.refresh();
        const double whole = secondsSince(start);
        state.SetIterationTime(whole);
        state.counters["search_ms"] = searches.back() * 1000;
        state.counters["beyond_ms"] = (whole - searches.back()) * 1000;
    }
    if (window.cameras() != cameras) {
        state.SkipWithError(("shows " + std::to_string(window.cameras()) + " cameras").c_str());
    }
}

void measureSave(benchmark::State& state, Bench& bench, const QString& model, bool withName)
{
    bench.show(SAVE_SCENE);
    Window window;
    static int number = 0; // so that each save has something new to store
    while (state.KeepRunning()) {
        const double search = searchSeconds();
        const QString address = QString("192.168.10.%1").arg(50 + ++number);
        window.select(model);
        window.enter("editIpAddress", address);
        if (withName) {
            window.enter("editCustomName", QString("camera %1").arg(number));
        }
        sleptSeconds = 0;
        const unsigned sentBefore = packetsSent();
        const auto start = Clock::now();
        window.save();
        const double whole = secondsSince(start);
        state.SetIterationTime(whole);
        state.counters["slept_ms"] = sleptSeconds * 1000;
        state.counters["search_ms"] = search * 1000; // runs twice, in the wait and in the refresh
        state.counters["rest_ms"] = (whole - sleptSeconds - 2 * search) * 1000;
        state.counters["packets"] = packetsSent() - sentBefore;
        if (window.address() != address) {
            state.SkipWithError("the camera has another address");
        }
    }
}

void add(const std::string& title, const std::function<void(benchmark::State&)>& measure)
{
    benchmark::RegisterBenchmark(title.c_str(), measure)
        ->Iterations(1)
        ->Repetitions(repetitions)
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime()
        ->ReportAggregatesOnly();
}

} // namespace

/// Replaces the C library's: sleeps as long and sums up the time.
extern "C" unsigned int sleep(unsigned int seconds)
{
    sleptSeconds += seconds;
    timespec rest{.tv_sec = static_cast<time_t>(seconds), .tv_nsec = 0};
    while (nanosleep(&rest, &rest) != 0) {
    }
    return 0;
}

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    try {
        Bench bench;
        Tessal::TessalInitialize();
        const QTemporaryDir settings;
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
        {
            QApplication application(argc, argv);
            QCoreApplication::setOrganizationName("Orvik");
            QCoreApplication::setApplicationName("Tessal Lanvic");
            benchmark::Initialize(&argc, argv);
            if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
                return 2;
            }
            NoDialogs noDialogs;
            application.installEventFilter(&noDialogs);
            for (const std::size_t cameras : {1, 16, 64, 256, 1024}) {
                add("refresh/" + std::to_string(cameras),
                    [&bench, cameras](benchmark::State& state) { measureRefresh(state, bench, cameras); });
            }
            for (const auto& [title, model, withName] :
                 {std::tuple{"save/broadcast", "km-1", true}, std::tuple{"save/unicast", "BX-2", false},
                  std::tuple{"save/unicast with name", "BX-2", true}}) {
                add(title, [&bench, model = model, withName = withName](benchmark::State& state) {
                    measureSave(state, bench, model, withName);
                });
            }
            benchmark::RunSpecifiedBenchmarks();
        }
        Tessal::TessalTerminate(true);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_window: %s\n", error.what());
        return 1;
    }
    return 0;
}
