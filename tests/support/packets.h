#pragma once

#include "gvcp/gvcp.h"
#include "net/addresses.h"

#include <QByteArray>
#include <QString>

#include <utility>
#include <vector>

/// Control protocol messages as another application sends them, put together without the code under test. The
/// request id is 1 unless withId() gives another.
namespace packets {

[[nodiscard]] QByteArray command(gvcp::Command code, const QByteArray& payload);
[[nodiscard]] QByteArray discovery();
/// A zero address makes the camera restart its IP configuration.
[[nodiscard]] QByteArray forceIp(const net::MacAddress& camera, net::Ipv4 ip, net::Ipv4 mask);
[[nodiscard]] QByteArray readRegister(std::uint32_t address);
[[nodiscard]] QByteArray writeRegisters(const std::vector<std::pair<std::uint32_t, std::uint32_t>>& values);
[[nodiscard]] QByteArray readMemory(std::uint32_t address, std::uint16_t count);

[[nodiscard]] inline QByteArray writeRegister(std::uint32_t address, std::uint32_t value)
{
    return writeRegisters({{address, value}});
}

[[nodiscard]] inline QByteArray takeControl()
{
    return writeRegister(gvcp::Register::ControlChannelPrivilege, gvcp::Privilege::Control);
}
[[nodiscard]] inline QByteArray giveBackControl()
{
    return writeRegister(gvcp::Register::ControlChannelPrivilege, gvcp::Privilege::Open);
}

[[nodiscard]] QByteArray withId(QByteArray message, std::uint16_t id);

/// What an acknowledge of the request with that id says: "READREG success 00000002". For one of another
/// request or what is no acknowledge at all, that it is so.
[[nodiscard]] QString describe(const QByteArray& acknowledge, std::uint16_t id = 1);

/// What one register written gives.
inline const QString done = "WRITEREG success 00000001";

} // namespace packets
