#pragma once

#include "genicam/gcstring.h"

namespace Tessal {

/// What a transport layer may be told beside the address of a device that is opened; asked for by
/// dynamic_cast.
class IDeviceChoice
{
public:
    IDeviceChoice() = default;
    IDeviceChoice(const IDeviceChoice&) = delete;
    IDeviceChoice& operator=(const IDeviceChoice&) = delete;
    virtual ~IDeviceChoice() = default;

    /// The camera that is meant by the address of devices opened from here on, as twelve hexadecimal digits:
    /// cameras behind different adapters may have the same address. An empty text means any.
    virtual void SetExpectedMac(const GenICam::gcstring& mac) = 0;
};

} // namespace Tessal
