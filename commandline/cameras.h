#pragma once

#include "advice/advice.h"
#include "tessal/deviceinfo.h"

#include <QByteArray>
#include <QString>

#include <vector>

class DeviceLister;

namespace cli {

/// How a camera gets its address: by options, plans and lists. Temporary is only asked for.
enum class Mode { Unknown, Static, Dhcp, AutoIp, Temporary };

/// A camera as one adapter hears it.
struct Camera
{
    net::MacAddress mac{};
    QString serial{};
    QString name{};
    QByteArray storedName{}; // As it came.
    QString vendor{};
    QString model{};
    QString adapter{};
    Mode mode = Mode::Unknown; // In force.
    net::Ipv4 address{};
    net::Ipv4 mask{};
    net::Ipv4 gateway{};
    int accessibility = 0; // A Tessal::Accessibility code.
    bool isMacShared = false;
    QString controlledBy{}; // Address of the computer whose application has control, if it is known.
};

[[nodiscard]] Camera cameraOf(const Tessal::COrvikGigEDeviceInfo& record);

/// What a search has found.
struct Network
{
    std::vector<Camera> cameras; // By adapter, model and MAC address, as in the window.
    advice::Surroundings surroundings;
    std::vector<net::Ipv4> gateways{}; // Of this computer's routes.
};

/// Throws what the lister throws.
[[nodiscard]] Network searchNetwork(DeviceLister& lister);

/// The cameras that the text can mean by MAC address, serial number, name or address; each once.
[[nodiscard]] std::vector<Camera> camerasMeantBy(const QString& text, const std::vector<Camera>& cameras);

/// Whether it is in 169.254.0.0/16.
[[nodiscard]] bool isLinkLocal(net::Ipv4 address);

// For people and programs.

[[nodiscard]] QString text(Mode mode);
[[nodiscard]] QString text(net::Ipv4 address);
/// "192.168.10.21/24", or with the mask in full where its ones are not all on its left.
[[nodiscard]] QString text(net::Ipv4 address, net::Ipv4 mask);
/// Six pairs of digits joined by ":".
[[nodiscard]] QString text(const net::MacAddress& mac);
/// The MAC address, and the name or else the model.
[[nodiscard]] QString text(const Camera& camera);

} // namespace cli
