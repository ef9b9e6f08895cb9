#include "support/columns.h"
#include "support/lines.h"
#include "support/wire.h"

#include "DeviceLister.h"
#include "gvcp/bytes.h"
#include "gvcp/gvcp.h"
#include "wire/frames.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>

#include <cerrno>

#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace {

/// The error of sending through the adapter of that index, 0 for any; 0 sends the packet as this leaves it.
std::function<int(int socket, int adapterIndex, std::span<std::uint8_t> packet)> s_atSend;
/// What happens before the program receives from a socket.
std::function<void(int socket)> s_atReceive;
/// How many more sockets of the Internet the system has for the program.
int s_sockets = 1000;

/// Has a camera answer what this socket asked, through an adapter with 192.168.30.1.
void answer(const wire::TapDevice& tap, net::Ipv4 camera, int socket, std::span<const std::uint8_t> message)
{
    sockaddr_in asker{};
    socklen_t size = sizeof asker;
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&asker), &size);
    const wire::Ipv4Packet way{camera, {0xC0A81E01}, wire::Protocol::Udp, {}};
    tap.write(wire::buildUdp({{2, 0, 0, 0, 0x30, 1}}, {{2, 0, 0, 0, 0x30, 8}}, way,
                             {gvcp::Port, ntohs(asker.sin_port), message}, 0)
                  .all());
}

