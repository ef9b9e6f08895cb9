#include "ipconfigurationwidget.h"

#include "DeviceLister.h"
#include "WaitBox.h"
#include "confirmation.h"
#include "editedconfiguration.h"
#include "failurereports.h"
#include "recorddisplay.h"
#include "trace.h"

#include "ozlog/ozlog.h"
#include "qtbase/failuretexts.h"
#include "qtbase/formatting.h"
#include "qtbase/messages.h"

#include <QCoreApplication>
#include <QMessageBox>

#include <algorithm>
#include <unistd.h>

using ozlog::LogLevel;
using ozlog::LogTrace;

namespace {

constexpr unsigned int secondsBetweenSearches = 2;            // A signal may cut one short.
constexpr int maxSearches = 30;                               // A camera has a good minute to come back.
constexpr std::chrono::milliseconds expectedSearchTime{2500}; // The sleep and half a second for the search.

/// Logs what is about to be sent. Returns false if no mode is selected.
bool logBroadcast(const QByteArray& mac, const AddressingMode& mode, const IpSettings& settings)
{
    const unsigned long category = GetIPConfigBaseCatID();
    if (mode.persistentIp) {
        LogTrace(category, LogLevel::Info,
                 "Trying broadcast ip config for MAC=%hs setting static IP (NewIP=%hs; NewNetmask=%hs; "
                 "NewGateway=%hs;).",
                 mac, settings.ipAddress, settings.subnetMask, settings.defaultGateway);
    } else if (mode.dhcp) {
        LogTrace(category, LogLevel::Info, "Trying broadcast ip config for MAC=%hs setting DHCP.", mac);
    } else if (mode.autoIp) {
        LogTrace(category, LogLevel::Info, "Trying broadcast ip config for MAC=%hs setting AutoIP/LLA.", mac);
    } else {
        LogTrace(category, LogLevel::Error,
                 "Invalid addresstype for MAC=%hs! Don't know which addressing to use.", mac);
        return false;
    }
    return true;
}

bool sendBroadcast(const QByteArray& mac, const AddressingMode& mode, const IpSettings& settings,
                   const QByteArray& userDefinedName)
{
    return DeviceLister::s_pTl->BroadcastIpConfig(
        mac.constData(), mode.persistentIp, mode.dhcp, settings.ipAddress.constData(),
        settings.subnetMask.constData(), settings.defaultGateway.constData(), userDefinedName.constData());
}

/// Returns null if no record has that MAC address.
const Tessal::COrvikGigEDeviceInfo* findByMac(const Tessal::DeviceInfoList& cameras, const QString& mac)
{
    const auto found =
        std::find_if(cameras.begin(), cameras.end(), [&mac](const Tessal::COrvikGigEDeviceInfo& camera) {
            return mac.compare(fromAscii(camera.GetMacAddress()), Qt::CaseInsensitive) == 0;
        });
    return found != cameras.end() ? &*found : nullptr;
}

} // namespace

void IpConfigurationWidget::on_btnWriteConfiguration_clicked()
{
    // After Ctrl+S the button is shown pressed for a moment before it acts. In that time the user may have
    // selected another camera, which must not receive the values typed for the first one.
    if (isBusy() || !ui.btnWriteConfiguration->isEnabled()) {
        return;
    }
    showFailure("on_btnWriteConfiguration_clicked", [this] { return saveSelectedCamera(); });
}

/// Returns whether the configuration was saved.
bool IpConfigurationWidget::saveSelectedCamera()
{
    const Tessal::COrvikGigEDeviceInfo* record = GetSelectedDeviceInfo();
    if (record == nullptr) {
        return false;
    }
    // Read before the refresh, which disables the button and so makes Qt move the focus.
    const bool buttonHadFocus = focusWidget() == ui.btnWriteConfiguration;
    const bool isSaved = writeConfiguration(*record);
    if (isSaved) {
        clearDirtyFlags();
        stopEditing();
        updateTreeRowFromDeviceInfoByMac(fromAscii(record->GetMacAddress()));
        doRefresh();
        confirmSave();
    } else {
        showSaveFailure();
    }
    if (buttonHadFocus && !ui.btnWriteConfiguration->isEnabled()) {
        ui.treeWidget->setFocus(Qt::TabFocusReason);
    }
    return isSaved;
}

void IpConfigurationWidget::showSaveFailure()
{
    QMessageBox::critical(this, windowTitle(), tr("The configuration could not be saved."),
                          QMessageBox::Close, QMessageBox::Close);
}

bool IpConfigurationWidget::writeConfiguration(const Tessal::COrvikGigEDeviceInfo& deviceInfo)
{
    m_sent = {};
    try {
        if (broadcastConfiguration(fromAscii(deviceInfo.GetMacAddress()))) {
            recordSave(deviceInfo);
            return true;
        }
    } catch (const std::exception& exception) {
        qDebug("Broadcast Configuration failed! (err = '%s')", exception.what());
    }
    qDebug("Broadcast Configuration failed! Trying unicast configuration.");
    try {
        // The address is read here because an accepted broadcast has put the new one into the record.
        if (unicastConfiguration(fromAscii(deviceInfo.GetIpAddress()))) {
            recordSave(deviceInfo);
            return true;
        }
        return false;
    } catch (const std::exception& exception) {
        qDebug("unicast Configuration failed! (err = '%s')", exception.what());
        return false;
    }
}

void IpConfigurationWidget::recordSave(const Tessal::COrvikGigEDeviceInfo& deviceInfo)
{
    m_unconfirmedMac = fromAscii(deviceInfo.GetMacAddress());
    m_temporaryAddresses.remove(m_unconfirmedMac); // The camera has restarted.
}

