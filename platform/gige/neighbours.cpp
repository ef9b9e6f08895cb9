#include "gige/neighbours.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>

#include <linux/neighbour.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace gige {

namespace {

constexpr std::size_t reserve = 64;          // for the rest of the system
constexpr std::size_t usualTableSize = 1024; // entries
constexpr std::size_t answerSize = 32768;    // bytes; what the kernel sends at most in one piece

using Attributes = std::function<void(std::uint16_t type, std::string_view value)>;

/// Calls `handle` with every message of the kernel's answer to a dump request. Returns whether all of it
/// came.
bool dump(std::uint16_t request, const std::function<void(const nlmsghdr*)>& handle)
{
    const int descriptor = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE);
    if (descriptor < 0) {
        return false;
    }
    struct
    {
        nlmsghdr header;
        rtgenmsg family;
    } message{};
    message.header.nlmsg_len = sizeof message;
    message.header.nlmsg_type = request;
    message.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    message.family.rtgen_family = AF_INET;
    bool more = ::send(descriptor, &message, sizeof message, 0) == static_cast<ssize_t>(sizeof message);
    bool complete = false;
    alignas(nlmsghdr) std::array<char, answerSize> buffer{};
    while (more) {
        const ssize_t received = ::recv(descriptor, buffer.data(), buffer.size(), 0);
        if (received < 0 && errno == EINTR) {
            continue;
        }
        auto left = static_cast<unsigned>(received > 0 ? received : 0);
        more = received > 0;
        for (auto* part = reinterpret_cast<const nlmsghdr*>(buffer.data()); NLMSG_OK(part, left);
             part = NLMSG_NEXT(part, left)) {
            if (part->nlmsg_type == NLMSG_DONE || part->nlmsg_type == NLMSG_ERROR) {
                complete = part->nlmsg_type == NLMSG_DONE;
                more = false;
                break;
            }
            handle(part);
        }
    }
    ::close(descriptor);
    return complete;
}

/// Visits the attributes behind a message's fixed part.
void forEachAttribute(const nlmsghdr* message, std::size_t fixedSize, const Attributes& handle)
{
    const std::size_t headers = NLMSG_LENGTH(NLMSG_ALIGN(fixedSize));
    if (message->nlmsg_len < headers) {
        return;
    }
    auto left = static_cast<unsigned>(message->nlmsg_len - headers);
    const char* const first = reinterpret_cast<const char*>(message) + headers;
    for (auto* attribute = reinterpret_cast<const rtattr*>(first); RTA_OK(attribute, left);
         attribute = RTA_NEXT(attribute, left)) {
        handle(attribute->rta_type, {static_cast<const char*>(RTA_DATA(attribute)), RTA_PAYLOAD(attribute)});
    }
}

template <typename T>
std::optional<T> valueOf(std::string_view bytes)
{
    if (bytes.size() < sizeof(T)) {
        return std::nullopt;
    }
    T value{};
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

/// What is free in the kernel's one table for IPv4, which all network namespaces share.
std::optional<std::size_t> freeEntries()
{
    std::optional<std::uint32_t> limit;
    std::optional<ndt_config> state;
    const bool complete = dump(RTM_GETNEIGHTBL, [&](const nlmsghdr* message) {
        bool isArp = false;
        std::optional<std::uint32_t> itsLimit;
        std::optional<ndt_config> itsState;
        forEachAttribute(message, sizeof(ndtmsg), [&](std::uint16_t type, std::string_view value) {
            if (type == NDTA_NAME) {
                isArp = value.starts_with("arp_cache");
            } else if (type == NDTA_THRESH3) {
                itsLimit = valueOf<std::uint32_t>(value);
            } else if (type == NDTA_CONFIG) {
                itsState = valueOf<ndt_config>(value);
            }
        });
        if (isArp && itsLimit && itsState) {
            limit = itsLimit;
            state = itsState;
        }
    });
    if (!complete || !limit || !state) {
        return std::nullopt;
    }
    return *limit > state->ndtc_entries ? *limit - state->ndtc_entries : 0;
}

std::set<net::Ipv4> knownNeighbours()
{
    std::set<net::Ipv4> known;
    dump(RTM_GETNEIGH, [&](const nlmsghdr* message) {
        forEachAttribute(message, sizeof(ndmsg), [&](std::uint16_t type, std::string_view value) {
            if (const auto address = valueOf<std::uint32_t>(value); type == NDA_DST && address) {
                known.insert({ntohl(*address)});
            }
        });
    });
    return known;
}

} // namespace

NeighbourRoom::NeighbourRoom() : m_known(knownNeighbours())
{
    const std::size_t free =
        freeEntries().value_or(usualTableSize - std::min(usualTableSize, m_known.size()));
    m_free = free > reserve ? free - reserve : 0;
}

void NeighbourRoom::enter(net::Ipv4 address)
{
    if (m_known.insert(address).second && m_free > 0) {
        --m_free;
    }
}

} // namespace gige
