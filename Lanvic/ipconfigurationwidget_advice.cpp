#include "ipconfigurationwidget.h"

#include "DeviceLister.h"
#include "recorddisplay.h"
#include "surroundings.h"

#include "qtbase/advicesign.h"
#include "qtbase/formatting.h"
#include "qtbase/validators.h"

#include <QToolTip>

#include <algorithm>
#include <tuple>

namespace {

/// The signs stand left of the fields' titles, where the frame is empty.
constexpr int signX = 8;     // Pixels from the left border.
constexpr int signBelow = 2; // Pixels from the upper border of the field.

/// Shows the field's tool tip without waiting for the mouse, so that a mistake is pointed out while the user
/// types; to the right of the field, where it covers no other field.
void showTipBeside(QWidget& field)
{
    const QPoint offset(4, -16); // Qt shows a tool tip this far from its point.
    if (field.isVisible() && field.isActiveWindow()) {
        QToolTip::showText(field.mapToGlobal(field.rect().topRight() + offset), field.toolTip(), &field);
    }
}

} // namespace

void IpConfigurationWidget::createAdviceSigns()
{
    using enum advice::Field;
    for (const auto& [field, edit] :
         {std::pair{Address, ui.editIpAddress}, {Mask, ui.editNetmask}, {Gateway, ui.editDefaultGateway}}) {
        m_adviceSigns[field] = new AdviceSign(edit, ui.frameConfig);
        const QPoint place = edit->mapTo(ui.frameConfig, QPoint(0, signBelow));
        m_adviceSigns[field]->move(signX, place.y());
    }
}

advice::Surroundings IpConfigurationWidget::surroundings(const CNetworkAdapter* adapter) const
{
    advice::Surroundings known = surroundingsOf(m_networkAdapters, m_pDeviceLister->m_devices);
    if (adapter != nullptr) {
        known.cameraAdapter = displayText(adapter->m_name);
    }
    return known;
}

std::vector<advice::Advice> IpConfigurationWidget::adviceInUi(const Tessal::COrvikGigEDeviceInfo& record,
                                                              const QTreeWidgetItem* item) const
{
    const bool isStatic = ui.btnUsePersistentIp->isChecked();
    if (!isStatic && !areIpSettingsEdited()) {
        return {}; // Only the mode is written.
    }
    return adviceOn({.purpose = isStatic ? advice::Purpose::Static : advice::Purpose::LeftOver,
                     .mac = fromAscii(record.GetMacAddress()),
                     .address = ui.editIpAddress->text(),
                     .mask = ui.editNetmask->text(),
                     .gateway = ui.editDefaultGateway->text()},
                    surroundings(GetNetworkAdapaterFromDeviceItem(item)));
}

void IpConfigurationWidget::showAdvice(const Tessal::COrvikGigEDeviceInfo* record,
                                       const QTreeWidgetItem* item)
{
    const bool isEditable = record != nullptr && ui.editCustomName->isEnabled();
    const std::vector<advice::Advice> all =
        isEditable ? adviceInUi(*record, item) : std::vector<advice::Advice>();
    setExplanation(*ui.btnWriteConfiguration, explainSave(record, all));
    for (const auto& [field, sign] : m_adviceSigns) {
        const auto advice = adviceFor(field, all);
        QLineEdit& edit = sign->field();
        const bool hasChanged = sign->setAdvice(advice);
        const bool isRelevant = edit.hasFocus() || (advice && advice->kind == advice::Kind::LeftOverAddress);
        if (hasChanged && isRelevant && advice && isWarning(*advice)) {
            showTipBeside(edit);
        } else if (hasChanged && isRelevant) {
            QToolTip::hideText();
        }
    }
}

/// Why Save is disabled, or the advice to consider before saving.
QString IpConfigurationWidget::explainSave(const Tessal::COrvikGigEDeviceInfo* record,
                                           const std::vector<advice::Advice>& all) const
{
    if (record == nullptr) {
        return tr("No camera is selected.");
    }
    if (!ui.editCustomName->isEnabled()) {
        return GetDeviceAccessibility(record) == Tessal::Accessibility::Unknown
                   ? tr("It is not known whether the camera can be configured. Refresh the list.")
                   : tr("Another application is using the camera.");
    }
    if (!hasUnsavedChanges()) {
        return tr("Nothing has been changed.");
    }
    if (!ui.editCustomName->hasAcceptableInput()) {
        return tr("The device user ID is too long.");
    }
    QStringList sentences;
    for (const advice::Advice& advice : all) {
        if (ui.btnWriteConfiguration->isEnabled() ||
            !m_adviceSigns.at(advice.field)->field().hasAcceptableInput()) {
            sentences += sentence(advice);
        }
    }
    return sentences.join(QLatin1Char('\n'));
}
