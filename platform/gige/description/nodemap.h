#pragma once

#include "genicam/nodemap.h"

#include <memory>

namespace gige {

class RegisterPort;

/// The features of an opened camera. They come from the GenICam description that the camera carries. Where
/// none can be had within seven seconds, or it does not tell how to reach "DeviceUserID", the standard name
/// register serves as that feature if the camera says that it has one; without a description there is no
/// other feature. Never null. The description is read when the first feature is asked for; a node reads
/// nothing before it is used. `port` must outlive the map.
///
/// GetNode() throws what the port throws when the camera does not answer or this host cannot send; a refusal
/// or a useless description leads to the standard register and a trace line.
[[nodiscard]] std::unique_ptr<GenApi::INodeMap> makeNodeMap(RegisterPort& port);

} // namespace gige
