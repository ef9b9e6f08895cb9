#pragma once

#include "NetworkAdapter.h"

#include "advice/advice.h"
#include "tessal/deviceinfo.h"

/// What advice on addresses needs to know of the adapters and cameras that were listed; which adapter it is
/// about is left open.
[[nodiscard]] advice::Surroundings surroundingsOf(const QList<CNetworkAdapter>& adapters,
                                                  const Tessal::DeviceInfoList& cameras);
