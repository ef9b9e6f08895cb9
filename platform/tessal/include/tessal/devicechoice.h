#pragma once

#include "genicam/gcstring.h"

namespace Tessal {

/// An optional interface of a transport layer, obtained by dynamic_cast: says which camera is meant by the
/// address of a device.
class IDeviceChoice
{
public:
    IDeviceChoice() = default;
    IDeviceChoice(const IDeviceChoice&) = delete;
    IDeviceChoice& operator=(const IDeviceChoice&) = delete;
    virtual ~IDeviceChoice() = default;

    /// The MAC address, as twelve hexadecimal digits, of the camera that is meant by devices created from
    /// then on: cameras behind different adapters may have the same IP address. An empty text means any.
    virtual void SetExpectedMac(const GenICam::gcstring& mac) = 0;
};

} // namespace Tessal
