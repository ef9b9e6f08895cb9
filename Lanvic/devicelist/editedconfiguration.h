#pragma once

#include "tessal/deviceinfo.h"

#include <QByteArray>

/// The addressing mode that is selected in the editor. None is set while the mode buttons are disabled.
struct AddressingMode
{
    bool persistentIp = false;
    bool dhcp = false;
    bool autoIp = false;

    /// The mode as IpConfig bits for a record. `linkLocal` says whether they include Auto IP.
    [[nodiscard]] QByteArray asIpConfig(bool linkLocal) const
    {
        return QByteArray::number((persistentIp ? Tessal::IpConfig::Persistent : 0U) |
                                  (dhcp ? Tessal::IpConfig::Dhcp : 0U) |
                                  (linkLocal ? Tessal::IpConfig::LinkLocal : 0U));
    }
};

/// The addresses in the editor or in the dialog for a temporary address, in the form that the camera SDK
/// takes: ASCII, and 0.0.0.0 for an empty field.
struct IpSettings
{
    QByteArray ipAddress;
    QByteArray subnetMask;
    QByteArray defaultGateway;
};
