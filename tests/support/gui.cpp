#include "support/gui.h"

#include <QPushButton>

namespace gui {

void GuiTest::connectAdapters()
{
    m_adapters.push_back(
        std::make_unique<GuiAdapter>("lan0", QStringList{"192.168.1.5/24"}, "02:00:00:00:01:05"));
    m_adapters.push_back(std::make_unique<GuiAdapter>("lan1", QStringList{"172.16.3.4/20", "10.0.0.1/16"},
                                                      "02:00:00:00:00:01"));
}

void GuiTest::init()
{
    m_world = {};
    WindowTest::init();
}

void GuiTest::openOnCamera(const sdk::Camera& camera)
{
    m_window.reset();
    m_world.cameras = {camera};
    openWindow();
    select("km-1");
    m_world.take();
    takeTrace();
}

bool GuiTest::canSave()
{
    return child<QPushButton>("btnWriteConfiguration").isEnabled();
}

} // namespace gui
