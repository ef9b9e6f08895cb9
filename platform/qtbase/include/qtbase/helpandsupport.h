#pragma once

#include <QDialog>
#include <QString>

class QLabel;

/// How the help is shown. The program passes InBrowser.
enum EShowHelpFileFlags { InBrowser = 2 };

/// Full path of the help page, in the program's language or else in English: that of an installed program, or
/// else that of the source tree it was built from. The page may not exist.
[[nodiscard]] QString GetHelpFilePath();
/// Opens the help page at `topic` (an anchor; empty for the top) in the user's browser; false if the page
/// does not exist or no browser could be started. The id is not used.
bool ShowHelpFile(EShowHelpFileFlags flags, QWidget* parent, const QString& path, const QString& topic,
                  int id);
/// Opens the maker's feedback page in the user's browser, or shows its address if no browser could be
/// started.
void OpenFeedbackUrl();
/// Opens an e-mail to the maker's support that contains the support information; false if the desktop has no
/// mail program or cannot start it.
bool ContactOrvikSupport();
/// The support address and what support needs to know about this computer; no serial numbers, no hardware
/// addresses and no user names. With `withAdapters`, also its network: the default route, and each adapter's
/// kind, state, MTU, reverse-path filter and IPv4 addresses.
[[nodiscard]] QString GetOrvikSupportInfo(bool withAdapters);

/// Sentences about the adapters, to be included in the support information from then on. Hardware addresses
/// in them are left out.
void SetSupportRemarks(const QStringList& remarks);

/// The maker's About box. Its picture is the window icon.
class AboutDialog : public QDialog
{
    Q_OBJECT

public:
    explicit AboutDialog(QWidget* parent);

    void setProductVersion(const QString& version);
    /// First and last year joined by a hyphen.
    void setCopyrightTimeRange(const QString& years);

private:
    QLabel* m_version;
    QLabel* m_copyright;
};
