#pragma once

#include "tessal/searchreport.h"
#include "tessal/transportlayer.h"

#include <QStringList>

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// A fake camera SDK: cameras in memory that refuse, vanish, and take a name or a temporary address,
/// and a journal of the calls. It uses no sockets.
namespace sdk {

/// A camera as one host address hears it; the same MAC may stand in the world more than once. It is reachable
/// while it shares the /24 network of that host address.
struct Camera
{
    Tessal::COrvikGigEDeviceInfo record;           // what discovery reports
    int accessibility = Tessal::Accessibility::Ok; // what a query reports
    bool knowsBroadcast = true;                    // the manufacturer's broadcast command
    bool comesBack = true;                         // is heard again after a restart or a forced address
    bool hasNodeMap = true;
    bool silent = false; // away since a restart, because it does not come back
};

/// A camera in static mode, with that model, MAC and address, heard by the host address `interface`.
[[nodiscard]] Camera camera(const char* model = "km-1", const char* mac = "025E41000001",
                            const char* ip = "192.168.1.9", const char* interface = "192.168.1.5");
/// The same with other properties.
[[nodiscard]] Camera with(Camera camera,
                          std::initializer_list<std::pair<const char*, const char*>> properties);
/// The properties joined by blanks, "-" for each that the record lacks.
[[nodiscard]] QString get(const Tessal::IProperties& record, std::initializer_list<const char*> keys);

struct World
{
    std::vector<Camera> cameras;
    /// Runs when the call of that name arrives, after it was written down and before it has an effect; may
    /// throw. "sleep" is the program's own sleep.
    std::map<std::string, std::function<void()>> at;
    bool makesTransportLayer = true;
    bool isGigE = true;                             // has devices for its cameras
    std::vector<Tessal::AdapterObstacle> obstacles; // that a search met
    QStringList journal;                            // every call with its arguments, in order

    /// The journal since the last call, without what discovery asks unless `all`.
    QStringList take(bool all = false);
};

[[nodiscard]] World& world();

} // namespace sdk
