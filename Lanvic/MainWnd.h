#pragma once

#include "ui_MainWnd.h"

#include <QMainWindow>

class IpConfigurationWidget;

/// The program's only top-level window: menus, help and support, and the remembered position and size, around
/// the configuration widget, which may refuse to be closed.
class MainWnd : public QMainWindow
{
    Q_OBJECT

public:
    /// Runs the first discovery before it returns.
    explicit MainWnd(QWidget* parent = nullptr, Qt::WindowFlags flags = {});

private:
    Q_SLOT void on_actionRefresh_triggered();
    Q_SLOT void on_actionViewHelp_triggered();
    Q_SLOT void on_actionAbout_triggered();
    Q_SLOT void on_actionFeedback_triggered();
    Q_SLOT void on_actionContact_Orvik_Support_triggered();
    Q_SLOT void closeEvent(QCloseEvent* event) override;

    void restoreGeometryFromSettings();

    Ui_MainWnd ui{};
    IpConfigurationWidget* m_pConfigWidget = nullptr; // The central widget, owned as a child.
};
