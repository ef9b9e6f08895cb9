#include "support/wire.h"

#include "Lanvic/DeviceLister.h"
#include "gige/bytes.h"
#include "gige/gvcp.h"
#include "wire/frames.h"

#include <QElapsedTimer>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <thread>

#include <net/if.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

/// What the system says to a packet that leaves by the adapter of that index, 0 for any; 0 lets it go.
std::function<int(int adapterIndex)> s_sendError;

int adapterIndexOf(const msghdr& message)
{
    const cmsghdr* const header = CMSG_FIRSTHDR(&message);
    return header == nullptr ? 0 : reinterpret_cast<const in_pktinfo*>(CMSG_DATA(header))->ipi_ifindex;
}

void ip(const QString& arguments)
{
    QCOMPARE(QProcess::execute("ip", arguments.split(' ')), 0);
}

QStringList search()
{
    DeviceLister lister;
    lister.discoverAllDevices();
    QStringList found;
    for (const Tessal::COrvikGigEDeviceInfo& record : lister.m_devices) {
        GenICam::gcstring adapter;
        record.GetPropertyValue(ListerKey::InterfaceName, adapter);
        found << QString("%1 %2").arg(adapter.c_str(), record.GetSerialNumber().c_str());
    }
    return found;
}

/// Interrupts every system call of the program, for as long as this object lives.
class InterruptionStorm
{
public:
    InterruptionStorm()
    {
        struct sigaction action
        {};
        action.sa_handler = [](int) {}; // without SA_RESTART
        ::sigaction(SIGALRM, &action, nullptr);
        every(500);
    }
    Q_DISABLE_COPY_MOVE(InterruptionStorm)
    ~InterruptionStorm() { every(0); }

private:
    static void every(int microseconds)
    {
        const itimerval interval{{0, microseconds}, {0, microseconds}};
        ::setitimer(ITIMER_REAL, &interval, nullptr);
    }
};

