#include "confirmation.h"

#include "recorddisplay.h"

#include "qtbase/formatting.h"

#include <QCoreApplication>
#include <QStringList>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Confirmation)
};

class Deviations
{
public:
    void compare(const QString& what, const QString& asked, const QString& reported)
    {
        if (asked != reported) {
            m_lines << Texts::tr("%1: %2 was saved; the camera reports %3.")
                           .arg(what, quoted(asked), quoted(reported));
        }
    }
    [[nodiscard]] QString text() const { return m_lines.join(QLatin1Char('\n')); }

private:
    static QString quoted(const QString& value)
    {
        return value.isEmpty() ? Texts::tr("nothing") : displayText(value);
    }

    QStringList m_lines;
};

/// The mode in force, as the tree shows it.
QString modeText(const QByteArray& ipConfig)
{
    return formatIPConfiguration(ipConfig.constData(), 1);
}

} // namespace

QString deviationsFrom(const SentConfiguration& sent, const Tessal::COrvikGigEDeviceInfo& reported)
{
    Deviations deviations;
    if (sent.mode) {
        deviations.compare(Texts::tr("IP configuration"), modeText(sent.mode->asIpConfig(true)),
                           modeText(reported.GetIpConfigCurrent().c_str()));
    }
    const bool isStatic = sent.mode ? sent.mode->persistentIp : reported.IsPersistentIpActive();
    if (sent.settings && isStatic) {
        const auto compare = [&](const QString& what, const QByteArray& asked,
                                 const GenICam::gcstring& seen) {
            // Compared as addresses, because the user may have typed leading zeros.
            if (addressFromText(QString::fromLatin1(asked)) != addressFromText(fromAscii(seen))) {
                deviations.compare(what, QString::fromLatin1(asked), fromAscii(seen));
            }
        };
        compare(Texts::tr("IP address"), sent.settings->ipAddress, reported.GetIpAddress());
        compare(Texts::tr("Subnet mask"), sent.settings->subnetMask, reported.GetSubnetMask());
        compare(Texts::tr("Default gateway"), sent.settings->defaultGateway, reported.GetDefaultGateway());
    }
    if (sent.name) {
        deviations.compare(Texts::tr("Device user ID"), sent.name->trimmed(),
                           GetUtf8Property(&reported, Tessal::Key::UserDefinedName).trimmed());
    }
    return deviations.text();
}
