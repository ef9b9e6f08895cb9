#include "net/addresses.h"

#include <charconv>

namespace net {

std::optional<Ipv4> parseIpv4(std::string_view text)
{
    std::uint32_t value = 0;
    for (int part = 0; part < 4; ++part) {
        const std::size_t length = part < 3 ? text.find('.') : text.size();
        if (length == std::string_view::npos || length < 1 || length > 3) {
            return std::nullopt;
        }
        unsigned number = 0;
        const char* const end = text.data() + length;
        const auto [parsedTo, error] = std::from_chars(text.data(), end, number, 10);
        if (error != std::errc{} || parsedTo != end || number > 255) {
            return std::nullopt;
        }
        value = value << 8 | number;
        text.remove_prefix(part < 3 ? length + 1 : length);
    }
    return Ipv4{value};
}

std::string formatIpv4(Ipv4 address)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += std::to_string(address.value >> shift & 0xFF);
        if (shift > 0) {
            text += '.';
        }
    }
    return text;
}

std::optional<MacAddress> parseMac(std::string_view text)
{
    const std::size_t separators = text.size() == 17 ? 1 : 0;
    if (text.size() != 12 && separators == 0) {
        return std::nullopt;
    }
    if (separators == 1 && text[2] != ':' && text[2] != '-') {
        return std::nullopt;
    }
    MacAddress mac;
    for (std::size_t i = 0; i < mac.bytes.size(); ++i) {
        const std::size_t at = i * (2 + separators);
        if (separators == 1 && i > 0 && text[at - 1] != text[2]) {
            return std::nullopt;
        }
        const char* const end = text.data() + at + 2;
        const auto [parsedTo, error] = std::from_chars(text.data() + at, end, mac.bytes[i], 16);
        if (error != std::errc{} || parsedTo != end) {
            return std::nullopt;
        }
    }
    return mac;
}

std::string formatMac(const MacAddress& mac)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : mac.bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

} // namespace net
