#include "tessal/searchreport.h"

namespace Tessal {

namespace {

/// Marks a sentence for translation, like the macro of that name in Qt.
constexpr const char* QT_TRANSLATE_NOOP(const char* /*context*/, const char* sentence)
{
    return sentence;
}

void replaceAll(std::string& text, const std::string& placeholder, const std::string& value)
{
    for (std::size_t at = text.find(placeholder); at != std::string::npos;
         at = text.find(placeholder, at + value.size())) {
        text.replace(at, placeholder.size(), value);
    }
}

} // namespace

const char* obstacleSentence(Obstacle kind)
{
    // The commands use slashes because sysctl accepts adapter names with a dot only in that form.
    switch (kind) {
    case Obstacle::ReversePathStrict:
        return QT_TRANSLATE_NOOP(
            "Obstacles",
            "Cameras with an address of another network are not seen through %1: the strict reverse-path "
            "filter of this system drops their answers. To see them, run: "
            "sudo sysctl net/ipv4/conf/all/rp_filter=0 net/ipv4/conf/%1/rp_filter=0");
    case Obstacle::ReversePathNoRoute:
        return QT_TRANSLATE_NOOP(
            "Obstacles",
            "Cameras with an address of another network are not seen through %1: the loose reverse-path "
            "filter of this system drops their answers, as there is no default route. To see them, run: "
            "sudo sysctl net/ipv4/conf/all/rp_filter=0 net/ipv4/conf/%1/rp_filter=0");
    case Obstacle::NoIpv4Address:
        return QT_TRANSLATE_NOOP(
            "Obstacles", "No camera can be found through %1, as it has no IPv4 address. Perhaps no DHCP "
                         "server answers it; give it a fixed or a link-local address.");
    case Obstacle::SharedSubnet:
        return QT_TRANSLATE_NOOP(
            "Obstacles", "%1 and %2 have addresses in the same network, so cameras may not be reachable "
                         "through either. Give each adapter a network of its own.");
    case Obstacle::CannotSend:
        return QT_TRANSLATE_NOOP("Obstacles", "No camera could be searched for through %1: %3.");
    }
    return "";
}

std::string describeObstacle(const AdapterObstacle& obstacle)
{
    std::string text = obstacleSentence(obstacle.kind);
    replaceAll(text, "%1", obstacle.adapter);
    replaceAll(text, "%2", obstacle.other);
    replaceAll(text, "%3", obstacle.reason);
    return text;
}

} // namespace Tessal
