#pragma once

#include "tessal/deviceinfo.h"

#include <QByteArray>

/// The addressing mode that the editor asks for. None is set when no mode button is usable.
struct AddressingMode
{
    bool persistentIp = false;
    bool dhcp = false;
    bool autoIp = false;

    /// The mode as IpConfig bits for a record. `linkLocal` tells whether Auto IP is to be among them.
    [[nodiscard]] QByteArray asIpConfig(bool linkLocal) const
    {
        return QByteArray::number((persistentIp ? Tessal::IpConfig::Persistent : 0U) |
                                  (dhcp ? Tessal::IpConfig::Dhcp : 0U) |
                                  (linkLocal ? Tessal::IpConfig::LinkLocal : 0U));
    }
};

/// What the editor, or the dialog for a temporary address, holds: three addresses in the form that the camera
/// libraries take: ASCII, an empty one as 0.0.0.0.
struct IpSettings
{
    QByteArray ipAddress;
    QByteArray subnetMask;
    QByteArray defaultGateway;
};
