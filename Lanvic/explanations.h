#pragma once

#include "tessal/deviceinfo.h"
#include "tessal/searchreport.h"

#include <QString>

class CNetworkAdapter;

/// Sentences that explain the status of a camera or why cameras may be missing from the tree, in the user's
/// language and as plain text.

[[nodiscard]] QString explainObstacle(const Tessal::AdapterObstacle& obstacle);

/// What the status of the camera means. `adapter` is the one above its row, or null.
[[nodiscard]] QString explainStatus(const Tessal::COrvikGigEDeviceInfo& record,
                                    const CNetworkAdapter* adapter);
