#pragma once

#include "net/addresses.h"

#include <QObject>
#include <QString>

#include <optional>
#include <vector>

/// Checks addresses before a camera gets them. Pure functions, independent of windows and networks. Advice
/// warns of what cannot work; what is rejected is decided elsewhere.
namespace advice {

Q_NAMESPACE // so that the enumerators below have names in a failing test

    /// An adapter of this computer.
    struct Adapter
{
    struct Subnet
    {
        net::Ipv4 address; // the adapter's own
        net::Ipv4 mask;
    };

    QString name; // as "eth0"
    std::vector<Subnet> subnets;
};

/// A camera in the list. Name and model are texts from outside, made fit for display; they are not markup.
struct Camera
{
    QString name; // the user's; empty if none was given
    QString model;
    net::MacAddress mac;
    net::Ipv4 address;
};

/// What is known about the network around a camera.
struct Surroundings
{
    std::vector<Adapter> adapters;
    std::vector<Camera> cameras;
    QString cameraAdapter; // name of the adapter that hears the camera; empty if unknown
};

/// What the addresses are for.
enum class Purpose {
    Static,    // the camera keeps them
    Temporary, // the camera gets them until it restarts
    LeftOver,  // another mode is chosen, and what was typed before is sent along with it
};

/// What the fields hold, as typed.
struct Entry
{
    Purpose purpose = Purpose::Static;
    QString mac; // of the camera that the addresses are for
    QString address;
    QString mask;
    QString gateway;
};

enum class Field { MacAddress, Address, Mask, Gateway };
Q_ENUM_NS(Field)

enum class Kind {
    Missing,
    Incomplete,            // or not an address at all
    RestartsConfiguration, // without a temporary address, the camera looks for one again
    SpecialAddress,        // does not stand for a device
    NetworkAddress,        // of the mask `other`, as is the next
    BroadcastAddress,
    OwnAddress,      // of this computer, on `adapter`
    AddressOfCamera, // of `camera`, another one
    OutsideAdapter,  // in no network of `adapter`
    OutsideComputer, // in no network of any adapter
    NoMask,          // four numbers that are not a mask
    OtherMask,       // `adapter` has the mask `other` in the network of the address
    GatewayOutside,  // of the camera's network
    GatewayOfCamera, // is the camera's own address
    LeftOverAddress, // would be refused together with the other mode
};
Q_ENUM_NS(Kind)

/// Advice on one field; the values that its kind does not name are empty.
struct Advice
{
    Kind kind = Kind::Missing;
    Field field = Field::Address;
    net::Ipv4 value{}; // of the field
    net::Ipv4 other{};
    QString adapter{};
    Camera camera{};
};

/// The advice on an entry: at most one for each field, in the order of Field. The MAC address is checked only
/// if it is entered as well, for a temporary address.
[[nodiscard]] std::vector<Advice> adviceOn(const Entry& entry, const Surroundings& surroundings);

/// The advice on that field, if any.
[[nodiscard]] std::optional<Advice> adviceFor(Field field, const std::vector<Advice>& all);

/// Whether something is missing, so that the entry cannot be used at all.
[[nodiscard]] bool isUnfinished(const Advice& advice);

/// Whether it points out a mistake, rather than what is still to be typed or will happen.
[[nodiscard]] bool isWarning(const Advice& advice);

/// The advice in the user's language: a short sentence or two, plain text.
[[nodiscard]] QString sentence(const Advice& advice);

/// The camera by its name, its model and its MAC address, plain text.
[[nodiscard]] QString describe(const Camera& camera);

/// The camera in the list that has that MAC address, in either of the forms that net::parseMac reads.
[[nodiscard]] std::optional<Camera> cameraOf(const QString& mac, const Surroundings& surroundings);

} // namespace advice
