#include "Lanvic/DeviceLister.h"
#include "support/gui.h"

#include <stdexcept>

using sdk::camera;

/// What the lister makes of what the SDK reports.
class DiscoveryTest : public gui::GuiTest
{
    Q_OBJECT

    /// Every record as "MAC interface adapter accessibility".
    static QStringList records(const DeviceLister& lister)
    {
        QStringList lines;
        for (const Tessal::COrvikGigEDeviceInfo& record : lister.m_devices) {
            lines << sdk::get(record, {"MacAddress", "Interface", "IF_~_Name", "DEV_~_Accessible"});
        }
        return lines;
    }
    static QStringList search()
    {
        DeviceLister lister;
        lister.discoverAllDevices();
        return records(lister);
    }

private slots:
    void duplicatesAreDroppedAndMerged()
    {
        const gui::Adapter lan2("lan2", {"10.1.0.1/16", "10.2.0.1/16", "10.3.0.1/16"}, "02:00:00:00:00:02");
        const gui::Table<QStringList, QStringList> cases{
            // "MAC interface"
            {{"A1 10.1.0.1", "A1 10.2.0.1", "A1 10.3.0.1"}, {"A1 10.1.0.1;10.2.0.1;10.3.0.1 lan2 1"}},
            {{"A1 9.9.9.9", "A1 9.9.9.9"}, {"A1 9.9.9.9 - 1"}},
            {{"A1 192.168.1.5", "A1 192.168.1.5"}, {"A1 192.168.1.5 lan0 1"}},
            {{"A1 10.0.0.1", "B2 10.0.0.1", "A1 172.16.3.4"},
             {"A1 10.0.0.1;172.16.3.4 lan1 1", "B2 10.0.0.1 lan1 1"}},
            {{"A1 192.168.1.5", "A1 10.0.0.1"}, {"A1 192.168.1.5 lan0 1", "A1 10.0.0.1 lan1 1"}},
            {{"A1 10.0.0.1", "a1 172.16.3.4"}, {"A1 10.0.0.1 lan1 1", "a1 172.16.3.4 lan1 1"}},
            {{"A1 9.9.9.9", "A1 8.8.8.8", "A1 127.0.0.1"}, // of no adapter, so nothing is merged
             {"A1 9.9.9.9 - 1", "A1 8.8.8.8 - 1", "A1 127.0.0.1 - 1"}},
            {{"A1 10.1"}, {"A1 10.1 - 1"}}, // shorthand is no address
            {{" 192.168.1.5"}, {}},
        };
        for (const auto& [heard, expected] : cases) {
            m_world.cameras.clear();
            for (const QString& line : heard) {
                const QByteArray interface = line.section(' ', 1).toLatin1();
                const QByteArray mac = line.section(' ', 0, 0).toLatin1();
                m_world.cameras.push_back(camera("km-1", mac, interface, interface));
            }
            QCOMPARE(search(), expected);
        }
    }

    void aCameraIsAskedForItsAccessibility()
    {
        for (const auto& [reported, address, expected] : gui::Table<int, const char*, const char*>{
                 {1, "192.168.1.9", "1"},
                 {1, "10.9.9.9", "4"},
                 {2, "10.9.9.9", "2"},
                 {3, "10.9.9.9", "3"},
                 {4, "192.168.1.9", "4"},
                 {0, "192.168.1.9", "0"},
             }) {
            m_world.cameras = {camera("km-1", "025E41000001", address)};
            cam().accessibility = reported;
            QCOMPARE(search(), QStringList{QString("025E41000001 192.168.1.5 lan0 ") + expected});
        }
    }

    void listersShareOneTransportLayer()
    {
        for (int round = 0; round < 2; ++round) {
            auto lister = std::make_unique<DeviceLister>();
            QCOMPARE(m_world.take(true), QStringList());
            lister->discoverAllDevices(); // nobody there: one enumeration only
            m_world.cameras = {camera()};
            QCOMPARE(search().size(), 1);
            lister.reset();
            QCOMPARE(m_world.take(true),
                     (QStringList{"CreateTl(OrvikGigE)", "EnumerateDevicesAnySubnet(false)",
                                  "EnumerateDevicesAnySubnet(false)", "EnumerateDevices(false)",
                                  "QueryDeviceAccessibility(025E41000001, 1)", "ReleaseTl(true)"}));
            QVERIFY(DeviceLister::s_pTl == nullptr);
            m_world.cameras.clear();
        }
    }

