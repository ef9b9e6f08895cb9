#include "ipconfigurationwidget.h"

#include "WaitBox.h"
#include "addressranges.h"
#include "recorddisplay.h"
#include "settingskeys.h"

#include "qtbase/formatting.h"
#include "qtbase/ipaddresswidget.h"
#include "qtbase/validators.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMessageBox>
#include <QSettings>

void IpConfigurationWidget::clearDirtyFlags()
{
    m_ipConfigModified = false;
    m_ipAddressModified = false;
    m_ipAddressEditPending = false;
    m_netmaskModified = false;
    m_netmaskEditedByUser = false;
    m_gatewayModified = false;
    m_gatewayEditedByUser = false;
    m_customNameModified = false;
    ui.btnWriteConfiguration->setDefault(false);
}

void IpConfigurationWidget::startEditing()
{
    m_editing = true;
}

void IpConfigurationWidget::stopEditing()
{
    m_editing = false;
}

bool IpConfigurationWidget::areIpSettingsEdited() const
{
    return m_ipAddressModified || m_netmaskModified || m_netmaskEditedByUser || m_gatewayModified ||
           m_gatewayEditedByUser;
}

bool IpConfigurationWidget::hasUnsavedChanges() const
{
    return m_ipConfigModified || areIpSettingsEdited() || m_customNameModified;
}

/// After an edit: Enter saves from now on, if what the editor holds can be saved.
void IpConfigurationWidget::offerSaving()
{
    ui.btnWriteConfiguration->setDefault(true);
    updateUiState(nullptr);
}

void IpConfigurationWidget::ipConfigurationEdited()
{
    if (ui.btnUsePersistentIp->isChecked() && ui.editIpAddress->text().isEmpty() &&
        ui.editNetmask->text().isEmpty()) {
        const QTreeWidgetItem* item = getSelectedTreeItem();
        if (item == nullptr || GetSelectedDeviceInfo() == nullptr) {
            return;
        }
        const QNetworkAddressEntry entry = firstIpv4Entry(GetNetworkAdapaterFromDeviceItem(item));
        const QString suggestion = SuggestIPAddress(entry);
        if (!suggestion.isEmpty()) {
            ui.editIpAddress->setText(suggestion);
            ui.editNetmask->setText(entry.netmask().toString());
        }
    }
    m_ipConfigModified = true;
    offerSaving();
}

void IpConfigurationWidget::on_editIpAddress_textEdited()
{
    takeMaskLength(ui.editIpAddress);
    m_ipAddressModified = true;
    m_ipAddressEditPending = true;
    offerSaving();
}

void IpConfigurationWidget::on_editIpAddress_editingFinished()
{
    if (!m_netmaskEditedByUser && m_ipAddressEditPending) {
        const QHostAddress mask =
            IpAddressWidget::subnetFromAddress(addressFromText(ui.editIpAddress->text()));
        if (!mask.isNull() && ui.editNetmask->text().isEmpty()) {
            ui.editNetmask->setText(mask.toString());
            m_netmaskModified = true;
            m_ipAddressEditPending = false;
        }
    }
    if (ui.editDefaultGateway->text().isEmpty()) {
        m_gatewayModified = true; // to be written as 0.0.0.0
    }
    updateUiState(nullptr);
}

void IpConfigurationWidget::on_editNetmask_textEdited()
{
    m_netmaskModified = true;
    m_netmaskEditedByUser = true;
    offerSaving();
}

void IpConfigurationWidget::on_editNetmask_editingFinished()
{
    const auto* validator = qobject_cast<const QIpNetmaskValidator*>(ui.editNetmask->validator());
    if (validator == nullptr) {
        return;
    }
    QString normalised = ui.editNetmask->text();
    validator->fixup(normalised);
    const bool isNormalised = normalised == ui.editNetmask->text();
    if (!isNormalised) {
        ui.editNetmask->setText(normalised);
    }
    // Where the validator refused the text, the field has normalised it before this and told nobody.
    if (!isNormalised || m_netmaskEditedByUser) {
        offerSaving();
    }
}

/// Does what leaving the field does, for commands that come while it is being edited: a mask given as "24" is
/// one that can be saved, and a name that was typed back is no change.
void IpConfigurationWidget::finishField()
{
    if (focusWidget() == ui.editNetmask && m_netmaskModified) {
        on_editNetmask_editingFinished();
    } else if (focusWidget() == ui.editIpAddress && m_ipAddressEditPending) {
        on_editIpAddress_editingFinished();
    } else if (focusWidget() == ui.editCustomName && m_customNameModified) {
        on_editCustomName_editingFinished();
    }
}

void IpConfigurationWidget::on_editDefaultGateway_textEdited()
{
    takeMaskLength(ui.editDefaultGateway);
    m_gatewayModified = true;
    m_gatewayEditedByUser = true;
    offerSaving();
}

void IpConfigurationWidget::on_editCustomName_textEdited(const QString& /*text*/)
{
    m_customNameModified = true;
    offerSaving();
}

void IpConfigurationWidget::on_editCustomName_editingFinished()
{
    if (const Tessal::COrvikGigEDeviceInfo* record = GetSelectedDeviceInfo()) {
        m_customNameModified =
            ui.editCustomName->text() != GetUtf8Property(record, Tessal::Key::UserDefinedName);
    }
    updateUiState(nullptr);
}

/// Shows the camera's own values again.
void IpConfigurationWidget::takeEditsBack()
{
    updateUiFromTreeItem(getSelectedTreeItem());
    clearDirtyFlags();
    stopEditing();
    updateUiState(nullptr);
}

void IpConfigurationWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier && !isBusy() &&
        ui.frameConfig->isAncestorOf(focusWidget())) {
        if (!event->isAutoRepeat()) { // a key held down may have been pressed for a message before
            takeEditsBack();
        }
        return;
    }
    // Qt gives Enter to a default button in dialogs only.
    const bool isEnter = (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
                         (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (isEnter && ui.btnWriteConfiguration->isDefault() && !ui.btnRefresh->hasFocus()) {
        if (!event->isAutoRepeat()) { // a key held down must not save again behind a save that failed
            ui.btnWriteConfiguration->click(); // nothing while it is disabled
        }
        return;
    }
    QWidget::keyPressEvent(event);
}

bool IpConfigurationWidget::checkSaveChanges() const
{
    if (!hasUnsavedChanges() || !isValidConfigInUI()) {
        return false;
    }
    return QMessageBox::question(window(), windowTitle(),
                                 tr("Do you want to save the changes to the configuration?"),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

void IpConfigurationWidget::closeEvent(QCloseEvent* event)
{
    if (isBusy() || !saveChangesBeforeClosing()) {
        event->ignore();
        return;
    }
    QSettings settings;
    settings.beginGroup(SettingsKey::Group);
    settings.setValue(SettingsKey::HeaderVersion, SettingsKey::CurrentHeaderVersion);
    settings.setValue(SettingsKey::Header, ui.treeWidget->header()->saveState());
}

bool IpConfigurationWidget::saveChangesBeforeClosing()
{
    finishField();
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
