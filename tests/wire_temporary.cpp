#include "support/wire.h"

namespace {

const QString forceIpDialog = "Assign Temporary IP Address (Force IP)";

} // namespace

/// The two commands that give a camera an address for the time being.
class WireTemporaryTest : public WireTest
{
    Q_OBJECT

    const QString m_forced = "  BX-4||4|02:A3:17:00:00:04|OK|Static IP|192.168.10.134|255.255.255.0";

private slots:
    void byTheContextMenu()
    {
        start("test-saving");
        select("BX-4");
        m_dialogs.expect([](QWidget& menu) {
            QTest::keyClick(&menu, Qt::Key_Down);
            QTest::keyClick(&menu, Qt::Key_Return);
        });
        m_dialogs.expect(gui::fill({{"editIpAddress", "192.168.10.134"}}));
        sleepUntil({"forced camera=foreign ip=192.168.10.134 mask=255.255.255.0 gateway=0.0.0.0"});
        emit tree().customContextMenuRequested(tree().visualItemRect(&row("BX-4")).center());
        QCOMPARE(takeSleeps(), 1);
        QVERIFY2(rows().contains(m_forced), qPrintable(rows().join('\n')));
        QVERIFY(!text("labelHint").contains("unreachable"));
        // another program hears it, though nothing is stored
        QCOMPARE(OtherProgram().ask("192.168.10.134", "420100800004000100000024"),
                 "0000008100040001c0a80a86");
        QCOMPARE(simulator().state("foreign", "persistent-ip"), "172.16.4.9");
    }

    void byTheMacAddress()
    {
        start("test-saving");
        m_dialogs.expect(
            gui::fill({{"editMacAddress", "02-a3-17-00-00-04"}, {"editIpAddress", "192.168.10.134"}}));
        sleepUntil({"forced camera=foreign ip=192.168.10.134 mask=255.255.255.0 gateway=0.0.0.0"});
        press(QKeySequence("Alt+Shift+Ctrl+F"));
        QTRY_VERIFY(rows().contains(m_forced));
        QCOMPARE(takeSleeps(), 1);

        // a MAC address that no camera has
        const QStringList before = rows();
        m_dialogs.take();
        m_dialogs.expect(
            gui::fill({{"editMacAddress", "02-A3-17-00-00-44"}, {"editIpAddress", "192.168.10.44"}}));
        press(QKeySequence("Alt+Shift+Ctrl+F"));
        QCOMPARE(takeSleeps(), 30);
        QCOMPARE(m_dialogs.take(), QStringList{forceIpDialog});
        QCOMPARE(rows(), before);
        QCOMPARE(gui::cursorDepth(), 0);
        QCOMPARE(simulator().takeEvents().filter("forced").size(), 1);
    }
};

int main(int argc, char** argv)
{
    WireTemporaryTest test;
    return gui::run(test, argc, argv);
}

#include "wire_temporary.moc"
