#include "ipconfigurationwidget.h"

#include "DeviceLister.h"
#include "WaitBox.h"
#include "addressranges.h"
#include "editedconfiguration.h"
#include "recorddisplay.h"
#include "trace.h"

#include "ozlog/ozlog.h"
#include "qtbase/failuretexts.h"
#include "qtbase/formatting.h"
#include "qtbase/messages.h"

#include <QMessageBox>

#include <functional>

using ozlog::LogLevel;
using ozlog::LogTrace;

namespace {

/// The text, followed by the addresses that a camera on the adapter can have, if the adapter is known.
QString withValidAddresses(const QString& text, const CNetworkAdapter* adapter)
{
    if (adapter == nullptr) {
        return text;
    }
    return text + "<p>" + IpConfigurationWidget::tr("Valid addresses are:<br>") +
           FormatValidAddressRanges(adapter) + "</p>";
}

/// Runs one step of a Force IP, and shows and logs what it throws. Returns whether the step succeeded.
bool reportForceIpFailure(const GenICam::gcstring& mac, const std::function<void()>& step)
{
    try {
        step();
        return true;
    } catch (const std::exception& exception) {
        showException("forceIp", exception, nullptr);
        LogTrace(GetIPConfigBaseCatID(), LogLevel::Error, "Failed to force IP for MAC=%hs. Err='%hs'", mac,
                 exception.what());
    } catch (...) {
        LogTrace(GetIPConfigBaseCatID(), LogLevel::Error, "Failed to force IP for MAC=%hs.", mac);
        showUnexpectedException("forceIp", IpConfigurationWidget::tr("Unknown exception occurred"), nullptr);
    }
    return false;
}

Tessal::FailureOf<GenICam::RuntimeException>
addressNotTaken(const GenICam::gcstring& mac, const IpSettings& given, const GenICam::gcstring& actual)
{
    return {GenICam::ExceptionReporter<GenICam::RuntimeException>(__FILE__, __LINE__, "RuntimeException")
                .Report("Camera MAC=%s was given the address %s and has %s", mac.c_str(),
                        given.ipAddress.constData(), actual.c_str()),
            {.kind = Tessal::FailureKind::AddressNotTaken,
             .setting = Tessal::Setting::TemporaryAddress,
             .mac = mac.c_str(),
             .wanted = given.ipAddress.toStdString(),
             .actual = actual.c_str()}};
}

void sendForceIp(const GenICam::gcstring& mac, const IpSettings& settings)
{
    LogTrace(GetIPConfigBaseCatID(), LogLevel::Info, "Now forcing IP for MAC=%hs. Retries remaining=%i.", mac,
             0);
    DeviceLister::createTransportLayer(); // None exists yet if no search was possible.
    DeviceLister::s_pTl->ForceIp(mac, settings.ipAddress.constData(), settings.subnetMask.constData(),
                                 settings.defaultGateway.constData());
}

} // namespace

bool IpConfigurationWidget::forceIp(const QString& headerText, bool showMacAddress, QString* newIpAddress,
                                    const ForceIpReason& reason)
{
    const QTreeWidgetItem* item = getSelectedTreeItem();
    const Tessal::COrvikGigEDeviceInfo* info = GetSelectedDeviceInfo();
    if ((item == nullptr || info == nullptr) && !showMacAddress) {
        return false;
    }
    const CNetworkAdapter* adapter = GetNetworkAdapaterFromDeviceItem(item);
    const GenICam::gcstring selected =
        info != nullptr ? info->GetMacAddress() : GenICam::gcstring("<unknown>");
    GenICam::gcstring mac = selected;
    LogTrace(GetIPConfigBaseCatID(), LogLevel::Info, "Forcing IP of device with MAC=%hs.", mac);

    IpAddressWidget dialog(this);
    dialog.setWindowTitle(tr("Assign Temporary IP Address (Force IP)"));
    dialog.setHeaderText(headerText);
    dialog.setReason(reason.sentence, reason.technicalText);
    dialog.setSurroundings(surroundings(showMacAddress ? nullptr : adapter));
    dialog.setShowMacAddress(showMacAddress);
    fillTemporaryAddressDialog(dialog, firstIpv4Entry(adapter), mac);
    if (m_refusedEntry && m_refusedEntry->camera == selected &&
        m_refusedEntry->showsMacAddress == showMacAddress) {
        dialog.setEntry(m_refusedEntry->entry);
    }

    const std::optional<IpSettings> settings = askForTemporaryAddress(dialog, mac);
    if (!settings) {
        return false;
    }
    m_refusedEntry = {selected, showMacAddress, dialog.entry()};
    if (!reportForceIpFailure(mac, [&] {
            sendForceIp(mac, *settings);
            if (newIpAddress != nullptr) {
                *newIpAddress = QString::fromLatin1(settings->ipAddress);
            }
        })) {
        return false;
    }
    m_refusedEntry.reset();
    reportForceIpFailure(mac, [&mac] {
        LogTrace(GetIPConfigBaseCatID(), LogLevel::Info, "Successfully forced IP for MAC=%hs.", mac);
    });
    if (!waitForDevice(fromAscii(mac))) {
        return false;
    }
    listTemporaryAddress(mac, *settings, showMacAddress ? nullptr : &dialog);
    return true;
}

void IpConfigurationWidget::fillTemporaryAddressDialog(IpAddressWidget& dialog,
                                                       const QNetworkAddressEntry& entry,
                                                       const GenICam::gcstring& mac)
{
    const QString suggestion = SuggestIPAddress(entry);
    if (suggestion.isEmpty() || entry.netmask().isNull()) {
        dialog.setIpAddress("192.168.0.202");
        dialog.setSubnetMask("255.255.255.0");
    } else {
        dialog.setIpAddress(suggestion);
        dialog.setSubnetMask(entry.netmask().toString());
    }
    dialog.setDefaultGateway("0.0.0.0");
    dialog.setMacAddress(fromAscii(mac));
}

