#include "support/gui.h"

#include <stdexcept>

namespace gui {

void GuiTest::connectAdapters()
{
    m_adapters.emplace_back("lan0", QStringList{"192.168.1.5/24"}, "02:00:00:00:01:05");
    m_adapters.emplace_back("lan1", QStringList{"fe80::5/64 nodad", "172.16.3.4/20", "10.0.0.1/16"},
                            "02:00:00:00:00:01");
}

void GuiTest::init()
{
    m_world = {};
    WindowTest::init();
}

void GuiTest::openOn(const std::vector<sdk::Camera>& cameras)
{
    m_window.reset();
    m_world = {};
    m_world.cameras = cameras;
    openWindow();
    select("km-1");
    m_world.take();
    takeTrace();
}

void GuiTest::failAt(const char* call, int nth, bool isStandard)
{
    m_world.at[call] = [=, calls = 0]() mutable {
        if (++calls == nth && isStandard) {
            throw std::runtime_error("cable");
        }
        if (calls == nth) {
            throw 7;
        }
    };
}

} // namespace gui
