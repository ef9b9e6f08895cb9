#include "qtbase/ipaddresswidget.h"

#include <QProcess>
#include <QTest>

/// The one helper whose answer depends on the host's addresses, in a namespace where the test sets them.
class HostMaskTest : public QObject
{
    Q_OBJECT

private slots:
    void maskIsThatOfTheSmallestHostSubnet();
};

void HostMaskTest::maskIsThatOfTheSmallestHostSubnet()
{
    for (const char* address : {"10.20.48.1/20", "10.20.0.1/16", "10.20.60.7/32"}) {
        QCOMPARE(QProcess::execute("ip", {"address", "add", address, "dev", "lo"}), 0);
    }
    const auto maskOf = [](const char* address) {
        return IpAddressWidget::subnetFromAddress(QHostAddress(QLatin1String(address))).toString();
    };
    QCOMPARE(maskOf("10.20.63.9"), "255.255.240.0");
    QCOMPARE(maskOf("10.20.60.7"), "255.255.240.0"); // an adapter's own /32 is no subnet for a camera
    QCOMPARE(maskOf("10.20.64.9"), "255.255.0.0");
    QCOMPARE(maskOf("10.21.0.9"), "255.0.0.0");
}

QTEST_GUILESS_MAIN(HostMaskTest)
#include "tst_hostmask.moc"
