#include "qtbase/formatting.h"

#include "net/addresses.h"

#include <QCoreApplication>
#include <QNetworkInterface>
#include <QStringDecoder>
#include <QStringList>

#include <algorithm>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Formatting)
};

bool isControlOrBidi(QChar character)
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

QString GetUtf8Property(const Tessal::CDeviceInfo* record, const char* key)
{
    GenICam::gcstring value;
    if (record == nullptr || !record->GetPropertyValue(key, value)) {
        return {};
    }
    return QString::fromUtf8(value.c_str());
}

QString formatMACAddress(const char* mac, const char* separator)
{
    const auto address = net::parseMac(mac != nullptr ? mac : "");
    if (!address) {
        return QString::fromUtf8(mac);
    }
    QStringList pairs;
    for (const std::uint8_t byte : address->bytes) {
        pairs += QStringLiteral("%1").arg(byte, 2, 16, QLatin1Char('0')).toUpper();
    }
    return pairs.join(QString::fromUtf8(separator));
}

QString formatIPConfiguration(const char* ipConfigCurrent, unsigned int flags)
{
    const unsigned int bits = Tessal::IpConfig::fromText(ipConfigCurrent != nullptr ? ipConfigCurrent : "");
    const auto text = [flags](const char* mode) { // the whole list is for the trace, which is English
        return flags == 1 ? Texts::tr(mode) : QString::fromLatin1(mode);
    };
    QStringList modes;
    if ((bits & Tessal::IpConfig::Persistent) != 0) {
        modes += text(QT_TRANSLATE_NOOP("Formatting", "Static IP"));
    }
    if ((bits & Tessal::IpConfig::Dhcp) != 0) {
        modes += text(QT_TRANSLATE_NOOP("Formatting", "DHCP"));
    }
    if ((bits & Tessal::IpConfig::LinkLocal) != 0) {
        modes += text(QT_TRANSLATE_NOOP("Formatting", "Auto IP (LLA)"));
    }
    if (modes.isEmpty()) {
        return text(QT_TRANSLATE_NOOP("Formatting", "Unknown"));
    }
    return flags == 1 ? modes.constFirst() : modes.join(QLatin1String(", "));
}

QHostAddress addressFromText(const QString& text)
{
    const auto address = net::parseIpv4(text.toStdString());
    return address ? QHostAddress(address->value) : QHostAddress();
}

QString adapterName(const QString& name)
{
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString decoded = utf8(name.toLatin1());
    return utf8.hasError() ? name : decoded;
}

QString displayText(QString text)
{
    std::ranges::replace_if(text, isControlOrBidi, QChar(QChar::ReplacementCharacter));
    return text;
}
