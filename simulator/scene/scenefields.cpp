#include "scene/scenefields.h"

#include "camera/message.h"

#include <charconv>
#include <cstring>

namespace sim {

namespace {

constexpr std::size_t AddressTextSize = 17; // the longest way to write a MAC address
constexpr unsigned LongestDuration = 3'600'000;

constexpr std::array<std::pair<std::string_view, ForceIpAck>, 3> forceIpAcks{{
    {"new-address", ForceIpAck::NewAddress},
    {"old-address", ForceIpAck::OldAddress},
    {"never", ForceIpAck::Never},
}};

constexpr std::array<std::pair<std::string_view, SpoiledAnswer>, 4> spoiledAnswers{{
    {"garbage", SpoiledAnswer::Garbage},
    {"truncated", SpoiledAnswer::Truncated},
    {"wrongId", SpoiledAnswer::WrongId},
    {"wrongLength", SpoiledAnswer::WrongLength},
}};

/// Hexadecimal digits with or without 0x, at most `limit`.
std::optional<std::uint32_t> parseHex(std::string_view text, std::uint32_t limit)
{
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
    }
    std::uint32_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [parsedTo, error] = std::from_chars(text.data(), end, value, 16);
    if (text.empty() || error != std::errc{} || parsedTo != end || value > limit) {
        return std::nullopt;
    }
    return value;
}

void readRefusal(Faults& faults, const std::string& what, const nlohmann::json& value,
                 const std::string& path)
{
    const auto status = parseHex(jsonText(value, path), 0xFFFF);
    if (!status || (*status & 0x8000) == 0) {
        throw SceneError(path, "must be a status from 8001 to FFFF");
    }
    const auto refused = static_cast<gvcp::Status>(*status);
    if (const auto command = commandByName(what)) {
        faults.refusedCommands[*command] = refused;
        return;
    }
    for (const auto& [prefix, registers] :
         {std::pair("register:", &faults.refusedWrites), std::pair("read:", &faults.refusedReads)}) {
        if (what.starts_with(prefix)) {
            const auto address = parseHex(std::string_view(what).substr(std::strlen(prefix)), 0xFFFFFFFF);
            if (address && *address % 4 == 0) {
                (*registers)[*address] = refused;
                return;
            }
        }
    }
    throw SceneError(path, "is neither a command nor register:ADDRESS nor read:ADDRESS");
}

} // namespace

net::Ipv4 readIpv4(JsonObject& object, const std::string& key)
{
    const auto address = net::parseIpv4(object.text(key, AddressTextSize));
    if (!address) {
        object.fail(key, "is no IPv4 address");
    }
    return *address;
}

net::MacAddress readMac(JsonObject& object, const std::string& key)
{
    const auto mac = net::parseMac(object.text(key, AddressTextSize));
    if (!mac) {
        object.fail(key, "is no MAC address");
    }
    if ((mac->bytes[0] & 1) != 0 || *mac == net::MacAddress{}) {
        object.fail(key, "is not the MAC address of one device");
    }
    return *mac;
}

Duration readDuration(JsonObject& object, const std::string& key, Duration otherwise)
{
    return Duration(object.numberOr(key, 0, LongestDuration, static_cast<unsigned>(otherwise.count())));
}

std::optional<Ipv4Settings> readSettings(JsonObject& object, const std::string& key)
{
    const nlohmann::json* const value = object.find(key);
    if (value == nullptr) {
        return std::nullopt;
    }
    JsonObject fields(*value, object.pathOf(key));
    Ipv4Settings settings;
    settings.ip = readIpv4(fields, "ip");
    settings.mask = readIpv4(fields, "mask");
    if (!net::isContiguousMask(settings.mask)) {
        fields.fail("mask", "is no subnet mask");
    }
    if (fields.find("gateway") != nullptr) {
        settings.gateway = readIpv4(fields, "gateway");
    }
    fields.finish();
    return settings;
}

Faults readFaults(JsonObject& object)
{
    Faults faults;
    faults.discoveryDelay = readDuration(object, "discoveryDelayMs", {});
    faults.answerDelay = readDuration(object, "answerDelayMs", {});
    faults.pendingAck = readDuration(object, "pendingAckMs", {});
    faults.muteToUnicast = object.flagOr("muteToUnicast", false);
    faults.muteToDiscovery = object.flagOr("muteToDiscovery", false);
    faults.ignoreBroadcastAckFlag = object.flagOr("ignoreBroadcastAckFlag", false);
    faults.vanishAfterRestart = object.flagOr("vanishAfterRestart", false);
    faults.restartAck = object.flagOr("restartAck", false);
    faults.busyAtFirst = object.flagOr("busyAtFirst", false);
    faults.neverConfirms = object.flagOr("neverConfirms", false);
    faults.repeatAnswers = object.numberOr("repeatAnswers", 0, 100, 0);
    faults.lossPercent = object.percentOr("lossPercent");
    for (const auto& [value, path] : object.listOr("losePackets")) {
        if (!value->is_number_unsigned() || value->get<std::uint64_t>() < 1 ||
            value->get<std::uint64_t>() > 1'000'000) {
            throw SceneError(path, "must be a whole number from 1 to 1000000");
        }
        faults.losePackets.push_back(value->get<unsigned>());
    }
    if (object.find("vanishAfterWrites") != nullptr) {
        faults.vanishAfterWrites = object.numberOr("vanishAfterWrites", 1, 1'000'000, 1);
    }
    if (object.find("answerWith") != nullptr) {
        faults.answerWith =
            chooseWord(object.text("answerWith", 32), object.pathOf("answerWith"), spoiledAnswers);
    }
    if (object.find("forceIpAck") != nullptr) {
        faults.forceIpAck =
            chooseWord(object.text("forceIpAck", 32), object.pathOf("forceIpAck"), forceIpAcks);
    }
    if (const nlohmann::json* const refusals = object.find("refuse")) {
        const JsonObject fields(*refusals, object.pathOf("refuse"));
        for (const auto& [what, value] : refusals->items()) {
            readRefusal(faults, what, value, fields.pathOf(what));
        }
    }
    return faults;
}

} // namespace sim
