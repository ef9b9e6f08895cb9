#include "gige/reversepath.h"
#include "net/routes.h"

#include <QTest>

using gige::ReversePath;

/// When the system's reverse-path filter hides cameras.
class ReversePathTest : public QObject
{
    Q_OBJECT

private slots:
    void theLargerSettingAndTheDefaultRouteDecide()
    {
        struct Case
        {
            int all;
            int own;
            const char* defaultAdapter;
            ReversePath expected;
        };
        constexpr Case cases[] = {
            {0, 0, "", ReversePath::Open},     {0, 1, "", ReversePath::Strict},
            {1, 0, "", ReversePath::Strict},   {1, 1, "wlan0", ReversePath::Strict},
            {1, 1, "eth0", ReversePath::Open}, {1, 2, "wlan0", ReversePath::Open},
            {2, 1, "", ReversePath::NoRoute},  {0, 2, "eth0", ReversePath::Open},
        };
        for (const Case& row : cases) {
            QVERIFY2(gige::judgeReversePath(row.all, row.own, "eth0", row.defaultAdapter) == row.expected,
                     qPrintable(QString("%1 %2 %3").arg(row.all).arg(row.own).arg(row.defaultAdapter)));
        }
    }

    void thePreferredDefaultRouteCounts()
    {
        const std::string titles = "Iface\tDestination\tGateway\tFlags\tRefCnt\tUse\tMetric\tMask\tMTU\n";
        const std::string network = "eth0\t000AA8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\n";
        const std::string rejected = "*\t00000000\t00000000\t0201\t0\t0\t0\t00000000\t0\n";
        const std::string costly = "wlan0\t00000000\t0101A8C0\t0003\t0\t0\t600\t00000000\t0\n";
        const std::string cheap = "eth1\t00000000\t0102A8C0\t0003\t0\t0\t100\t00000000\t0\n";
        const std::string half = "tun0\t00000000\t00000000\t0001\t0\t0\t0\t00000080\t0\n";
        QCOMPARE(net::defaultRouteAdapter(""), std::string());
        QCOMPARE(net::defaultRouteAdapter(titles + network + rejected + half), std::string());
        QCOMPARE(net::defaultRouteAdapter(titles + costly + rejected + cheap + network), std::string("eth1"));
    }
};

QTEST_GUILESS_MAIN(ReversePathTest)
#include "tst_reversepath.moc"
