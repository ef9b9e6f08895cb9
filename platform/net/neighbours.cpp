#include "net/neighbours.h"

#include "net/netlink.h"

#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

namespace net {

namespace {

constexpr char failure[] = "the kernel's neighbours cannot be listed";

ndmsg ipv4Neighbours()
{
    ndmsg message{};
    message.ndm_family = AF_INET;
    return message;
}

} // namespace

std::set<Neighbour> neighbours()
{
    std::set<Neighbour> known;
    NetlinkSocket().exchange(
        {RTM_GETNEIGH, NLM_F_DUMP, ipv4Neighbours()}, failure, [&](std::span<const std::uint8_t> body) {
            const int adapterIndex = readValue<ndmsg>(body).value_or(ndmsg{}).ndm_ifindex;
            forEachAttribute(body, sizeof(ndmsg),
                             [&](std::uint16_t type, std::span<const std::uint8_t> value) {
                                 const auto address = readValue<std::uint32_t>(value);
                                 if (type == NDA_DST && address) {
                                     known.insert({adapterIndex, {ntohl(*address)}});
                                 }
                             });
        });
    return known;
}

std::optional<MacAddress> hardwareAddressOf(const Neighbour& neighbour)
{
    ndmsg wanted = ipv4Neighbours();
    wanted.ndm_ifindex = neighbour.adapterIndex;
    NetlinkMessage request(RTM_GETNEIGH, NLM_F_ACK, wanted);
    const std::uint32_t inNetworkOrder = htonl(neighbour.address.value);
    request.addAttribute(NDA_DST, &inNetworkOrder, sizeof inNetworkOrder);
    std::optional<MacAddress> found;
    try {
        NetlinkSocket().exchange(request, failure, [&](std::span<const std::uint8_t> body) {
            forEachAttribute(body, sizeof(ndmsg),
                             [&](std::uint16_t type, std::span<const std::uint8_t> value) {
                                 if (type == NDA_LLADDR) {
                                     found = readValue<MacAddress>(value);
                                 }
                             });
        });
    } catch (const std::system_error& error) {
        if (error.code().value() != ENOENT) {
            throw;
        }
    }
    return found;
}

std::optional<std::size_t> freeNeighbourEntries()
{
    std::optional<std::size_t> free;
    NetlinkSocket().exchange(
        {RTM_GETNEIGHTBL, NLM_F_DUMP, ndtmsg{.ndtm_family = AF_INET, .ndtm_pad1 = 0, .ndtm_pad2 = 0}},
        "the size of the kernel's neighbour table cannot be read", [&](std::span<const std::uint8_t> body) {
            bool isArp = false;
            std::optional<std::uint32_t> limit;
            std::optional<ndt_config> state;
            forEachAttribute(body, sizeof(ndtmsg),
                             [&](std::uint16_t type, std::span<const std::uint8_t> value) {
                                 if (type == NDTA_NAME) {
                                     isArp = textOf(value) == "arp_cache";
                                 } else if (type == NDTA_THRESH3) {
                                     limit = readValue<std::uint32_t>(value);
                                 } else if (type == NDTA_CONFIG) {
                                     state = readValue<ndt_config>(value);
                                 }
                             });
            if (isArp && limit && state) {
                free = *limit > state->ndtc_entries ? *limit - state->ndtc_entries : 0;
            }
        });
    return free;
}

} // namespace net
