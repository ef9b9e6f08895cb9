#pragma once

#include "editedconfiguration.h"

#include "tessal/deviceinfo.h"

#include <QString>

#include <optional>

/// What a save has sent to a camera; empty where it sent nothing.
struct SentConfiguration
{
    std::optional<AddressingMode> mode;
    std::optional<IpSettings> settings; // Take effect in static mode.
    std::optional<QString> name;
};

/// The values that the camera does not report as they were sent, a translated line for each; empty if there
/// are none. Only a discovery shows what a camera has stored: an acknowledged write may be lost.
[[nodiscard]] QString deviationsFrom(const SentConfiguration& sent,
                                     const Tessal::COrvikGigEDeviceInfo& reported);
