#include "net/links.h"

#include <unistd.h>

#include <cstdio>

// Compiled into every test that sends packets. A discovery or a Force IP from a developer's own adapters
// could reconfigure a real camera, so such a program ends before its main where there is an adapter that may
// lead to one.

namespace {

[[maybe_unused]] const bool inLab = [] {
    for (const net::Link& link : net::links()) {
        if (net::mayLeadToRealCamera(link)) {
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
