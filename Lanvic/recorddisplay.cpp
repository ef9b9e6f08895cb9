#include "recorddisplay.h"

#include "DeviceLister.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr unsigned int accessibilityCodeCount = 5;

bool steersDisplay(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        const char16_t code = character.unicode();
        return code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E) ||
               (code >= 0x2066 && code <= 0x2069);
    }
}

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

QString displayText(QString text)
{
    std::ranges::replace_if(text, steersDisplay, QChar(QChar::ReplacementCharacter));
    return text;
}
