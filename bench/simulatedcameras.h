#pragma once

#include <string>
#include <sys/types.h>

/// A simulator process with one scene, from construction to destruction.
class SimulatedCameras
{
public:
    /// Starts the scene and returns when its cameras are up. Throws std::runtime_error when they do not come.
    explicit SimulatedCameras(const std::string& sceneFile);
    SimulatedCameras(const SimulatedCameras&) = delete;
    SimulatedCameras& operator=(const SimulatedCameras&) = delete;
    ~SimulatedCameras();

private:
    pid_t m_process = -1;
    int m_events = -1; // read end of the simulator's standard output
};
