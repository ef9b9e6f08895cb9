#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace net {

/// Reads a value from the beginning of the bytes; nullopt if there are too few.
template <typename T>
[[nodiscard]] std::optional<T> readValue(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() < sizeof(T)) {
        return std::nullopt;
    }
    T value{};
    std::memcpy(&value, bytes.data(), sizeof(T));
    return value;
}

/// A request to the kernel's routing socket: a header, a fixed part and attributes (rtnetlink(7)).
class NetlinkMessage
{
public:
    /// `type` is RTM_…; NLM_F_REQUEST is added to the flags.
    template <typename Fixed>
    NetlinkMessage(std::uint16_t type, std::uint16_t flags, const Fixed& fixed) : NetlinkMessage(type, flags)
    {
        append(&fixed, sizeof fixed);
    }

    void addAttribute(std::uint16_t type, const void* data, std::size_t size);
    [[nodiscard]] std::span<std::uint8_t> bytes() { return m_bytes; }

private:
    NetlinkMessage(std::uint16_t type, std::uint16_t flags);
    void append(const void* data, std::size_t size);

    std::vector<std::uint8_t> m_bytes;
};

/// The routing socket of this process's network namespace.
class NetlinkSocket
{
public:
    /// Throws std::system_error if the kernel has none.
    NetlinkSocket();
    NetlinkSocket(const NetlinkSocket&) = delete;
    NetlinkSocket& operator=(const NetlinkSocket&) = delete;
    ~NetlinkSocket();

    /// Called for each message of the answer with the bytes after its header.
    using Visit = std::function<void(std::span<const std::uint8_t> body)>;

    /// Sends the request, which must ask for a dump or an acknowledgement, and visits the messages of the
    /// answer. If the kernel refuses, throws a std::system_error with the text `what`.
    void exchange(NetlinkMessage message, const std::string& what, const Visit& visit = {});

private:
    int m_descriptor = -1;
    std::uint32_t m_sequence = 0;
};

using VisitAttribute = std::function<void(std::uint16_t type, std::span<const std::uint8_t> value)>;

/// Visits the attributes in the bytes, up to the first incomplete one.
void forEachAttribute(std::span<const std::uint8_t> bytes, const VisitAttribute& visit);

/// Visits the attributes after the fixed part of a message, which is `fixedSize` bytes long.
void forEachAttribute(std::span<const std::uint8_t> body, std::size_t fixedSize, const VisitAttribute& visit);

/// The value of a text attribute, without its NUL.
[[nodiscard]] std::string textOf(std::span<const std::uint8_t> value);

} // namespace net
