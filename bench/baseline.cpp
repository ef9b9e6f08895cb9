#include "baseline.h"

#include "gvcp/bytes.h"
#include "gvcp/gvcp.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <poll.h>
#include <set>
#include <span>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

void check(bool ok, const char* what)
{
    if (!ok) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

int openSocket(const std::string& adapter)
{
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    check(socket >= 0, "socket");
    const int on = 1;
    const int bufferSize = 4 << 20; // bytes; the kernel may grant less, which is enough
    setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &bufferSize, sizeof bufferSize);
    check(setsockopt(socket, SOL_SOCKET, SO_BROADCAST, &on, sizeof on) == 0, "SO_BROADCAST");
    check(setsockopt(socket, SOL_SOCKET, SO_BINDTODEVICE, adapter.c_str(),
                     static_cast<socklen_t>(adapter.size())) == 0,
          "SO_BINDTODEVICE");
    return socket;
}

void sendDiscovery(int socket)
{
    std::array<std::uint8_t, gvcp::HeaderSize> question{gvcp::Key, gvcp::Flag::AckRequired |
                                                                       gvcp::Flag::AllowBroadcastAck};
    bytes::put16(question, gvcp::Header::Code, static_cast<std::uint16_t>(gvcp::Command::Discovery));
    bytes::put16(question, gvcp::Header::RequestId, 1);
    sockaddr_in broadcast{};
    broadcast.sin_family = AF_INET;
    broadcast.sin_port = htons(gvcp::Port);
    broadcast.sin_addr.s_addr = htonl(INADDR_BROADCAST);
    check(sendto(socket, question.data(), question.size(), 0, reinterpret_cast<const sockaddr*>(&broadcast),
                 sizeof broadcast) >= 0,
          "sendto");
}

} // namespace

BaselineResult baselineSearch(const std::string& adapter, std::chrono::milliseconds listening)
{
    const int socket = openSocket(adapter);
    const auto asked = Clock::now();
    const auto deadline = asked + listening;
    sendDiscovery(socket);
    BaselineResult search;

    using Mac = std::array<std::uint8_t, 6>;
    std::set<Mac> found;
    for (auto now = Clock::now(); now < deadline; now = Clock::now()) {
        pollfd readable{socket, POLLIN, 0};
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - now);
        if (poll(&readable, 1, static_cast<int>(left.count())) <= 0) {
            continue;
        }
        std::array<std::uint8_t, gvcp::MaxPacketSize> answer{};
        const auto size = recv(socket, answer.data(), answer.size(), 0);
        if (size != static_cast<ssize_t>(gvcp::HeaderSize + gvcp::DiscoveryAck::Size)) {
            continue;
        }
        const auto mac = std::span(answer).subspan(gvcp::HeaderSize + gvcp::DiscoveryAck::Mac, Mac{}.size());
        Mac key{};
        std::copy(mac.begin(), mac.end(), key.begin());
        if (found.insert(key).second) {
            search.lastNewAnswer = Clock::now() - asked;
        }
    }
    close(socket);
    search.cameras = found.size();
    return search;
}
