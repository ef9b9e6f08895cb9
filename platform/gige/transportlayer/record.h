#pragma once

#include "search.h"
#include "tessal/deviceinfo.h"

namespace gige {

/// The record of a camera that the host address `heardBy` heard.
[[nodiscard]] Tessal::CDeviceInfo makeRecord(const gvcp::Identity& camera, net::Ipv4 heardBy);

/// The record of a camera that a search has found, with what the search learned about it and others.
[[nodiscard]] Tessal::CDeviceInfo makeRecord(const FoundCamera& camera);

} // namespace gige
