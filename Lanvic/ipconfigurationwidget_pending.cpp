#include "ipconfigurationwidget.h"

#include "DeviceLister.h"
#include "recorddisplay.h"

#include <QMessageBox>

bool IpConfigurationWidget::checkSaveChanges() const
{
    if (!hasUnsavedChanges() || !isValidConfigInUI()) {
        return false;
    }
    return QMessageBox::question(window(), windowTitle(),
                                 tr("Do you want to save the changes to the configuration?"),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

void IpConfigurationWidget::savePreviousRow(QTreeWidgetItem* previous)
{
    if (previous == nullptr || previous->data(0, ItemKindRole).toInt() != DeviceItem ||
        !isValidConfigInUI() || !checkSaveChanges()) {
        return;
    }
    const Tessal::COrvikGigEDeviceInfo* const record = deviceOfItem(previous);
    if (record == nullptr) {
        return;
    }
    const QString mac = fromAscii(record->GetMacAddress());
    // Saving may assign a temporary address to the selected camera, so that must be the one that is saved.
    QTreeWidgetItem* const current = ui.treeWidget->currentItem();
    ui.treeWidget->setCurrentItem(previous);
    const bool saved = writeAndUpdateName(*record);
    ui.treeWidget->setCurrentItem(current);
    if (!saved) {
        showSaveFailure();
    }
    updateTreeRowFromDeviceInfoByMac(mac);
}

/// Returns false if the user wanted to save and the save failed; the changes are still pending then.
bool IpConfigurationWidget::savePendingBeforeRefresh()
{
    commitFocusedField();
    const Tessal::COrvikGigEDeviceInfo* const record = GetSelectedDeviceInfo();
    if (record == nullptr || !hasUnsavedChanges() || !checkSaveChanges()) {
        clearDirtyFlags();
        return true;
    }
    if (writeConfiguration(*record)) {
        return true;
    }
    QMessageBox::critical(
        this, windowTitle(),
        tr("The configuration could not be saved.\nThe Refresh operation has been canceled."),
        QMessageBox::Close, QMessageBox::Close);
    return false;
}

/// Offers to save, because the editor is filled from the record again afterwards. Returns false if the user
/// wanted to save and the save failed; the changes are still pending then.
bool IpConfigurationWidget::savePendingBeforeForceIp(const Tessal::COrvikGigEDeviceInfo& record)
{
    commitFocusedField();
    if (!checkSaveChanges()) {
        return true;
    }
    const bool saved = writeAndUpdateName(record);
    updateTreeRowFromDeviceInfoByMac(fromAscii(record.GetMacAddress()));
    if (saved) {
        confirmSave();
    } else {
        showSaveFailure();
    }
    return saved;
}

bool IpConfigurationWidget::savePendingBeforeClosing()
{
    commitFocusedField();
    if (!checkSaveChanges()) {
        return true;
    }
    const QTreeWidgetItem* item = ui.treeWidget->currentItem();
    const Tessal::COrvikGigEDeviceInfo* record = deviceOfItem(item);
    if (record == nullptr || writeConfiguration(*record)) {
        confirmSave();
        return true;
    }
    const auto answer = QMessageBox::critical(
        this, windowTitle(),
        tr("The configuration could not be saved.\nWould you like to continue closing the application?\n\n"
           "If you click 'Yes', your configuration will not be changed and the application will close.\n"
           "If you click 'No', you will return to the application."),
        QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer == QMessageBox::Yes) {
        return true;
    }
    updateTreeRowFromDeviceInfoByMac(fromAscii(record->GetMacAddress()));
    updateUiFromTreeItem(item);
    updateUiState(nullptr);
    return false;
}

/// For a save that is not followed by a search: puts the new name into the camera's records as well, so that
/// the editor shows it and the next save does not write the old one.
bool IpConfigurationWidget::writeAndUpdateName(const Tessal::COrvikGigEDeviceInfo& record)
{
    const bool renames = m_customNameModified; // The write clears the flag.
    const QByteArray name = ui.editCustomName->text().trimmed().toUtf8();
    if (!writeConfiguration(record)) {
        return false;
    }
    if (renames) {
        for (Tessal::COrvikGigEDeviceInfo& listed : m_pDeviceLister->m_devices) {
            if (listed.GetMacAddress() == record.GetMacAddress()) {
                listed.SetPropertyValue(Tessal::Key::UserDefinedName, name.constData());
            }
        }
    }
    return true;
}
