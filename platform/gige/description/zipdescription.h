#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace gige {

/// The XML file in a zip archive: the first entry whose name ends in `.xml`, or else the only entry. It must
/// be stored or deflated, unencrypted, at most `maxSize` bytes long and have the right checksum; sizes that
/// the archive states are not trusted. Throws DescriptionError.
[[nodiscard]] std::string unzipDescription(std::span<const std::uint8_t> archive, std::size_t maxSize);

} // namespace gige
