#include "scene/scenefields.h"

#include "camera/message.h"

#include <charconv>
#include <cstring>

namespace sim {

namespace {

constexpr std::size_t maxAddressLength = 17; // bytes; the longest notation of a MAC address
constexpr unsigned maxDuration = 3'600'000;

constexpr std::array<std::pair<std::string_view, ForeignAck>, 3> foreignAcks{{
    {"nameless", ForeignAck::Nameless},
    {"as-itself", ForeignAck::AsItself},
    {"as-that-camera", ForeignAck::AsThatCamera},
}};

constexpr std::array<std::pair<std::string_view, ForceIpAck>, 3> forceIpAcks{{
    {"new-address", ForceIpAck::NewAddress},
    {"old-address", ForceIpAck::OldAddress},
    {"never", ForceIpAck::Never},
}};

constexpr std::array<std::pair<std::string_view, CorruptAnswer>, 6> corruptAnswers{{
    {"garbage", CorruptAnswer::Garbage},
    {"truncated", CorruptAnswer::Truncated},
    {"wrongId", CorruptAnswer::WrongId},
    {"wrongLength", CorruptAnswer::WrongLength},
    {"surplus", CorruptAnswer::Surplus},
    {"longPayload", CorruptAnswer::LongPayload},
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

gvcp::Status parseRefusal(const std::string& text, const std::string& path)
{
    const auto status = parseHex(text, 0xFFFF);
    if (!status || (*status & 0x8000) == 0) {
        throw SceneError(path, "must be a status from 8001 to FFFF");
    }
    return static_cast<gvcp::Status>(*status);
}

std::uint32_t parseRegister(const std::string& text, const std::string& path)
{
    const auto address = parseHex(text, 0xFFFFFFFF);
    if (!address || *address % gvcp::RegisterSize != 0) {
        throw SceneError(path, "is not the address of a register");
    }
    return *address;
}

void readRefusal(Faults& faults, const std::string& what, const nlohmann::json& value,
                 const std::string& path)
{
    const gvcp::Status refused = parseRefusal(jsonText(value, path), path);
    if (const auto command = commandByName(what)) {
        faults.refusedCommands[*command] = refused;
        return;
    }
    for (const auto& [prefix, registers] :
         {std::pair("register:", &faults.refusedWrites), std::pair("read:", &faults.refusedReads)}) {
        if (what.starts_with(prefix)) {
            (*registers)[parseRegister(what.substr(std::strlen(prefix)), path)] = refused;
            return;
        }
    }
    throw SceneError(path, "is neither a command nor register:ADDRESS nor read:ADDRESS");
}

/// The faults in how a camera handles writes.
void readWriteFaults(Faults& faults, JsonObject& object)
{
    faults.emptyWriteAcks = object.flagOr("emptyWriteAcks", false);
    faults.knowsWriteMem = object.flagOr("knowsWriteMem", true);
    faults.togglesPause = object.flagOr("togglesPause", false);
    for (const auto& [value, path] : object.listOr("forget")) {
        faults.forgottenWrites.insert(parseRegister(jsonText(*value, path), path));
    }
    if (const nlohmann::json* const misreports = object.find("misreport")) {
        const JsonObject fields(*misreports, object.pathOf("misreport"));
        for (const auto& [what, value] : misreports->items()) {
            const std::string path = fields.pathOf(what);
            const std::string says = jsonText(value, path);
            faults.misreportedWrites[parseRegister(what, path)] =
                says == "nothing" ? std::nullopt : std::optional(parseRefusal(says, path));
        }
    }
    if (const nlohmann::json* const pending = object.find("onlyPendingMs")) {
        JsonObject fields(*pending, object.pathOf("onlyPendingMs"));
        for (const auto& [what, value] : pending->items()) {
            const auto command = commandByName(what);
            if (!command) {
                fields.fail(what, "is not a command");
            }
            faults.onlyPending[*command] = readDuration(fields, what, {});
        }
    }
}

} // namespace

net::Ipv4 readIpv4(JsonObject& object, const std::string& key)
{
    const auto address = net::parseIpv4(object.text(key, maxAddressLength));
    if (!address) {
        object.fail(key, "is not an IPv4 address");
    }
    return *address;
}

net::MacAddress readMac(JsonObject& object, const std::string& key)
{
    const auto mac = net::parseMac(object.text(key, maxAddressLength));
    if (!mac) {
        object.fail(key, "is not a MAC address");
    }
    if ((mac->bytes[0] & 1) != 0 || *mac == net::MacAddress{}) {
        object.fail(key, "is not the MAC address of a single device");
    }
    return *mac;
}

Duration readDuration(JsonObject& object, const std::string& key, Duration otherwise)
{
    return Duration(object.numberOr(key, 0, maxDuration, static_cast<unsigned>(otherwise.count())));
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
        fields.fail("mask", "is not a subnet mask");
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
    faults.work = readDuration(object, "workMs", {});
    faults.pendingAck = readDuration(object, "pendingAckMs", {});
    faults.muteToUnicast = object.flagOr("muteToUnicast", false);
    faults.muteToDiscovery = object.flagOr("muteToDiscovery", false);
    faults.ignoreBroadcastAckFlag = object.flagOr("ignoreBroadcastAckFlag", false);
    faults.vanishAfterRestart = object.flagOr("vanishAfterRestart", false);
    faults.ignoreForceIp = object.flagOr("ignoreForceIp", false);
    faults.forceIpDelay = readDuration(object, "forceIpDelayMs", {});
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
    readWriteFaults(faults, object);
    if (object.find("vanishAfterWrites") != nullptr) {
        faults.vanishAfterWrites = object.numberOr("vanishAfterWrites", 1, 1'000'000, 1);
    }
    if (object.find("answerWith") != nullptr) {
        faults.answerWith =
            chooseWord(object.text("answerWith", 32), object.pathOf("answerWith"), corruptAnswers);
    }
    if (object.find("forceIpAck") != nullptr) {
        faults.forceIpAck =
            chooseWord(object.text("forceIpAck", 32), object.pathOf("forceIpAck"), forceIpAcks);
    }
    if (object.find("acknowledgeOthers") != nullptr) {
        faults.acknowledgeOthers =
            chooseWord(object.text("acknowledgeOthers", 32), object.pathOf("acknowledgeOthers"), foreignAcks);
    }
    if (object.find("forceIpTakes") != nullptr) {
        faults.forceIpTakes = readIpv4(object, "forceIpTakes");
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
