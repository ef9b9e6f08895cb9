#pragma once

#include "adaptersearch.h"
#include "broadcaster.h"
#include "search.h"
#include "unicastprobe.h"

#include <vector>

namespace gige {

/// What a search has found, camera by camera for each host address. Marks cameras that share an address
/// behind one adapter, or a MAC address anywhere, and logs them.
[[nodiscard]] std::vector<FoundCamera> summarize(const std::vector<AdapterSearch>& adapters,
                                                 const Broadcaster& broadcaster, const UnicastProbe& probe);

} // namespace gige
