#include "recorddisplay.h"

#include "DeviceLister.h"

#include <cstdlib>

namespace {

constexpr unsigned int accessibilityCodeCount = 5;

} // namespace

int GetDeviceAccessibility(const Tessal::COrvikGigEDeviceInfo* record)
{
    GenICam::gcstring value;
    if (record == nullptr || !record->GetPropertyValue(ListerKey::Accessible, value)) {
        return Tessal::Accessibility::Unknown;
    }
    const int code = std::atoi(value.c_str());
    return static_cast<unsigned int>(code) < accessibilityCodeCount ? code : Tessal::Accessibility::Unknown;
}

QString fromAscii(const GenICam::gcstring& text)
{
    return QString::fromLatin1(text.c_str());
}
