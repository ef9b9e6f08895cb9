#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace gige {

class RegisterPort;
class XmlDescription;

/// The largest description that is accepted, in bytes, both as the camera stores it and as XML. Real ones
/// have up to about 1 MiB zipped and 5 MiB unzipped.
inline constexpr std::size_t MaxDescriptionSize = std::size_t{8} << 20;

/// Where a camera keeps its description in its own register space.
struct DescriptionUrl
{
    std::string fileName;
    std::uint32_t address = 0;
    std::uint32_t length = 0; // bytes, at least 1; the end is within the 32-bit register space
    bool zipped = false;

    friend bool operator==(const DescriptionUrl&, const DescriptionUrl&) = default;
};

/// Parses `Local:NAME;HEXADDRESS;HEXLENGTH`, as the URL registers hold it: up to the first NUL, in any letter
/// case, optionally with blanks or slashes before the name, blanks around the numbers, `0x` before them and a
/// query at the end. Throws DescriptionError for anything else, including other schemes.
[[nodiscard]] DescriptionUrl parseDescriptionUrl(std::string_view text);

/// The description at the camera's first URL or, if that is unusable, at its second. Throws DescriptionError
/// with the reasons for both, such as no answer, or if it is not loaded within `time`. A SocketException
/// passes through.
[[nodiscard]] std::unique_ptr<XmlDescription> loadDescription(RegisterPort& port,
                                                              std::chrono::milliseconds time);

} // namespace gige
