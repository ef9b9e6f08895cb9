#include "simulation.h"

#include "net/links.h"
#include "wire/hostadapter.h"

#include <net/if.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <system_error>
#include <thread>
#include <utility>

namespace sim {

namespace {

constexpr std::uint32_t queueLength = 10000; // frames from the host that wait to be read
constexpr int framesPerTurn = 512;           // read from one adapter before the next one's turn
constexpr std::size_t logChunk = 4096;       // bytes; a writable pipe takes as many without blocking
constexpr std::chrono::seconds runningTimeout{5};

[[noreturn]] void fail(int error, const std::string& what)
{
    throw std::system_error(error, std::generic_category(), what);
}

void checkNamespace(const Scene& scene)
{
    for (const net::Link& link : net::links()) {
        if (net::mayLeadToRealCamera(link)) {
            throw WrongNamespace("this network namespace holds the adapter " + link.name +
                                 ", which may lead to real cameras; start in a private one (scripts/lab)");
        }
        for (const AdapterConfig& adapter : scene.adapters) {
            if (adapter.name == link.name) {
                throw WrongNamespace("there is already an adapter " + link.name);
            }
        }
    }
}

/// Lets answers from foreign subnets reach the host; an inherited reverse-path filter would drop them.
void allowForeignAnswers(const std::string& adapter)
{
    for (const std::string& name : {std::string("all"), adapter}) {
        const std::string path = "/proc/sys/net/ipv4/conf/" + name + "/rp_filter";
        int filter = 0;
        std::ifstream(path) >> filter;
        if (filter == 0) {
            continue;
        }
        std::ofstream setting(path);
        setting << 0 << std::flush;
        if (!setting) {
            std::fprintf(stderr, "gige-simulator: %s stays %d: answers from foreign subnets may be lost\n",
                         path.c_str(), filter);
        }
    }
}

/// The kernel reports a new adapter as running a little later than as up.
void waitUntilRunning(const std::string& name)
{
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket < 0) {
        fail(errno, "no socket");
    }
    ifreq request{};
    name.copy(request.ifr_name, sizeof request.ifr_name - 1);
    const Instant deadline = std::chrono::steady_clock::now() + runningTimeout;
    int result = ::ioctl(socket, SIOCGIFFLAGS, &request);
    while (result == 0 && (request.ifr_flags & IFF_RUNNING) == 0 &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(Duration(1));
        result = ::ioctl(socket, SIOCGIFFLAGS, &request);
    }
    ::close(socket);
    if (result != 0 || (request.ifr_flags & IFF_RUNNING) == 0) {
        throw std::runtime_error("adapter " + name + " does not come up");
    }
}

int blockSignals()
{
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGUSR1}) {
        ::sigaddset(&signals, signal);
    }
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    // A reader that disappears is noticed as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    const int descriptor = ::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    if (descriptor < 0) {
        fail(errno, "signals cannot be watched");
    }
    return descriptor;
}

} // namespace

Simulation::Simulation(Scene scene) : m_scene(std::move(scene))
{
    checkNamespace(m_scene);
    for (const AdapterConfig& adapter : m_scene.adapters) {
        createAdapter(adapter);
    }
    m_signals = blockSignals();
}

Simulation::~Simulation()
{
    ::close(m_signals);
}

void Simulation::createAdapter(const AdapterConfig& config)
{
    auto tap = std::make_unique<wire::TapDevice>(config.name);
    wire::bringUp(tap->index(), config.mac, wire::Mtu, queueLength);
    for (const HostAddress& address : config.addresses) {
        wire::addAddress(tap->index(), address.address, address.prefixLength);
    }
    allowForeignAnswers(config.name);
    waitUntilRunning(config.name);
    m_adapters.push_back({config.name, std::move(tap)});
}

void Simulation::run()
{
    const auto send = [this](std::size_t adapter, std::span<const std::uint8_t> frame) {
        if (m_adapters[adapter].tap) {
            m_adapters[adapter].tap->write(frame);
        }
    };
    const auto report = [this](const EventLine& event) { m_log += event.text() + '\n'; };
    m_network = std::make_unique<VirtualNetwork>(m_scene, std::chrono::steady_clock::now(), send, report);
    report(EventLine("ready")
               .add("adapters", std::to_string(m_scene.adapters.size()))
               .add("cameras", std::to_string(m_scene.cameras.size())));
    while (m_isRunning) {
        writeLog(false);
        waitForEvents(m_network->nextDeadline());
        m_network->advance(std::chrono::steady_clock::now());
    }
    m_network->reportStates();
    writeLog(true);
}

void Simulation::waitForEvents(Instant deadline)
{
    std::vector<pollfd> watched{{m_signals, POLLIN, 0}, {m_log.empty() ? -1 : STDOUT_FILENO, POLLOUT, 0}};
    for (const Adapter& adapter : m_adapters) {
        watched.push_back({adapter.tap ? adapter.tap->descriptor() : -1, POLLIN, 0});
    }
    timespec timeout{};
    if (deadline != never) {
        const auto left = std::max<Instant::duration>(deadline - std::chrono::steady_clock::now(), {});
        const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
        timeout = {static_cast<time_t>(seconds.count()),
                   static_cast<long>(std::chrono::nanoseconds(left - seconds).count())};
    }
    if (::ppoll(watched.data(), watched.size(), deadline == never ? nullptr : &timeout, nullptr) < 0) {
        if (errno == EINTR) {
            return;
        }
        fail(errno, "waiting for frames failed");
    }
    if (watched[0].revents != 0) {
        handleSignals();
    }
    for (std::size_t i = 0; i < m_adapters.size(); ++i) {
        if (watched[i + 2].revents != 0) {
            receiveFrom(i);
        }
    }
}

void Simulation::receiveFrom(std::size_t adapter)
{
    std::array<std::uint8_t, 2 * wire::Mtu> buffer; // NOLINT(*-member-init): filled by the device
    const Instant now = std::chrono::steady_clock::now();
    try {
        for (int i = 0; i < framesPerTurn; ++i) {
            const auto frame = m_adapters[adapter].tap->read(buffer);
            if (!frame) {
                return;
            }
            m_network->receive(adapter, *frame, now);
        }
    } catch (const std::system_error&) {
        m_log += EventLine("gone").add("adapter", m_adapters[adapter].name).text() + '\n';
        m_adapters[adapter].tap.reset();
    }
}

void Simulation::handleSignals()
{
    signalfd_siginfo info{};
    while (::read(m_signals, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
        if (info.ssi_signo == SIGUSR1) {
            m_network->reportStates();
        } else {
            m_isRunning = false;
        }
    }
}

void Simulation::writeLog(bool toTheEnd)
{
    while (!m_log.empty()) {
        pollfd output{STDOUT_FILENO, POLLOUT, 0};
        const int ready = ::poll(&output, 1, toTheEnd ? -1 : 0);
        if (ready == 0 || (ready < 0 && errno == EINTR)) {
            return; // A slow reader must not delay the cameras.
        }
        const ssize_t written = ::write(STDOUT_FILENO, m_log.data(), std::min(m_log.size(), logChunk));
        if (written < 0 && errno != EINTR && errno != EAGAIN) {
            fail(errno, "the event log cannot be written");
        }
        m_log.erase(0, static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
}

} // namespace sim
