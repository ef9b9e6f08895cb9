#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace gige {

class RegisterPort;
class XmlDescription;

/// Bytes read from a camera for one description. Those in use have up to about 1 MiB zipped and 5 MiB plain;
/// 8 MiB are 16,384 READMEMs, some ten seconds at the usual answer times.
inline constexpr std::size_t MaxDescriptionRead = std::size_t{8} << 20;
/// Bytes of XML. The parsed tree takes up to 16 times as much, so that the worst camera costs 256 MiB.
inline constexpr std::size_t MaxDescriptionSize = std::size_t{16} << 20;

/// Where a camera keeps its description in its own register space.
struct DescriptionUrl
{
    std::string fileName;
    std::uint32_t address = 0;
    std::uint32_t length = 0; // bytes, at least 1; the end is within the 32-bit register space
    bool zipped = false;

    friend bool operator==(const DescriptionUrl&, const DescriptionUrl&) = default;
};

/// Reads `Local:NAME;HEXADDRESS;HEXLENGTH`, as the URL registers hold it: up to the first NUL, in any letter
/// case, with blanks or slashes before the name, blanks around the numbers, `0x` before them and a query
/// behind. Throws DescriptionError for anything else, other schemes among them.
[[nodiscard]] DescriptionUrl parseDescriptionUrl(std::string_view text);

/// The description at the camera's first URL or, if that is of no use, at its second. Throws DescriptionError
/// with the reasons for both; failures of the transport other than refusals arrive as they are.
[[nodiscard]] std::unique_ptr<XmlDescription> loadDescription(RegisterPort& port);

} // namespace gige
