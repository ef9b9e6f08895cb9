#pragma once

#include "gige/codec.h"
#include "tessal/deviceinfo.h"

namespace gige {

/// The record of a camera that the host address `heardBy` heard.
[[nodiscard]] Tessal::CDeviceInfo makeRecord(const gvcp::Identity& camera, net::Ipv4 heardBy);

} // namespace gige
