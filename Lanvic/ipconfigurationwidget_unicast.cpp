#include "ipconfigurationwidget.h"

#include "DeviceLister.h"
#include "WaitBox.h"
#include "editedconfiguration.h"
#include "failurereports.h"
#include "recorddisplay.h"
#include "trace.h"

#include "ozlog/ozlog.h"
#include "qtbase/failuretexts.h"
#include "qtbase/formatting.h"

#include <exception>

using ozlog::LogLevel;
using ozlog::LogTrace;

namespace {

/// Writes the name through the camera's node map. Throws GenICam::RuntimeException, with the reason nested in
/// it, if that fails.
void writeDeviceUserId(const GenApi::INodeMap& nodeMap, const QByteArray& name, const QByteArray& oldIp)
{
    try {
        LogTrace(GetIPConfigBaseCatID(), LogLevel::Info,
                 "Setting DeviceUserID to '%hs' for device with old IP=%hs.", name, oldIp);
        const GenApi::CPointer<GenApi::IString, GenApi::IBase> userId(nodeMap.GetNode("DeviceUserID"));
        userId->SetValue(name.constData(), true);
    } catch (const std::exception& exception) {
        LogTrace(GetIPConfigBaseCatID(), LogLevel::Error,
                 "Error setting DeviceUserID of device with old IP=%hs. Err='%hs'", oldIp, exception.what());
        // The reason stays attached, for the user and for support.
        std::throw_with_nested(Translated(
            GenICam::ExceptionReporter<GenICam::RuntimeException>(__FILE__, __LINE__, "RuntimeException")
                .Report("Could not update DeviceUserID."),
            IpConfigurationWidget::tr("Could not update DeviceUserID.")));
    }
}

/// Returns false, and writes nothing, if no mode is selected.
bool writeAddressingMode(Tessal::ITessalGigEDevice& device, const AddressingMode& mode,
                         const QByteArray& oldIp)
{
    const unsigned long category = GetIPConfigBaseCatID();
    if (mode.persistentIp) {
        LogTrace(category, LogLevel::Info, "Setting ip config for device with old IP=%hs to static IP.",
                 oldIp);
    } else if (mode.dhcp) {
        LogTrace(category, LogLevel::Info, "Setting ip config for device with old IP=%hs to DHCP.", oldIp);
    } else if (mode.autoIp) {
        LogTrace(category, LogLevel::Info, "Setting ip config for device with old IP=%hs to AutoIP/LLA",
                 oldIp);
    } else {
        LogTrace(category, LogLevel::Error,
                 "Invalid addresstype for old IP=%hs! Don't know which addressing to use.", oldIp);
        return false;
    }
    device.SetIpConfigMode(mode.persistentIp, mode.dhcp);
    return true;
}

void logOpened(const Tessal::COrvikGigEDeviceInfo& record, const QByteArray& oldIp)
{
    LogTrace(GetIPConfigBaseCatID(), LogLevel::Info,
             "Successfully opened device with old IP=%hs; Netmask=%hs; Gateway=%hs; IPConfig='%hs' to change "
             "IP configuration via unicast.",
             oldIp, record.GetSubnetMask(), record.GetDefaultGateway(),
             formatIPConfiguration(record.GetIpConfigCurrent(), 0).toLocal8Bit());
}

/// Whether the address now belongs to another camera than when the row was listed. Unknown, and so false,
/// unless both MAC addresses are known.
bool isAnotherCamera(const Tessal::COrvikGigEDeviceInfo& opened, const QString& expectedMac)
{
    const QString mac = fromAscii(opened.GetMacAddress());
    return !mac.isEmpty() && !expectedMac.isEmpty() && mac.compare(expectedMac, Qt::CaseInsensitive) != 0;
}

Tessal::FailureOf<GenICam::RuntimeException> anotherCameraAnswers(const Tessal::COrvikGigEDeviceInfo& opened,
                                                                  const QString& expectedMac)
{
    const GenICam::gcstring address = opened.GetIpAddress();
    const GenICam::gcstring mac = opened.GetMacAddress();
    return {GenICam::ExceptionReporter<GenICam::RuntimeException>(__FILE__, __LINE__, "RuntimeException")
                .Report("The camera with MAC %s was expected at %s, where the one with MAC %s answers",
                        expectedMac.toLatin1().constData(), address.c_str(), mac.c_str()),
            {.kind = Tessal::FailureKind::AnotherCameraAnswers,
             .address = address.c_str(),
             .mac = expectedMac.toStdString(),
             .other = mac.c_str()}};
}

} // namespace

