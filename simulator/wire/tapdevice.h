#pragma once

#include "wire/frames.h"

#include <optional>
#include <span>
#include <stdexcept>
#include <string>

namespace wire {

/// TAP devices are not available to this process.
class NoTapDevices : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The far end of a virtual Ethernet adapter that exists as long as this object. It reads the frames that the
/// host sends; the host receives the frames that are written.
class TapDevice
{
public:
    /// Creates the adapter. Throws NoTapDevices, or std::system_error if the kernel refuses the name.
    explicit TapDevice(const std::string& name);
    TapDevice(TapDevice&& other) noexcept;
    TapDevice(const TapDevice&) = delete;
    TapDevice& operator=(const TapDevice&) = delete;
    TapDevice& operator=(TapDevice&&) = delete;
    ~TapDevice();

    [[nodiscard]] int descriptor() const { return m_descriptor; }
    [[nodiscard]] int index() const { return m_index; }

    /// The next frame, in `buffer`; nullopt if there is none. Throws std::system_error once the adapter is
    /// gone.
    [[nodiscard]] std::optional<std::span<const std::uint8_t>> read(std::span<std::uint8_t> buffer) const;
    /// The frame is lost if the host's adapter is down or its queue is full.
    void write(std::span<const std::uint8_t> frame) const;

private:
    int m_descriptor = -1;
    int m_index = 0;
};

} // namespace wire
