#include "qtbase/helpandsupport.h"

#include "qtbase/formatting.h"
#include "qtbase/messages.h"

#include "net/routes.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QNetworkInterface>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QStringList>
#include <QSysInfo>
#include <QUrl>

namespace {

constexpr QLatin1String supportAddress("support@orvik.example");
constexpr QLatin1String feedbackUrl("https://www.orvik.example/feedback");
constexpr QLatin1String makerUrl("https://www.orvik.example/");
constexpr int pictureSize = 96;             // px
constexpr int mailHandlerQueryLimit = 3000; // ms

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(HelpAndSupport)
};

/// Whether the desktop has a program for mailto: addresses. Without one, opening such an address reports
/// success but shows nothing.
bool hasMailProgram()
{
    QProcess query;
    query.start(QStringLiteral("xdg-mime"), {QStringLiteral("query"), QStringLiteral("default"),
                                             QStringLiteral("x-scheme-handler/mailto")});
    return query.waitForFinished(mailHandlerQueryLimit) && query.exitStatus() == QProcess::NormalExit &&
           query.exitCode() == 0 && !query.readAllStandardOutput().trimmed().isEmpty();
}

/// The content of a kernel file of one line, or "unknown".
QString kernelSetting(const QString& path)
{
    QFile setting(path);
    const QByteArray text = setting.open(QIODevice::ReadOnly) ? setting.readAll().trimmed() : QByteArray();
    return text.isEmpty() ? Texts::tr("unknown") : QString::fromLatin1(text);
}

/// If it is not 0, the kernel may drop answers of cameras that it has no route to.
QString reversePathFilter(const QString& adapter)
{
    return kernelSetting(QStringLiteral("/proc/sys/net/ipv4/conf/%1/rp_filter").arg(adapter));
}

/// The adapter's name, without the hardware address if the system named it after that.
QString shareableName(QString adapter)
{
    static const QRegularExpression hardwareAddress(QStringLiteral("[0-9A-Fa-f]{12}"));
    return adapter.replace(hardwareAddress, QStringLiteral("..."));
}

QString connectionOf(const QNetworkInterface& adapter)
{
    if (!adapter.flags().testFlag(QNetworkInterface::IsUp)) {
        return Texts::tr("down");
    }
    return adapter.flags().testFlag(QNetworkInterface::IsRunning) ? Texts::tr("up")
                                                                  : Texts::tr("up, not connected");
}

QString kindOf(const QNetworkInterface& adapter)
{
    switch (adapter.type()) {
    case QNetworkInterface::Ethernet: {
        bool isNumber = false;
        const QString path = QStringLiteral("/sys/class/net/%1/speed").arg(adapterName(adapter.name()));
        const int speed = kernelSetting(path).toInt(&isNumber); // -1 if unknown
        return isNumber && speed > 0 ? Texts::tr("Ethernet at %1 Mbit/s").arg(speed) : Texts::tr("Ethernet");
    }
    case QNetworkInterface::Wifi:
        return Texts::tr("Wi-Fi");
    case QNetworkInterface::Loopback:
        return Texts::tr("loopback");
    default:
        return Texts::tr("other kind");
    }
}

QString describeAdapter(const QNetworkInterface& adapter)
{
    QStringList addresses;
    const auto entries = adapter.addressEntries();
    for (const QNetworkAddressEntry& entry : entries) {
        if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol) {
            addresses += QStringLiteral("%1/%2").arg(entry.ip().toString()).arg(entry.prefixLength());
        }
    }
    const QString name = adapterName(adapter.name());
    return Texts::tr("%1: %2, %3, MTU %4, rp_filter %5, %6")
        .arg(shareableName(name), kindOf(adapter), connectionOf(adapter),
             QString::number(adapter.maximumTransmissionUnit()), reversePathFilter(name),
             addresses.isEmpty() ? Texts::tr("no IPv4 address") : addresses.join(QLatin1String(", ")));
}

QStringList& supportRemarks()
{
    static QStringList remarks;
    return remarks;
}

QStringList describeNetwork()
{
    const QString route = QString::fromStdString(net::defaultRouteAdapter());
    QStringList lines{
        Texts::tr("Default route: %1").arg(route.isEmpty() ? Texts::tr("none") : shareableName(route)),
        Texts::tr("Receive buffer: at most %1 bytes")
            .arg(kernelSetting(QStringLiteral("/proc/sys/net/core/rmem_max"))),
        Texts::tr("Network adapters (rp_filter of all: %1):").arg(reversePathFilter(QStringLiteral("all"))),
    };
    const auto adapters = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface& adapter : adapters) {
        lines += describeAdapter(adapter);
    }
    for (const QString& remark : supportRemarks()) {
        lines += shareableName(remark);
    }
    return lines;
}

QLabel* addText(QGridLayout* layout, int row, const QString& text, Qt::TextFormat format)
{
    auto* const label = new QLabel;
    label->setTextFormat(format);
    label->setText(text);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextBrowserInteraction);
    label->setOpenExternalLinks(true);
    layout->addWidget(label, row, 1);
    return label;
}

} // namespace

