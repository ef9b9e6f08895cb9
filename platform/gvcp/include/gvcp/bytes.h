#pragma once

#include <cstdint>
#include <span>

/// Big-endian numbers in byte buffers: the only place that deals with byte order. The caller checks that the
/// bytes are there; an offset beyond the span is a bug.
namespace bytes {

[[nodiscard]] constexpr std::uint16_t get16(std::span<const std::uint8_t> from, std::size_t offset)
{
    const auto field = from.subspan(offset, 2);
    return static_cast<std::uint16_t>(field[0] << 8 | field[1]);
}

[[nodiscard]] constexpr std::uint32_t get32(std::span<const std::uint8_t> from, std::size_t offset)
{
    return static_cast<std::uint32_t>(get16(from, offset)) << 16 | get16(from, offset + 2);
}

constexpr void put16(std::span<std::uint8_t> to, std::size_t offset, std::uint16_t value)
{
    const auto field = to.subspan(offset, 2);
    field[0] = static_cast<std::uint8_t>(value >> 8);
    field[1] = static_cast<std::uint8_t>(value & 0xFF);
}

constexpr void put32(std::span<std::uint8_t> to, std::size_t offset, std::uint32_t value)
{
    put16(to, offset, static_cast<std::uint16_t>(value >> 16));
    put16(to, offset + 2, static_cast<std::uint16_t>(value & 0xFFFF));
}

} // namespace bytes
