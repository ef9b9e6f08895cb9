#pragma once

#include "broadcaster.h"
#include "tessal/searchreport.h"

#include <string_view>
#include <vector>

namespace gige {

/// What Linux's reverse-path filter does with the answers of cameras whose address fits no network of the
/// adapter that hears them.
enum class ReversePath {
    Open,    // lets them through
    Strict,  // drops them, unless the default route leads back through this adapter
    NoRoute, // would let them through if there were a default route
};

/// `all` and `own` are the values of net.ipv4.conf.all.rp_filter and net.ipv4.conf.ADAPTER.rp_filter, of
/// which the larger counts: 0 is off, 1 strict, 2 loose (the kernel's networking/ip-sysctl). `defaultAdapter`
/// is the one that the default route goes through, empty when there is none.
[[nodiscard]] ReversePath judgeReversePath(int all, int own, std::string_view adapter,
                                           std::string_view defaultAdapter);

/// What keeps cameras from being found by the search that asked through the broadcaster, adapter by adapter.
/// Says each in the trace as well, once while the program runs. Settings that cannot be read count as
/// harmless.
[[nodiscard]] std::vector<Tessal::AdapterObstacle> findObstacles(const Broadcaster& asked);

} // namespace gige