    void failuresReachTheCaller()
    {
        m_world.cameras = {camera()};
        m_world.makesTransportLayer = false;
        QVERIFY_THROWS_EXCEPTION(GenICam::RuntimeException, (void)search());
        m_world.makesTransportLayer = true;
        for (const char* const name :
             {"EnumerateDevicesAnySubnet", "EnumerateDevices", "QueryDeviceAccessibility"}) {
            m_world.at.clear();
            failAt(name);
            QVERIFY_THROWS_EXCEPTION(std::runtime_error, (void)search());
        }
        QCOMPARE(search().size(), 1);
    }

    void recordsArePatched()
    {
        m_world.cameras = {camera(), camera("km-1", "025E41000001", "192.168.1.9", "10.0.0.1"),
                           camera("km-2", "025E41000002", "192.168.1.10")};
        DeviceLister lister;
        lister.discoverAllDevices();
        m_world.take(true);
        const auto values = [&](std::size_t index) {
            return sdk::get(lister.m_devices.at(index), {"IpConfigCurrent", "Address", "SubnetMask",
                                                         "DefaultGateway", "DEV_~_Accessible"});
        };
        const char* const mac = "025E41000001";
        QCOMPARE(lister.updateDeviceInfo(nullptr, "6", nullptr, nullptr, nullptr, true), 0);
        QCOMPARE(lister.updateDeviceInfo(mac, nullptr, nullptr, nullptr, nullptr, true), 0);
        m_world.cameras[0].accessibility = m_world.cameras[1].accessibility = 3;
        QCOMPARE(lister.updateDeviceInfo(mac, "6", nullptr, nullptr, nullptr, false), 2);
        QCOMPARE(values(0), "6 192.168.1.9:3956 255.255.255.0 0.0.0.0 1");
        QCOMPARE(lister.updateDeviceInfo(mac, nullptr, "10.0.0.7", "255.0.0.0", "10.0.0.254", true), 2);
        QCOMPARE(values(0), "6 10.0.0.7:3956 255.0.0.0 10.0.0.254 3");
        QCOMPARE(values(1), "6 10.0.0.7:3956 255.0.0.0 10.0.0.254 1"); // not asked again
        QCOMPARE(values(2), "5 192.168.1.10:3956 255.255.255.0 0.0.0.0 1");
        QCOMPARE(m_world.take(true), QStringList{"QueryDeviceAccessibility(025E41000001, 1)"});
    }

    void propertiesAreMerged()
    {
        using Texts = gui::Table<const char*, const char*, const char*>;
        for (const auto& [parts, value, separator] :
             Texts{{"1.1.1.1;2.2.2.2", "2.2.2.2", ";"}, {"11.1.1.1", "1.1.1.1", ";"}}) { // by its end
            QVERIFY(DeviceLister::ValExistsInMultipartPropertyValue(parts, value, separator));
        }
        for (const auto& [parts, value, separator] : Texts{{"1.1.1.11", "1.1.1.1", ";"},
                                                           {"a;b", "a;b", ";"},
                                                           {"a", "a", ""},
                                                           {"a", "a", nullptr},
                                                           {"", "a", ";"},
                                                           {"a", "", ";"}}) {
            QVERIFY(!DeviceLister::ValExistsInMultipartPropertyValue(parts, value, separator));
        }
        Tessal::CDeviceInfo target;
        Tessal::CDeviceInfo source;
        for (const char* const name : {"same", "other", "mine"}) {
            target.SetPropertyValue(name, "1");
        }
        source.SetPropertyValue("same", "1");
        source.SetPropertyValue("other", "2");
        source.SetPropertyValue("new", "3");
        const auto values = [&] { return sdk::get(target, {"same", "other", "new", "mine"}); };
        QCOMPARE(DeviceLister::mergeProperties(target, source, ";", {"same", "other", "new", "none"}, false),
                 2);
        QCOMPARE(values(), "1 1;2 3 1");
        QCOMPARE(DeviceLister::mergeProperties(target, source, ",", true), 3);
        QCOMPARE(values(), "1,1 1;2,2 3,3 1");
    }
};

WINDOW_TEST_MAIN(DiscoveryTest)
#include "tst_discovery.moc"
