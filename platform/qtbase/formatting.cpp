#include "formatting.h"

#include "net/addresses.h"

#include <QCoreApplication>
#include <QStringList>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Formatting)
};

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
