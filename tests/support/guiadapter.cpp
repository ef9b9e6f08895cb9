#include "support/guiadapter.h"

#include <QNetworkInterface>
#include <QProcess>
#include <QTest>

#include <stdexcept>

GuiAdapter::GuiAdapter(const QString& name, const QStringList& addresses, const QString& mac)
    : m_tap(name.toStdString())
{
    QStringList commands{"link set " + name + " addrgenmode none address " + mac};
    for (const QString& address : addresses) {
        commands << "addr add " + address + " dev " + name;
    }
    commands << "link set " + name + " up";
    for (const QString& command : commands) {
        if (QProcess::execute("ip", command.split(' ')) != 0) {
            throw std::runtime_error("ip " + command.toStdString() + " failed");
        }
    }
    const auto isRunning = [&name] { // the carrier is announced a little later
        return QNetworkInterface::interfaceFromName(name).flags().testFlag(QNetworkInterface::IsRunning);
    };
    if (!QTest::qWaitFor(isRunning)) {
        throw std::runtime_error("the adapter does not come up");
    }
}
