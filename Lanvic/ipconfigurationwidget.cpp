#include "ipconfigurationwidget.h"

#include "DeviceLister.h"
#include "WaitBox.h"
#include "elidedtextdelegate.h"
#include "fittext.h"
#include "settingskeys.h"

#include "qtbase/validators.h"

#include <QAction>
#include <QCloseEvent>
#include <QHeaderView>
#include <QSettings>
#include <QShortcut>

#include <algorithm>

namespace {

/// Space that the frame, margins and cursor of a line edit take up, in pixels.
constexpr int editFrameWidth = 12;
constexpr int editFrameHeight = 4;

/// Space that a camera has for its user ID.
constexpr int maxCustomNameBytes = 16;

/// Accepts text of at most the given number of bytes in UTF-8.
class QUtf8ByteSizeValidator : public QValidator
{
public:
    QUtf8ByteSizeValidator(quint64 maxBytes, QObject* parent) : QValidator(parent), m_maxBytes(maxBytes) {}

    State validate(QString& input, int& /*pos*/) const override
    {
        return static_cast<quint64>(input.toUtf8().size()) <= m_maxBytes ? Acceptable : Invalid;
    }

private:
    quint64 m_maxBytes;
};

/// Restores the column layout of the last run if it was stored in the present format.
void restoreHeaderState(QHeaderView* header)
{
    QSettings settings;
    settings.beginGroup(SettingsKey::Group);
    if (settings.contains(SettingsKey::Header) &&
        settings.value(SettingsKey::HeaderVersion, 0).toInt() == SettingsKey::CurrentHeaderVersion) {
        header->restoreState(settings.value(SettingsKey::Header).toByteArray());
    }
}

} // namespace

IpConfigurationWidget::IpConfigurationWidget(QWidget* parent) : QWidget(parent)
{
    ui.setupUi(this);
    fitTextsOfFixedSize();
    createAdviceSigns();
    clearDirtyFlags();
    const QStringList columns{tr("Name"),   tr("Device User ID"),   tr("Serial Number"), tr("MAC Address"),
                              tr("Status"), tr("IP Configuration"), tr("IP Address"),    tr("Subnet Mask")};
    ui.treeWidget->setColumnCount(static_cast<int>(columns.size()));
    ui.treeWidget->setHeaderLabels(columns);
    ui.treeWidget->setItemDelegate(new ElidedTextDelegate(this));
    restoreHeaderState(ui.treeWidget->header());
    installValidators();
    createHiddenAction(QStringLiteral("actionShowNetworkConnections"), tr("Alt+Shift+Ctrl+N"),
                       &IpConfigurationWidget::ShowNetworkConnections_triggered);
    createHiddenAction(QStringLiteral("actionForceIpByMac"), tr("Alt+Shift+Ctrl+F"),
                       &IpConfigurationWidget::forceIpByMac_triggered);
    connectSignals();
    updateUiFromTreeItem(nullptr);
    m_pDeviceLister = new DeviceLister;
    refresh();
    updateUiState(nullptr);

    QWidget* const focused = ui.treeWidget->topLevelItemCount() > 0 ? static_cast<QWidget*>(ui.treeWidget)
                                                                    : static_cast<QWidget*>(ui.btnRefresh);
    if (focused->isEnabled()) {
        focused->setFocus(Qt::TabFocusReason);
    }
}

IpConfigurationWidget::~IpConfigurationWidget()
{
    // The last lister releases the transport layer and with it a camera that is still open.
    delete m_pDeviceLister;
}

void IpConfigurationWidget::fitTextsOfFixedSize()
{
    // The frame passes one font size on to all of them: the size at which the longest text fits.
    const auto isFullyVisible = [](const QWidget* text) {
        return text->sizeHint().width() <= text->width() && text->fontMetrics().height() <= text->height();
    };
    shrinkFont(*ui.frameConfig, [&] {
        return std::ranges::all_of(
            std::initializer_list<const QWidget*>{ui.btnUsePersistentIp, ui.btnUseDhcp, ui.btnUseAutoIp,
                                                  ui.labelIpAddress, ui.labelNetmask, ui.labelDefaultGateway,
                                                  ui.labelCustomName, ui.btnWriteConfiguration},
            isFullyVisible);
    });
    for (QLineEdit* edit : {ui.editIpAddress, ui.editNetmask, ui.editDefaultGateway, ui.editCustomName}) {
        shrinkFont(*edit, [edit] {
            const QRect longest = edit->fontMetrics().boundingRect(QStringLiteral("255.255.255.255"));
            return longest.width() <= edit->width() - editFrameWidth &&
                   edit->fontMetrics().height() <= edit->height() - editFrameHeight;
        });
    }
}