bool IpConfigurationWidget::unicastConfiguration(const QString& ipAddress)
{
    const QByteArray oldIp = ipAddress.toLatin1();
    const Tessal::COrvikGigEDeviceInfo* const selected = GetSelectedDeviceInfo();
    const QString expectedMac = selected != nullptr ? fromAscii(selected->GetMacAddress()) : QString();
    return showFailure("unicastConfiguration", [&] {
        LogTrace(GetIPConfigBaseCatID(), LogLevel::Info,
                 "Trying open device with old IP=%hs to change IP configuration via unicast.", oldIp);
        openDevice(ipAddress);
        if (m_pDevice == nullptr || !m_pDevice->IsOpen()) {
            LogTrace(GetIPConfigBaseCatID(), LogLevel::Error,
                     "Could not open device with old IP=%hs to change IP configuration via unicast.", oldIp);
            return false;
        }
        const Tessal::COrvikGigEDeviceInfo record(m_pDevice->GetDeviceInfo());
        if (isAnotherCamera(record, expectedMac)) {
            closeDevice();
            throw anotherCameraAnswers(record, expectedMac);
        }
        logOpened(record, oldIp);
        const WaitCursor cursor;
        if (!writeEditedSettings(record, oldIp)) {
            return false;
        }
        restartAfterUnicast(fromAscii(record.GetMacAddress()), oldIp);
        return true;
    });
}

bool IpConfigurationWidget::writeEditedSettings(const Tessal::COrvikGigEDeviceInfo& record,
                                                const QByteArray& oldIp)
{
    const GenApi::INodeMap* nodeMap = m_pDevice->GetNodeMap();
    if (nodeMap == nullptr) {
        return false;
    }
    if (m_customNameModified) {
        writeDeviceUserId(*nodeMap, ui.editCustomName->text().toUtf8(), oldIp);
        m_sent.name = ui.editCustomName->text();
    }
    if (m_ipConfigModified) {
        const AddressingMode mode = addressingModeInUi();
        if (!writeAddressingMode(*m_pDevice, mode, oldIp)) {
            return false;
        }
        m_pDeviceLister->updateDeviceInfo(record.GetMacAddress(), mode.asIpConfig(record.IsAutoIpActive()),
                                          nullptr, nullptr, nullptr, false);
        m_sent.mode = mode;
    }
    if (areIpSettingsEdited()) {
        writePersistentIp(record.GetMacAddress(), oldIp);
    }
    clearDirtyFlags();
    return true;
}

void IpConfigurationWidget::writePersistentIp(const GenICam::gcstring& mac, const QByteArray& oldIp)
{
    const IpSettings settings = ipSettingsInUi();
    if (!isIPAddressValidForDevice(QString::fromLatin1(settings.ipAddress))) {
        LogTrace(GetIPConfigBaseCatID(), LogLevel::Error,
                 "Invalid new IP address '%hs' for device with old IP=%hs!", settings.ipAddress, oldIp);
        static const char* const description = QT_TR_NOOP(
            "Invalid IP address. IP addresses 224.0.0.0 to 255.255.255.255 and 127.0.0.1 are not allowed.");
        throw Translated(
            GenICam::ExceptionReporter<GenICam::RuntimeException>(__FILE__, __LINE__, "RuntimeException")
                .Report("%s", description),
            tr(description));
    }
    LogTrace(GetIPConfigBaseCatID(), LogLevel::Info,
             "Setting persitent IP address for device with old IP=%hs (NewIP=%hs; NewNetmask=%hs; "
             "NewGateway=%hs;).",
             oldIp, settings.ipAddress, settings.subnetMask, settings.defaultGateway);
    m_pDevice->SetPersistentIp(settings.ipAddress.constData(), settings.subnetMask.constData(),
                               settings.defaultGateway.constData());
    m_sent.settings = settings;
    m_pDeviceLister->updateDeviceInfo(mac, nullptr, settings.ipAddress, settings.subnetMask,
                                      settings.defaultGateway, false);
}

void IpConfigurationWidget::restartAfterUnicast(const QString& mac, const QByteArray& oldIp)
{
    LogTrace(GetIPConfigBaseCatID(), LogLevel::Info, "Closing device with old IP=%hs.", oldIp);
    closeDevice();
    LogTrace(GetIPConfigBaseCatID(), LogLevel::Info, "Finished configuring device with old IP=%hs.", oldIp);
    restartDevice(mac, "Failed to rediscover the configured device with old IP=%hs.", oldIp);
}
