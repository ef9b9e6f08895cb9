#include "support/wire.h"

#include <QRegularExpression>

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

void WireTest::start(const QString& scene, const QString& model)
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
    m_simulator = std::make_unique<Simulator>(scene);
    openWindow();
    if (!model.isEmpty()) {
        select(model);
    }
    takeTrace();
}

void WireTest::cleanup()
{
    QStringList controlled = // while the window is still there
        m_simulator ? m_simulator->states() : QStringList();
    controlled.removeIf([](const QString& state) { return state.endsWith(" control=none"); });
    controlled.replaceInStrings(QRegularExpression("^state camera=(\\S+) .*"), "\\1");
    WindowTest::cleanup();
    m_simulator.reset();
    QCOMPARE(m_awaited, QStringList());
    m_sleeps = 0;
    QCOMPARE(controlled, std::exchange(m_controlled, {}));
}
