#pragma once

#include "gige/errors.h"

#include <cstdint>
#include <span>

namespace gige {

/// Access to the register space of one camera. Failures arrive as GenICam exceptions: AccessException when
/// the camera refuses for want of privilege, RefusalException for any other refusal, TimeoutException when it
/// does not answer, another RuntimeException when this host cannot send.
class RegisterPort
{
public:
    RegisterPort() = default;
    RegisterPort(const RegisterPort&) = delete;
    RegisterPort& operator=(const RegisterPort&) = delete;
    virtual ~RegisterPort() = default;

    /// Fills `to` with the bytes from `address` on. Any address and any length; the port aligns and splits.
    virtual void read(std::uint32_t address, std::span<std::uint8_t> to) = 0;
    /// Writes `from` at `address`; both must be multiples of 4, else InvalidArgumentException.
    virtual void write(std::uint32_t address, std::span<const std::uint8_t> from) = 0;
};

} // namespace gige