QString GetHelpFilePath()
{
    const QString installed =
        QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/" LANVIC_INSTALLED_HELP));
    //: The help page in this language, as a path in docs/help.
    const QString translated = Texts::tr("index.html");
    const QString english = QStringLiteral("index.html");
    for (const QString& directory : {installed, QStringLiteral(LANVIC_SOURCE_HELP)}) {
        for (const QString& page : {translated, english}) {
            QString path = QDir(directory).filePath(page);
            if (!directory.isEmpty() && QFile::exists(path)) {
                return path;
            }
        }
    }
    return QDir(installed).filePath(english);
}

bool ShowHelpFile(EShowHelpFileFlags /*flags*/, QWidget* /*parent*/, const QString& path,
                  const QString& topic, int /*id*/)
{
    QUrl url = QUrl::fromLocalFile(path);
    if (!topic.isEmpty()) {
        url.setFragment(topic);
    }
    return QFile::exists(path) && QDesktopServices::openUrl(url);
}

void OpenFeedbackUrl()
{
    if (!QDesktopServices::openUrl(QUrl(feedbackUrl))) {
        showWarningMessage(Texts::tr("Submit Feedback"), Texts::tr("No browser could be started."),
                           Texts::tr("Please open this address yourself:\n%1").arg(feedbackUrl), nullptr);
    }
}

bool ContactOrvikSupport()
{
    if (!hasMailProgram()) {
        return false;
    }
    const QString subject = Texts::tr("%1: support request").arg(QGuiApplication::applicationDisplayName());
    const QString body = Texts::tr("Please describe what happened:\n\n\n%1").arg(GetOrvikSupportInfo(true));
    const auto encoded = [](QString text) {
        return QUrl::toPercentEncoding(text.replace(QLatin1Char('\n'), QLatin1String("\r\n")));
    };
    const QByteArray mail = QByteArray("mailto:") + supportAddress.data() + "?subject=" + encoded(subject) +
                            "&body=" + encoded(body);
    return QDesktopServices::openUrl(QUrl::fromEncoded(mail));
}

void SetSupportRemarks(const QStringList& remarks)
{
    supportRemarks() = remarks;
}

QString GetOrvikSupportInfo(bool withAdapters)
{
    QStringList lines{
        Texts::tr("E-mail: %1").arg(supportAddress),
        QString(),
        Texts::tr("Program: %1 %2 (%3)")
            .arg(QGuiApplication::applicationDisplayName(), QLatin1String(LANVIC_VERSION),
                 QSysInfo::buildCpuArchitecture()),
        Texts::tr("Tessal camera SDK: %1, part of the program").arg(QLatin1String(LANVIC_VERSION)),
        Texts::tr("Qt: %1 on %2").arg(QLatin1String(qVersion()), QGuiApplication::platformName()),
        Texts::tr("System: %1").arg(QSysInfo::prettyProductName()),
        Texts::tr("Kernel: %1 %2").arg(QSysInfo::kernelType(), QSysInfo::kernelVersion()),
    };
    if (withAdapters) {
        lines += QString();
        lines += describeNetwork();
    }
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent)
{
    const QString name = QGuiApplication::applicationDisplayName();
    setWindowTitle(tr("About %1").arg(name));

    auto* const layout = new QGridLayout(this);
    layout->setHorizontalSpacing(18);
    layout->setVerticalSpacing(8);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->setColumnMinimumWidth(1, 320);

    const QIcon icon = windowIcon().isNull() ? QIcon::fromTheme(QStringLiteral("lanvic")) : windowIcon();
    auto* const picture = new QLabel;
    picture->setPixmap(icon.pixmap(QSize(pictureSize, pictureSize), devicePixelRatioF()));
    picture->setHidden(icon.isNull());
    layout->addWidget(picture, 0, 0, 5, 1, Qt::AlignTop);

    QLabel* const title = addText(layout, 0, name, Qt::PlainText);
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    title->setFont(large);
    m_version = addText(layout, 1, QString(), Qt::PlainText);
    addText(layout, 2,
            tr("Finds every GigE Vision camera on this computer's networks, also those with a wrong address, "
               "shows what is the matter with each and gives it the right address."),
            Qt::PlainText);
    m_copyright = addText(layout, 3, QString(), Qt::PlainText);
    addText(layout, 4, QStringLiteral("<a href=\"%1\">%1</a>").arg(makerUrl), Qt::RichText);

    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons, 5, 0, 1, 2);
    buttons->button(QDialogButtonBox::Close)->setFocus();
}

void AboutDialog::setProductVersion(const QString& version)
{
    m_version->setText(tr("Version %1").arg(version));
}

void AboutDialog::setCopyrightTimeRange(const QString& years)
{
    m_copyright->setText(tr("Copyright © %1 %2").arg(years, QCoreApplication::organizationName()));
}
