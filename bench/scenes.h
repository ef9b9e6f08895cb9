#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

class Simulator;

/// What stands on the wire for one measurement. The cameras are spread evenly over the adapters.
struct Layout
{
    std::size_t cameras = 0;
    std::size_t adapters = 1;       // at most 16
    std::size_t foreignPercent = 0; // of the cameras, in a subnet that the host is not in
    std::size_t mute = 0;           // of the cameras, answer discovery but nothing that is sent to them alone
    unsigned delayMs = 0;           // of every answer to discovery

    bool operator==(const Layout&) const = default;
};

/// The wire with the layout that is up; one at a time, because they use the same adapters.
class Bench
{
public:
    /// Throws std::runtime_error where an adapter may lead to real cameras: this is for scripts/lab only.
    Bench();
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;
    ~Bench();

    /// Returns when the cameras are up, at once when they are already. Throws std::runtime_error when they do
    /// not come.
    void show(const Layout& layout);
    /// The same with a ready scene.
    void show(const std::string& sceneFile);

    /// The names of the adapters with simulated cameras.
    [[nodiscard]] std::vector<std::string> adapters() const;

private:
    Layout m_layout;
    std::string m_sceneFile; // empty while a layout is up
    std::unique_ptr<Simulator> m_running;
};
