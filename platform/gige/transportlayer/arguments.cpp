#include "arguments.h"

#include "errors.h"
#include "gvcp/gvcp.h"

namespace gige {

namespace {

const char* describe(Tessal::Setting setting)
{
    switch (setting) {
    case Tessal::Setting::SubnetMask:
        return "subnet mask";
    case Tessal::Setting::DefaultGateway:
        return "default gateway";
    default:
        return "IP address";
    }
}

[[noreturn]] void raiseInvalid(const GenICam::gcstring& value, Tessal::Setting setting,
                               const std::string& expected)
{
    const std::string text(value.view());
    raise<GenICam::InvalidArgumentException>(
        {.kind = Tessal::FailureKind::InvalidValue, .setting = setting, .wanted = text},
        "\"" + text + "\" is not " + expected);
}

} // namespace

net::MacAddress macArgument(const GenICam::gcstring& text)
{
    constexpr std::size_t digits = 12;
    const auto mac = net::parseMac(text.view());
    if (!mac || text.size() != digits) {
        raiseInvalid(text, Tessal::Setting::MacAddress,
                     "the MAC address of a camera, which has twelve hexadecimal digits");
    }
    return *mac;
}

net::Ipv4 addressArgument(const GenICam::gcstring& text, Tessal::Setting setting)
{
    const auto address = net::parseIpv4(text.view());
    if (!address) {
        raiseInvalid(text, setting,
                     std::string("a valid ") + describe(setting) +
                         ", which takes four numbers of 0 to 255 with dots between them");
    }
    return *address;
}

net::Ipv4 storedAddressArgument(const GenICam::gcstring& text, Tessal::Setting setting, bool isInForce)
{
    return isInForce ? addressArgument(text, setting) : net::parseIpv4(text.view()).value_or(net::Ipv4{});
}

std::string_view nameArgument(const GenICam::gcstring& text)
{
    if (text.size() > gvcp::BroadcastIpConfig::UserDefinedNameSize) {
        raiseInvalid(text, Tessal::Setting::Name, "a device user ID: it is longer than 16 bytes");
    }
    return text.view();
}

} // namespace gige
