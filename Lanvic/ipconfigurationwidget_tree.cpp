#include "ipconfigurationwidget.h"

#include "DeviceLister.h"
#include "WaitBox.h"
#include "failurereports.h"
#include "recorddisplay.h"

#include <QCoreApplication>
#include <QMenu>

#include <algorithm>
#include <compare>
#include <memory>
#include <utility>
#include <vector>

namespace {

struct DIPtrAndIndexPair
{
    const Tessal::COrvikGigEDeviceInfo* info; // In the lister's list.
    int index;                                // Its position there.
};

/// Orders cameras by one property and, if that is equal, by another. A missing property counts as empty.
class CompareDIByProps
{
public:
    CompareDIByProps(GenICam::gcstring first, GenICam::gcstring second)
        : m_first(std::move(first)), m_second(std::move(second))
    {}

    bool operator()(const DIPtrAndIndexPair& a, const DIPtrAndIndexPair& b) const
    {
        const auto order = valueOf(a, m_first) <=> valueOf(b, m_first);
        return std::is_lt(order) || (std::is_eq(order) && valueOf(a, m_second) < valueOf(b, m_second));
    }

private:
    static GenICam::gcstring valueOf(const DIPtrAndIndexPair& pair, const GenICam::gcstring& name)
    {
        GenICam::gcstring value;
        pair.info->GetPropertyValue(name, value);
        return value;
    }

    GenICam::gcstring m_first;
    GenICam::gcstring m_second;
};

/// Counts how deeply the calls of a function are nested.
class ReentrancyGuard
{
public:
    explicit ReentrancyGuard(int& depth) : m_depth(depth) { ++m_depth; }
    ReentrancyGuard(const ReentrancyGuard&) = delete;
    ReentrancyGuard& operator=(const ReentrancyGuard&) = delete;
    ~ReentrancyGuard() { --m_depth; }

private:
    int& m_depth;
};

GenICam::gcstring interfaceNameOf(const Tessal::COrvikGigEDeviceInfo& record)
{
    GenICam::gcstring name;
    record.GetPropertyValue(ListerKey::InterfaceName, name);
    return name;
}

GenICam::gcstring interfaceNameOf(const CNetworkAdapter& adapter)
{
    return adapter.name().toLocal8Bit().constData();
}

} // namespace

/// The row to select again after a refresh: a camera by MAC address and adapter, an adapter by its name.
struct IpConfigurationWidget::RememberedRow
{
    GenICam::gcstring mac;
    GenICam::gcstring interfaceName;
};

void IpConfigurationWidget::refresh()
{
    if (isBusy()) {
        return;
    }
    // doRefresh() restores the cursor before a message appears.
    showFailure(
        "refresh",
        [this] {
            doRefresh();
            confirmSave();
            return true;
        },
        tr("Failed to enumerate devices"));
}

void IpConfigurationWidget::on_btnRefresh_clicked()
{
    refresh();
}

void IpConfigurationWidget::doRefresh()
{
    RememberedRow remembered = rememberSelectedRow();
    if (!savePendingBeforeRefresh()) {
        return;
    }
    QWidget* const focused = focusWidget();
    releaseDevice();
    clearTree();
    const WaitCursor waitCursor;
    announceSearch();

    m_networkAdapters = CNetworkAdapter::allNetworkAdapters(LiveAdapter, QNetworkInterface::IsLoopBack);
    if (m_networkAdapters.isEmpty()) {
        setSelectionInfoText(
            tr("<p>No active network networkAdapter found!</p><p>Please make sure your network "
               "adapters are enabled and working correctly.</p>Click <b>Refresh</b> or press "
               "<b>F5</b> to refresh the list of adapters."));
        return;
    }
    setSelectionInfoText(QString());
    setHintText(QString());
    m_pDeviceLister->discoverAllDevices();

    addAdapterRows(remembered);
    explainAdapters();
    addDeviceRows(remembered);
    if (ui.treeWidget->currentItem() == nullptr && ui.treeWidget->topLevelItemCount() > 0) {
        ui.treeWidget->setCurrentItem(ui.treeWidget->topLevelItem(0));
    }
    // A field that was disabled during the refresh has lost the focus.
    if (focused != nullptr && focused->isEnabled()) {
        focused->setFocus(Qt::OtherFocusReason);
    }
}

IpConfigurationWidget::RememberedRow IpConfigurationWidget::rememberSelectedRow() const
{
    if (const Tessal::COrvikGigEDeviceInfo* const record = GetSelectedDeviceInfo()) {
        return {record->GetMacAddress(), interfaceNameOf(*record)};
    }
    if (const CNetworkAdapter* const adapter = GetSelectedNetworkAdapter()) {
        return {{}, interfaceNameOf(*adapter)};
    }
    return {};
}

void IpConfigurationWidget::clearTree()
{
    setHintText(QString());
    clearDirtyFlags();
    ui.treeWidget->clear();
    on_treeWidget_currentItemChanged(nullptr, nullptr);
}

