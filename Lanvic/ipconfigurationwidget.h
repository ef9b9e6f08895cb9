#pragma once

#include "NetworkAdapter.h"
#include "confirmation.h"
#include "ui_ipconfigurationwidget.h"

#include "advice/advice.h"
#include "ozlog/ozlog.h"
#include "qtbase/ipaddresswidget.h"
#include "tessal/transportlayer.h"

#include <QList>
#include <QMap>
#include <QWidget>

#include <map>
#include <optional>
#include <vector>

class AdviceSign;
class DeviceLister;
struct AddressingMode;
struct IpSettings;

/// What a row of the tree stands for and where its record is. Stored in column 0 and valid until the next
/// refresh.
enum ItemKind { AdapterItem = 1, DeviceItem = 2 };
inline constexpr int ItemKindRole = Qt::UserRole;
inline constexpr int DeviceIndexRole = Qt::UserRole + 1;  // Position in DeviceLister::m_devices.
inline constexpr int AdapterIndexRole = Qt::UserRole + 2; // Position in m_networkAdapters.

/// Why a camera could not be opened at its present address, for the user and for support; empty if no attempt
/// was made.
struct ForceIpReason
{
    QString sentence;
    QString technicalText;
};

/// A temporary address that could not be assigned, to be offered again at the next attempt.
struct RefusedEntry
{
    GenICam::gcstring camera; // MAC address of the selected camera.
    bool showsMacAddress;     // Which of the two dialogs it was entered in.
    advice::Entry entry;
};

/// The central widget, which does all work with cameras: the tree of adapters and cameras, the details of the
/// selected row, the editor for one camera's configuration, and everything that writes to a camera. It has
/// one source file for each concern: construction and closing, tree, rows, details, editing, pending changes,
/// addresses, advice, writing, unicast, connection, Force IP.
class IpConfigurationWidget : public QWidget
{
    Q_OBJECT

public:
    /// Runs the first discovery before it returns.
    explicit IpConfigurationWidget(QWidget* parent = nullptr);
    IpConfigurationWidget(const IpConfigurationWidget&) = delete;
    IpConfigurationWidget& operator=(const IpConfigurationWidget&) = delete;
    ~IpConfigurationWidget() override;

private slots:
    void on_treeWidget_currentItemChanged(QTreeWidgetItem* current, QTreeWidgetItem* previous);
    void on_btnRefresh_clicked();
    void on_btnWriteConfiguration_clicked();
    void on_editIpAddress_editingFinished();
    void on_editNetmask_textEdited();
    void on_editNetmask_editingFinished();
    void on_editIpAddress_textEdited();
    void on_editDefaultGateway_textEdited();
    void ipConfigurationEdited();
    void on_editCustomName_textEdited(const QString& text);
    void on_editCustomName_editingFinished();
    void on_selectionInfo_linkActivated(const QString& link);
    void on_showContextMenu(const QPoint& pos);
    void on_networkAdapterProperties();
    void on_assignTemporaryIPAddress();
    void ShowNetworkConnections_triggered();
    void forceIpByMac_triggered();
    void closeEvent(QCloseEvent* event) override;

public slots:
    /// Offers to save pending changes, then rebuilds the tree from a new discovery. Reports its failures
    /// itself.
    void refresh();

protected:
    /// Enter saves while Save is the default button; Escape in the editor discards its edits.
    void keyPressEvent(QKeyEvent* event) override;

private:
    // Construction.
    void createHiddenAction(const QString& objectName, const QString& shortcut,
                            void (IpConfigurationWidget::*slot)());
    void fitTextsOfFixedSize();
    void installValidators();
    void connectSignals();

    // Tree and refresh.
    struct RememberedRow;
    void doRefresh(); // Throws what discovery throws.
    [[nodiscard]] RememberedRow rememberSelectedRow() const;
    void clearTree();
    void announceSearch();
    void keepCurrentRowSelected();
    void addAdapterRows(RememberedRow& remembered);
    void addDeviceRows(RememberedRow& remembered);
    QTreeWidgetItem* addDeviceRow(const Tessal::COrvikGigEDeviceInfo& record, int index);

