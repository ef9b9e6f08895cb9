#include "wire/routesocket.h"

#include <net/if.h>
#include <unistd.h>

#include <cstdio>

// Compiled into every test that sends packets. A discovery or a Force IP from a developer's own adapters
// could reconfigure a real camera, so such a program ends before its main where any adapter is up but the
// loopback and virtual ones that a program has made.

namespace {

[[maybe_unused]] const bool inLab = [] {
    for (const wire::Link& link : wire::RouteSocket().links()) {
        if ((link.flags & IFF_UP) != 0 && (link.flags & IFF_LOOPBACK) == 0 && link.kind != "tun") {
            std::fprintf(stderr,
                         "This test changes adapters or sends packets, and %s may lead to a real camera.\n",
                         link.name.c_str());
            std::fputs("Run it in a private network namespace: scripts/lab TEST\n", stderr);
            _exit(2);
        }
    }
    return true;
}();

} // namespace
