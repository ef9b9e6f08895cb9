#include "socket.h"

#include "errors.h"
#include "net/errors.h"
#include "net/routes.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace gige {

namespace {

constexpr int wantedBuffer = 4 * 1024 * 1024; // bytes; a thousand cameras may answer in the same millisecond

sockaddr_in toSockaddr(const Endpoint& endpoint)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(endpoint.port);
    address.sin_addr.s_addr = htonl(endpoint.address.value);
    return address;
}

Endpoint fromSockaddr(const sockaddr_in& address)
{
    return {.address = {ntohl(address.sin_addr.s_addr)}, .port = ntohs(address.sin_port)};
}

/// `peer` is the camera's address, if the failure is about a camera.
[[noreturn]] void failWithErrno(const std::string& what, const std::string& peer = {})
{
    const std::string reason = net::describeErrno(errno);
    raise<SocketException>({.kind = Tessal::FailureKind::CannotSend, .address = peer, .reason = reason},
                           what + ": " + reason);
}

void switchOn(int descriptor, int level, int option, const char* name)
{
    const int on = 1;
    if (::setsockopt(descriptor, level, option, &on, sizeof on) != 0) {
        failWithErrno(std::string("Cannot set up a network socket (") + name + ")");
    }
}

/// A buffer for one IP_PKTINFO control message, aligned as the kernel requires.
union PacketInfoBuffer {
    cmsghdr alignment;
    std::array<char, CMSG_SPACE(sizeof(in_pktinfo))> bytes;
};

void putPacketInfo(msghdr& message, PacketInfoBuffer& buffer, const Origin& origin)
{
    message.msg_control = buffer.bytes.data();
    message.msg_controllen = buffer.bytes.size();
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = IPPROTO_IP;
    header->cmsg_type = IP_PKTINFO;
    header->cmsg_len = CMSG_LEN(sizeof(in_pktinfo));
    in_pktinfo info{};
    info.ipi_ifindex = origin.adapterIndex;
    info.ipi_spec_dst.s_addr = htonl(origin.address.value);
    std::memcpy(CMSG_DATA(header), &info, sizeof info);
}

int adapterIndexOf(msghdr& message)
{
    for (cmsghdr* header = CMSG_FIRSTHDR(&message); header != nullptr;
         header = CMSG_NXTHDR(&message, header)) {
        if (header->cmsg_level == IPPROTO_IP && header->cmsg_type == IP_PKTINFO) {
            in_pktinfo info{};
            std::memcpy(&info, CMSG_DATA(header), sizeof info);
            return info.ipi_ifindex;
        }
    }
    return 0;
}

/// Checked here because the kernel treats any address as on the link of an adapter that it is told to use.
/// Sets errno if it is not.
bool isWithinReach(net::Ipv4 address, int adapterIndex)
{
    try {
        errno = ENETUNREACH;
        return adapterIndex == 0 || net::isOnLink(net::linkRoutes(), address, adapterIndex);
    } catch (const std::system_error& error) {
        errno = error.code().value();
        return false;
    }
}

/// The system's structure has no const pointer, but sending only reads.
iovec readOnly(gvcp::Bytes bytes)
{
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    return {.iov_base = const_cast<std::uint8_t*>(bytes.data()), .iov_len = bytes.size()};
}

/// Of one part, for or from `peer`.
msghdr makeMessage(sockaddr_in& peer, iovec& part)
{
    msghdr message{};
    message.msg_name = &peer;
    message.msg_namelen = sizeof peer;
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    return message;
}