void IpConfigurationWidget::installValidators()
{
    ui.editIpAddress->setValidator(new QIpAddressWithNetmaskValidator(ui.editNetmask, this));
    ui.editNetmask->setValidator(new QIpNetmaskValidator(this));
    auto* const gatewayValidator = new QIpAddressWithNetmaskValidator(ui.editNetmask, this);
    gatewayValidator->setAllowNullAddress(true);
    ui.editDefaultGateway->setValidator(gatewayValidator);
    ui.editCustomName->setMaxLength(maxCustomNameBytes);
    ui.editCustomName->setValidator(new QUtf8ByteSizeValidator(maxCustomNameBytes, this));
}

void IpConfigurationWidget::createHiddenAction(const QString& objectName, const QString& shortcut,
                                               void (IpConfigurationWidget::*slot)())
{
    auto* const action = new QAction(this);
    action->setObjectName(objectName);
    action->setShortcut(QKeySequence(shortcut));
    action->setAutoRepeat(false);
    action->setEnabled(true);
    action->setVisible(true);
    addAction(action);
    connect(action, &QAction::triggered, this, slot);
}

void IpConfigurationWidget::connectSignals()
{
    for (const QRadioButton* mode : {ui.btnUsePersistentIp, ui.btnUseDhcp, ui.btnUseAutoIp}) {
        connect(mode, &QAbstractButton::clicked, this, &IpConfigurationWidget::ipConfigurationEdited);
    }
    connect(ui.editCustomName, &QLineEdit::textEdited, this,
            &IpConfigurationWidget::on_editCustomName_textEdited);
    connect(ui.editCustomName, &QLineEdit::editingFinished, this,
            &IpConfigurationWidget::on_editCustomName_editingFinished);
    connect(ui.labelSelectionInfo, &QLabel::linkActivated, this,
            &IpConfigurationWidget::on_selectionInfo_linkActivated);
    connect(ui.treeWidget, &QWidget::customContextMenuRequested, this,
            &IpConfigurationWidget::on_showContextMenu);
    // The button's shortcut, Ctrl+S, replaces the one that Qt derives from the underlined letter.
    QPushButton* const save = ui.btnWriteConfiguration;
    auto* const saveByMnemonic = new QShortcut(QKeySequence::mnemonic(save->text()), save);
    saveByMnemonic->setAutoRepeat(false);
    connect(saveByMnemonic, &QShortcut::activated, save, &QAbstractButton::animateClick);
    // Qt opens a context menu with the Menu key, which many keyboards lack.
    auto* const contextMenu = new QShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F10), ui.treeWidget);
    contextMenu->setContext(Qt::WidgetShortcut);
    connect(contextMenu, &QShortcut::activated, this, [this] {
        ui.treeWidget->scrollToItem(ui.treeWidget->currentItem());
        const QRect row = ui.treeWidget->visualItemRect(ui.treeWidget->currentItem());
        on_showContextMenu(row.intersected(ui.treeWidget->viewport()->rect()).center());
    });
    connect(ui.treeWidget, &QTreeWidget::itemSelectionChanged, this,
            &IpConfigurationWidget::keepCurrentRowSelected);
}

void IpConfigurationWidget::closeEvent(QCloseEvent* event)
{
    if (isBusy() || !savePendingBeforeClosing()) {
        event->ignore();
        return;
    }
    QSettings settings;
    settings.beginGroup(SettingsKey::Group);
    settings.setValue(SettingsKey::HeaderVersion, SettingsKey::CurrentHeaderVersion);
    settings.setValue(SettingsKey::Header, ui.treeWidget->header()->saveState());
}

/// Has no effect: Linux has no common dialog for network connections.
void IpConfigurationWidget::ShowNetworkConnections_triggered() {}
