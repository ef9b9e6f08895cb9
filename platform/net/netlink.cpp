#include "net/netlink.h"

#include "net/errors.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace net {

namespace {

constexpr std::size_t alignment = 4;             // of messages and attributes, in bytes
constexpr std::size_t receiveBufferSize = 65536; // bytes; the kernel never sends more at a time

std::size_t aligned(std::size_t size)
{
    return (size + alignment - 1) / alignment * alignment;
}

[[noreturn]] void fail(int error, const std::string& what)
{
    throw std::system_error(error, errnoCategory(), what);
}

/// Visits the messages in the received bytes. Returns the kernel's error number, 0 for success, once the
/// answer is complete.
std::optional<int> visitMessages(std::span<const std::uint8_t> bytes, std::uint32_t sequence,
                                 const NetlinkSocket::Visit& visit)
{
    while (const auto header = readValue<nlmsghdr>(bytes)) {
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
            const auto error = readValue<nlmsgerr>(body);
            return error ? -error->error : EPROTO;
        }
        if (visit) {
            visit(body);
        }
    }
    return std::nullopt;
}

} // namespace

NetlinkMessage::NetlinkMessage(std::uint16_t type, std::uint16_t flags)
{
    nlmsghdr header{};
    header.nlmsg_type = type;
    header.nlmsg_flags = static_cast<std::uint16_t>(flags | NLM_F_REQUEST);
    append(&header, sizeof header);
}

void NetlinkMessage::addAttribute(std::uint16_t type, const void* data, std::size_t size)
{
    const rtattr header{static_cast<unsigned short>(sizeof(rtattr) + size), type};
    append(&header, sizeof header);
    append(data, size);
}

void NetlinkMessage::append(const void* data, std::size_t size)
{
    const auto* const first = static_cast<const std::uint8_t*>(data);
    m_bytes.insert(m_bytes.end(), first, first + size);
    m_bytes.resize(aligned(m_bytes.size()));
}

NetlinkSocket::NetlinkSocket() : m_descriptor(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE))
{
    if (m_descriptor < 0) {
        fail(errno, "the kernel's routing socket cannot be opened");
    }
}

NetlinkSocket::~NetlinkSocket()
{
    ::close(m_descriptor);
}

void NetlinkSocket::exchange(NetlinkMessage message, const std::string& what, const Visit& visit)
{
    const std::span<std::uint8_t> request = message.bytes();
    auto header = readValue<nlmsghdr>(request).value();
    header.nlmsg_len = static_cast<std::uint32_t>(request.size());
    header.nlmsg_seq = ++m_sequence;
    std::memcpy(request.data(), &header, sizeof header);
    if (::send(m_descriptor, request.data(), request.size(), 0) < 0) {
        fail(errno, what);
    }
    std::vector<std::uint8_t> buffer(receiveBufferSize);
    for (;;) {
        const ssize_t received = ::recv(m_descriptor, buffer.data(), buffer.size(), 0);
        if (received < 0 && errno == EINTR) {
            continue;
        }
        if (received < 0) {
            fail(errno, what);
        }
        const auto bytes = std::span<const std::uint8_t>(buffer).first(static_cast<std::size_t>(received));
        if (const auto error = visitMessages(bytes, m_sequence, visit)) {
            if (*error != 0) {
                fail(*error, what);
            }
            return;
        }
    }
}

void forEachAttribute(std::span<const std::uint8_t> bytes, const VisitAttribute& visit)
{
    while (const auto header = readValue<rtattr>(bytes)) {
        if (header->rta_len < sizeof(rtattr) || header->rta_len > bytes.size()) {
            return;
        }
        visit(header->rta_type, bytes.subspan(sizeof(rtattr), header->rta_len - sizeof(rtattr)));
        bytes = bytes.subspan(std::min(aligned(header->rta_len), bytes.size()));
    }
}

void forEachAttribute(std::span<const std::uint8_t> body, std::size_t fixedSize, const VisitAttribute& visit)
{
    if (const std::size_t start = aligned(fixedSize); body.size() >= start) {
        forEachAttribute(body.subspan(start), visit);
    }
}

std::string textOf(std::span<const std::uint8_t> value)
{
    return {value.begin(), std::ranges::find(value, std::uint8_t{0})};
}

} // namespace net
