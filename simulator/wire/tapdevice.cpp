#include "wire/tapdevice.h"

#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace wire {

namespace {

constexpr int sendBufferSize = 64 * 1024 * 1024; // bytes of frames from the host that wait to be read

[[noreturn]] void fail(const std::string& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

TapDevice::TapDevice(const std::string& name)
    : m_descriptor(::open("/dev/net/tun", O_RDWR | O_NONBLOCK | O_CLOEXEC))
{
    if (m_descriptor < 0) {
        throw NoTapDevices(std::string("/dev/net/tun cannot be opened: ") +
                           std::generic_category().message(errno));
    }
    ifreq request{};
    std::copy_n(name.begin(), std::min(name.size(), sizeof request.ifr_name - 1), request.ifr_name);
    request.ifr_flags = IFF_TAP | IFF_NO_PI;
    const int size = sendBufferSize;
    if (::ioctl(m_descriptor, TUNSETIFF, &request) < 0) {
        const int error = errno;
        ::close(m_descriptor);
        throw std::system_error(error, std::generic_category(), "adapter " + name + " cannot be created");
    }
    m_index = static_cast<int>(::if_nametoindex(name.c_str()));
    if (m_index == 0 || ::ioctl(m_descriptor, TUNSETSNDBUF, &size) < 0) {
        const int error = errno;
        ::close(m_descriptor);
        throw std::system_error(error, std::generic_category(), "adapter " + name + " cannot be set up");
    }
}

TapDevice::TapDevice(TapDevice&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)), m_index(other.m_index)
{}

TapDevice::~TapDevice()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

std::optional<std::span<const std::uint8_t>> TapDevice::read(std::span<std::uint8_t> buffer) const
{
    for (;;) {
        const ssize_t got = ::read(m_descriptor, buffer.data(), buffer.size());
        if (got >= 0) {
            return buffer.first(static_cast<std::size_t>(got));
        }
        if (errno == EAGAIN || errno == EIO) { // EIO: the adapter is down.
            return std::nullopt;
        }
        if (errno != EINTR) {
            fail("the adapter is gone");
        }
    }
}

void TapDevice::write(std::span<const std::uint8_t> frame) const
{
    while (::write(m_descriptor, frame.data(), frame.size()) < 0 && errno == EINTR) {
    }
}

} // namespace wire