    // Rows and their records.
    bool UpdateTreeItemFromNetworkAdapter(QTreeWidgetItem* item, const CNetworkAdapter* adapter);
    bool UpdateTreeItemFromDeviceInfo(QTreeWidgetItem* item, const Tessal::COrvikGigEDeviceInfo* record);
    int updateTreeRowFromDeviceInfoByMac(const QString& mac);
    void explainAdapters();
    void explainCells(QTreeWidgetItem* item, const Tessal::COrvikGigEDeviceInfo& record) const;
    [[nodiscard]] bool isTemporaryAddress(const Tessal::COrvikGigEDeviceInfo& record) const;
    [[nodiscard]] Tessal::COrvikGigEDeviceInfo* deviceOfItem(const QTreeWidgetItem* item) const;
    [[nodiscard]] const CNetworkAdapter* adapterOfItem(const QTreeWidgetItem* item) const;
    [[nodiscard]] QTreeWidgetItem* findAdapterTreeItem(const QString& name) const;
    [[nodiscard]] QTreeWidgetItem* getSelectedTreeItem() const;
    [[nodiscard]] Tessal::COrvikGigEDeviceInfo* GetDeviceInfoFromItemIndex(int index) const;
    [[nodiscard]] const CNetworkAdapter* GetNetworkAdapterFromItemIndex(int index) const;
    [[nodiscard]] const CNetworkAdapter* GetNetworkAdapaterFromDeviceItem(const QTreeWidgetItem* item) const;
    [[nodiscard]] Tessal::COrvikGigEDeviceInfo* GetSelectedDeviceInfo() const;
    [[nodiscard]] const CNetworkAdapter* GetSelectedNetworkAdapter() const;

    // Details panel.
    void updateUiFromTreeItem(const QTreeWidgetItem* item);
    void clearDetails();
    void clearAddressFields();
    void showDevice(const QTreeWidgetItem* item, const Tessal::COrvikGigEDeviceInfo& record);
    static QString deviceHint(const Tessal::COrvikGigEDeviceInfo& record, const CNetworkAdapter* adapter);
    void setSelectionInfoText(const QString& text);
    void setHintText(const QString& text);

    // Editing.
    void clearDirtyFlags();
    void startEditing();
    void stopEditing();
    [[nodiscard]] bool areIpSettingsEdited() const;
    [[nodiscard]] bool hasUnsavedChanges() const;
    [[nodiscard]] bool isValidConfigInUI() const;
    void makeSaveDefault();
    void updateUiState(QTreeWidgetItem* item);
    void enableWidgets(bool enable);
    void applyMaskLength(QLineEdit* edit);
    void commitFocusedField();
    void discardEdits();

    // Pending changes.
    [[nodiscard]] bool checkSaveChanges() const;
    void savePreviousRow(QTreeWidgetItem* previous);
    bool savePendingBeforeRefresh();
    bool savePendingBeforeForceIp(const Tessal::COrvikGigEDeviceInfo& record);
    bool savePendingBeforeClosing(); // Returns false if the user stays.
    bool writeAndUpdateName(const Tessal::COrvikGigEDeviceInfo& record);

    // Addresses.
    static void fixupIpAddress(QString& text);
    static void fixupMacAddress(QString& text);
    static bool isIPAddressValidForDevice(const QString& text);
    static QString SuggestIPAddress(const QNetworkAddressEntry& entry);
    static bool hasDeviceValidnetworkPrefixForAdapter(unsigned int deviceIp, unsigned int deviceMask,
                                                      const QNetworkInterface* adapter);
    static IpSettings fixedUpIpSettings(QString ipAddress, QString subnetMask, QString defaultGateway);

