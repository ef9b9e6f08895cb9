#include "gige/arguments.h"

#include "gige/errors.h"

namespace gige {

net::MacAddress macArgument(const GenICam::gcstring& text)
{
    constexpr std::size_t digits = 12;
    const auto mac = net::parseMac(text.view());
    if (!mac || text.size() != digits) {
        raise<GenICam::InvalidArgumentException>(
            "\"" + std::string(text.view()) +
            "\" is not the MAC address of a camera, which has twelve hexadecimal digits");
    }
    return *mac;
}

net::Ipv4 addressArgument(const GenICam::gcstring& text, const char* what)
{
    const auto address = net::parseIpv4(text.view());
    if (!address) {
        raise<GenICam::InvalidArgumentException>(
            "\"" + std::string(text.view()) + "\" is no " + what +
            "; it takes four numbers of 0 to 255 with dots between them");
    }
    return *address;
}

net::Ipv4 storedAddressArgument(const GenICam::gcstring& text, const char* what, bool isInForce)
{
    return isInForce ? addressArgument(text, what) : net::parseIpv4(text.view()).value_or(net::Ipv4{});
}

} // namespace gige
