#pragma once

#include "tessal/deviceinfo.h"

#include <QString>

/// The camera's Tessal::Accessibility code as the lister found it; 0 (unknown) for a null record and for a
/// value that is missing, no number or out of range.
[[nodiscard]] int GetDeviceAccessibility(const Tessal::COrvikGigEDeviceInfo* record);

/// A text of a record that is no name of the user's: Latin-1 as it comes, ASCII as a rule.
[[nodiscard]] QString fromAscii(const GenICam::gcstring& text);
