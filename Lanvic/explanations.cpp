#include "explanations.h"

#include "NetworkAdapter.h"
#include "recorddisplay.h"

#include "qtbase/formatting.h"
#include "tessal/transportlayer.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Explanations)
};

/// Returns an empty text if the record lacks the property.
QString property(const Tessal::COrvikGigEDeviceInfo& record, const char* key)
{
    GenICam::gcstring value;
    return record.GetPropertyValue(key, value) ? displayText(QString::fromUtf8(value.c_str())) : QString();
}

QString explainControl(const Tessal::COrvikGigEDeviceInfo& record, const QString& byUnknown,
                       const QString& byComputer)
{
    const QString computer = property(record, Tessal::Key::ControlledBy);
    return computer.isEmpty() ? byUnknown : byComputer.arg(computer);
}

bool isInSubnetOf(const Tessal::COrvikGigEDeviceInfo& record, const CNetworkAdapter& adapter)
{
    const QHostAddress address = addressFromText(fromAscii(record.GetIpAddress()));
    const auto entries = adapter.addressEntries();
    return std::ranges::any_of(entries, [&](const QNetworkAddressEntry& entry) {
        return entry.ip().protocol() == QAbstractSocket::IPv4Protocol &&
               address.isInSubnet(entry.ip(), entry.prefixLength());
    });
}

QString explainUnreachable(const Tessal::COrvikGigEDeviceInfo& record, const CNetworkAdapter* adapter)
{
    const QString otherMac = property(record, Tessal::Key::SameAddressMac);
    if (!otherMac.isEmpty()) {
        const QString mac = formatMACAddress(otherMac.toLatin1(), ":");
        const QString other = property(record, Tessal::Key::SameAddressName);
        return other.isEmpty()
                   ? Texts::tr("The camera with the MAC address %1 has the same address. One of them needs "
                               "another.")
                         .arg(mac)
                   : Texts::tr(
                         "The camera %1 with the MAC address %2 has the same address. One of them needs "
                         "another.")
                         .arg(other, mac);
    }
    if (adapter != nullptr && !isInSubnetOf(record, *adapter)) {
        return Texts::tr("The camera answers the search, but its address is not in a network of %1.")
            .arg(adapter->m_name);
    }
    return Texts::tr("The camera answers the search, but not at its own address. It may be restarting.");
}

QString explainCode(const Tessal::COrvikGigEDeviceInfo& record, const CNetworkAdapter* adapter)
{
    using namespace Tessal::Accessibility;
    switch (GetDeviceAccessibility(&record)) {
    case Ok:
        return Texts::tr("The camera answers at its address and no application controls it.");
    case Controlled:
        return explainControl(record, Texts::tr("Another application controls the camera."),
                              Texts::tr("An application on the computer %1 controls the camera."));
    case ControlledExclusively:
        return explainControl(
            record, Texts::tr("Another application has exclusive access to the camera."),
            Texts::tr("An application on the computer %1 has exclusive access to the camera."));
    case NotReachable:
        return explainUnreachable(record, adapter);
    default:
        return Texts::tr("The camera answers, but does not tell whether an application controls it.");
    }
}

} // namespace

QString explainObstacle(const Tessal::AdapterObstacle& obstacle)
{
    // Not QString::arg(), which warns if the sentence has no place for a value.
    return QCoreApplication::translate("Obstacles", Tessal::obstacleSentence(obstacle.kind))
        .replace(QLatin1String("%1"), QString::fromLocal8Bit(obstacle.adapter.c_str()))
        .replace(QLatin1String("%2"), QString::fromLocal8Bit(obstacle.other.c_str()))
        .replace(QLatin1String("%3"), QString::fromLocal8Bit(obstacle.reason.c_str()));
}

QString explainStatus(const Tessal::COrvikGigEDeviceInfo& record, const CNetworkAdapter* adapter)
{
    QStringList sentences{explainCode(record, adapter)};
    const QString duplicateAddress = property(record, Tessal::Key::SameMacIp);
    if (!duplicateAddress.isEmpty()) {
        const QString duplicate = property(record, Tessal::Key::SameMacName);
        sentences += duplicate.isEmpty()
                         ? Texts::tr("Another camera has the same MAC address, at %1.").arg(duplicateAddress)
                         : Texts::tr("Another camera has the same MAC address: %1 at %2.")
                               .arg(duplicate, duplicateAddress);
    }
    return sentences.join(QLatin1Char(' '));
}
