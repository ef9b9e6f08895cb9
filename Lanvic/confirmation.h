#pragma once

#include "editedconfiguration.h"

#include "tessal/deviceinfo.h"

#include <QString>

#include <optional>

/// What a save has sent to a camera, as far as it sent it.
struct SentConfiguration
{
    std::optional<AddressingMode> mode;
    std::optional<IpSettings> settings; // take effect in static mode
    std::optional<QString> name;
};

/// What the camera reports otherwise than it was sent, a translated line for each value; empty if it reports
/// all of it. Only discovery tells whether a camera obeyed: an acknowledged write may be forgotten.
[[nodiscard]] QString deviationsFrom(const SentConfiguration& sent,
                                     const Tessal::COrvikGigEDeviceInfo& reported);
