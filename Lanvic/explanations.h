#pragma once

#include "tessal/deviceinfo.h"
#include "tessal/searchreport.h"

#include <QString>

class CNetworkAdapter;

/// Sentences that tell what a word or a missing row means here and now, in the user's language and as plain
/// text.

[[nodiscard]] QString explainObstacle(const Tessal::AdapterObstacle& obstacle);

/// What the status of this camera means. `adapter` is the one above its row, or null.
[[nodiscard]] QString explainStatus(const Tessal::COrvikGigEDeviceInfo& record,
                                    const CNetworkAdapter* adapter);
