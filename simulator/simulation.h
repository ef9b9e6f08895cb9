#pragma once

#include "network/virtualnetwork.h"
#include "scene/scene.h"
#include "wire/tapdevice.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

/// This network namespace may hold real cameras, or an adapter that is not ours.
class WrongNamespace : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A scene on TAP devices in the network namespace of this process, with its event log on standard output.
class Simulation
{
public:
    /// Makes the adapters; they vanish with the object. Throws WrongNamespace before it touches anything,
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
        std::unique_ptr<wire::TapDevice> tap; // none: the adapter has been taken away
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
