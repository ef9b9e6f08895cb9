#include "ipconfigurationwidget.h"

#include "WaitBox.h"
#include "addressranges.h"
#include "recorddisplay.h"

#include "qtbase/formatting.h"
#include "qtbase/ipaddresswidget.h"
#include "qtbase/validators.h"

#include <QKeyEvent>

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

/// Nothing calls it: the change flags tell whether an edit is pending.
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

bool IpConfigurationWidget::isValidConfigInUI() const
{
    if (ui.btnUsePersistentIp->isChecked()) {
        for (const QLineEdit* edit : {ui.editIpAddress, ui.editNetmask, ui.editDefaultGateway}) {
            if (!edit->hasAcceptableInput()) {
                return false;
            }
        }
    } else if (!ui.btnUseDhcp->isChecked() && !ui.btnUseAutoIp->isChecked()) {
        return false;
    }
    return ui.editCustomName->hasAcceptableInput();
}

/// Called after each edit: makes Enter save if the contents of the editor can be saved.
void IpConfigurationWidget::makeSaveDefault()
{
    ui.btnWriteConfiguration->setDefault(true);
    updateUiState(nullptr);
}

void IpConfigurationWidget::updateUiState(QTreeWidgetItem* item)
{
    const Tessal::COrvikGigEDeviceInfo* const record =
        item != nullptr ? deviceOfItem(item) : GetSelectedDeviceInfo();
    const int accessibility = GetDeviceAccessibility(record);
    enableWidgets(record != nullptr && (accessibility == Tessal::Accessibility::Ok ||
                                        accessibility == Tessal::Accessibility::NotReachable));
    showAdvice(record, item != nullptr ? item : getSelectedTreeItem());
}

void IpConfigurationWidget::enableWidgets(bool enable)
{
    const bool enableAddress = enable && ui.btnUsePersistentIp->isChecked();
    for (QWidget* widget :
         std::initializer_list<QWidget*>{ui.labelIpAddress, ui.labelNetmask, ui.labelDefaultGateway,
                                         ui.editIpAddress, ui.editNetmask, ui.editDefaultGateway}) {
        widget->setEnabled(enableAddress);
    }
    for (QWidget* widget : std::initializer_list<QWidget*>{
             ui.btnUsePersistentIp, ui.btnUseDhcp, ui.btnUseAutoIp, ui.labelCustomName, ui.editCustomName}) {
        widget->setEnabled(enable);
    }
    const bool canSave = enable && isValidConfigInUI() && hasUnsavedChanges();
    ui.btnWriteConfiguration->setEnabled(canSave);
    if (!canSave) {
        ui.btnWriteConfiguration->setDefault(false);
    }
}

/// Accepts "192.168.1.9/24": the prefix length becomes the mask.
void IpConfigurationWidget::applyMaskLength(QLineEdit* edit)
{
    if (const auto parts = splitMaskLength(edit->text())) {
        edit->setText(parts->address);
        ui.editNetmask->setText(parts->mask);
        m_netmaskModified = true;
    }
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
    makeSaveDefault();
}

void IpConfigurationWidget::on_editIpAddress_textEdited()
{
    applyMaskLength(ui.editIpAddress);
    m_ipAddressModified = true;
    m_ipAddressEditPending = true;
    makeSaveDefault();
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
        m_gatewayModified = true; // Written as 0.0.0.0.
    }
    updateUiState(nullptr);
}

void IpConfigurationWidget::on_editNetmask_textEdited()
{
    m_netmaskModified = true;
    m_netmaskEditedByUser = true;
    makeSaveDefault();
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
    // If the validator refused the text, the field has already normalised it without a signal.
    if (!isNormalised || m_netmaskEditedByUser) {
        makeSaveDefault();
    }
}

/// Does what leaving the field does, for a command that is given while the field has the focus: a mask typed
/// as "24" becomes one that can be saved, and a name changed back to its old value is no longer a change.
void IpConfigurationWidget::commitFocusedField()
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
    applyMaskLength(ui.editDefaultGateway);
    m_gatewayModified = true;
    m_gatewayEditedByUser = true;
    makeSaveDefault();
}

void IpConfigurationWidget::on_editCustomName_textEdited(const QString& /*text*/)
{
    m_customNameModified = true;
    makeSaveDefault();
}

void IpConfigurationWidget::on_editCustomName_editingFinished()
{
    if (const Tessal::COrvikGigEDeviceInfo* record = GetSelectedDeviceInfo()) {
        m_customNameModified =
            ui.editCustomName->text() != GetUtf8Property(record, Tessal::Key::UserDefinedName);
    }
    updateUiState(nullptr);
}

/// Shows the camera's values again.
void IpConfigurationWidget::discardEdits()
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
        if (!event->isAutoRepeat()) { // A held key may have been pressed to close a message.
            discardEdits();
        }
        return;
    }
    // Outside dialogs, Qt does not pass Enter on to a default button.
    const bool isEnter = (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
                         (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (isEnter && ui.btnWriteConfiguration->isDefault() && !ui.btnRefresh->hasFocus()) {
        if (!event->isAutoRepeat()) {          // A held key must not repeat a save that failed.
            ui.btnWriteConfiguration->click(); // Has no effect while the button is disabled.
        }
        return;
    }
    QWidget::keyPressEvent(event);
}
