#pragma once

#include "tessal/deviceinfo.h"

#include <QHostAddress>
#include <QString>

class QNetworkInterface;

/// The property decoded from UTF-8, or the empty text when the record lacks it or is null.
[[nodiscard]] QString GetUtf8Property(const Tessal::CDeviceInfo* record, const char* key);

/// Six pairs of upper-case hexadecimal digits joined by `separator`; a text that is no MAC address comes back
/// as it is.
[[nodiscard]] QString formatMACAddress(const char* mac, const char* separator);

/// The addressing mode for people, from the decimal bit set of a record (1 static, 2 DHCP, 4 link-local).
/// With flags 1 the mode in force: static before DHCP before Auto IP; with flags 0 all that are enabled,
/// joined by ", " and in English whatever the session's language, for the trace. "Unknown" when the text is
/// no number or has none of the three bits.
[[nodiscard]] QString formatIPConfiguration(const char* ipConfigCurrent, unsigned int flags);

/// Reads a strict dotted quad of decimal parts; anything else gives a null address. Every text that becomes
/// an address goes through here, because QHostAddress itself takes shorthand and octal parts.
[[nodiscard]] QHostAddress addressFromText(const QString& text);

/// The adapter's name as the operating system shows it. Qt takes each of its bytes for a character.
[[nodiscard]] QString adapterName(const QNetworkInterface& adapter);

/// A text from outside made fit to be shown: characters that would break the line or steer the display
/// (control characters, line separators, direction overrides) become U+FFFD. It is still no markup; put into
/// rich text it has to be escaped.
[[nodiscard]] QString displayText(QString text);
