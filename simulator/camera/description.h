#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace sim {

enum class DescriptionKind {
    Plain,
    Zipped,
    SecondUrl, // the first URL is one that nobody may fetch
    Missing,   // both URLs are empty
    Malformed, // XML that ends in the middle of a tag
    Huge,      // a URL that promises 1 GiB
    NoUserId,
    ReadOnlyUserId,
    FormulaUserId, // the address of the name is given by a formula
    WordTail,      // a file that ends in a single word, if it is read in the largest pieces
    Endless,       // 8 MiB, of which only the first few are XML
};

/// The GenICam description as a camera holds it: two URLs and the bytes to which they point.
struct Description
{
    DescriptionKind kind = DescriptionKind::Plain;
    std::string firstUrl;
    std::string secondUrl;
    std::vector<std::uint8_t> bytes; // padded to a multiple of 4
};

inline constexpr std::uint32_t DescriptionAddress = 0x10000; // of the first byte in the register space

/// Registers of the described features, behind those that every camera has.
inline constexpr std::uint32_t FeatureAddress = 0x8000;
inline constexpr std::uint32_t FeatureSize = 16; // bytes

/// The description of a camera model. `xml` replaces the built-in text unless it is empty; the kinds that are
/// about the text itself do not go with it. Throws std::runtime_error when the text cannot be compressed.
[[nodiscard]] std::shared_ptr<const Description>
makeDescription(DescriptionKind kind, const std::string& vendor, const std::string& model, std::string xml);

} // namespace sim
