#pragma once

#include <cstddef>
#include <cstdint>

/// All numbers of the GigE Vision control protocol, for both ends: the camera layer and the simulated
/// cameras. All fields are big-endian.
namespace gvcp {

inline constexpr std::uint16_t Port = 3956;      // UDP port on which a camera listens
inline constexpr std::uint8_t Key = 0x42;        // first byte of every command
inline constexpr std::size_t HeaderSize = 8;     // bytes, in commands and acknowledges alike
inline constexpr std::uint32_t RegisterSize = 4; // bytes; addresses and lengths are multiples of it
inline constexpr std::size_t MaxDataSize = 512;  // bytes of memory in one READMEM or WRITEMEM
inline constexpr std::size_t MaxPacketSize =
    HeaderSize + 4 + MaxDataSize + 12; // bytes; the longest message, an acknowledge of READMEM, has 524

/// Offsets in the header. A command begins with key and flags, an acknowledge with its status.
namespace Header {
inline constexpr std::size_t Key = 0;
inline constexpr std::size_t Flags = 1;
inline constexpr std::size_t Status = 0;
inline constexpr std::size_t Code = 2;
inline constexpr std::size_t Length = 4; // bytes of the payload
inline constexpr std::size_t RequestId = 6;
} // namespace Header

namespace Flag {
inline constexpr std::uint8_t AckRequired = 0x01;
inline constexpr std::uint8_t AllowBroadcastAck =
    0x10; // DISCOVERY, FORCEIP and the manufacturer's broadcast command
} // namespace Flag

enum class Command : std::uint16_t {
    Discovery = 0x0002,
    ForceIp = 0x0004,
    ReadReg = 0x0080,
    WriteReg = 0x0082,
    ReadMem = 0x0084,
    WriteMem = 0x0086,
    BroadcastIpConfig = 0x8010, // the manufacturer's own, docs/broadcast-ip-configuration.md
};

/// An acknowledge carries its command's code plus one.
enum class Ack : std::uint16_t {
    Discovery = 0x0003,
    ForceIp = 0x0005,
    ReadReg = 0x0081,
    WriteReg = 0x0083,
    ReadMem = 0x0085,
    WriteMem = 0x0087,
    Pending = 0x0089, // has no command of its own
    BroadcastIpConfig = 0x8011,
};

enum class Status : std::uint16_t {
    Success = 0x0000,
    NotImplemented = 0x8001,
    InvalidParameter = 0x8002,
    InvalidAddress = 0x8003,
    WriteProtected = 0x8004,
    BadAlignment = 0x8005,
    AccessDenied = 0x8006,
    Busy = 0x8007,
    InvalidHeader = 0x800E,
    Error = 0x8FFF,
};

/// Offsets and sizes in the payload of a DISCOVERY acknowledge, which is also the beginning of a camera's
/// register space.
namespace DiscoveryAck {
inline constexpr std::size_t Size = 248;
inline constexpr std::size_t Version = 0;
inline constexpr std::size_t DeviceMode = 4;
inline constexpr std::size_t Mac = 10; // 6 bytes
inline constexpr std::size_t IpConfigSupported = 16;
inline constexpr std::size_t IpConfigCurrent = 20;
inline constexpr std::size_t Ip = 36;
inline constexpr std::size_t Mask = 52;
inline constexpr std::size_t Gateway = 68;
inline constexpr std::size_t Manufacturer = 72;
inline constexpr std::size_t ManufacturerSize = 32;
inline constexpr std::size_t Model = 104;
inline constexpr std::size_t ModelSize = 32;
inline constexpr std::size_t DeviceVersion = 136;
inline constexpr std::size_t DeviceVersionSize = 32;
inline constexpr std::size_t ManufacturerInfo = 168;
inline constexpr std::size_t ManufacturerInfoSize = 48;
inline constexpr std::size_t SerialNumber = 216;
inline constexpr std::size_t SerialNumberSize = 16;
inline constexpr std::size_t UserDefinedName = 232;
inline constexpr std::size_t UserDefinedNameSize = 16;
} // namespace DiscoveryAck

namespace ForceIp {
inline constexpr std::size_t Size = 56;
inline constexpr std::size_t Mac = 2; // 6 bytes
inline constexpr std::size_t Ip = 20;
inline constexpr std::size_t Mask = 36;
inline constexpr std::size_t Gateway = 52;
} // namespace ForceIp

/// The payload of READMEM. Those of READREG, WRITEREG, WRITEMEM and of the READMEM acknowledge are plain
/// addresses and values.
namespace ReadMem {
inline constexpr std::size_t Size = 8;
inline constexpr std::size_t Address = 0;
inline constexpr std::size_t Count = 6; // bytes
} // namespace ReadMem

/// The acknowledge of WRITEREG and WRITEMEM.
namespace WriteAck {
inline constexpr std::size_t Size = 4;
inline constexpr std::size_t Index = 2; // how much was written
} // namespace WriteAck

namespace PendingAck {
inline constexpr std::size_t Size = 4;
inline constexpr std::size_t Time = 2; // ms
} // namespace PendingAck

/// The manufacturer's broadcast command.
namespace BroadcastIpConfig {
inline constexpr std::size_t Size = 40;
inline constexpr std::size_t Mac = 2;      // 6 bytes
inline constexpr std::size_t IpConfig = 8; // as the register IpConfigCurrent
inline constexpr std::size_t Ip = 12;      // persistent address, in every mode
inline constexpr std::size_t Mask = 16;
inline constexpr std::size_t Gateway = 20;
inline constexpr std::size_t UserDefinedName = 24;
inline constexpr std::size_t UserDefinedNameSize = 16;
} // namespace BroadcastIpConfig

/// Its acknowledge, whether a success or a refusal.
namespace BroadcastIpConfigAck {
inline constexpr std::size_t Size = 8;
inline constexpr std::size_t Mac = 2; // 6 bytes, of the camera that answers
} // namespace BroadcastIpConfigAck

/// Bits of the IP configuration registers.
namespace IpConfig {
inline constexpr std::uint32_t Persistent = 0x1;
inline constexpr std::uint32_t Dhcp = 0x2;
inline constexpr std::uint32_t LinkLocal = 0x4;             // always on
inline constexpr std::uint32_t PauseReception = 0x80000000; // of Ethernet pause frames, as the next one
inline constexpr std::uint32_t PauseGeneration = 0x40000000;
} // namespace IpConfig

namespace DeviceMode {
inline constexpr std::uint32_t BigEndian = 0x80000000;
inline constexpr std::uint32_t Utf8 = 0x1;
} // namespace DeviceMode

namespace Capability {
inline constexpr std::uint32_t UserDefinedName = 0x80000000;
inline constexpr std::uint32_t SerialNumber = 0x40000000;
inline constexpr std::uint32_t PendingAck = 0x20;
inline constexpr std::uint32_t WriteMem = 0x2;
inline constexpr std::uint32_t SeveralRegisters = 0x1;
} // namespace Capability

namespace Privilege {
inline constexpr std::uint32_t Open = 0x0;
inline constexpr std::uint32_t Exclusive = 0x1;
inline constexpr std::uint32_t Control = 0x2;
} // namespace Privilege

/// Bootstrap registers; 4 bytes each unless a size in bytes follows.
namespace Register {
inline constexpr std::uint32_t Version = 0x0000;
inline constexpr std::uint32_t DeviceMode = 0x0004;
inline constexpr std::uint32_t MacHigh = 0x0008;
inline constexpr std::uint32_t MacLow = 0x000C;
inline constexpr std::uint32_t IpConfigSupported = 0x0010;
inline constexpr std::uint32_t IpConfigCurrent = 0x0014;
inline constexpr std::uint32_t CurrentIp = 0x0024;
inline constexpr std::uint32_t CurrentMask = 0x0034;
inline constexpr std::uint32_t CurrentGateway = 0x0044;
inline constexpr std::uint32_t Manufacturer = 0x0048;
inline constexpr std::uint32_t Model = 0x0068;
inline constexpr std::uint32_t DeviceVersion = 0x0088;
inline constexpr std::uint32_t ManufacturerInfo = 0x00A8;
inline constexpr std::uint32_t SerialNumber = 0x00D8;
inline constexpr std::uint32_t UserDefinedName = 0x00E8;
inline constexpr std::uint32_t FirstUrl = 0x0200;
inline constexpr std::uint32_t SecondUrl = 0x0400;
inline constexpr std::size_t UrlSize = 512;
inline constexpr std::uint32_t NetworkInterfaceCount = 0x0600;
inline constexpr std::uint32_t PersistentIp = 0x064C;
inline constexpr std::uint32_t PersistentMask = 0x065C;
inline constexpr std::uint32_t PersistentGateway = 0x066C;
inline constexpr std::uint32_t MessageChannelCount = 0x0900;
inline constexpr std::uint32_t StreamChannelCount = 0x0904;
inline constexpr std::uint32_t Capability = 0x0934;
inline constexpr std::uint32_t HeartbeatTimeout = 0x0938;  // ms
inline constexpr std::uint32_t DiscoveryAckDelay = 0x0950; // ms
inline constexpr std::uint32_t ControlChannelPrivilege = 0x0A00;
inline constexpr std::uint32_t PrimaryApplicationPort = 0x0A04;
inline constexpr std::uint32_t PrimaryApplicationIp = 0x0A14;
} // namespace Register

inline constexpr std::uint32_t DefaultHeartbeatTimeout = 3000; // ms

} // namespace gvcp
