#pragma once

#include "genicam/nodemap.h"

#include <memory>

namespace gige {

class RegisterPort;

/// The features of an opened camera, from the GenICam description that the camera carries. If that cannot be
/// loaded within seven seconds, or does not say how to reach "DeviceUserID", the standard name register
/// serves as that feature if the camera says that it has one; without a description there is no other
/// feature. Never null. The description is read when the first feature is requested; a node reads nothing
/// before it is used. `port` must outlive the map.
///
/// GetNode() throws what the port throws if the camera does not answer or this host cannot send; a refusal or
/// an unusable description leads to the standard register and a trace line.
[[nodiscard]] std::unique_ptr<GenApi::INodeMap> makeNodeMap(RegisterPort& port);

} // namespace gige
