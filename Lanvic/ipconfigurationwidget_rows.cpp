#include "ipconfigurationwidget.h"

#include "DeviceLister.h"
#include "explanations.h"
#include "recorddisplay.h"

#include "qtbase/formatting.h"
#include "qtbase/helpandsupport.h"
#include "tessal/searchreport.h"

#include <QApplication>
#include <QStyle>

#include <array>
#include <string_view>
#include <utility>

namespace {

enum Column {
    NameColumn,
    UserIdColumn,
    SerialColumn,
    MacColumn,
    StatusColumn,
    ModeColumn,
    IpColumn,
    MaskColumn
};

struct ModelIcon
{
    std::string_view prefix;
    QIcon icon;
};

/// The icon of the camera's family, which the model name begins with; none for a camera that the SDK does not
/// support.
QIcon modelIcon(const Tessal::COrvikGigEDeviceInfo& record)
{
    static const QIcon generic(":/Lanvic/Resources/Generic_Camera_16x16px.png");
    static const std::array<ModelIcon, 7> families{{
        {"km", QIcon(":/Lanvic/Resources/Kimra-Icon_16x16.png")},
        {"vt", QIcon(":/Lanvic/Resources/Velto-Icon_16x16.png")},
        {"dz", QIcon(":/Lanvic/Resources/Dorun-Icon_16x16.png")},
        {"sq", QIcon(":/Lanvic/Resources/Sarpo_GigE-Icon_16x16.png")},
        {"vl", QIcon(":/Lanvic/Resources/Velto_light_Icon_16x16.png")},
        {"mx", QIcon(":/Lanvic/Resources/Mivex-Icon_16x16.png")},
        {"tk", QIcon(":/Lanvic/Resources/Tulka_Icon_16x16.png")},
    }};
    if (!Tessal::IsSupportedDevice(record, false)) {
        return {};
    }
    const GenICam::gcstring model = record.GetModelName();
    for (const ModelIcon& family : families) {
        if (model.view().starts_with(family.prefix)) {
            return family.icon;
        }
    }
    return generic;
}

QString statusText(int accessibility)
{
    using namespace Tessal::Accessibility;
    static const std::array<std::pair<int, QString>, 5> texts{{
        {Unknown, IpConfigurationWidget::tr("Unknown")},
        {Ok, IpConfigurationWidget::tr("OK")},
        {NotReachable, IpConfigurationWidget::tr("Not Reachable")},
        {Controlled, IpConfigurationWidget::tr("In use")},
        {ControlledExclusively, IpConfigurationWidget::tr("In use")},
    }};
    for (const auto& [code, text] : texts) {
        if (code == accessibility) {
            return text;
        }
    }
    return {};
}

QIcon statusIcon(int accessibility)
{
    using namespace Tessal::Accessibility;
    static constexpr std::array<std::pair<int, QStyle::StandardPixmap>, 4> pixmaps{{
        {Unknown, QStyle::SP_MessageBoxCritical},
        {NotReachable, QStyle::SP_MessageBoxWarning},
        {ControlledExclusively, QStyle::SP_MessageBoxWarning},
        {Controlled, QStyle::SP_MessageBoxWarning},
    }};
    for (const auto& [code, pixmap] : pixmaps) {
        if (code == accessibility) {
            return QApplication::style()->standardIcon(pixmap);
        }
    }
    return {};
}

void setText(QTreeWidgetItem* item, Column column, const QString& text)
{
    item->setData(column, Qt::DisplayRole, displayText(text));
}

void setText(QTreeWidgetItem* item, Column column, const GenICam::gcstring& text)
{
    setText(item, column, fromAscii(text));
}

/// Sets an explanation for the tool tip and for screen readers; an empty text removes it.
void explain(QTreeWidgetItem* item, Column column, const QString& text)
{
    item->setToolTip(column, text.toHtmlEscaped());
    item->setData(column, Qt::AccessibleDescriptionRole, text);
}

/// Sets the icon; a null icon removes the one of an earlier state.
void setIcon(QTreeWidgetItem* item, Column column, const QIcon& icon)
{
    item->setData(column, Qt::DecorationRole, icon.isNull() ? QVariant() : QVariant(icon));
}

int kindOf(const QTreeWidgetItem* item)
{
    return item->data(0, ItemKindRole).toInt();
}

} // namespace

bool IpConfigurationWidget::UpdateTreeItemFromNetworkAdapter(QTreeWidgetItem* item,
                                                             const CNetworkAdapter* adapter)
{
    static const QIcon adapterIcon(":/Lanvic/Resources/network_adapter.png");
    if (item == nullptr || adapter == nullptr) {
        return false;
    }
    setText(item, NameColumn, adapter->m_name);
    setIcon(item, NameColumn, adapterIcon);
    return true;
}

bool IpConfigurationWidget::UpdateTreeItemFromDeviceInfo(QTreeWidgetItem* item,
                                                         const Tessal::COrvikGigEDeviceInfo* record)
{
    if (item == nullptr || record == nullptr) {
        return false;
    }
    const int accessibility = GetDeviceAccessibility(record);
    setText(item, NameColumn, record->GetModelName());
    setIcon(item, NameColumn, modelIcon(*record));
    setText(item, UserIdColumn, GetUtf8Property(record, Tessal::Key::UserDefinedName));
    setText(item, SerialColumn, record->GetSerialNumber());
    setText(item, MacColumn, formatMACAddress(record->GetMacAddress(), ":"));
    setText(item, StatusColumn, statusText(accessibility));
    setIcon(item, StatusColumn, statusIcon(accessibility));
    setText(item, ModeColumn, formatIPConfiguration(record->GetIpConfigCurrent(), 1));
    setText(item, IpColumn, record->GetIpAddress());
    setText(item, MaskColumn, record->GetSubnetMask());
    explainCells(item, *record);
    // A screen reader that moves from row to row reads the first column only.
    item->setData(NameColumn, Qt::AccessibleDescriptionRole,
                  QStringList{item->text(StatusColumn), item->text(IpColumn)}.join(QLatin1String(", ")));
    return true;
}

