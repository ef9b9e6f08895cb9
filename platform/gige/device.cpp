#include "gige/device.h"

#include "gige/arguments.h"
#include "gige/errors.h"
#include "gige/nodemap.h"
#include "gige/record.h"
#include "gige/trace.h"

#include <array>

namespace gige {

namespace {

gvcp::Identity readIdentity(CameraPort& port)
{
    using namespace gvcp::Register;
    static_assert(Version == 0); // so that each address is an offset as well
    std::array<std::uint8_t, gvcp::DiscoveryAck::Size> registers{};
    try {
        port.read(Version, registers);
    } catch (const RefusalException&) {
        // Most of what lies between is reserved, and a camera need not let it be read. Texts can be done
        // without.
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
    } catch (const RefusalException&) {
        return false; // an early camera without the register
    }
}

/// Who holds the camera, as far as it tells: " (on 192.168.1.7)".
std::string holder(CameraPort& port)
{
    try {
        const net::Ipv4 address{port.readRegister(gvcp::Register::PrimaryApplicationIp)};
        return address == net::Ipv4{} ? std::string() : " (on " + net::formatIpv4(address) + ")";
    } catch (const GenICam::GenericException&) {
        return {};
    }
}

void giveBackControl(CameraPort& port)
{
    try {
        port.writeRegister(gvcp::Register::ControlChannelPrivilege, gvcp::Privilege::Open);
    } catch (const GenICam::AccessException&) {
        trace::requests(ozlog::LogLevel::Info, "Camera %hs had taken its control back already.",
                        net::formatIpv4(port.address()).c_str());
    }
}

void takeControl(CameraPort& port)
{
    try {
        port.writeRegister(gvcp::Register::ControlChannelPrivilege, gvcp::Privilege::Control);
    } catch (const GenICam::AccessException&) {
        port.setPlan(quickPlan());
        raise<GenICam::AccessException>("Camera " + net::formatIpv4(port.address()) +
                                        " is controlled by another application" + holder(port));
    } catch (const GenICam::TimeoutException&) {
        // Perhaps only the answers were lost.
        port.setPlan(quickPlan());
        try {
            giveBackControl(port);
        } catch (const GenICam::GenericException& failure) {
            trace::requests(ozlog::LogLevel::Info, "%hs", failure.GetDescription());
        }
        throw;
    }
}

net::Ipv4 addressOf(const Tessal::CDeviceInfo& info)
{
    GenICam::gcstring text;
    info.GetPropertyValue(Tessal::Key::IpAddress, text);
    return addressArgument(text, "address of a camera");
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
        trace::requests(ozlog::LogLevel::Warning, "A camera could not be closed: %hs", failure.what());
    }
}

void Device::Open(const Tessal::AccessModeSet&)
{
    if (IsOpen()) {
        return;
    }
    const net::Ipv4 address = addressOf(m_info);
    if (address == net::Ipv4{}) { // for the kernel this computer itself
        raise<GenICam::RuntimeException>("The camera has no IP address yet");
    }
    m_checkAddress(address, std::nullopt);
    auto opened = std::make_unique<CameraPort>(address);
    const gvcp::Identity identity = readIdentity(*opened);
    m_checkAddress(address, identity.mac);
    opened->setWriteMemGranted(grantsWriteMem(*opened));
    Tessal::CDeviceInfo info = makeRecord(identity, opened->hostAddress());
    takeControl(*opened); // last, so that no failure leaves the camera ours
    m_info = std::move(info);
    m_port = std::move(opened);
}

void Device::Close()
{
    m_nodeMap.reset();
    if (const auto closing = std::move(m_port)) {
        closing->setPlan(quickPlan());
        giveBackControl(*closing);
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

void Device::writeChecked(std::uint32_t address, std::uint32_t value, const char* what, std::uint32_t judged)
{
    port().writeRegister(address, value);
    const std::uint32_t kept = port().readRegister(address);
    if ((kept & judged) != (value & judged)) {
        raise<GenICam::RuntimeException>("Camera " + net::formatIpv4(port().address()) +
                                         " did not keep the " + what + ": it was given " + hex(value) +
                                         " and has " + hex(kept));
    }
}

void Device::SetIpConfigMode(bool enablePersistentIp, bool enableDhcp)
{
    using namespace gvcp::IpConfig;
    const std::uint32_t others =
        port().readRegister(gvcp::Register::IpConfigCurrent) & ~(Persistent | Dhcp | LinkLocal);
    const std::uint32_t modes = LinkLocal | (enablePersistentIp ? Persistent : 0) | (enableDhcp ? Dhcp : 0);
    // The other bits may be read-only or change by themselves.
    writeChecked(gvcp::Register::IpConfigCurrent, others | modes, "IP configuration mode", Persistent | Dhcp);
}

void Device::SetPersistentIp(const GenICam::gcstring& ipAddress, const GenICam::gcstring& subnetMask,
                             const GenICam::gcstring& defaultGateway)
{
    const net::Ipv4 ip = addressArgument(ipAddress, "IP address");
    const bool isInForce =
        (port().readRegister(gvcp::Register::IpConfigCurrent) & gvcp::IpConfig::Persistent) != 0;
    const net::Ipv4 mask = storedAddressArgument(subnetMask, "subnet mask", isInForce);
    const net::Ipv4 gateway = storedAddressArgument(defaultGateway, "default gateway", isInForce);
    writeChecked(gvcp::Register::PersistentIp, ip.value, "static IP address");
    writeChecked(gvcp::Register::PersistentMask, mask.value, "static subnet mask");
    writeChecked(gvcp::Register::PersistentGateway, gateway.value, "static default gateway");
}

} // namespace gige
