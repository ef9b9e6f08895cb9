#pragma once

#include "exchange.h"
#include "registerport.h"

#include <string>

namespace gige {

/// Seven tries in 2.5 s, the first repeats early, so that a lost packet costs little and a slow camera is not
/// flooded. If every fifth packet is lost in each direction, one request in a thousand fails.
[[nodiscard]] RetryPlan patientPlan();
/// For requests that must not keep the user waiting if the camera is not there: half a second.
[[nodiscard]] RetryPlan quickPlan();

/// The registers of the camera at one address. One command is pending at a time; its answer must come from
/// the camera's control port, carry its id and match the request; everything else that arrives is dropped.
/// While a camera takes the time that it asked for, it is sent heartbeats so that it keeps our session open.
/// The texts of the exceptions name the camera, the request and what came back.
class CameraPort final : public RegisterPort
{
public:
    /// Uses the adapter with that index, 0 for any. Sends nothing. Throws SocketException if the address is
    /// in no network of the adapter.
    explicit CameraPort(net::Ipv4 address, int adapterIndex = 0);

    void read(std::uint32_t address, std::span<std::uint8_t> to) override;
    void readMemory(std::uint32_t address, std::span<std::uint8_t> to) override;
    void write(std::uint32_t address, std::span<const std::uint8_t> from) override;

    [[nodiscard]] std::uint32_t readRegister(std::uint32_t address);
    void writeRegister(std::uint32_t address, std::uint32_t value);

    void setPlan(const RetryPlan& plan) { m_plan = plan; }
    /// Whether longer writes may use WRITEMEM. Without it, and once the camera has refused it, they are sent
    /// register by register.
    void setWriteMemGranted(bool granted) { m_writeMemGranted = granted; }

    [[nodiscard]] net::Ipv4 address() const override { return m_address; }
    /// The address of this host that the camera sees.
    [[nodiscard]] net::Ipv4 hostAddress() const { return m_socket.localAddress(); }

private:
    [[nodiscard]] Exchange makeExchange(Request request, std::string what, Tessal::Setting setting,
                                        std::string wanted = {}) const;
    [[nodiscard]] Exchange makeWriteExchange(std::uint32_t address,
                                             std::span<const std::uint8_t> block) const;
    using ReadBlock = void (CameraPort::*)(std::uint32_t address, std::span<std::uint8_t> to);

    /// Reads in blocks whose addresses and sizes are multiples of 4.
    void readBlocks(std::uint32_t address, std::span<std::uint8_t> to, ReadBlock readBlock);
    void readAnyBlock(std::uint32_t address, std::span<std::uint8_t> to);
    void readMemoryBlock(std::uint32_t address, std::span<std::uint8_t> to);
    void writeBlock(std::uint32_t address, std::span<const std::uint8_t> block);
    /// Asks the camera whether these bytes are there; false also if it does not answer.
    [[nodiscard]] bool holds(std::uint32_t address, std::span<const std::uint8_t> block);

    net::Ipv4 m_address;
    UdpSocket m_socket;
    RetryPlan m_plan = patientPlan();
    bool m_writeMemGranted = false;
};

} // namespace gige
