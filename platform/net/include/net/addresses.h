#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace net {

/// An IPv4 address or netmask as a 32-bit number in host order: 192.168.1.2 is 0xC0A80102.
struct Ipv4
{
    std::uint32_t value = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the zero of a defaulted comparison for a pointer
    friend constexpr auto operator<=>(const Ipv4&, const Ipv4&) = default;
};

inline constexpr Ipv4 limitedBroadcast{0xFFFFFFFF};

/// Where a UDP datagram comes from or goes to.
struct Endpoint
{
    Ipv4 address;
    std::uint16_t port = 0;

    friend bool operator==(const Endpoint&, const Endpoint&) = default;
};

/// A hardware address, in wire order.
struct MacAddress
{
    std::array<std::uint8_t, 6> bytes{};

    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the zero of a defaulted comparison for a pointer
    friend constexpr auto operator<=>(const MacAddress&, const MacAddress&) = default;
};

/// Reads a strict dotted quad: exactly four parts of one to three decimal digits, each 0 to 255; leading
/// zeros do not make a part octal. Returns nullopt for blanks, signs and shorthand such as "10.1".
[[nodiscard]] std::optional<Ipv4> parseIpv4(std::string_view text);

/// Dotted quad without leading zeros.
[[nodiscard]] std::string formatIpv4(Ipv4 address);

/// Reads twelve hexadecimal digits in either case, bare or as six pairs joined throughout by ':' or by '-'.
[[nodiscard]] std::optional<MacAddress> parseMac(std::string_view text);

/// Twelve upper-case hexadecimal digits without separators, the form in which records name a camera.
[[nodiscard]] std::string formatMac(const MacAddress& mac);

/// Whether all one bits of the mask are leading; 0.0.0.0 and 255.255.255.255 are contiguous.
[[nodiscard]] constexpr bool isContiguousMask(Ipv4 mask)
{
    const std::uint32_t host = ~mask.value;
    return (host & (host + 1)) == 0;
}

[[nodiscard]] constexpr Ipv4 subnetBroadcast(Ipv4 address, Ipv4 mask)
{
    return {address.value | ~mask.value};
}

[[nodiscard]] constexpr bool inSameSubnet(Ipv4 a, Ipv4 b, Ipv4 mask)
{
    return ((a.value ^ b.value) & mask.value) == 0;
}

} // namespace net
