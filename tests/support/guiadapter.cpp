#include "support/guiadapter.h"

#include <QDeadlineTimer>
#include <QNetworkInterface>
#include <QProcess>
#include <QThread>

#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace {

void ip(const QString& arguments)
{
    if (QProcess::execute("ip", arguments.split(' ')) != 0) {
        throw std::runtime_error("ip " + arguments.toStdString() + " failed");
    }
}

} // namespace

GuiAdapter::GuiAdapter(const QString& name, const QStringList& addresses, const QString& mac)
    : m_tap(::open("/dev/net/tun", O_RDWR | O_CLOEXEC))
{
    ifreq request{};
    request.ifr_flags = IFF_TAP | IFF_NO_PI;
    std::strncpy(request.ifr_name, qPrintable(name), IFNAMSIZ - 1);
    if (m_tap < 0 || ::ioctl(m_tap, TUNSETIFF, &request) < 0) {
        throw std::system_error(errno, std::generic_category(), "no TAP adapter");
    }
    ip("link set " + name + " addrgenmode none address " + mac);
    for (const QString& address : addresses) {
        ip("addr add " + address + " dev " + name);
    }
    ip("link set " + name + " up");
    const QDeadlineTimer deadline(5000); // the carrier is announced a little later
    while (!QNetworkInterface::interfaceFromName(name).flags().testFlag(QNetworkInterface::IsRunning)) {
        if (deadline.hasExpired()) {
            throw std::runtime_error("the adapter does not come up");
        }
        QThread::msleep(5);
    }
}

GuiAdapter::~GuiAdapter()
{
    ::close(m_tap);
}
