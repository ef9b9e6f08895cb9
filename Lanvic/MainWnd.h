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

private slots:
    void on_actionRefresh_triggered();
    void on_actionViewHelp_triggered();
    void on_actionAbout_triggered();
    void on_actionFeedback_triggered();
    void on_actionContact_Orvik_Support_triggered();
    void closeEvent(QCloseEvent* event) override;

private:
    void restoreGeometryFromSettings();

    Ui_MainWnd ui{};
    IpConfigurationWidget* m_pConfigWidget = nullptr; // the central widget, owned as a child
};
