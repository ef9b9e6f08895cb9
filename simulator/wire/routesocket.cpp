#include "wire/routesocket.h"

#include "gige/bytes.h"

#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <span>
#include <system_error>

namespace wire {

namespace {

constexpr std::size_t Alignment = 4;             // of messages and attributes, in bytes
constexpr std::size_t ReceiveBufferSize = 65536; // bytes; the kernel never sends more at a time

std::size_t aligned(std::size_t size)
{
    return (size + Alignment - 1) / Alignment * Alignment;
}

[[noreturn]] void fail(int error, const std::string& what)
{
    throw std::system_error(error, std::generic_category(), what);
}

template <typename T>
std::optional<T> take(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() < sizeof(T)) {
        return std::nullopt;
    }
    T value{};
    std::memcpy(&value, bytes.data(), sizeof(T));
    return value;
}

/// Builds one message: a header, a fixed part, attributes.
class MessageBuilder
{
public:
    template <typename Fixed>
    MessageBuilder(std::uint16_t type, std::uint16_t flags, const Fixed& fixed)
    {
        nlmsghdr header{};
        header.nlmsg_type = type;
        header.nlmsg_flags = flags;
        append(&header, sizeof header);
        append(&fixed, sizeof fixed);
    }

    void attribute(std::uint16_t type, const void* data, std::size_t size)
    {
        const rtattr header{static_cast<unsigned short>(sizeof(rtattr) + size), type};
        append(&header, sizeof header);
        append(data, size);
    }

    [[nodiscard]] std::span<std::uint8_t> bytes() { return std::span(m_bytes).first(m_size); }

private:
    void append(const void* data, std::size_t size)
    {
        std::memcpy(std::span(m_bytes).subspan(m_size, size).data(), data, size);
        m_size += aligned(size);
    }

    static constexpr std::size_t Capacity = 256; // bytes, several times what any message here needs
    std::array<std::uint8_t, Capacity> m_bytes{};
    std::size_t m_size = 0;
};

/// Calls `visit(type, data)` for each attribute in `bytes`.
template <typename Visitor>
void forEachAttribute(std::span<const std::uint8_t> bytes, const Visitor& visit)
{
    while (const auto header = take<rtattr>(bytes)) {
        if (header->rta_len < sizeof(rtattr) || header->rta_len > bytes.size()) {
            return;
        }
        visit(header->rta_type, bytes.subspan(sizeof(rtattr), header->rta_len - sizeof(rtattr)));
        bytes = bytes.subspan(std::min(aligned(header->rta_len), bytes.size()));
    }
}

std::string textOf(std::span<const std::uint8_t> bytes)
{
    return {bytes.begin(), std::ranges::find(bytes, std::uint8_t{0})};
}

Link linkOf(std::span<const std::uint8_t> body)
{
    Link link;
    const auto info = take<ifinfomsg>(body);
    if (!info) {
        return link;
    }
    link.index = info->ifi_index;
    link.type = info->ifi_type;
    link.flags = info->ifi_flags;
    forEachAttribute(body.subspan(sizeof(ifinfomsg)), [&](unsigned type, std::span<const std::uint8_t> data) {
        if (type == IFLA_IFNAME) {
            link.name = textOf(data);
        } else if (type == IFLA_LINKINFO) {
            forEachAttribute(data, [&](unsigned inner, std::span<const std::uint8_t> kind) {
                if (inner == IFLA_INFO_KIND) {
                    link.kind = textOf(kind);
                }
            });
        }
    });
    return link;
}

/// Receives until the answer to request `sequence` is complete; `visit` gets the body of every message that
/// is neither an end nor an error. Returns the kernel's error number, 0 for success.
template <typename Visitor>
int receive(int socket, std::uint32_t sequence, const Visitor& visit)
{
    std::vector<std::uint8_t> buffer(ReceiveBufferSize);
    for (;;) {
        const ssize_t got = ::recv(socket, buffer.data(), buffer.size(), 0);
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return errno;
        }
        auto bytes = std::span<const std::uint8_t>(buffer).first(static_cast<std::size_t>(got));
        while (const auto header = take<nlmsghdr>(bytes)) {
            if (header->nlmsg_len < sizeof(nlmsghdr) || header->nlmsg_len > bytes.size()) {
                return EPROTO;
            }
            const auto body = bytes.subspan(sizeof(nlmsghdr), header->nlmsg_len - sizeof(nlmsghdr));
            bytes = bytes.subspan(std::min(aligned(header->nlmsg_len), bytes.size()));
            if (header->nlmsg_seq != sequence) {
                continue;
            }
            if (header->nlmsg_type == NLMSG_DONE) {
                return 0;
            }
            if (header->nlmsg_type == NLMSG_ERROR) {
                const auto error = take<nlmsgerr>(body);
                return error ? -error->error : EPROTO;
            }
            visit(body);
        }
    }
}

} // namespace