/// Warns if the camera that was saved last does not report the values that were saved.
void IpConfigurationWidget::confirmSave()
{
    const QString saved = std::exchange(m_unconfirmedMac, {});
    // If the search after the save failed, another camera may have been waited for since.
    if (saved.isEmpty() ||
        saved.compare(fromAscii(m_rediscovered.GetMacAddress()), Qt::CaseInsensitive) != 0) {
        return;
    }
    const QString deviations = deviationsFrom(m_sent, m_rediscovered);
    if (!deviations.isEmpty()) {
        showWarningMessage(windowTitle(),
                           tr("The camera %1 does not report what was saved.")
                               .arg(formatMACAddress(m_rediscovered.GetMacAddress(), ":")),
                           deviations, this);
    }
}

AddressingMode IpConfigurationWidget::addressingModeInUi() const
{
    const auto isChosen = [](const QRadioButton* button) {
        return button->isEnabled() && button->isChecked();
    };
    return {.persistentIp = isChosen(ui.btnUsePersistentIp),
            .dhcp = isChosen(ui.btnUseDhcp),
            .autoIp = isChosen(ui.btnUseAutoIp)};
}

IpSettings IpConfigurationWidget::ipSettingsInUi() const
{
    return fixedUpIpSettings(ui.editIpAddress->text(), ui.editNetmask->text(), ui.editDefaultGateway->text());
}

bool IpConfigurationWidget::broadcastConfiguration(const QString& mac)
{
    return showFailure("broadcastConfiguration", [&] {
        const WaitCursor cursor;
        if (!storeByBroadcast(mac.toLatin1())) {
            return false;
        }
        restartAfterBroadcast(mac);
        return true;
    });
}

bool IpConfigurationWidget::storeByBroadcast(const QByteArray& mac)
{
    const IpSettings settings = ipSettingsInUi();
    const QByteArray userDefinedName = ui.editCustomName->text().trimmed().toUtf8();
    const AddressingMode mode = addressingModeInUi();
    if (!logBroadcast(mac, mode, settings)) {
        return false;
    }
    if (!sendBroadcast(mac, mode, settings, userDefinedName)) {
        LogTrace(GetIPConfigBaseCatID(), LogLevel::Warning,
                 "Failed to change IP configuration via broadcast for MAC=%hs. This is not an error. The "
                 "device may not support broadcast ip configuration.",
                 mac);
        return false;
    }
    LogTrace(GetIPConfigBaseCatID(), LogLevel::Info,
             "Successfully changed IP configuration via broadcast for MAC=%hs.", mac);
    m_sent = {.mode = mode, .settings = settings, .name = QString::fromUtf8(userDefinedName)};
    if (m_ipConfigModified) {
        m_pDeviceLister->updateDeviceInfo(mac, mode.asIpConfig(true), nullptr, nullptr, nullptr, false);
    }
    if (areIpSettingsEdited()) {
        m_pDeviceLister->updateDeviceInfo(mac, nullptr, settings.ipAddress, settings.subnetMask,
                                          settings.defaultGateway, false);
    }
    clearDirtyFlags();
    return true;
}

void IpConfigurationWidget::restartAfterBroadcast(const QString& mac)
{
    const QByteArray asciiMac = mac.toLatin1();
    LogTrace(GetIPConfigBaseCatID(), LogLevel::Info,
             "Restarting IP configuration and waiting for rediscovery for MAC=%hs.", asciiMac);
    restartDevice(mac, "Failed to rediscover the device with MAC=%hs.", asciiMac);
    LogTrace(GetIPConfigBaseCatID(), LogLevel::Info, "Successfully rediscovered MAC=%hs.", asciiMac);
}

/// Makes the camera adopt its stored configuration and waits until it is discovered again. If it is not, logs
/// `notFoundFormat` with `device` in it and throws GenICam::RuntimeException.
void IpConfigurationWidget::restartDevice(const QString& mac, ozlog::Format<QByteArray> notFoundFormat,
                                          const QByteArray& device)
{
    DeviceLister::s_pTl->RestartIpConfig(mac.toLatin1().constData());
    if (!waitForDevice(mac)) {
        LogTrace(GetIPConfigBaseCatID(), LogLevel::Warning, notFoundFormat, device);
        throw Translated(
            GenICam::ExceptionReporter<GenICam::RuntimeException>(__FILE__, __LINE__, "RuntimeException")
                .Report("Failed to discover reconfigured device"),
            tr("Failed to discover reconfigured device"));
    }
}

bool IpConfigurationWidget::waitForDevice(const QString& mac)
{
    DeviceLister lister; // A separate one, so that the rows of the tree keep their records.
    WaitBox waitBox(tr("Camera restarts its IP configuration cycle.\n"
                       "Waiting until the device has been discovered again..."),
                    this);
    waitBox.showWaitCursor();
    WaitBox::repaintUncovered();
    return showFailure("waitForDevice", [&] {
        for (int search = 0; search < maxSearches; ++search) {
            waitBox.showProgress(search, maxSearches, expectedSearchTime);
            ::sleep(secondsBetweenSearches); // NOLINT(concurrency-mt-unsafe): there is one thread
            lister.discoverAllDevices();
            const Tessal::COrvikGigEDeviceInfo* const found = findByMac(lister.m_devices, mac);
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
            if (found != nullptr) {
                m_rediscovered = *found;
                return true;
            }
        }
        return false;
    });
}
