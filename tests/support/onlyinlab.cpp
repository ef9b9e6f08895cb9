#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string_view>

// Compiled into every test that sends packets. A discovery or a Force IP from a developer's own adapters
// could reconfigure a real camera, so such a program ends before its main where any adapter is up but the
// loopback and virtual ones that a program has made.

namespace {

bool isHarmless(int socket, const char* name)
{
    ifreq request{};
    std::snprintf(request.ifr_name, sizeof request.ifr_name, "%s", name);
    if (ioctl(socket, SIOCGIFFLAGS, &request) == 0 &&
        ((request.ifr_flags & IFF_UP) == 0 || (request.ifr_flags & IFF_LOOPBACK) != 0)) {
        return true;
    }
    ethtool_drvinfo driver{};
    driver.cmd = ETHTOOL_GDRVINFO;
    request.ifr_data = reinterpret_cast<char*>(&driver);
    return ioctl(socket, SIOCETHTOOL, &request) == 0 && std::string_view(driver.driver) == "tun";
}

[[maybe_unused]] const bool inLab = [] {
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const std::unique_ptr<struct if_nameindex, void (*)(struct if_nameindex*)> adapters(if_nameindex(),
                                                                                        if_freenameindex);
    bool safe = socket >= 0 && adapters != nullptr;
    for (const struct if_nameindex* at = adapters.get(); safe && at->if_index != 0; ++at) {
        safe = isHarmless(socket, at->if_name);
        if (!safe) {
            std::fprintf(stderr,
                         "This test changes adapters or sends packets, and %s may lead to a real camera.\n",
                         at->if_name);
        }
    }
    close(socket);
    if (!safe) {
        std::fputs("Run it in a private network namespace: scripts/lab TEST\n", stderr);
        _exit(2);
    }
    return true;
}();

} // namespace