RouteSocket::RouteSocket() : m_socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE))
{
    if (m_socket < 0) {
        fail(errno, "the kernel's routing socket cannot be opened");
    }
}

RouteSocket::~RouteSocket()
{
    ::close(m_socket);
}

std::vector<Link> RouteSocket::links()
{
    MessageBuilder builder(RTM_GETLINK, NLM_F_REQUEST | NLM_F_DUMP, ifinfomsg{});
    const std::string what = "the adapters cannot be listed";
    send(builder.bytes(), what);
    std::vector<Link> found;
    const int error = receive(m_socket, m_sequence,
                              [&](std::span<const std::uint8_t> body) { found.push_back(linkOf(body)); });
    if (error != 0) {
        fail(error, what);
    }
    return found;
}

void RouteSocket::send(std::span<std::uint8_t> message, const std::string& what)
{
    nlmsghdr header{};
    std::memcpy(&header, message.data(), sizeof header);
    header.nlmsg_len = static_cast<std::uint32_t>(message.size());
    header.nlmsg_seq = ++m_sequence;
    std::memcpy(message.data(), &header, sizeof header);
    if (::send(m_socket, message.data(), message.size(), 0) < 0) {
        fail(errno, what);
    }
}

void RouteSocket::request(std::span<std::uint8_t> message, const std::string& what)
{
    send(message, what);
    if (const int error = receive(m_socket, m_sequence, [](auto) {}); error != 0) {
        fail(error, what);
    }
}

void RouteSocket::bringUp(int index, const net::MacAddress& mac, std::uint32_t mtu, std::uint32_t queueLength)
{
    ifinfomsg info{};
    info.ifi_index = index;
    MessageBuilder builder(RTM_NEWLINK, NLM_F_REQUEST | NLM_F_ACK, info);
    builder.attribute(IFLA_ADDRESS, mac.bytes.data(), mac.bytes.size());
    builder.attribute(IFLA_MTU, &mtu, sizeof mtu);
    builder.attribute(IFLA_TXQLEN, &queueLength, sizeof queueLength);
    request(builder.bytes(), "the adapter cannot be set up");
    info.ifi_flags = IFF_UP;
    info.ifi_change = IFF_UP;
    MessageBuilder up(RTM_NEWLINK, NLM_F_REQUEST | NLM_F_ACK, info);
    request(up.bytes(), "the adapter cannot be switched on");
}

void RouteSocket::addAddress(int index, net::Ipv4 address, unsigned prefixLength)
{
    ifaddrmsg info{};
    info.ifa_family = AF_INET;
    info.ifa_prefixlen = static_cast<unsigned char>(prefixLength);
    info.ifa_index = static_cast<unsigned>(index);
    info.ifa_scope = address.value >> 16 == 0xA9FE ? RT_SCOPE_LINK : RT_SCOPE_UNIVERSE;
    const auto hostPart = static_cast<std::uint32_t>((1ULL << (32 - prefixLength)) - 1);
    std::array<std::uint8_t, sizeof address.value> local{};
    std::array<std::uint8_t, sizeof address.value> broadcast{};
    bytes::put32(local, 0, address.value);
    bytes::put32(broadcast, 0, address.value | hostPart);
    MessageBuilder builder(RTM_NEWADDR, NLM_F_REQUEST | NLM_F_ACK | NLM_F_CREATE | NLM_F_EXCL, info);
    builder.attribute(IFA_LOCAL, local.data(), local.size());
    builder.attribute(IFA_ADDRESS, local.data(), local.size());
    if (prefixLength < 31) {
        builder.attribute(IFA_BROADCAST, broadcast.data(), broadcast.size());
    }
    request(builder.bytes(), "the address " + net::formatIpv4(address) + " cannot be set");
}

} // namespace wire
