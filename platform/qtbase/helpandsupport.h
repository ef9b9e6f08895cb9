#pragma once

#include <QDialog>
#include <QString>

/// How the help is shown. The program passes InBrowser.
enum EShowHelpFileFlags { InBrowser = 2 };

/// Full path of the help page: beside an installed program, else in the source tree it was built from. May
/// not exist.
[[nodiscard]] QString GetHelpFilePath();
/// Opens the help page at `topic` (an anchor; empty for the top) in the user's browser; false when that
/// failed. The id is not used.
bool ShowHelpFile(EShowHelpFileFlags flags, QWidget* parent, const QString& path, const QString& topic,
                  int id);
/// Opens the maker's feedback page in the user's browser.
void OpenFeedbackUrl();
/// Offers the user an e-mail to the maker's support with the support information in it; false when there is
/// no mail program.
bool ContactOrvikSupport();
/// The support address and what support needs to know of this computer; no serial numbers and no user names.
/// With `withAdapters`, also the host's network adapters.
[[nodiscard]] QString GetOrvikSupportInfo(bool withAdapters);

/// The maker's About box.
class AboutDialog : public QDialog
{
    Q_OBJECT

public:
    explicit AboutDialog(QWidget* parent);

    void setProductVersion(const QString& version);
    /// First and last year joined by a hyphen.
    void setCopyrightTimeRange(const QString& years);

private:
    void updateText();

    class QLabel* m_text;
    QString m_version;
    QString m_years;
};
