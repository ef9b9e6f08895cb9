#pragma once

#include "support/scriptedsdk.h"
#include "support/window.h"

#include <QAccessible>
#include <QRegularExpression>

#include <stdexcept>
#include <vector>

namespace gui {

/// What is enabled in the editor, as enabledInEditor() gives it.
inline const QStringList editorWithoutAddresses{"btnUseAutoIp", "btnUseDhcp", "btnUsePersistentIp",
                                                "editCustomName", "labelCustomName"};
inline const QStringList editorWithAddresses{"btnUseAutoIp",   "btnUseDhcp",         "btnUsePersistentIp",
                                             "editCustomName", "editDefaultGateway", "editIpAddress",
                                             "editNetmask",    "labelCustomName",    "labelDefaultGateway",
                                             "labelIpAddress", "labelNetmask"};

/// Base of the tests of the window against the scripted SDK: an empty world and two adapters. lan0 has
/// 192.168.1.5/24; lan1 has 172.16.3.4/20 and 10.0.0.1/16.
class GuiTest : public WindowTest
{
    Q_OBJECT

protected slots:
    void initTestCase() { connectAdapters(); }
    void init()
    {
        m_world = {};
        WindowTest::init();
    }

private:
    std::vector<Adapter> m_adapters;

protected:
    void connectAdapters()
    {
        m_adapters.emplace_back("lan0", QStringList{"192.168.1.5/24"}, "02:00:00:00:01:05");
        m_adapters.emplace_back("lan1", QStringList{"fe80::5/64 nodad", "172.16.3.4/20", "10.0.0.1/16"},
                                "02:00:00:00:00:01");
    }
    void disconnectAdapters() { m_adapters.clear(); }
    /// The world's one or first camera, which most tests are about.
    sdk::Camera& cam() { return m_world.cameras.front(); }
    /// Opens the window on these cameras and selects the first, the "km-1" with MAC 025E41000001.
    void openOn(const std::vector<sdk::Camera>& cameras = {sdk::camera()})
    {
        m_window.reset();
        m_world = {};
        m_world.cameras = cameras;
        openWindow();
        select("km-1");
        m_world.take();
        takeTrace();
    }
    /// Leaves the edited camera in a way that asks about its changes.
    void leave(const QString& way)
    {
        if (way == "another row") {
            select("lan0");
        } else if (way == "another row, by a screen reader") {
            QAccessible::queryAccessibleInterface(&tree())->tableInterface()->selectRow(0);
        } else if (way == "refresh") {
            refresh();
        } else {
            QCOMPARE(way, "close");
            m_window->close();
        }
    }
    /// The names of the editor's fields, labels and modes that are enabled.
    QStringList enabledInEditor()
    {
        const QRegularExpression names("^(btnUse|edit|label)\\w+(?<!Advice)$");
        QStringList enabled;
        for (const QWidget* const widget : child<QWidget>("frameConfig").findChildren<QWidget*>(names)) {
            enabled << (widget->isEnabled() ? QStringList{widget->objectName()} : QStringList());
        }
        enabled.sort();
        return enabled;
    }
    /// Makes the nth call of that name throw a std::runtime_error, or an int unless `isStandard`.
    void failAt(const char* call, int nth = 1, bool isStandard = true)
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

    sdk::World& m_world = sdk::world();
};

} // namespace gui