    // Advice.
    void createAdviceSigns();
    [[nodiscard]] advice::Surroundings surroundings(const CNetworkAdapter* adapter) const;
    [[nodiscard]] std::vector<advice::Advice> adviceInUi(const Tessal::COrvikGigEDeviceInfo& record,
                                                         const QTreeWidgetItem* item) const;
    void showAdvice(const Tessal::COrvikGigEDeviceInfo* record, const QTreeWidgetItem* item);
    [[nodiscard]] QString explainSave(const Tessal::COrvikGigEDeviceInfo* record,
                                      const std::vector<advice::Advice>& all) const;

    // Writing.
    bool saveSelectedCamera();
    void showSaveFailure();
    bool writeConfiguration(const Tessal::COrvikGigEDeviceInfo& deviceInfo);
    bool broadcastConfiguration(const QString& mac);
    bool waitForDevice(const QString& mac);
    void recordSave(const Tessal::COrvikGigEDeviceInfo& deviceInfo);
    void confirmSave();
    [[nodiscard]] AddressingMode addressingModeInUi() const;
    [[nodiscard]] IpSettings ipSettingsInUi() const;
    bool storeByBroadcast(const QByteArray& mac);
    void restartAfterBroadcast(const QString& mac);
    void restartDevice(const QString& mac, ozlog::Format<QByteArray> notFoundFormat,
                       const QByteArray& device);

    // Unicast.
    bool unicastConfiguration(const QString& ipAddress);
    bool writeEditedSettings(const Tessal::COrvikGigEDeviceInfo& record, const QByteArray& oldIp);
    void writePersistentIp(const GenICam::gcstring& mac, const QByteArray& oldIp);
    void restartAfterUnicast(const QString& mac, const QByteArray& oldIp);

    // Connection.
    bool openDevice(const QString& ipAddress);
    void createAndOpenDevice(const QString& address);
    void closeDevice();
    void releaseDevice();

    // Force IP: temporary addresses.
    bool forceIp(const QString& headerText, bool showMacAddress, QString* newIpAddress,
                 const ForceIpReason& reason = {});
    bool forceIpForConnection(QString& address, const ForceIpReason& reason);
    static void fillTemporaryAddressDialog(IpAddressWidget& dialog, const QNetworkAddressEntry& entry,
                                           const GenICam::gcstring& mac);
    std::optional<IpSettings> askForTemporaryAddress(IpAddressWidget& dialog, GenICam::gcstring& mac);
    std::optional<IpSettings> readTemporaryAddress(const IpAddressWidget& dialog, GenICam::gcstring& mac);
    void listTemporaryAddress(const GenICam::gcstring& mac, const IpSettings& sent,
                              const IpAddressWidget* dialog);

    Ui_IpConfigurationWidgetClass ui{};
    bool m_ipConfigModified = false;
    bool m_ipAddressModified = false;
    bool m_ipAddressEditPending = false; // Edited, and no mask has been suggested yet.
    bool m_netmaskModified = false;
    bool m_netmaskEditedByUser = false;
    bool m_gatewayModified = false;
    bool m_gatewayEditedByUser = false;
    bool m_editing = false; // Between startEditing() and stopEditing(); nothing reads it.
    bool m_customNameModified = false;
    DeviceLister* m_pDeviceLister = nullptr;        // Owned.
    Tessal::ITessalGigEDevice* m_pDevice = nullptr; // Created and destroyed by the transport layer.
    QList<CNetworkAdapter> m_networkAdapters;
    // Assigned by Force IP in this session, by MAC address, until the camera reports another one or is saved.
    QMap<QString, QString> m_temporaryAddresses;
    SentConfiguration m_sent;                    // By the latest save.
    QString m_unconfirmedMac;                    // Saved, but not yet compared with what the camera reports.
    Tessal::COrvikGigEDeviceInfo m_rediscovered; // Latest record of the camera last waited for.
    std::map<advice::Field, AdviceSign*> m_adviceSigns;
    std::optional<RefusedEntry> m_refusedEntry; // By the latest Force IP.
};
