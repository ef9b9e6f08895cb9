#include "support/wire.h"

#include <functional>

namespace {

std::function<void()> s_atSleep;

} // namespace

/// Takes the place of the C library's, so that no test waits longer than its cameras do.
extern "C" unsigned int sleep(unsigned int)
{
    s_atSleep();
    return 0;
}

void WireTest::start(const QString& scene)
{
    s_atSleep = [this] {
        ++m_sleeps;
        m_duringSleep();
        if (!m_awaited.isEmpty()) {
            const QString event = m_awaited.takeFirst();
            QVERIFY2(m_simulator->await(event), qPrintable(event));
        }
    };
    m_duringSleep = [] {};
    m_controlled.clear();
    m_sleeps = 0;
    m_simulator = std::make_unique<Simulator>(scene);
    openWindow();
}

void WireTest::cleanup()
{
    const QStringList controlled = // while the window is still there
        m_simulator ? m_simulator->controlled() : QStringList();
    WindowTest::cleanup();
    m_simulator.reset();
    QCOMPARE(m_awaited, QStringList());
    QCOMPARE(controlled, m_controlled);
}
