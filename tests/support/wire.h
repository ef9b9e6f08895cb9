#pragma once

#include "support/otherprogram.h"
#include "support/packets.h"
#include "support/simulator.h"
#include "support/window.h"

/// Base of the tests of the real window on simulated cameras, over the real camera layer.
class WireTest : public gui::WindowTest
{
    Q_OBJECT

protected:
    /// Starts a scene and opens the window on it, with the camera of that model selected.
    void start(const QString& scene, const QString& model = {});
    [[nodiscard]] Simulator& simulator() { return *m_simulator; }

    /// The program waits for these events instead of sleeping, one at each sleep; then it goes on at once.
    void sleepUntil(const QStringList& events) { m_awaited = events; }
    [[nodiscard]] int takeSleeps() { return std::exchange(m_sleeps, 0); }

    /// What happens to the program at each of its sleeps.
    std::function<void()> m_duringSleep;

    /// Cameras that others control, or that vanished while we did; no other may be controlled at the end.
    QStringList m_controlled;

    Q_SLOT void cleanup();

private:
    std::unique_ptr<Simulator> m_simulator;
    QStringList m_awaited;
    int m_sleeps = 0;
};
