#pragma once

#include "support/guiadapter.h"
#include "support/scriptedsdk.h"
#include "support/window.h"

#include <memory>
#include <vector>

namespace gui {

/// Base of the tests of the window against the scripted SDK: an empty world and two adapters. lan0 has
/// 192.168.1.5/24; lan1 has 172.16.3.4/20 and 10.0.0.1/16.
class GuiTest : public WindowTest
{
    Q_OBJECT

protected slots:
    void initTestCase() { connectAdapters(); }
    void init();

private:
    std::vector<std::unique_ptr<GuiAdapter>> m_adapters;

protected:
    void connectAdapters();
    void disconnectAdapters() { m_adapters.clear(); }
    /// The world's one or first camera, which the tests of a save are about.
    sdk::Camera& cam() { return m_world.cameras.front(); }
    /// Opens the window on one camera, the "km-1" with MAC 025E41000001 at 192.168.1.9, and selects it.
    void openOnCamera(const sdk::Camera& camera);
    bool canSave();
    void clickOn(const char* name) { QTest::mouseClick(&child<QWidget>(name), Qt::LeftButton); }

    sdk::World& m_world = sdk::world();
};

} // namespace gui
