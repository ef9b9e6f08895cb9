#include "ipconfigurationwidget.h"

#include "DeviceLister.h"
#include "addressranges.h"
#include "fittext.h"
#include "recorddisplay.h"

#include "qtbase/formatting.h"

#include <array>
#include <utility>

namespace {

constexpr QLatin1String lineBreak("<br>");
constexpr QLatin1String paragraphBegin("<p>");
constexpr QLatin1String paragraphEnd("</p>");
constexpr QLatin1String boldBegin("<b>");
constexpr QLatin1String boldEnd("</b>");

/// Text from a camera or the operating system, escaped for rich text.
QString richText(const QString& text)
{
    return displayText(text).toHtmlEscaped();
}

QString richTextProperty(const Tessal::COrvikGigEDeviceInfo& record, const char* key)
{
    return richText(GetUtf8Property(&record, key));
}

QString accessibilityHint(int accessibility)
{
    using namespace Tessal::Accessibility;
    static const QString inUse = IpConfigurationWidget::tr(
        "<p><img src=':/Lanvic/Resources/error.png'><br>The device is currently in use by another "
        "application!</p><p>Please close any applications currently using the device and click "
        "<b>Refresh</b> to check the status again.");
    static const std::array<std::pair<int, QString>, 5> hints{{
        {Unknown, IpConfigurationWidget::tr(
                      "<p><img src=':/Lanvic/Resources/error.png'><br>There was an error while trying to "
                      "determine the accessibility status of the device.</p>Try refreshing the list by "
                      "clicking <b>Refresh</b>.")},
        {Ok, QString()},
        {NotReachable,
         IpConfigurationWidget::tr(
             "<p><img src=':/Lanvic/Resources/error.png'><br>The device is unreachable!</p><p>Currently you "
             "will not be able to use the device.</p>Please make sure the IP address is in the same subnet "
             "as the adapter the device is connected to.")},
        {ControlledExclusively, inUse},
        {Controlled, inUse},
    }};
    for (const auto& [code, hint] : hints) {
        if (code == accessibility) {
            return hint;
        }
    }
    return {};
}

QString adapterDetails(const CNetworkAdapter& adapter)
{
    QString text = paragraphBegin + boldBegin + richText(adapter.m_name) + boldEnd + lineBreak + "(" +
                   richText(adapter.m_hardwareAddress) + ")" + paragraphEnd +
                   "<table align='left' border='0' cellpadding='1' cellspacing='1'>";
    const QList<QNetworkAddressEntry> entries = ipv4Entries(&adapter);
    for (const QNetworkAddressEntry& entry : entries) {
        text += IpConfigurationWidget::tr(
                    "<tr><td width='8'></td></tr><tr><td width='8'></td><td>IP Address:</td><td "
                    "width='100' align='right'>%1</td></tr><tr><td></td><td>Subnet Mask:</td><td "
                    "align='right'>%2</td></tr>")
                    .arg(entry.ip().toString(), entry.netmask().toString());
    }
    return text + "</table>";
}

QString deviceDetails(const Tessal::COrvikGigEDeviceInfo& record)
{
    using namespace Tessal;
    // A single arg() call, so that a value that contains "%1" is not taken for a place marker.
    return paragraphBegin + boldBegin + richTextProperty(record, Key::FriendlyName) + boldEnd + paragraphEnd +
           IpConfigurationWidget::tr("<p><table align='left' border='0' cellpadding='1' cellspacing='1'>"
                                     "<tr><td width='8'></td><td>Vendor:</td><td>%1</td></tr>"
                                     "<tr><td width='8'></td><td>Model Name:</td><td>%2</td></tr>"
                                     "<tr><td width='8'></td><td>Device User ID:</td><td>%3</td></tr>"
                                     "<tr><td width='8'></td><td>Serial Number:</td><td>%4</td></tr>"
                                     "<tr><td width='8'></td><td>MAC Address:</td><td>%5</td></tr>"
                                     "<tr><td width='8'></td><td>IP Configuration:</td><td>%6</td></tr>"
                                     "<tr><td width='8'></td><td>IP Address:</td><td>%7</td></tr>"
                                     "<tr><td width='8'></td><td>Subnet Mask:</td><td>%8</td></tr>"
                                     "<tr><td width='8'></td><td>Gateway:</td><td>%9</td></tr></table></p>")
               .arg(richTextProperty(record, Key::VendorName), richTextProperty(record, Key::ModelName),
                    richTextProperty(record, Key::UserDefinedName),
                    richTextProperty(record, Key::SerialNumber),
                    richText(formatMACAddress(record.GetMacAddress(), ":")),
                    richText(formatIPConfiguration(record.GetIpConfigCurrent(), 1)),
                    richTextProperty(record, Key::IpAddress), richTextProperty(record, Key::SubnetMask),
                    richTextProperty(record, Key::DefaultGateway));
}

} // namespace

