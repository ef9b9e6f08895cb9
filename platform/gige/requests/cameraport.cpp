#include "cameraport.h"

#include "errors.h"
#include "gvcp/bytes.h"
#include "log.h"

#include <algorithm>
#include <array>

namespace gige {

namespace {

using namespace std::chrono_literals;

constexpr std::array<std::chrono::milliseconds, 7> patientSends{0ms,    100ms,  300ms, 600ms,
                                                                1000ms, 1400ms, 1800ms};
constexpr std::array<std::chrono::milliseconds, 4> quickSends{0ms, 60ms, 150ms, 300ms};

constexpr std::uint64_t registerSpace = std::uint64_t{1} << 32; // bytes

void checkRange(std::uint32_t address, std::size_t size)
{
    if (size > registerSpace - address) {
        raise<GenICam::InvalidArgumentException>({.kind = Tessal::FailureKind::FeatureUnusable},
                                                 "Register " + hex(address) + " and the " +
                                                     std::to_string(size) +
                                                     " bytes from there on are beyond the register space");
    }
}

Tessal::Setting settingWrittenAt(std::uint32_t address)
{
    using namespace gvcp::Register;
    switch (address) {
    case ControlChannelPrivilege:
        return Tessal::Setting::Control;
    case IpConfigCurrent:
        return Tessal::Setting::IpConfigMode;
    case PersistentIp:
        return Tessal::Setting::IpAddress;
    case PersistentMask:
        return Tessal::Setting::SubnetMask;
    case PersistentGateway:
        return Tessal::Setting::DefaultGateway;
    default:
        break;
    }
    const bool isName = address >= UserDefinedName && address < gvcp::DiscoveryAck::Size;
    return isName ? Tessal::Setting::Name : Tessal::Setting::None;
}

/// A failed read is never about the new value of a setting.
Tessal::Setting settingReadAt(std::uint32_t address)
{
    if (address == gvcp::Register::ControlChannelPrivilege) {
        return Tessal::Setting::Control;
    }
    return address < gvcp::DiscoveryAck::Size ? Tessal::Setting::Identity : Tessal::Setting::None;
}

/// A register's value as the text of a Failure; empty for registers that are not a setting of their own.
std::string textOf(std::uint32_t value, Tessal::Setting setting)
{
    switch (setting) {
    case Tessal::Setting::IpConfigMode:
        return std::to_string(value);
    case Tessal::Setting::IpAddress:
    case Tessal::Setting::SubnetMask:
    case Tessal::Setting::DefaultGateway:
        return net::formatIpv4({value});
    default:
        return {};
    }
}

} // namespace

RetryPlan patientPlan()
{
    return {.sendAt = patientSends, .giveUpAfter = 2500ms};
}

RetryPlan quickPlan()
{
    return {.sendAt = quickSends, .giveUpAfter = 500ms};
}

CameraPort::CameraPort(net::Ipv4 address, int adapterIndex) : m_address(address)
{
    m_socket.connect({address, gvcp::Port}, adapterIndex);
}

void CameraPort::read(std::uint32_t address, std::span<std::uint8_t> to)
{
    readBlocks(address, to, &CameraPort::readAnyBlock);
}

void CameraPort::readMemory(std::uint32_t address, std::span<std::uint8_t> to)
{
    readBlocks(address, to, &CameraPort::readMemoryBlock);
}

void CameraPort::readBlocks(std::uint32_t address, std::span<std::uint8_t> to, ReadBlock readBlock)
{
    checkRange(address, to.size());
    std::array<std::uint8_t, gvcp::MaxDataSize> aligned{};
    while (!to.empty()) {
        const std::uint32_t skipped = address % gvcp::RegisterSize;
        const std::size_t taken = std::min(to.size(), aligned.size() - skipped);
        const std::size_t wanted =
            (skipped + taken + gvcp::RegisterSize - 1) / gvcp::RegisterSize * gvcp::RegisterSize;
        const auto block = std::span(aligned).first(wanted);
        (this->*readBlock)(address - skipped, block);
        std::ranges::copy(block.subspan(skipped, taken), to.begin());
        to = to.subspan(taken);
        address += static_cast<std::uint32_t>(taken);
    }
}

void CameraPort::readAnyBlock(std::uint32_t address, std::span<std::uint8_t> to)
{
    if (to.size() == gvcp::RegisterSize) {
        bytes::put32(to, 0, readRegister(address));
    } else {
        readMemoryBlock(address, to);
    }
}

void CameraPort::readMemoryBlock(std::uint32_t address, std::span<std::uint8_t> to)
{
    const gvcp::Packet answer =
        makeExchange(Request::readMemory(address, static_cast<std::uint16_t>(to.size())),
                     "READMEM of " + std::to_string(to.size()) + " bytes at " + hex(address),
                     settingReadAt(address))
            .run();
    std::ranges::copy(gvcp::decodeReadMemAck(answer, address, to.size()).value(), to.begin());
}

std::uint32_t CameraPort::readRegister(std::uint32_t address)
{
    const gvcp::Packet answer =
        makeExchange(Request::readRegister(address), "READREG of " + hex(address), settingReadAt(address))
            .run();
    return gvcp::decodeReadRegAck(answer).value();
}

void CameraPort::writeRegister(std::uint32_t address, std::uint32_t value)
{
    std::array<std::uint8_t, gvcp::RegisterSize> word{};
    bytes::put32(word, 0, value);
    writeBlock(address, word);
}

void CameraPort::write(std::uint32_t address, std::span<const std::uint8_t> from)
{
    checkRange(address, from.size());
    if (address % gvcp::RegisterSize != 0 || from.size() % gvcp::RegisterSize != 0) {
        raise<GenICam::InvalidArgumentException>(
            {.kind = Tessal::FailureKind::FeatureUnusable, .address = net::formatIpv4(m_address)},
            "Cannot write " + std::to_string(from.size()) + " bytes at " + hex(address) +
                ": address and length must be multiples of 4");
    }
    while (!from.empty()) {
        const auto block =
            from.first(m_writeMemGranted ? std::min(from.size(), gvcp::MaxDataSize) : gvcp::RegisterSize);
        try {
            writeBlock(address, block);
        } catch (const GenICam::GenericException& refusal) {
            if (block.size() == gvcp::RegisterSize || !isRefusal(refusal)) {
                throw;
            }
            logRequest(ozlog::LogLevel::Info, "%hs; trying register by register.", refusal.GetDescription());
            m_writeMemGranted = false;
            continue;
        }
        from = from.subspan(block.size());
        address += static_cast<std::uint32_t>(block.size());
    }
}

Exchange CameraPort::makeWriteExchange(std::uint32_t address, std::span<const std::uint8_t> block) const
{
    if (block.size() != gvcp::RegisterSize) {
        return makeExchange(Request::writeMemory(address, block),
                            "WRITEMEM of " + std::to_string(block.size()) + " bytes at " + hex(address),
                            settingWrittenAt(address));
    }
    const std::uint32_t value = bytes::get32(block, 0);
    return makeExchange(Request::writeRegister(address, value),
                        "WRITEREG of " + hex(value) + " to " + hex(address), settingWrittenAt(address),
                        textOf(value, settingWrittenAt(address)));
}

void CameraPort::writeBlock(std::uint32_t address, std::span<const std::uint8_t> block)
{
    Exchange writing = makeWriteExchange(address, block);
    try {
        static_cast<void>(writing.run());
    } catch (const GenICam::TimeoutException&) {
        // A camera that asked for more time has received the command; perhaps only its final answer was lost.
        // (The privilege may read as wanted because another application has it.)
        if (!writing.askedForMoreTime() || address == gvcp::Register::ControlChannelPrivilege ||
            !holds(address, block)) {
            throw;
        }
    }
}

bool CameraPort::holds(std::uint32_t address, std::span<const std::uint8_t> block)
{
    std::vector<std::uint8_t> kept(block.size());
    try {
        read(address, kept);
    } catch (const GenICam::GenericException& failure) {
        logRequest(ozlog::LogLevel::Info, "%hs", failure.GetDescription());
        return false;
    }
    return std::ranges::equal(kept, block);
}

Exchange CameraPort::makeExchange(Request request, std::string what, Tessal::Setting setting,
                                  std::string wanted) const
{
    return {m_socket,
            std::move(request),
            {.camera = m_address, .what = std::move(what), .setting = setting, .wanted = std::move(wanted)},
            m_plan,
            deadline()};
}

} // namespace gige
