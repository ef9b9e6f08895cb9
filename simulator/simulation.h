#pragma once

#include "network/virtualnetwork.h"
#include "scene/scene.h"
#include "wire/tapdevice.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

/// An adapter in this network namespace may lead to real cameras, or already has a name of the scene's.
class WrongNamespace : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Runs a scene on TAP devices in the network namespace of this process and writes its event log to standard
/// output.
class Simulation
{
public:
    /// Creates the adapters; they are removed with the object. Throws WrongNamespace before any change,
    /// wire::NoTapDevices, or std::system_error.
    explicit Simulation(Scene scene);
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;
    ~Simulation();

    /// Runs until SIGTERM or SIGINT; SIGUSR1 reports the state of all cameras. Throws std::system_error when
    /// standard output fails.
    void run();

private:
    struct Adapter
    {
        std::string name;
        std::unique_ptr<wire::TapDevice> tap; // null: the adapter has been removed
    };

    void createAdapter(const AdapterConfig& config);
    void waitForEvents(Instant deadline);
    void receiveFrom(std::size_t adapter);
    void handleSignals();
    void writeLog(bool toTheEnd);

    Scene m_scene;
    std::vector<Adapter> m_adapters;
    int m_signals = -1;
    bool m_isRunning = true;
    std::string m_log; // not yet written
    std::unique_ptr<VirtualNetwork> m_network;
};

} // namespace sim
