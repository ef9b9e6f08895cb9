#include "simulatedcameras.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

pid_t spawnSimulator(const std::string& sceneFile, int standardOutput)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, standardOutput, STDOUT_FILENO);
    std::string program = SIMULATOR;
    std::string scene = sceneFile;
    const std::array<char*, 3> arguments{program.data(), scene.data(), nullptr};
    pid_t process = -1;
    const int error = posix_spawn(&process, SIMULATOR, &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot start " + program);
    return process;
}

} // namespace

SimulatedCameras::SimulatedCameras(const std::string& sceneFile)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("cannot make a pipe");
    m_events = ends[0];
    m_process = spawnSimulator(sceneFile, ends[1]);
    close(ends[1]);

    std::string line;
    for (char next = 0; !line.starts_with("ready ") || next != '\n';) {
        if (read(m_events, &next, 1) != 1)
            throw std::runtime_error("the simulator did not start with " + sceneFile);
        line = next == '\n' && !line.starts_with("ready ") ? std::string() : line + next;
    }
    // The simulator tells of every camera found; nobody reads that here, but the pipe must not fill up.
    std::thread([events = dup(m_events)] {
        std::array<char, 4096> ignored{};
        while (read(events, ignored.data(), ignored.size()) > 0) {
        }
        close(events);
    }).detach();
}

SimulatedCameras::~SimulatedCameras()
{
    kill(m_process, SIGTERM);
    waitpid(m_process, nullptr, 0);
    close(m_events);
}