void ip(const QString& arguments)
{
    QCOMPARE(QProcess::execute("ip", arguments.split(' ')), 0);
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" ssize_t __real_sendmsg(int descriptor, const msghdr* message, int flags);
extern "C" ssize_t __wrap_sendmsg(int descriptor, const msghdr* message, int flags)
{
    const cmsghdr* const header = CMSG_FIRSTHDR(message);
    const int adapter =
        header == nullptr ? 0 : reinterpret_cast<const in_pktinfo*>(CMSG_DATA(header))->ipi_ifindex;
    const std::span bytes(static_cast<std::uint8_t*>(message->msg_iov->iov_base), message->msg_iov->iov_len);
    errno = s_atSend ? s_atSend(descriptor, adapter, bytes) : 0;
    return errno == 0 ? __real_sendmsg(descriptor, message, flags) : -1;
}
extern "C" ssize_t __real_recvmsg(int descriptor, msghdr* message, int flags);
extern "C" ssize_t __wrap_recvmsg(int descriptor, msghdr* message, int flags)
{
    if (s_atReceive) {
        s_atReceive(descriptor);
    }
    return __real_recvmsg(descriptor, message, flags);
}
extern "C" int __real_socket(int domain, int type, int protocol);
extern "C" int __wrap_socket(int domain, int type, int protocol)
{
    errno = EMFILE;
    return domain != AF_INET || s_sockets-- > 0 ? __real_socket(domain, type, protocol) : -1;
}
// NOLINTEND(bugprone-reserved-identifier)

/// What a network and its cameras can do to the program.
class FaultsTest : public WireTest
{
    Q_OBJECT

    /// The rows after a refresh: adapters, and cameras by model and user ID.
    QStringList refreshed()
    {
        refresh();
        QStringList found = rows();
        return found.replaceInStrings(QRegularExpression("\\|\\d.*"), "");
    }

private slots:
    void cleanup()
    {
        s_atSend = nullptr;
        s_atReceive = nullptr;
        s_sockets = 1000;
        WireTest::cleanup();
    }

    void aSaveWhoseAdapterVanishesFails()
    {
        start("test-saving", "km-1");
        enter("editIpAddress", "192.168.10.31");
        s_atSend = [](auto...) { return ENETDOWN; };
        const QString down =
            "No network adapter of this computer could send the command to the camera: lab0 (192.168.10.1): Network is down";
        saveFails(
            {gui::report(
                 "This computer could not send anything to the camera 02:5E:41:00:00:01. Check the network adapter and its cable.",
                 "broadcastConfiguration", {down}),
             gui::forceIpDialog, gui::notSaved});
        s_atSend = nullptr;
        m_duringSleep = [] {
            if (if_nametoindex("lab0") != 0) {
                ip("link delete lab0");
            }
        };
        saveFails({gui::reportOwn("Failed to discover reconfigured device", "broadcastConfiguration"),
                   gui::forceIpDialog, gui::notSaved});
        QCOMPARE(takeSleeps(), 30);
        QVERIFY(text("editIpAddress") == "192.168.10.31" && canSave());
    }

    void adaptersAndAddressesComeAndGo()
    {
        start("test-discovery");
        m_controlled = {"watched", "taken"};
        const QStringList all = refreshed();
        const int lab1 = static_cast<int>(if_nametoindex("lab1"));
        s_atSend = [=, packets = 0](int, int adapter, auto) mutable { // in the middle of a search
            if (adapter == lab1 && ++packets == 3) {
                ip("link set lab1 down");
            }
            return 0;
        };
        QVERIFY(refreshed().contains(all.value(1)));
        s_atSend = nullptr;
        QCOMPARE(difference(refreshed(), all.first(all.indexOf("lab1"))), "");
        ip("link set lab1 up");
        QTRY_COMPARE(difference(refreshed(), all), "");
        ip("address delete 192.168.20.1/24 dev lab1"); // no address is left to ask from
        QCOMPARE(refreshed().last(), "lab1");
        QVERIFY(row("lab1").toolTip(0).startsWith("No camera can be found through lab1, "));
        ip("address add 192.168.10.2/24 dev lab1"); // two adapters in one subnet
        QVERIFY(refreshed().last() == "  km-1|on-both" && refreshed().contains("  km-1|plain"));
        QVERIFY(row("lab0").toolTip(0).startsWith("lab0 and lab1 have addresses in the same network, "));
        ip("link delete lab0");
        ip("link delete lab1");
        QCOMPARE(difference(refreshed(), QStringList()), "");
        QVERIFY(simulator().await("gone adapter=lab0") && simulator().await("gone adapter=lab1"));
    }

    void requestsOutliveWhatTheSystemRefuses_data()
    {
        // passes: returned for every other packet, else for one adapter
        const auto row = addColumns<int, bool>("error", "passes");
        row("EPERM", EPERM, false);
        row("ENETUNREACH", ENETUNREACH, false);
        row("ENETDOWN", ENETDOWN, false);
        row("EINVAL", EINVAL, false);
        row("ENOBUFS", ENOBUFS, true);
        row("ENOMEM", ENOMEM, true);
        row("EINTR", EINTR, true);
    }

    void requestsOutliveWhatTheSystemRefuses()
    {
        QFETCH(const int, error);
        QFETCH(const bool, passes);
        start("test-discovery");
        m_controlled = {"watched", "taken"};
        const QStringList all = refreshed();
        s_atSend = [=, lab1 = static_cast<int>(if_nametoindex("lab1")), packets = 0](int, int adapter,
                                                                                     auto) mutable {
            const bool fails = passes ? ++packets % 2 == 1 : adapter == lab1;
            return fails ? error : 0;
        };
        QCOMPARE(difference(refreshed(), passes ? all : all.first(all.indexOf("lab1") + 1)), "");
        QCOMPARE(row("lab1").toolTip(0).startsWith("No camera could be searched for through lab1: "),
                 !passes);
        QVERIFY(DeviceLister::s_pTl->BroadcastIpConfig("025E41000001", true, false, "192.168.10.21",
                                                       "255.255.255.0", "0.0.0.0", "plain"));
    }

    void aSearchOutlivesALackOfSockets()
    {
        start("test-discovery");
        m_controlled = {"watched", "taken"};
        const QStringList all = refreshed();
        s_sockets = 2; // to ask single cameras, and all through the first address
        QCOMPARE(difference(refreshed(), all.first(all.indexOf("lab1") + 1)), "");
        s_sockets = 0;
        expect({gui::escape});
        QCOMPARE(difference(refreshed(), QStringList()), "");
        const QString shown = takeDialogs().join("");
        QVERIFY2(shown.contains("This computer could not use its network.") &&
                     shown.contains("Cannot open a network socket: Too many open files"),
                 qPrintable(shown));
    }

    void aBusyCameraIsAskedAgainAndASlowOneGivenItsTime()
    {
        start("test-saving", "km-7");
        clickOn("btnUseDhcp");
        gui::Adapter tap("tap0", {"192.168.30.1/24"}, "02:00:00:00:30:01");
        QList<int> sent; // the commands
        QSet<int> reads; // of the mode, by request id
        s_atSend = [&](int, int, auto packet) {
            sent << bytes::get16(packet, 2);
            if (sent.last() == 0x0080 && bytes::get32(packet, 8) == gvcp::Register::IpConfigCurrent) {
                reads << bytes::get16(packet, 6);
            }
            return 0;
        };
        sleepUntil({"restarted camera=busy"});
        QCOMPARE(save(), QStringList());
        QCOMPARE(row("km-7").text(5), "DHCP");
        // five times to two addresses through each adapter, unless the computer has other things to do
        QVERIFY(sent.count(0x8010) >= 16);
        QVERIFY(sent.count(0x0004) >= 16);
        QVERIFY(sent.count(0x0082) < 6); // not again while the camera takes its time; two are about control
        QCOMPARE(reads.size(), 2);       // before and after the write, and none in doubt while that lasted
    }

    void aFloodOfAnswersEndsWithTheSearchAndHidesNoCameraOfAnotherAdapter()
    {
        start("cameras-1");
        gui::Adapter tap("tap0", {"192.168.30.1/24"}, "02:00:00:00:30:01");
        std::array<std::uint8_t, gvcp::HeaderSize + gvcp::DiscoveryAck::Size> message{};
        bytes::put16(message, 2, static_cast<std::uint16_t>(gvcp::Ack::Discovery));
        bytes::put16(message, 4, gvcp::DiscoveryAck::Size);
        s_atReceive = [&, cameras = 0U](int socket) mutable { // a new one each time that the program looks
            bytes::put32(message, gvcp::HeaderSize + gvcp::DiscoveryAck::Mac + 2, ++cameras);
            answer(tap, {0xC0A81E08}, socket, message);
        };
        s_atSend = [&](int socket, int adapterIndex, auto packet) {
            if (adapterIndex == static_cast<int>(if_nametoindex("tap0")) &&
                bytes::get16(packet, 2) == static_cast<std::uint16_t>(gvcp::Command::Discovery)) {
                bytes::put16(message, 6, bytes::get16(packet, 6));
            }
            s_atReceive(socket);
            return 0;
        };
        QElapsedTimer watch;
        watch.start();
        refresh();
        QCOMPARE(row("km-1300").text(4), "OK");
        const qsizetype found = rows().size() - 3; // two adapters and one camera are as they were
        QVERIFY2(found > 1000 && found <= 4096, qPrintable(QString::number(found)));
        DeviceLister::s_pTl->ForceIp("025E41000001", "192.168.30.7", "255.255.255.0", "0.0.0.0");
        Tessal::CDeviceInfo info = DeviceLister::s_pTl->CreateDeviceInfo();
        info.SetPropertyValue(Tessal::Key::IpAddress, "192.168.30.8");
        Tessal::ITessalDevice* const device = DeviceLister::s_pTl->CreateDevice(info);
        QVERIFY_THROWS_EXCEPTION(GenICam::LogicalErrorException,
                                 device->Open(Tessal::EDeviceAccessMode::Control));
        QVERIFY2(watch.elapsed() < 20'000, qPrintable(QString::number(watch.elapsed())));
    }
};

WINDOW_TEST_MAIN(FaultsTest)
#include "wire_faults.moc"
