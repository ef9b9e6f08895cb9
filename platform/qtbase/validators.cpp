#include "qtbase/validators.h"

#include "net/addresses.h"

#include <QLineEdit>

#include <algorithm>
#include <optional>

namespace {

bool isAsciiDigit(QChar character)
{
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

bool holdsOnlyDigitsAndDots(QStringView text)
{
    return std::ranges::all_of(
        text, [](QChar character) { return isAsciiDigit(character) || character == QLatin1Char('.'); });
}

bool isNetmask(net::Ipv4 mask)
{
    return mask.value != 0 && net::isContiguousMask(mask);
}

bool isHostAddress(net::Ipv4 address, net::Ipv4 mask)
{
    const std::uint32_t hostBits = ~mask.value;
    const std::uint32_t hostPart = address.value & hostBits;
    return hostBits <= 1 || (hostPart != 0 && hostPart != hostBits);
}

/// The mask for "24" or "/24".
std::optional<net::Ipv4> maskFromPrefixLength(QStringView text)
{
    if (text.startsWith(QLatin1Char('/'))) {
        text = text.mid(1);
    }
    if (text.size() > 2 || !std::ranges::all_of(text, isAsciiDigit)) {
        return std::nullopt;
    }
    const int length = text.toInt();
    if (length < 1 || length > 32) {
        return std::nullopt;
    }
    return net::Ipv4{~std::uint32_t{0} << (32 - length)};
}

/// Removes blanks and turns commas into dots; the position stays between the same characters.
void tidy(QString& text, int& pos)
{
    const auto isSpace = [](QChar character) { return character.isSpace(); };
    pos -= static_cast<int>(std::ranges::count_if(QStringView(text).left(pos), isSpace));
    text.removeIf(isSpace);
    text.replace(QLatin1Char(','), QLatin1Char('.'));
}

/// Whether the text is a dotted quad, a slash, and what may become a prefix length.
bool mayBecomeMaskLength(const QString& text)
{
    const qsizetype slash = text.indexOf(QLatin1Char('/'));
    const QStringView length = QStringView(text).mid(slash + 1);
    return slash > 0 && net::parseIpv4(text.left(slash).toStdString()) &&
           (length.isEmpty() || (length.front() != QLatin1Char('0') && maskFromPrefixLength(length)));
}

} // namespace

std::optional<AddressWithMask> splitMaskLength(const QString& text)
{
    constexpr int shortest = 4;
    const qsizetype slash = text.indexOf(QLatin1Char('/'));
    if (!mayBecomeMaskLength(text) || QStringView(text).mid(slash + 1).toInt() < shortest) {
        return std::nullopt;
    }
    const auto mask = maskFromPrefixLength(QStringView(text).mid(slash));
    return AddressWithMask{.address = text.left(slash),
                           .mask = QString::fromStdString(net::formatIpv4(mask.value_or(net::Ipv4{})))};
}

QIpAddressWithNetmaskValidator::QIpAddressWithNetmaskValidator(QLineEdit* netmaskEdit, QObject* parent)
    : QValidator(parent), m_netmaskEdit(netmaskEdit)
{}

QValidator::State QIpAddressWithNetmaskValidator::validate(QString& input, int& pos) const
{
    tidy(input, pos);
    if (mayBecomeMaskLength(input)) {
        return Intermediate;
    }
    if (!holdsOnlyDigitsAndDots(input)) {
        return Invalid;
    }
    const auto address = net::parseIpv4(input.toStdString());
    if (input.isEmpty() || (address && address->value == 0)) {
        return m_allowNullAddress ? Acceptable : Intermediate;
    }
    if (!address) {
        return Intermediate;
    }
    const QString maskText = m_netmaskEdit != nullptr ? m_netmaskEdit->text() : QString();
    const auto mask = net::parseIpv4(maskText.toStdString());
    return !mask || !isNetmask(*mask) || isHostAddress(*address, *mask) ? Acceptable : Intermediate;
}

QIpNetmaskValidator::QIpNetmaskValidator(QObject* parent) : QValidator(parent) {}

QValidator::State QIpNetmaskValidator::validate(QString& input, int& pos) const
{
    tidy(input, pos);
    if (input.startsWith(QLatin1Char('/'))) {
        return std::ranges::all_of(QStringView(input).mid(1), isAsciiDigit) ? Intermediate : Invalid;
    }
    if (!holdsOnlyDigitsAndDots(input)) {
        return Invalid;
    }
    const auto mask = net::parseIpv4(input.toStdString());
    return mask && isNetmask(*mask) ? Acceptable : Intermediate;
}

void QIpNetmaskValidator::fixup(QString& input) const
{
    auto mask = maskFromPrefixLength(input);
    if (!mask) {
        mask = net::parseIpv4(input.toStdString());
    }
    if (mask) {
        input = QString::fromStdString(net::formatIpv4(*mask));
    }
}
