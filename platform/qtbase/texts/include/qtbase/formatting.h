#pragma once

#include "tessal/deviceinfo.h"

#include <QHostAddress>
#include <QString>

class QNetworkInterface;

/// The property decoded from UTF-8, or the empty text if the record lacks it or is null.
[[nodiscard]] QString GetUtf8Property(const Tessal::CDeviceInfo* record, const char* key);

/// Six pairs of upper-case hexadecimal digits joined by `separator`; a text that is not a MAC address is
/// returned unchanged.
[[nodiscard]] QString formatMACAddress(const char* mac, const char* separator);

/// The addressing mode for people, from the decimal bit set of a record (1 static, 2 DHCP, 4 link-local).
/// With flags 1, the mode in force: static before DHCP before Auto IP; with flags 0, all enabled modes,
/// joined by ", " and always in English, for the trace. "Unknown" if the text is not a number or has none of
/// the three bits.
[[nodiscard]] QString formatIPConfiguration(const char* ipConfigCurrent, unsigned int flags);

/// Reads a strict dotted quad of decimal parts; anything else gives a null address. Every text that becomes
/// an address goes through here, because QHostAddress itself accepts shorthand and octal parts.
[[nodiscard]] QHostAddress addressFromText(const QString& text);

/// The adapter's name as the operating system shows it, from that of a QNetworkInterface, in which each byte
/// is one character.
[[nodiscard]] QString adapterName(const QString& name);

/// A text from outside made fit for display: characters that would break the line or change the writing
/// direction (control characters, line separators, direction overrides) become U+FFFD. It has to be escaped
/// before it is put into rich text.
[[nodiscard]] QString displayText(QString text);
