#include "support/simulator.h"

#include <QDir>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Starts the simulator with its standard output in `output`.
pid_t startSimulator(const QByteArray& sceneFile, int output)
{
    const pid_t process = ::fork();
    if (process == 0) {
        // It must not outlive a program that is killed.
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        ::dup2(output, STDOUT_FILENO);
        ::execl(SIMULATOR, SIMULATOR, sceneFile.constData(), nullptr);
        ::_exit(127);
    }
    return process;
}

} // namespace

Simulator::Simulator(const QString& scene)
{
    const QString file = QDir(SCENES).filePath(scene.endsWith(".json") ? scene : scene + ".json");
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("the simulator gets no pipe");
    }
    m_output = ends[0];
    m_process = startSimulator(file.toLocal8Bit(), ends[1]);
    ::close(ends[1]);
    m_reader = std::thread(&Simulator::readLines, this);
    if (!await("ready ")) {
        // The destructor does not run, and the reader must not outlive the object.
        ::kill(m_process, SIGTERM);
        m_reader.join();
        throw std::runtime_error("the simulator does not start with " + file.toStdString());
    }
    m_events.clear();
}

Simulator::~Simulator()
{
    ::kill(m_process, SIGTERM);
    m_reader.join();
    ::waitpid(m_process, nullptr, 0);
}

void Simulator::readLines()
{
    std::FILE* const output = ::fdopen(m_output, "r");
    char* line = nullptr;
    std::size_t size = 0;
    while (::getline(&line, &size, output) > 0) {
        const std::lock_guard lock(m_mutex);
        m_lines << QString::fromUtf8(line).trimmed();
        m_arrived.notify_one();
    }
    std::free(line);
    std::fclose(output);
    const std::lock_guard lock(m_mutex);
    m_ended = true;
    m_arrived.notify_one();
}

bool Simulator::await(const QString& beginning)
{
    using namespace std::chrono_literals;
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    std::unique_lock lock(m_mutex);
    while (m_arrived.wait_until(lock, deadline, [this] { return hasLine(); }) && !m_lines.isEmpty()) {
        const QString line = m_lines.takeFirst();
        if (line.startsWith("state ")) {
            m_states << line;
        } else if (!line.startsWith("found ") && line != "end") {
            m_events << line;
        }
        if (line.startsWith(beginning)) {
            return true;
        }
    }
    return false;
}

QStringList Simulator::takeEvents()
{
    (void)states(); // reads all events up to now
    return std::exchange(m_events, {});
}

QStringList Simulator::states(const QString& camera)
{
    m_states.clear();
    ::kill(m_process, SIGUSR1);
    if (!await("end")) {
        qFatal("the simulator does not tell its state");
    }
    return m_states.filter("state camera=" + camera);
}