/// Paints the empty tree and a message, because the search blocks all painting.
void IpConfigurationWidget::announceSearch()
{
    // Only after clearTree(), which clears this label too.
    setSelectionInfoText(tr("Searching for devices..."));
    QWidget* const tree = ui.treeWidget;
    tree->update(tree->visibleRegion());
    ui.treeWidget->viewport()->update(); // The rows, which the region above does not include.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void IpConfigurationWidget::addAdapterRows(RememberedRow& remembered)
{
    for (int i = 0; i < m_networkAdapters.size(); ++i) {
        const CNetworkAdapter& adapter = m_networkAdapters.at(i);
        auto row = std::make_unique<QTreeWidgetItem>();
        UpdateTreeItemFromNetworkAdapter(row.get(), &adapter);
        row->setData(0, ItemKindRole, AdapterItem);
        row->setData(0, AdapterIndexRole, i);
        QTreeWidgetItem* const item = row.release(); // The tree owns it from here on.
        ui.treeWidget->addTopLevelItem(item);
        item->setExpanded(true);
        item->setFirstColumnSpanned(true);
        item->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
        if (remembered.mac.empty() && !remembered.interfaceName.empty() &&
            remembered.interfaceName == interfaceNameOf(adapter)) {
            ui.treeWidget->setCurrentItem(item);
            remembered.interfaceName = {};
        }
    }
}

void IpConfigurationWidget::addDeviceRows(RememberedRow& remembered)
{
    std::vector<DIPtrAndIndexPair> devices;
    bool isRediscoveredListed = false;
    for (const Tessal::COrvikGigEDeviceInfo& record : m_pDeviceLister->m_devices) {
        devices.push_back({&record, static_cast<int>(devices.size())});
        if (!isRediscoveredListed && record.GetMacAddress() == m_rediscovered.GetMacAddress()) {
            m_rediscovered = record;
            isRediscoveredListed = true; // A second record belongs to another camera.
        }
        if (!isTemporaryAddress(record)) {
            m_temporaryAddresses.remove(fromAscii(record.GetMacAddress()));
        }
    }
    std::ranges::sort(devices, CompareDIByProps(Tessal::Key::ModelName, Tessal::Key::MacAddress));

    for (const auto& [record, index] : devices) {
        QTreeWidgetItem* const item = addDeviceRow(*record, index);
        if (!remembered.mac.empty() && record->GetMacAddress() == remembered.mac &&
            interfaceNameOf(*record) == remembered.interfaceName) {
            ui.treeWidget->setCurrentItem(item);
            remembered.mac = {};
        }
    }
}

QTreeWidgetItem* IpConfigurationWidget::addDeviceRow(const Tessal::COrvikGigEDeviceInfo& record, int index)
{
    auto row = std::make_unique<QTreeWidgetItem>();
    UpdateTreeItemFromDeviceInfo(row.get(), &record);
    row->setData(0, ItemKindRole, DeviceItem);
    row->setData(0, DeviceIndexRole, index);
    QTreeWidgetItem* const item = row.release(); // The tree owns it from here on.
    QTreeWidgetItem* const adapterRow =
        findAdapterTreeItem(QString::fromLocal8Bit(interfaceNameOf(record).c_str()));
    if (adapterRow != nullptr) {
        adapterRow->addChild(item);
        item->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicator);
        adapterRow->setExpanded(true);
        explainCells(item, record); // Again, because it depends on the adapter above.
    } else {
        ui.treeWidget->addTopLevelItem(item);
        item->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicator);
    }
    return item;
}

void IpConfigurationWidget::on_treeWidget_currentItemChanged(QTreeWidgetItem* current,
                                                             QTreeWidgetItem* previous)
{
    static int depth = 0;
    if (current != nullptr && current == previous) {
        return;
    }
    const ReentrancyGuard nesting(depth);
    if (depth > 1) {
        return;
    }
    const bool isConfirmedByRefresh = !m_unconfirmedMac.isEmpty(); // A refresh confirms its save at its end.
    savePreviousRow(previous);
    clearDirtyFlags();
    stopEditing();
    closeDevice();
    updateUiFromTreeItem(current);
    updateUiState(current);
    if (!isConfirmedByRefresh) {
        confirmSave();
    }
}

/// Keeps the current row the only selected one: the editor edits the current row and saves the selected one.
void IpConfigurationWidget::keepCurrentRowSelected()
{
    QTreeWidgetItem* const current = ui.treeWidget->currentItem();
    QList<QTreeWidgetItem*> selected = ui.treeWidget->selectedItems();
    if (current != nullptr && selected.isEmpty()) { // Ctrl+click cleared the selection.
        current->setSelected(true);
    } else if (current != nullptr && selected.size() > 1) { // A screen reader adds a row to the selection.
        selected.removeOne(current);
        selected.first()->setSelected(false);
        if (!isBusy()) {
            commitFocusedField();
            ui.treeWidget->setCurrentItem(selected.first());
        }
    }
}

void IpConfigurationWidget::on_showContextMenu(const QPoint& pos)
{
    QTreeWidgetItem* const item = ui.treeWidget->itemAt(pos);
    if (deviceOfItem(item) == nullptr) {
        return;
    }
    ui.treeWidget->setCurrentItem(item); // The command acts on the selected row.
    QMenu menu;
    connect(menu.addAction(tr("&Assign Temporary IP Address...")), &QAction::triggered, this,
            &IpConfigurationWidget::on_assignTemporaryIPAddress);
    menu.exec(ui.treeWidget->viewport()->mapToGlobal(pos));
}

/// Has no effect: Linux has no common dialog for the properties of an adapter.
void IpConfigurationWidget::on_networkAdapterProperties() {}
