#include "camera/registerspace.h"

#include "gvcp/bytes.h"

#include <algorithm>

namespace sim {

using gvcp::RegisterSize;

/// All readable ranges in ascending order, and whether they are writable.
std::vector<RegisterSpace::Range> RegisterSpace::rangesOf(bool hasWritableName, std::size_t descriptionSize)
{
    using namespace gvcp;
    const auto single = [](std::uint32_t address, bool isWritable) {
        return Range{address, address + RegisterSize, isWritable};
    };
    return {
        {Register::Version, Register::IpConfigCurrent, false},
        single(Register::IpConfigCurrent, true),
        {Register::IpConfigCurrent + RegisterSize, Register::UserDefinedName, false},
        {Register::UserDefinedName, Register::UserDefinedName + DiscoveryAck::UserDefinedNameSize,
         hasWritableName},
        {Register::FirstUrl, Register::SecondUrl + Register::UrlSize, false},
        single(Register::NetworkInterfaceCount, false),
        single(Register::PersistentIp, true),
        single(Register::PersistentMask, true),
        single(Register::PersistentGateway, true),
        {Register::MessageChannelCount, Register::StreamChannelCount + RegisterSize, false},
        single(Register::Capability, false),
        single(Register::HeartbeatTimeout, true),
        single(Register::DiscoveryAckDelay, false),
        single(Register::ControlChannelPrivilege, true),
        single(Register::PrimaryApplicationPort, false),
        single(Register::PrimaryApplicationIp, false),
        {FeatureAddress, FeatureAddress + FeatureSize, true},
        {DescriptionAddress, DescriptionAddress + static_cast<std::uint32_t>(descriptionSize), false},
    };
}

RegisterSpace::RegisterSpace(const CameraConfig& config) : m_description(config.description)
{
    using namespace gvcp;
    const Identity& identity = config.identity;
    const bool hasName = m_description->kind != DescriptionKind::NoUserId;
    m_hasWritableName = hasName && m_description->kind != DescriptionKind::ReadOnlyUserId;
    m_ranges = rangesOf(m_hasWritableName, m_description->bytes.size());
    const auto& mac = config.mac.bytes;
    set(Register::Version, 0x00010002);
    set(Register::DeviceMode, DeviceMode::BigEndian | DeviceMode::Utf8);
    set(Register::MacHigh, bytes::get16(mac, 0));
    set(Register::MacLow, bytes::get32(mac, 2));
    set(Register::IpConfigSupported, config.supported | IpConfig::LinkLocal);
    set(Register::IpConfigCurrent, config.enabled | IpConfig::LinkLocal);
    setText(Register::Manufacturer, DiscoveryAck::ManufacturerSize, identity.vendor);
    setText(Register::Model, DiscoveryAck::ModelSize, identity.model);
    setText(Register::DeviceVersion, DiscoveryAck::DeviceVersionSize, identity.version);
    setText(Register::ManufacturerInfo, DiscoveryAck::ManufacturerInfoSize, identity.info);
    setText(Register::SerialNumber, DiscoveryAck::SerialNumberSize, identity.serial);
    setText(Register::UserDefinedName, DiscoveryAck::UserDefinedNameSize, hasName ? identity.userId : "");
    setText(Register::FirstUrl, Register::UrlSize, m_description->firstUrl);
    setText(Register::SecondUrl, Register::UrlSize, m_description->secondUrl);
    set(Register::NetworkInterfaceCount, 1);
    set(Register::PersistentIp, config.persistent.ip.value);
    set(Register::PersistentMask, config.persistent.mask.value);
    set(Register::PersistentGateway, config.persistent.gateway.value);
    set(Register::Capability, (hasName ? Capability::UserDefinedName : 0) | Capability::SerialNumber |
                                  (config.faults.pendingAck > Duration::zero() ? Capability::PendingAck : 0) |
                                  (config.faults.knowsWriteMem ? Capability::WriteMem : 0) |
                                  Capability::SeveralRegisters);
    set(Register::HeartbeatTimeout, static_cast<std::uint32_t>(config.heartbeatTimeout.count()));
    set(Register::DiscoveryAckDelay, static_cast<std::uint32_t>(config.faults.discoveryDelay.count()));
    set(FeatureAddress, 1280);
    set(FeatureAddress + RegisterSize, 960);
}

gvcp::Status RegisterSpace::check(std::uint32_t address, std::size_t size, bool forWriting) const
{
    const std::uint64_t end = std::uint64_t{address} + size;
    std::uint64_t at = address;
    bool isWritable = true;
    for (const Range& range : m_ranges) {
        if (at < end && range.begin <= at && at < range.end) {
            isWritable = isWritable && range.isWritable;
            at = range.end;
        }
    }
    if (at < end) {
        return gvcp::Status::InvalidAddress;
    }
    return forWriting && !isWritable ? gvcp::Status::WriteProtected : gvcp::Status::Success;
}

gvcp::Status RegisterSpace::checkRead(std::uint32_t address, std::size_t size) const
{
    return check(address, size, false);
}

gvcp::Status RegisterSpace::checkWrite(std::uint32_t address, std::size_t size) const
{
    return check(address, size, true);
}

std::span<const std::uint8_t> RegisterSpace::bytesFrom(std::uint32_t address) const
{
    if (address >= DescriptionAddress) {
        return std::span(m_description->bytes).subspan(address - DescriptionAddress);
    }
    if (address >= FeatureAddress) {
        return std::span(m_features).subspan(address - FeatureAddress);
    }
    return std::span(m_bootstrap).subspan(address);
}

void RegisterSpace::read(std::uint32_t address, std::span<std::uint8_t> to) const
{
    const auto from = bytesFrom(address).first(to.size());
    std::copy(from.begin(), from.end(), to.begin());
}

std::uint32_t RegisterSpace::get(std::uint32_t address) const
{
    return bytes::get32(bytesFrom(address), 0);
}

void RegisterSpace::set(std::uint32_t address, std::uint32_t value)
{
    if (address >= FeatureAddress) {
        bytes::put32(m_features, address - FeatureAddress, value);
    } else {
        bytes::put32(m_bootstrap, address, value);
    }
}

void RegisterSpace::setText(std::uint32_t address, std::size_t size, std::string_view text)
{
    const auto field = std::span(m_bootstrap).subspan(address, size);
    std::fill(field.begin(), field.end(), std::uint8_t{0});
    std::copy_n(text.begin(), std::min(text.size(), size), field.begin());
}

std::string RegisterSpace::text(std::uint32_t address, std::size_t size) const
{
    const auto field = std::span(m_bootstrap).subspan(address, size);
    return {field.begin(), std::find(field.begin(), field.end(), std::uint8_t{0})};
}

} // namespace sim
