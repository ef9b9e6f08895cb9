#pragma once

#include "broadcaster.h"
#include "tessal/searchreport.h"

#include <string_view>
#include <vector>

namespace gige {

/// What Linux's reverse-path filter does with the answers of cameras whose address is in no network of the
/// adapter that receives them.
enum class ReversePath {
    Open,    // lets them through
    Strict,  // drops them, unless the default route leads back through this adapter
    NoRoute, // would let them through if there were a default route
};

/// `all` and `own` are the values of net.ipv4.conf.all.rp_filter and net.ipv4.conf.ADAPTER.rp_filter, of
/// which the larger counts: 0 is off, 1 strict, 2 loose (the kernel's networking/ip-sysctl). `defaultAdapter`
/// is the adapter of the default route, empty if there is none.
[[nodiscard]] ReversePath judgeReversePath(int all, int own, std::string_view adapter,
                                           std::string_view defaultAdapter);

/// What keeps a search that sends through the broadcaster from finding cameras, adapter by adapter. Also logs
/// each obstacle, once per run of the program. Settings that cannot be read count as harmless.
[[nodiscard]] std::vector<Tessal::AdapterObstacle> findObstacles(const Broadcaster& asked);

} // namespace gige
