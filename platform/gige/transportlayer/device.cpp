#include "device.h"

#include "arguments.h"
#include "errors.h"
#include "log.h"
#include "nodemap.h"
#include "record.h"

#include <array>
#include <chrono>
#include <string>

namespace gige {

namespace {

using namespace std::chrono_literals;

constexpr auto openingTime = 14s;
constexpr auto releasingTime = 1s; // left for giving control back if opening fails
static_assert(openingTime + releasingTime <= MaxOperationTime);

gvcp::Identity readIdentity(CameraPort& port)
{
    using namespace gvcp::Register;
    static_assert(Version == 0); // so that each address is also an offset
    std::array<std::uint8_t, gvcp::DiscoveryAck::Size> registers{};
    try {
        port.read(Version, registers);
    } catch (const GenICam::GenericException& failure) {
        if (!isRefusal(failure)) {
            throw;
        }
        // Most of the space between the registers is reserved, and a camera need not let it be read. The
        // texts can be left out.
        for (const std::uint32_t address :
             {MacHigh, MacLow, IpConfigSupported, IpConfigCurrent, CurrentIp, CurrentMask, CurrentGateway}) {
            port.read(address, std::span(registers).subspan(address, 4));
        }
    }
    return gvcp::decodeIdentity(registers).value();
}

bool grantsWriteMem(CameraPort& port)
{
    try {
        return (port.readRegister(gvcp::Register::Capability) & gvcp::Capability::WriteMem) != 0;
    } catch (const GenICam::GenericException& failure) {
        if (!isRefusal(failure)) {
            throw;
        }
        return false; // an older camera without the register
    }
}

/// The computer whose application has control, if the camera tells; otherwise 0.0.0.0.
net::Ipv4 holderOf(CameraPort& port)
{
    try {
        return {port.readRegister(gvcp::Register::PrimaryApplicationIp)};
    } catch (const GenICam::GenericException&) {
        return {};
    }
}

void giveBackControl(CameraPort& port, std::chrono::seconds time)
{
    const TimeLimit limit(port, time);
    try {
        port.writeRegister(gvcp::Register::ControlChannelPrivilege, gvcp::Privilege::Open);
    } catch (const GenICam::AccessException&) {
        logRequest(ozlog::LogLevel::Info, "Camera %hs had already released control.",
                   net::formatIpv4(port.address()).c_str());
    }
}

[[noreturn]] void raiseControlledElsewhere(CameraPort& port)
{
    port.setPlan(quickPlan());
    const net::Ipv4 holder = holderOf(port);
    const std::string camera = net::formatIpv4(port.address());
    const std::string other = holder == net::Ipv4{} ? std::string() : net::formatIpv4(holder);
    raise<GenICam::AccessException>({.kind = Tessal::FailureKind::ControlledElsewhere,
                                     .setting = Tessal::Setting::Control,
                                     .address = camera,
                                     .other = other},
                                    "Camera " + camera + " is controlled by another application" +
                                        (other.empty() ? "" : " (on " + other + ")"));
}

/// For use after a failed opening, even one that has used up its time.
void tryToGiveBackControl(CameraPort& port)
{
    const RegisterPort::TimePoint deadline = port.deadline();
    port.setDeadline(RegisterPort::TimePoint::max());
    port.setPlan(quickPlan());
    try {
        giveBackControl(port, releasingTime);
    } catch (const GenICam::GenericException& failure) {
        logRequest(ozlog::LogLevel::Info, "%hs", failure.GetDescription());
    }
    port.setDeadline(deadline);
}

/// Leaves the camera free if it fails.
void takeControl(CameraPort& port)
{
    try {
        port.writeRegister(gvcp::Register::ControlChannelPrivilege, gvcp::Privilege::Control);
    } catch (const GenICam::AccessException&) {
        // If the answer that grants control was lost, the camera may refuse the repeat. Giving control back
        // does not take it from another program on this computer: the camera accepts that only from its
        // owner.
        if (holderOf(port) == port.hostAddress()) {
            tryToGiveBackControl(port);
        }
        raiseControlledElsewhere(port);
    } catch (const GenICam::GenericException&) {
        // The camera may have granted control nevertheless: its answer may have been lost or unusable.
        tryToGiveBackControl(port);
        throw;
    }
}

/// Whether a failed opening shows that there is a camera at the address, so that another address would not
/// help.
bool wasReached(const Tessal::Failure& failure, bool isIdentified)
{
    switch (failure.kind) {
    case Tessal::FailureKind::Refused:
    case Tessal::FailureKind::Busy:
    case Tessal::FailureKind::AskedForMoreTime:
    case Tessal::FailureKind::UnusableAnswers:
        return true;
    case Tessal::FailureKind::NoAnswer:
        return isIdentified;
    default:
        return false;
    }
}

const char* nameOf(Tessal::Setting setting)
{
    switch (setting) {
    case Tessal::Setting::IpConfigMode:
        return "IP configuration mode";
    case Tessal::Setting::IpAddress:
        return "static IP address";
    case Tessal::Setting::SubnetMask:
        return "static subnet mask";
    default:
        return "static default gateway";
    }
}

/// Throws an E that adds the settings that the camera stored before the failure.
template <typename E>
[[noreturn]] void raiseWithKept(const E& exception, const std::vector<Tessal::Setting>& kept)
{
    const Tessal::Failure* const original = failureOf(exception);
    Tessal::Failure failure = original == nullptr ? Tessal::Failure{} : *original;
    failure.kept = kept;
    std::string text = std::string(exception.GetDescription()) + "; the camera already has the new ";
    for (std::size_t i = 0; i < kept.size(); ++i) {
        text += std::string(i == 0 ? "" : ", ") + nameOf(kept[i]);
    }
    raise<E>(std::move(failure), text);
}

net::Ipv4 addressOf(const Tessal::CDeviceInfo& info)
{
    GenICam::gcstring text;
    info.GetPropertyValue(Tessal::Key::IpAddress, text);
    return addressArgument(text, Tessal::Setting::None);
}

} // namespace

Device::Device(Tessal::CDeviceInfo info, CheckAddress checkAddress)
    : m_info(std::move(info)), m_checkAddress(std::move(checkAddress))
{}

Device::~Device()
{
    try {
        Device::Close();
    } catch (const std::exception& failure) {
        logRequest(ozlog::LogLevel::Warning, "A camera could not be closed: %hs", failure.what());
    }
}

void Device::Open(const Tessal::AccessModeSet&)
{
    if (IsOpen()) {
        return;
    }
    const net::Ipv4 address = addressOf(m_info);
    if (address == net::Ipv4{}) { // which the kernel takes for this computer
        raise<GenICam::RuntimeException>({.kind = Tessal::FailureKind::NoAddress},
                                         "The camera has no IP address yet");
    }
    const int adapterIndex = m_checkAddress(address, std::nullopt);
    bool isIdentified = false;
    try {
        auto opened = std::make_unique<CameraPort>(address, adapterIndex);
        const TimeLimit limit(*opened, openingTime);
        const gvcp::Identity identity = readIdentity(*opened);
        static_cast<void>(m_checkAddress(address, identity.mac));
        isIdentified = true;
        opened->setWriteMemGranted(grantsWriteMem(*opened));
        Tessal::CDeviceInfo info = makeRecord(identity, opened->hostAddress());
        takeControl(*opened); // last, so that no failure leaves the camera controlled
        m_info = std::move(info);
        m_port = std::move(opened);
        m_kept.clear();
    } catch (const GenICam::AccessException&) {
        throw;
    } catch (const GenICam::GenericException& exception) {
        const Tessal::Failure* const failure = failureOf(exception);
        if (failure == nullptr || !wasReached(*failure, isIdentified)) {
            throw;
        }
        raise<GenICam::LogicalErrorException>(*failure, exception.GetDescription());
    }
}

void Device::Close()
{
    m_nodeMap.reset();
    if (const auto closing = std::move(m_port)) {
        giveBackControl(*closing, MaxOperationTime);
    }
}

GenApi::INodeMap* Device::GetNodeMap()
{
    if (!m_nodeMap && m_port) {
        m_nodeMap = makeNodeMap(*m_port);
    }
    return m_nodeMap.get();
}

CameraPort& Device::port()
{
    if (!m_port) {
        raise<GenICam::LogicalErrorException>("The camera is not open");
    }
    return *m_port;
}

void Device::writeChecked(const Write& write)
{
    port().writeRegister(write.address, write.value);
    const std::uint32_t kept = port().readRegister(write.address);
    if ((kept & write.comparedBits) != (write.value & write.comparedBits)) {
        const auto text = [&](std::uint32_t value) {
            return write.setting == Tessal::Setting::IpConfigMode ? std::to_string(value)
                                                                  : net::formatIpv4({value});
        };
        const std::string camera = net::formatIpv4(port().address());
        raise<GenICam::RuntimeException>({.kind = Tessal::FailureKind::NotKept,
                                          .setting = write.setting,
                                          .address = camera,
                                          .wanted = text(write.value),
                                          .actual = text(kept)},
                                         "Camera " + camera + " did not keep the " + nameOf(write.setting) +
                                             ": it was given " + hex(write.value) + " and has " + hex(kept));
    }
    m_kept.push_back(write.setting);
}

void Device::configure(const std::function<void()>& writeAll)
{
    const TimeLimit limit(port(), MaxOperationTime);
    const auto add = [this](const auto& exception) {
        if (m_kept.empty()) {
            throw;
        }
        raiseWithKept(exception, m_kept);
    };
    try {
        writeAll();
    } catch (const GenICam::AccessException& exception) {
        add(exception);
    } catch (const GenICam::TimeoutException& exception) {
        add(exception);
    } catch (const GenICam::InvalidArgumentException& exception) {
        add(exception);
    } catch (const GenICam::RuntimeException& exception) {
        add(exception);
    }
}

void Device::SetIpConfigMode(bool enablePersistentIp, bool enableDhcp)
{
    using namespace gvcp::IpConfig;
    configure([&] {
        const std::uint32_t others =
            port().readRegister(gvcp::Register::IpConfigCurrent) & ~(Persistent | Dhcp | LinkLocal);
        const std::uint32_t modes =
            LinkLocal | (enablePersistentIp ? Persistent : 0) | (enableDhcp ? Dhcp : 0);
        writeChecked(
            {.setting = Tessal::Setting::IpConfigMode,
             .address = gvcp::Register::IpConfigCurrent,
             .value = others | modes,
             .comparedBits = Persistent | Dhcp}); // the others may be read-only or change by themselves
    });
}

void Device::SetPersistentIp(const GenICam::gcstring& ipAddress, const GenICam::gcstring& subnetMask,
                             const GenICam::gcstring& defaultGateway)
{
    using Tessal::Setting;
    using namespace gvcp::Register;
    const net::Ipv4 ip = addressArgument(ipAddress, Setting::IpAddress);
    configure([&] {
        const bool isInForce = (port().readRegister(IpConfigCurrent) & gvcp::IpConfig::Persistent) != 0;
        const net::Ipv4 mask = storedAddressArgument(subnetMask, Setting::SubnetMask, isInForce);
        const net::Ipv4 gateway = storedAddressArgument(defaultGateway, Setting::DefaultGateway, isInForce);
        writeChecked({.setting = Setting::IpAddress, .address = PersistentIp, .value = ip.value});
        writeChecked({.setting = Setting::SubnetMask, .address = PersistentMask, .value = mask.value});
        writeChecked(
            {.setting = Setting::DefaultGateway, .address = PersistentGateway, .value = gateway.value});
    });
}

} // namespace gige
