#pragma once

#include "NetworkAdapter.h"
#include "ui_ipconfigurationwidget.h"

#include "tessal/transportlayer.h"

#include <QList>
#include <QWidget>

#include <memory>

class DeviceLister;

/// What a row of the tree stands for and where its record is; all on column 0 and valid until the next refresh.
enum ItemKind { AdapterItem = 1, DeviceItem = 2 };
inline constexpr int ItemKindRole = Qt::UserRole;
inline constexpr int DeviceIndexRole = Qt::UserRole + 1;  // position in DeviceLister::m_devices
inline constexpr int AdapterIndexRole = Qt::UserRole + 2; // position in m_networkAdapters

/// The central widget, in which all work with cameras happens: the tree of adapters and cameras, the details of the
/// selected row, the editor of one camera's addressing, and everything that writes to a camera. One source file for
/// each concern: construction, tree, details, editing, addresses, writing, connection.
class IpConfigurationWidget : public QWidget
{
    Q_OBJECT

public:
    /// Runs the first discovery before it returns.
    explicit IpConfigurationWidget(QWidget* parent = nullptr);
    ~IpConfigurationWidget() override;

public slots:
    /// Rebuilds the tree from a fresh discovery; reports its failures itself.
    void refresh();

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
};
