#pragma once

#include "camera/cameraconfig.h"
#include "gvcp/gvcp.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace sim {

/// The memory behind a camera's registers: which addresses exist, which are writable, and their values.
/// Checking privileges and acting on writes is up to the camera.
class RegisterSpace
{
public:
    explicit RegisterSpace(const CameraConfig& config);

    /// Success, InvalidAddress, or (for writing) WriteProtected, for `size` bytes from `address` on.
    [[nodiscard]] gvcp::Status checkRead(std::uint32_t address, std::size_t size) const;
    [[nodiscard]] gvcp::Status checkWrite(std::uint32_t address, std::size_t size) const;

    /// The bytes must have passed checkRead.
    void read(std::uint32_t address, std::span<std::uint8_t> to) const;

    /// One register. The address must be in the bootstrap or feature area.
    [[nodiscard]] std::uint32_t get(std::uint32_t address) const;
    void set(std::uint32_t address, std::uint32_t value);

    /// Fills a text field with `text`, truncated or padded with NUL.
    void setText(std::uint32_t address, std::size_t size, std::string_view text);
    [[nodiscard]] std::string text(std::uint32_t address, std::size_t size) const;

    /// Whether the user-defined name exists and is writable.
    [[nodiscard]] bool hasWritableName() const { return m_hasWritableName; }

private:
    struct Range
    {
        std::uint32_t begin;
        std::uint32_t end;
        bool isWritable;
    };

    [[nodiscard]] static std::vector<Range> rangesOf(bool hasWritableName, std::size_t descriptionSize);
    [[nodiscard]] gvcp::Status check(std::uint32_t address, std::size_t size, bool forWriting) const;
    [[nodiscard]] std::span<const std::uint8_t> bytesFrom(std::uint32_t address) const;

    static constexpr std::size_t BootstrapSize = 0x0B00;
    std::array<std::uint8_t, BootstrapSize> m_bootstrap{};
    std::array<std::uint8_t, FeatureSize> m_features{};
    std::shared_ptr<const Description> m_description;
    bool m_hasWritableName = true;
    std::vector<Range> m_ranges; // ascending, without overlap
};

} // namespace sim