void IpConfigurationWidget::explainCells(QTreeWidgetItem* item,
                                         const Tessal::COrvikGigEDeviceInfo& record) const
{
    explain(item, StatusColumn, explainStatus(record, GetNetworkAdapaterFromDeviceItem(item)));
    explain(item, IpColumn,
            isTemporaryAddress(record) ? tr("A temporary address: the camera has it until it restarts.")
                                       : QString());
}

/// Explains on each adapter's row why a search through it may miss cameras.
void IpConfigurationWidget::explainAdapters()
{
    const auto* const report = dynamic_cast<const Tessal::ISearchReport*>(DeviceLister::s_pTl);
    if (report == nullptr) {
        return;
    }
    QStringList remarks;
    QMap<QString, QStringList> sentences; // By adapter.
    for (const Tessal::AdapterObstacle& obstacle : report->GetObstacles()) {
        remarks += explainObstacle(obstacle);
        sentences[QString::fromLocal8Bit(obstacle.adapter.c_str())] += remarks.last();
    }
    for (int i = 0; i < ui.treeWidget->topLevelItemCount(); ++i) {
        QTreeWidgetItem* const row = ui.treeWidget->topLevelItem(i);
        const CNetworkAdapter* const adapter = adapterOfItem(row);
        if (adapter != nullptr && sentences.contains(adapter->m_name)) {
            explain(row, NameColumn, sentences.value(adapter->m_name).join(QLatin1Char('\n')));
        }
    }
    SetSupportRemarks(remarks);
}

bool IpConfigurationWidget::isTemporaryAddress(const Tessal::COrvikGigEDeviceInfo& record) const
{
    const auto given = m_temporaryAddresses.constFind(fromAscii(record.GetMacAddress()));
    return given != m_temporaryAddresses.constEnd() &&
           addressFromText(*given) == addressFromText(fromAscii(record.GetIpAddress()));
}

int IpConfigurationWidget::updateTreeRowFromDeviceInfoByMac(const QString& mac)
{
    if (mac.isEmpty()) {
        return 0;
    }
    const GenICam::gcstring wanted(mac.toLatin1().constData());
    int updated = 0;
    for (int i = 0; i < ui.treeWidget->topLevelItemCount(); ++i) {
        QTreeWidgetItem* const parent = ui.treeWidget->topLevelItem(i);
        for (int j = 0; j < parent->childCount(); ++j) {
            QTreeWidgetItem* const row = parent->child(j);
            const Tessal::COrvikGigEDeviceInfo* const record = deviceOfItem(row);
            if (record != nullptr && record->GetMacAddress() == wanted) {
                UpdateTreeItemFromDeviceInfo(row, record);
                ++updated;
            }
        }
    }
    return updated;
}

QTreeWidgetItem* IpConfigurationWidget::findAdapterTreeItem(const QString& name) const
{
    for (int i = 0; i < ui.treeWidget->topLevelItemCount(); ++i) {
        QTreeWidgetItem* const row = ui.treeWidget->topLevelItem(i);
        const CNetworkAdapter* const adapter = adapterOfItem(row);
        if (adapter != nullptr && adapter->name() == name) {
            return row;
        }
    }
    return nullptr;
}

QTreeWidgetItem* IpConfigurationWidget::getSelectedTreeItem() const
{
    return ui.treeWidget->currentItem();
}

Tessal::COrvikGigEDeviceInfo* IpConfigurationWidget::GetDeviceInfoFromItemIndex(int index) const
{
    if (m_pDeviceLister == nullptr || index < 0 ||
        std::cmp_greater_equal(index, m_pDeviceLister->m_devices.size())) {
        return nullptr;
    }
    return &m_pDeviceLister->m_devices.at(static_cast<std::size_t>(index));
}

const CNetworkAdapter* IpConfigurationWidget::GetNetworkAdapterFromItemIndex(int index) const
{
    return index >= 0 && index < m_networkAdapters.size() ? &m_networkAdapters.at(index) : nullptr;
}

const CNetworkAdapter*
IpConfigurationWidget::GetNetworkAdapaterFromDeviceItem(const QTreeWidgetItem* item) const
{
    return item != nullptr ? adapterOfItem(item->parent()) : nullptr;
}

Tessal::COrvikGigEDeviceInfo* IpConfigurationWidget::deviceOfItem(const QTreeWidgetItem* item) const
{
    return item != nullptr && kindOf(item) == DeviceItem
               ? GetDeviceInfoFromItemIndex(item->data(0, DeviceIndexRole).toInt())
               : nullptr;
}

const CNetworkAdapter* IpConfigurationWidget::adapterOfItem(const QTreeWidgetItem* item) const
{
    return item != nullptr && kindOf(item) == AdapterItem
               ? GetNetworkAdapterFromItemIndex(item->data(0, AdapterIndexRole).toInt())
               : nullptr;
}

Tessal::COrvikGigEDeviceInfo* IpConfigurationWidget::GetSelectedDeviceInfo() const
{
    const QList<QTreeWidgetItem*> selected = ui.treeWidget->selectedItems();
    return selected.size() == 1 ? deviceOfItem(selected.first()) : nullptr;
}

const CNetworkAdapter* IpConfigurationWidget::GetSelectedNetworkAdapter() const
{
    const QList<QTreeWidgetItem*> selected = ui.treeWidget->selectedItems();
    return selected.size() == 1 ? adapterOfItem(selected.first()) : nullptr;
}
