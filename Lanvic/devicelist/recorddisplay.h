#pragma once

#include "tessal/deviceinfo.h"

#include <QString>

/// The camera's Tessal::Accessibility code as the lister found it; 0 (unknown) for a null record and for a
/// value that is missing, not a number or out of range.
[[nodiscard]] int GetDeviceAccessibility(const Tessal::COrvikGigEDeviceInfo* record);

/// A text of a record, such as an address, that the user cannot set: read as Latin-1, normally plain ASCII.
[[nodiscard]] QString fromAscii(const GenICam::gcstring& text);
