#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace sim {

enum class DescriptionKind {
    Plain,
    Zipped,
    SecondUrl, // the first URL points to a server, the second to the file
    Missing,   // both URLs are empty
    Malformed, // XML that is cut off in the middle
    Huge,      // a URL that promises 1 GiB
    NoUserId,
    ReadOnlyUserId,
    FormulaUserId, // the name's address is given by a formula
    WordTail,      // read in pieces of the largest size, the last piece is a single word
    Endless,       // 8 MiB, XML followed by blanks
};

/// The GenICam description as a camera stores it: two URLs and the bytes that they point to.
struct Description
{
    DescriptionKind kind = DescriptionKind::Plain;
    std::string firstUrl;
    std::string secondUrl;
    std::vector<std::uint8_t> bytes; // padded to a multiple of 4
};

inline constexpr std::uint32_t DescriptionAddress = 0x10000; // of the first byte in the register space

/// Registers of the features in the description, beyond those that every camera has.
inline constexpr std::uint32_t FeatureAddress = 0x8000;
inline constexpr std::uint32_t FeatureSize = 16; // bytes

/// The description of a camera model. `xml` replaces the built-in text unless it is empty, and with it what
/// the kind changes in that text. Throws std::runtime_error if the text cannot be compressed.
[[nodiscard]] std::shared_ptr<const Description>
makeDescription(DescriptionKind kind, const std::string& vendor, const std::string& model, std::string xml);

} // namespace sim