std::optional<IpSettings> IpConfigurationWidget::askForTemporaryAddress(IpAddressWidget& dialog,
                                                                        GenICam::gcstring& mac)
{
    while (dialog.exec() != QDialog::Rejected) {
        std::optional<IpSettings> entered;
        const bool read = reportForceIpFailure(mac, [&] { entered = readTemporaryAddress(dialog, mac); });
        if (read && entered) {
            return entered;
        }
    }
    LogTrace(GetIPConfigBaseCatID(), LogLevel::Info,
             "Forcing IP of device with MAC=%hs has been canceled by user.", mac);
    return std::nullopt;
}

std::optional<IpSettings> IpConfigurationWidget::readTemporaryAddress(const IpAddressWidget& dialog,
                                                                      GenICam::gcstring& mac)
{
    const IpSettings entered =
        fixedUpIpSettings(dialog.ipAddress(), dialog.subnetMask(), dialog.defaultGateway());
    QString macText = dialog.macAddress();
    fixupMacAddress(macText);
    mac = macText.toUpper().toLocal8Bit().constData();
    LogTrace(GetIPConfigBaseCatID(), LogLevel::Info, "User entered IP=%hs; Netmask=%hs; Gateway=%hs; MAC=%hs",
             entered.ipAddress, entered.subnetMask, entered.defaultGateway, mac);
    if (!isIPAddressValidForDevice(QString::fromLatin1(entered.ipAddress))) {
        LogTrace(GetIPConfigBaseCatID(), LogLevel::Warning,
                 "Invalid IP address entered for MAC=%hs. Asking again.", mac);
        QMessageBox::critical(this, tr("Error"),
                              tr("IP Addresses 127.0.0.1 and 224.0.0.0 to 255.255.255.255 cannot be used."),
                              QMessageBox::Ok);
        return std::nullopt;
    }
    qDebug("Forcing IP configuration for MAC: '%s' with IP: '%s'; Subnet: '%s'; Default Gateway: '%s'",
           mac.c_str(), entered.ipAddress.constData(), entered.subnetMask.constData(),
           entered.defaultGateway.constData());
    return entered;
}

/// Lists what was entered, or the address that the camera reports instead: a camera that missed the command
/// comes back with another one. That is a failure unless 0.0.0.0 was sent, which leaves the choice to the
/// camera. Without a dialog, the list is left to the refresh that follows.
void IpConfigurationWidget::listTemporaryAddress(const GenICam::gcstring& mac, const IpSettings& sent,
                                                 const IpAddressWidget* dialog)
{
    const GenICam::gcstring actual = m_rediscovered.GetIpAddress();
    const QHostAddress given = addressFromText(QString::fromLatin1(sent.ipAddress));
    const bool wasTaken = given == addressFromText(fromAscii(actual));
    if (wasTaken) {
        m_temporaryAddresses.insert(fromAscii(mac), QString::fromLatin1(sent.ipAddress));
    }
    if (dialog != nullptr) {
        m_pDeviceLister->updateDeviceInfo(mac, nullptr, dialog->ipAddress().toLatin1(),
                                          dialog->subnetMask().toLatin1(),
                                          dialog->defaultGateway().toLatin1(), true);
        if (!wasTaken) {
            m_pDeviceLister->updateDeviceInfo(mac, nullptr, actual, m_rediscovered.GetSubnetMask(),
                                              m_rediscovered.GetDefaultGateway(), true);
        }
    }
    if (!wasTaken && given.toIPv4Address() != 0) {
        reportForceIpFailure(mac, [&] { throw addressNotTaken(mac, sent, actual); });
    }
}

bool IpConfigurationWidget::forceIpForConnection(QString& address, const ForceIpReason& reason)
{
    const QString explanation =
        tr("A connection to the device must be established in order to change the configuration.<br>To do "
           "this, a temporary IP address needs to be assigned to the device.<br>This temporary address will "
           "only be used to update the configuration and will not be stored on the device.");
    const CNetworkAdapter* adapter = GetNetworkAdapaterFromDeviceItem(getSelectedTreeItem());
    return forceIp(withValidAddresses(explanation, adapter), false, &address, reason);
}

void IpConfigurationWidget::on_assignTemporaryIPAddress()
{
    const Tessal::COrvikGigEDeviceInfo* info = GetSelectedDeviceInfo();
    if (info == nullptr || isBusy() || !savePendingBeforeForceIp(*info)) {
        return;
    }
    const GenICam::gcstring mac = info->GetMacAddress();
    const CNetworkAdapter* adapter = GetNetworkAdapaterFromDeviceItem(getSelectedTreeItem());
    const QString headerText = withValidAddresses(tr("Please specify a temporary IP address.<br>"
                                                     "This address will be valid until the device resets."),
                                                  adapter);
    try {
        QString newIpAddress;
        forceIp(headerText, false, &newIpAddress);
        updateTreeRowFromDeviceInfoByMac(fromAscii(mac));
        discardEdits();
    } catch (const std::exception& exception) {
        qDebug("error forcing IP (err='%s')", exception.what());
    }
}

void IpConfigurationWidget::forceIpByMac_triggered()
{
    if (isBusy()) {
        return;
    }
    QString newIpAddress;
    if (forceIp(tr("Please specify the MAC address for the device to force the IP address.\n\n"
                   "There won't be any error message in case you specify the wrong MAC address."),
                true, &newIpAddress)) {
        refresh();
    }
}