/// Lets the program open only so many files more than it has, for as long as this object lives.
class FewFiles
{
public:
    explicit FewFiles(rlim_t spare)
    {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        limit(64); // more than are open; what is free below is taken
        for (int taken = ::dup(STDERR_FILENO); taken >= 0; taken = ::dup(STDERR_FILENO)) {
            m_taken.push_back(taken);
        }
        limit(64 + spare);
    }
    Q_DISABLE_COPY_MOVE(FewFiles)
    ~FewFiles()
    {
        std::ranges::for_each(m_taken, ::close);
        ::setrlimit(RLIMIT_NOFILE, &m_before);
    }

private:
    void limit(rlim_t files) const
    {
        const rlimit few{files, m_before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
    }

    rlimit m_before{};
    std::vector<int> m_taken;
};

/// A wire on which somebody answers whoever asks, ten times in a millisecond, as another camera each time and
/// for all addresses of the network.
class Flood
{
public:
    Flood() = default;
    Q_DISABLE_COPY_MOVE(Flood)
    ~Flood()
    {
        m_isOver = true;
        m_thread.join();
    }

private:
    void run()
    {
        while (!m_isOver) {
            std::array<std::uint8_t, 2 * wire::Mtu> buffer{};
            while (const auto frame = m_tap.read(buffer)) {
                hear(*frame);
            }
            for (int i = 0; i < 10 && m_asker.port != 0; ++i) {
                answer();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    void hear(std::span<const std::uint8_t> bytes)
    {
        const auto frame = wire::parseEthernet(bytes);
        if (const auto arp = frame ? wire::parseArp(*frame) : std::nullopt) {
            m_tap.write(wire::buildArp(arp->senderMac, {wire::ArpOperation::Reply, m_mac, arp->targetIp,
                                                        arp->senderMac, arp->senderIp})
                            .all());
        }
        const auto packet = frame ? wire::parseIpv4(*frame) : std::nullopt;
        if (const auto udp = packet ? wire::parseUdp(*packet) : std::nullopt;
            udp && udp->payload.size() >= 8) {
            m_asker = {packet->from, udp->fromPort};
            m_host = frame->from;
            m_address = packet->to.value == 0xFFFFFFFF || packet->to.value == 0xC0A81EFF
                            ? net::Ipv4{0xC0A81E09}
                            : packet->to;
            m_requestId = bytes::get16(udp->payload, 6);
        }
    }
    void answer()
    {
        std::array<std::uint8_t, gvcp::HeaderSize + gvcp::DiscoveryAck::Size> message{};
        bytes::put16(message, 2, static_cast<std::uint16_t>(gvcp::Ack::Discovery));
        bytes::put16(message, 4, gvcp::DiscoveryAck::Size);
        bytes::put16(message, 6, m_requestId);
        bytes::put32(message, gvcp::HeaderSize + gvcp::DiscoveryAck::Mac + 2, ++m_cameras);
        const wire::Frame frame =
            wire::buildUdp(m_host, m_mac, {m_address, m_asker.address, wire::Protocol::Udp, {}},
                           {gvcp::Port, m_asker.port, message}, 0);
        m_tap.write(frame.all());
    }

    struct Asker
    {
        net::Ipv4 address;
        std::uint16_t port = 0;
    };
    gui::Adapter m_tap{"flood0", {"192.168.30.1/24"}, "02:00:00:00:30:01"};
    net::MacAddress m_mac{{2, 0, 0, 0, 0x30, 9}};
    Asker m_asker;
    net::MacAddress m_host;
    net::Ipv4 m_address;
    std::uint16_t m_requestId = 0;
    std::uint32_t m_cameras = 0;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread{&Flood::run, this};
};

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" ssize_t __real_sendmsg(int descriptor, const msghdr* message, int flags);
extern "C" ssize_t __wrap_sendmsg(int descriptor, const msghdr* message, int flags)
{
    if (const int error = s_sendError ? s_sendError(adapterIndexOf(*message)) : 0; error != 0) {
        errno = error;
        return -1;
    }
    return __real_sendmsg(descriptor, message, flags);
}
// NOLINTEND(bugprone-reserved-identifier)

/// What a network and its cameras can do to the program.
class FaultsTest : public WireTest
{
    Q_OBJECT

private slots:
    void aSaveWhoseAdapterVanishesFails_data()
    {
        QTest::addColumn<bool>("isWaiting");
        QTest::newRow("before") << false;
        QTest::newRow("while the camera is waited for") << true;
    }
    void aSaveWhoseAdapterVanishesFails()
    {
        QFETCH(const bool, isWaiting);
        start("test-saving");
        select("km-1");
        enter("editIpAddress", "192.168.10.31");
        const auto vanish = [] {
            if (if_nametoindex("lab0") != 0) {
                ip("link delete lab0");
            }
        };
        isWaiting ? static_cast<void>(m_duringSleep = vanish) : vanish();
        const QString reason = isWaiting
                                   ? "Failed to discover reconfigured device"
                                   : "No network adapter of this computer could send the command to the "
                                     "camera: no network adapter is up";
        QCOMPARE(save({gui::escape, gui::escape, gui::click(QMessageBox::Close)}),
                 (QStringList{gui::report(reason), gui::forceIpDialog, gui::notSaved}));
        QCOMPARE(takeSleeps(), isWaiting ? 30 : 0);
        QVERIFY(text("editIpAddress") == "192.168.10.31" && canSave());
    }

    void adaptersAndAddressesComeAndGo()
    {
        start("test-discovery");
        const QStringList all = rows();
        QVERIFY(all.contains("lab1"));
        ip("link set lab1 down");
        refresh();
        QVERIFY(!rows().contains("lab1") && rows().contains("lab0"));
        ip("link set lab1 up");
        QTRY_VERIFY((refresh(), rows() == all));
        ip("address delete 192.168.20.1/24 dev lab1");
        refresh();
        QCOMPARE(rows().last(), "lab1"); // without a camera, since nobody can ask
        ip("address add 192.168.10.2/24 dev lab1");
        QVERIFY(search().contains("lab1 14") && search().contains("lab0 1")); // two in one subnet
        ip("link delete lab0");
        ip("link delete lab1");
        refresh();
        QCOMPARE(rows(), QStringList());
        QVERIFY(text("labelSelectionInfo").startsWith("<p>No active network networkAdapter found!</p>"));
    }

    void aSearchOutlivesWhatTheSystemRefuses()
    {
        start("test-discovery");
        const QStringList all = search();
        const int lab1 = static_cast<int>(if_nametoindex("lab1"));
        for (const int error : {EPERM, ENETUNREACH, ENETDOWN, EINVAL}) {
            s_sendError = [=](int adapter) { return adapter == lab1 ? error : 0; };
            QCOMPARE(search(), all.filter("lab0"));
        }
        for (const int error : {ENOBUFS, ENOMEM, EINTR}) { // which pass
            s_sendError = [=, packets = 0](int) mutable { return ++packets % 2 == 1 ? error : 0; };
            QCOMPARE(search(), all);
        }
        s_sendError = nullptr;
    }

    void aSearchWithTooFewFilesFindsLessOrSaysWhy()
    {
#ifdef __SANITIZE_ADDRESS__
        QSKIP(
            "the sanitizer of undefined behaviour looks at objects through a pipe, for which there is no file left");
#endif
        start("test-discovery");
        const QStringList all = search();
        QList<qsizetype> outcomes;
        for (rlim_t spare = 0; spare < 6; ++spare) {
            const FewFiles few(spare);
            try {
                outcomes << search().size();
            } catch (const GenICam::RuntimeException& failure) {
                QVERIFY2(QString(failure.GetDescription()).endsWith("Too many open files"),
                         failure.GetDescription());
                outcomes << -1;
            }
        }
        QCOMPARE(outcomes.first(), -1);
        QVERIFY(outcomes.contains(all.filter("lab0").size()));
        QCOMPARE(outcomes.last(), all.size());
        const FewFiles few(1);
        expect({gui::escape});
        refresh();
        QVERIFY(takeDialogs().join('|').contains("Too many open files"));
    }

    void interruptionsCostNothing()
    {
        start("test-saving");
        select("BX-3");
        clickOn("btnUsePersistentIp");
        enter("editIpAddress", "192.168.10.33");
        type("editCustomName", "gate");
        sleepUntil({"restarted camera=other"});
        {
            const InterruptionStorm storm;
            QCOMPARE(save(), QStringList());
        }
        QVERIFY(rows().contains("  BX-3|gate|3|02:A3:17:00:00:03|OK|Static IP|192.168.10.33|255.255.255.0"));
    }

    void aFloodOfAnswersEndsWithTheSearch()
    {
        const Flood flood;
        const DeviceLister keepsTransportLayer;
        QElapsedTimer watch;
        watch.start();
        openWindow();
        for (int i = 0; i < 3; ++i) {
            refresh();
            const qsizetype found = rows().size() - 1;
            QVERIFY2(found > 1000 && found <= 4096, qPrintable(QString::number(found)));
        }
        DeviceLister::s_pTl->ForceIp("025E41000001", "192.168.30.7", "255.255.255.0", "0.0.0.0");
        Tessal::CDeviceInfo info = DeviceLister::s_pTl->CreateDeviceInfo();
        info.SetPropertyValue(Tessal::Key::IpAddress, "192.168.30.8");
        Tessal::ITessalDevice* const device = DeviceLister::s_pTl->CreateDevice(info);
        QVERIFY_THROWS_EXCEPTION(GenICam::TimeoutException, device->Open(Tessal::EDeviceAccessMode::Control));
        QVERIFY2(watch.elapsed() < 20'000, qPrintable(QString::number(watch.elapsed())));
    }
};

WINDOW_TEST_MAIN(FaultsTest)
#include "wire_faults.moc"