void IpConfigurationWidget::updateUiFromTreeItem(const QTreeWidgetItem* item)
{
    if (const Tessal::COrvikGigEDeviceInfo* const record = deviceOfItem(item)) {
        showDevice(item, *record);
        return;
    }
    clearDetails();
    if (const CNetworkAdapter* const adapter = adapterOfItem(item)) {
        setSelectionInfoText(adapterDetails(*adapter));
        setHintText(m_pDeviceLister->m_devices.empty()
                        ? tr("<p>No devices found!</p>Click <b>Refresh</b> or press <b>F5</b> to search for "
                             "devices.")
                        : QString());
    }
}

void IpConfigurationWidget::clearDetails()
{
    clearAddressFields();
    ui.btnUsePersistentIp->setChecked(false);
    ui.btnUseDhcp->setChecked(false);
    ui.btnUseAutoIp->setChecked(true);
    ui.editCustomName->setText(QString());
    setSelectionInfoText(QString());
}

void IpConfigurationWidget::clearAddressFields()
{
    for (QLineEdit* edit : {ui.editIpAddress, ui.editNetmask, ui.editDefaultGateway}) {
        edit->setText(QString());
    }
}

void IpConfigurationWidget::showDevice(const QTreeWidgetItem* item,
                                       const Tessal::COrvikGigEDeviceInfo& record)
{
    setSelectionInfoText(deviceDetails(record));
    if (record.IsPersistentIpActive()) {
        ui.btnUsePersistentIp->setChecked(true);
        ui.editIpAddress->setText(fromAscii(record.GetIpAddress()));
        ui.editNetmask->setText(fromAscii(record.GetSubnetMask()));
        ui.editDefaultGateway->setText(fromAscii(record.GetDefaultGateway()));
    } else {
        (record.IsDhcpActive() ? ui.btnUseDhcp : ui.btnUseAutoIp)->setChecked(true);
        clearAddressFields();
    }
    ui.editCustomName->setText(GetUtf8Property(&record, Tessal::Key::UserDefinedName));
    setHintText(deviceHint(record, GetNetworkAdapaterFromDeviceItem(item)));
}

/// What is wrong with the camera and what to do about it; empty if nothing is. `adapter` is the one through
/// which the camera was found, or null.
QString IpConfigurationWidget::deviceHint(const Tessal::COrvikGigEDeviceInfo& record,
                                          const CNetworkAdapter* adapter)
{
    const int accessibility = GetDeviceAccessibility(&record);
    QString hint = accessibilityHint(accessibility);
    if (accessibility == Tessal::Accessibility::NotReachable && adapter != nullptr) {
        hint += paragraphBegin + tr("Possible addresses are:<br>") + FormatValidAddressRanges(adapter) +
                paragraphEnd;
    }
    if (!hint.isEmpty() || adapter == nullptr) {
        return hint;
    }
    const QHostAddress ip = addressFromText(fromAscii(record.GetIpAddress()));
    const QHostAddress mask = addressFromText(fromAscii(record.GetSubnetMask()));
    if (!ip.isNull() && !mask.isNull() &&
        !hasDeviceValidnetworkPrefixForAdapter(ip.toIPv4Address(), mask.toIPv4Address(), adapter)) {
        hint = tr("<p><img src=':/Lanvic/Resources/error.png'><br><p>The network adapter and the device are "
                  "currently not in the same subnet. Therefore, the device will currently not be visible to "
                  "applications.</p><p>Make sure the device and the network adapter share the same network "
                  "prefix and subnet mask.</p>");
    }
    return hint;
}

// The texts of the labels are part of the widget's state, so the setters are not const.
// NOLINTBEGIN(readability-make-member-function-const)
void IpConfigurationWidget::setSelectionInfoText(const QString& text)
{
    setFittingText(*ui.labelSelectionInfo, text);
}

void IpConfigurationWidget::setHintText(const QString& text)
{
    setFittingText(*ui.labelHint, text);
}
// NOLINTEND(readability-make-member-function-const)

/// Has no effect: the texts contain no links.
void IpConfigurationWidget::on_selectionInfo_linkActivated(const QString& /*link*/) {}
