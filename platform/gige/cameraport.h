#pragma once

#include "gige/attempts.h"
#include "gige/codec.h"
#include "gige/registerport.h"
#include "gige/socket.h"

#include <functional>
#include <string>

namespace gige {

/// How long a camera is asked: 2.5 s in seven tries, the first repeats early, so that a lost packet costs
/// little and a slow camera is not flooded. Where every fifth packet is lost either way, one request in a
/// thousand fails.
[[nodiscard]] RetryPlan patientPlan();
/// For questions whose answer "not there" must not keep the user waiting: half a second.
[[nodiscard]] RetryPlan quickPlan();

/// The registers of the camera at one address. One command is under way at a time; its answer must come from
/// the camera's control port, carry its id and fit what was asked; everything else that arrives is dropped.
/// While a camera takes the time that it asked for, it is sent heartbeats, lest it drop us meanwhile.
/// The texts of the exceptions name the camera, what was asked of it and what came back.
class CameraPort final : public RegisterPort
{
public:
    /// Sends nothing. Throws SocketException when no adapter's network holds the address.
    explicit CameraPort(net::Ipv4 address);

    void read(std::uint32_t address, std::span<std::uint8_t> to) override;
    void write(std::uint32_t address, std::span<const std::uint8_t> from) override;

    [[nodiscard]] std::uint32_t readRegister(std::uint32_t address);
    void writeRegister(std::uint32_t address, std::uint32_t value);

    void setPlan(const RetryPlan& plan) { m_plan = plan; }
    /// Whether longer writes may use WRITEMEM; without it they go register by register.
    void setWriteMemGranted(bool granted) { m_writeMemGranted = granted; }

    [[nodiscard]] net::Ipv4 address() const { return m_address; }
    /// The address of this host that the camera sees.
    [[nodiscard]] net::Ipv4 hostAddress() const { return m_socket.localAddress(); }

private:
    /// Looks at the payload of a success, takes what it wants, and says whether it fits the request.
    using Accept = std::function<bool(gvcp::Bytes payload)>;

    void exchange(std::uint16_t requestId, const gvcp::Packet& packet, gvcp::Ack expected,
                  const std::string& what, const Accept& accept);
    void send(const gvcp::Packet& packet, const std::string& what);
    [[nodiscard]] bool receive(std::uint16_t requestId, gvcp::Ack expected, const std::string& what,
                               const Accept& accept, Attempts& attempts);
    [[nodiscard]] std::string prefix(const std::string& what) const;
    void readBlock(std::uint32_t address, std::span<std::uint8_t> to);
    void writeBlock(std::uint32_t address, std::span<const std::uint8_t> block);
    /// Asks the camera whether these bytes are there; false also when it does not say.
    [[nodiscard]] bool holds(std::uint32_t address, std::span<const std::uint8_t> block);

    net::Ipv4 m_address;
    UdpSocket m_socket;
    RetryPlan m_plan = patientPlan();
    std::uint16_t m_heartbeatId = nextRequestId();
    bool m_writeMemGranted = false;
    bool m_wasExtended = false; // the camera asked for time for the latest request that timed out
    bool m_wasBusy = false;     // so was its latest answer to the present request
    int m_misfits = 0;          // datagrams of the camera that did not fit the present request
};

} // namespace gige
