#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

class Simulator;

/// The cameras on the wire in one measurement, spread evenly over the adapters.
struct Layout
{
    std::size_t cameras = 0;
    std::size_t adapters = 1;       // at most 16
    std::size_t foreignPercent = 0; // of the cameras, in a subnet that the host is not in
    std::size_t mute = 0;           // of the cameras, answer discovery but no unicast
    unsigned delayMs = 0;           // of every discovery acknowledge

    bool operator==(const Layout&) const = default;
};

/// The wire with the simulated cameras of one layout at a time, because all layouts use the same adapters.
class Bench
{
public:
    /// Throws std::runtime_error if an adapter may lead to real cameras; runs only in scripts/lab.
    Bench();
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;
    ~Bench();

    /// Returns when the cameras are up. Throws std::runtime_error if they do not start.
    void show(const Layout& layout);
    /// The same with a scene file.
    void show(const std::string& sceneFile);

    /// The names of the adapters with simulated cameras.
    [[nodiscard]] std::vector<std::string> adapters() const;

private:
    Layout m_layout;
    std::string m_sceneFile; // empty while a layout is up
    std::unique_ptr<Simulator> m_running;
};
