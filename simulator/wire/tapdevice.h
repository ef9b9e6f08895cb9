#pragma once

#include "wire/frames.h"

#include <optional>
#include <span>
#include <stdexcept>
#include <string>

namespace wire {

/// The machine offers no TAP devices, or not to us.
class NoTapDevices : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The far end of a virtual Ethernet adapter, which exists as long as this object. Frames that the host sends
/// are read here; frames written here are what the host receives.
class TapDevice
{
public:
    /// Creates the adapter. Throws NoTapDevices, or std::system_error when the name is refused.
    explicit TapDevice(const std::string& name);
    TapDevice(TapDevice&& other) noexcept;
    TapDevice(const TapDevice&) = delete;
    TapDevice& operator=(const TapDevice&) = delete;
    TapDevice& operator=(TapDevice&&) = delete;
    ~TapDevice();

    [[nodiscard]] int descriptor() const { return m_descriptor; }
    [[nodiscard]] int index() const { return m_index; }

    /// The next frame, in `buffer`; nullopt when none waits. Throws std::system_error once the adapter is
    /// gone.
    [[nodiscard]] std::optional<std::span<const std::uint8_t>> read(std::span<std::uint8_t> buffer) const;
    /// A frame for a host whose adapter is down or has no room is lost, as on any wire.
    void write(std::span<const std::uint8_t> frame) const;

private:
    int m_descriptor = -1;
    int m_index = 0;
};

} // namespace wire
