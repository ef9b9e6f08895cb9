#pragma once

#include <string>
#include <vector>

namespace Tessal {

/// Why a search through an adapter finds fewer cameras than there are, or none.
enum class Obstacle {
    ReversePathStrict,  // the system's filter drops answers from subnets that the adapter is not in
    ReversePathNoRoute, // the filter drops them because no route leads back: there is no default route
    NoIpv4Address,      // the adapter is up and has no IPv4 address to ask from
    SharedSubnet, // the adapter `other` has an address in the same subnet, and takes some of the answers
    CannotSend,   // the system did not send; `reason` is its description, in English
};

/// One obstacle on one adapter.
struct AdapterObstacle
{
    Obstacle kind = Obstacle::NoIpv4Address;
    std::string adapter; // the operating system's name, "eth0"
    std::string other{};
    std::string reason{};

    friend bool operator==(const AdapterObstacle&, const AdapterObstacle&) = default;
};

/// The English sentence for an obstacle, with %1 for `adapter`, %2 for `other` and %3 for `reason`. It is the
/// key of its translations in the context "Obstacles".
[[nodiscard]] const char* obstacleSentence(Obstacle kind);
/// The same with the values filled in, for the trace.
[[nodiscard]] std::string describeObstacle(const AdapterObstacle& obstacle);

/// An optional interface of a transport layer, obtained by dynamic_cast: reports what kept its searches from
/// finding cameras.
class ISearchReport
{
public:
    ISearchReport() = default;
    ISearchReport(const ISearchReport&) = delete;
    ISearchReport& operator=(const ISearchReport&) = delete;
    virtual ~ISearchReport() = default;

    /// Those of the latest search; an adapter may have several.
    [[nodiscard]] virtual std::vector<AdapterObstacle> GetObstacles() const = 0;
};

} // namespace Tessal
