#include "MainWnd.h"

#include "WaitBox.h"
#include "ipconfigurationwidget.h"
#include "settingskeys.h"
#include "version.h"

#include "qtbase/helpandsupport.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSettings>

#include <algorithm>

namespace {

/// Whether enough of a window at that place would be visible for the user to drag it. The rectangle is
/// moved up and left by about the size of the borders, because a window cannot be dragged by its lower right
/// border.
bool isOnSomeScreen(const QRect& window)
{
    const QRect visible = window.adjusted(-8, -16, -8, -8);
    const QList<QScreen*> screens = QGuiApplication::screens();
    return !visible.isEmpty() && std::ranges::any_of(screens, [&visible](const QScreen* screen) {
        return visible.intersects(screen->availableGeometry());
    });
}

} // namespace

MainWnd::MainWnd(QWidget* parent, Qt::WindowFlags flags) : QMainWindow(parent, flags)
{
    ui.setupUi(this);
    m_pConfigWidget = new IpConfigurationWidget(this);
    setCentralWidget(m_pConfigWidget);
    if (!QFile::exists(GetHelpFilePath())) {
        ui.menuHelp->removeAction(ui.actionViewHelp);
        qDebug("View Help removed");
    }
    restoreGeometryFromSettings();
    connect(ui.actionExit, &QAction::triggered, this, &QWidget::close);
}

void MainWnd::restoreGeometryFromSettings()
{
    QSettings settings;
    settings.beginGroup(SettingsKey::Group);
    if (!settings.contains(SettingsKey::Position) || !settings.contains(SettingsKey::Size)) {
        return;
    }
    const QPoint position = settings.value(SettingsKey::Position).toPoint();
    const QSize size = settings.value(SettingsKey::Size).toSize();
    if (isOnSomeScreen(QRect(position, size))) {
        resize(size);
        move(position);
    }
}

void MainWnd::closeEvent(QCloseEvent* event)
{
    if (!m_pConfigWidget->close()) {
        event->ignore();
        return;
    }
    QSettings settings;
    settings.beginGroup(SettingsKey::Group);
    settings.setValue(SettingsKey::Position, pos());
    settings.setValue(SettingsKey::Size, size());
    settings.sync();
    if (settings.status() != QSettings::NoError) {
        qWarning("The layout of the window could not be stored in %s", qUtf8Printable(settings.fileName()));
    }
}

void MainWnd::on_actionRefresh_triggered()
{
    m_pConfigWidget->refresh();
}

void MainWnd::on_actionViewHelp_triggered()
{
    if (!ShowHelpFile(InBrowser, this, GetHelpFilePath(), QString(), 0)) {
        QApplication::beep();
    }
}

void MainWnd::on_actionFeedback_triggered()
{
    if (!isBusy()) {
        OpenFeedbackUrl();
    }
}

void MainWnd::on_actionAbout_triggered()
{
    if (isBusy()) {
        return;
    }
    AboutDialog dialog(this);
    dialog.setProductVersion(QStringLiteral("%1.%2.%3.%4%5")
                                 .arg(version::Major)
                                 .arg(version::Minor)
                                 .arg(version::Patch)
                                 .arg(version::Build)
                                 .arg(QLatin1String(version::Suffix)));
    dialog.setCopyrightTimeRange(QStringLiteral("2024-2026"));
    dialog.exec();
}

void MainWnd::on_actionContact_Orvik_Support_triggered()
{
    if (isBusy() || ContactOrvikSupport()) {
        return;
    }
    const QString details = GetOrvikSupportInfo(true);
    const QString title = tr("Contact Orvik Support");

    QMessageBox box(this);
    box.setWindowModality(Qt::ApplicationModal);
    box.setWindowFlags(box.windowFlags() | Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint);
    box.setIcon(QMessageBox::Warning);
    box.setWindowTitle(title);
    box.setText(tr("In order to contact Orvik support, you can copy the information (e-mail address and "
                   "Tessal information) to your clipboard.\n\n"
                   "The copied information is visible via “Show Details”.\n\n"
                   "Afterwards you can send this information to the indicated address (visible via “Show "
                   "Details”)."));
    box.setDetailedText(details);
    box.setStandardButtons(QMessageBox::Close);
    const QAbstractButton* const copyButton = box.addButton(tr("Copy to Clipboard"), QMessageBox::ActionRole);
    box.exec();
    if (box.clickedButton() == copyButton) {
        QGuiApplication::clipboard()->setText(details, QClipboard::Clipboard);
        QMessageBox::information(&box, title, tr("E-Mail information copied to clipboard successfully."),
                                 QMessageBox::Ok);
    }
}