int sendMessage(int descriptor, const msghdr& message)
{
    while (::sendmsg(descriptor, &message, MSG_NOSIGNAL) < 0) {
        if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

} // namespace

UdpSocket::UdpSocket() : m_descriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
{
    if (m_descriptor < 0) {
        failWithErrno("Cannot open a network socket");
    }
    try {
        switchOn(m_descriptor, IPPROTO_IP, IP_PKTINFO, "IP_PKTINFO");
        switchOn(m_descriptor, SOL_SOCKET, SO_DONTROUTE, "SO_DONTROUTE");
        const sockaddr_in any = toSockaddr({});
        if (::bind(m_descriptor, reinterpret_cast<const sockaddr*>(&any), sizeof any) != 0) {
            failWithErrno("Cannot bind a network socket");
        }
    } catch (...) {
        ::close(m_descriptor);
        throw;
    }
    // The kernel grants what its limits allow; a smaller buffer costs at most some repeats.
    ::setsockopt(m_descriptor, SOL_SOCKET, SO_RCVBUF, &wantedBuffer, sizeof wantedBuffer);
    ::setsockopt(m_descriptor, SOL_SOCKET, SO_SNDBUF, &wantedBuffer, sizeof wantedBuffer);
}

UdpSocket::UdpSocket(UdpSocket&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

UdpSocket& UdpSocket::operator=(UdpSocket&& other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

UdpSocket::~UdpSocket()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

void UdpSocket::allowBroadcast() const
{
    switchOn(m_descriptor, SOL_SOCKET, SO_BROADCAST, "SO_BROADCAST");
}

void UdpSocket::connect(const Endpoint& peer, int adapterIndex) const
{
    if (adapterIndex != 0 &&
        ::setsockopt(m_descriptor, SOL_SOCKET, SO_BINDTOIFINDEX, &adapterIndex, sizeof adapterIndex) != 0) {
        failWithErrno("Cannot bind a network socket to an adapter");
    }
    const sockaddr_in address = toSockaddr(peer);
    if (!isWithinReach(peer.address, adapterIndex) ||
        ::connect(m_descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const std::string camera = net::formatIpv4(peer.address);
        failWithErrno(camera + " cannot be reached from the network adapters of this computer", camera);
    }
}

net::Ipv4 UdpSocket::localAddress() const
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (::getsockname(m_descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        return {};
    }
    return fromSockaddr(address).address;
}

int UdpSocket::send(gvcp::Bytes bytes) const
{
    iovec data = readOnly(bytes);
    msghdr message{};
    message.msg_iov = &data;
    message.msg_iovlen = 1;
    return sendMessage(m_descriptor, message);
}

int UdpSocket::sendTo(gvcp::Bytes bytes, const Endpoint& to, std::optional<Origin> from) const
{
    sockaddr_in address = toSockaddr(to);
    iovec data = readOnly(bytes);
    PacketInfoBuffer control{};
    msghdr message = makeMessage(address, data);
    if (from) {
        putPacketInfo(message, control, *from);
    }
    return sendMessage(m_descriptor, message);
}

std::optional<Datagram> UdpSocket::receive(ReceiveBuffer& buffer) const
{
    sockaddr_in source{};
    iovec data{.iov_base = buffer.data(), .iov_len = buffer.size()};
    PacketInfoBuffer control{};
    msghdr message = makeMessage(source, data);
    message.msg_control = control.bytes.data();
    message.msg_controllen = control.bytes.size();
    ssize_t length = 0;
    do {
        length = ::recvmsg(m_descriptor, &message, MSG_DONTWAIT);
    } while (length < 0 && errno == EINTR);
    if (length < 0) {
        return std::nullopt;
    }
    return Datagram{.bytes = std::span(buffer).first(static_cast<std::size_t>(length)),
                    .source = fromSockaddr(source),
                    .adapterIndex = adapterIndexOf(message)};
}

void waitReadable(std::span<pollfd> sockets, Clock::time_point until)
{
    using namespace std::chrono;
    const auto left = std::max(until - Clock::now(), Clock::duration::zero());
    const auto wholeSeconds = duration_cast<seconds>(left);
    const timespec timeout{.tv_sec = wholeSeconds.count(),
                           .tv_nsec = duration_cast<nanoseconds>(left - wholeSeconds).count()};
    // After an interruption, the caller checks the clock and waits again.
    ::ppoll(sockets.data(), sockets.size(), &timeout, nullptr);
}

bool isTransientSendError(int error)
{
    return error == ENOBUFS || error == EAGAIN || error == EWOULDBLOCK || error == ENOMEM;
}

} // namespace gige
