#include "description.h"

#include "descriptionerror.h"
#include "gvcp/gvcp.h"
#include "registerport.h"
#include "xmldescription.h"
#include "zipdescription.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <vector>

namespace gige {

namespace {

using namespace std::chrono_literals;

// By then it is clear whether a camera would need minutes for its description while the user waits.
constexpr auto paceKnownAfter = 2s;

std::string lowered(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
    });
    return lower;
}

/// Removes the text before the next separator from `rest`, together with the separator, and returns it.
std::string_view takeUpTo(char separator, std::string_view& rest)
{
    const std::size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view taken = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return taken;
}

std::uint64_t hexNumber(std::string_view text)
{
    std::string_view digits = trimmed(text);
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        digits.remove_prefix(2);
    }
    std::uint64_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
    if (error != std::errc{} || stop != end) {
        throw DescriptionError(excerpt(text) + " is no hexadecimal number");
    }
    return value;
}

/// Reads the URL text in that register.
std::string readUrl(RegisterPort& port, std::uint32_t address)
{
    std::vector<std::uint8_t> field(gvcp::Register::UrlSize);
    port.read(address, field);
    return {field.begin(), std::ranges::find(field, 0)};
}

std::string readFile(RegisterPort& port, const DescriptionUrl& url, const TimeLimit& limit)
{
    std::string file;
    file.reserve(url.length);
    const auto start = std::chrono::steady_clock::now();
    const std::chrono::duration<double> available = port.deadline() - start;
    const auto willBeLate = [&](RegisterPort::TimePoint now) {
        const double done = static_cast<double>(file.size()) / static_cast<double>(url.length);
        return std::chrono::duration<double>(now - start) > available * done;
    };
    std::array<std::uint8_t, gvcp::MaxDataSize> block{};
    while (file.size() < url.length) {
        const auto now = std::chrono::steady_clock::now();
        if (limit.isOver() || (now - start >= paceKnownAfter && willBeLate(now))) {
            throw DescriptionError(std::to_string(file.size()) + " of " + std::to_string(url.length) +
                                   " bytes took " + std::to_string((now - start) / 1ms) +
                                   " ms, which is too slow");
        }
        const auto part = std::span(block).first(std::min(block.size(), url.length - file.size()));
        port.readMemory(url.address + static_cast<std::uint32_t>(file.size()), part);
        file.append(part.begin(), part.end());
    }
    return file;
}

std::unique_ptr<XmlDescription> loadFrom(RegisterPort& port, std::uint32_t urlRegister,
                                         const TimeLimit& limit)
{
    const DescriptionUrl url = parseDescriptionUrl(readUrl(port, urlRegister));
    if (url.length > MaxDescriptionSize) {
        throw DescriptionError(excerpt(url.fileName) + " is larger than " +
                               std::to_string(MaxDescriptionSize) + " bytes");
    }
    std::string file = readFile(port, url, limit);
    if (url.zipped) {
        const std::span archive(reinterpret_cast<const std::uint8_t*>(file.data()), file.size());
        file = unzipDescription(archive, MaxDescriptionSize);
    }
    return std::make_unique<XmlDescription>(std::move(file));
}

} // namespace

DescriptionUrl parseDescriptionUrl(std::string_view text)
{
    std::string_view rest = trimmed(text.substr(0, text.find('\0')));
    if (rest.empty()) {
        throw DescriptionError("the URL is empty");
    }
    const std::string whole(rest);
    if (const std::string scheme = lowered(trimmed(takeUpTo(':', rest))); scheme != "local") {
        throw DescriptionError(excerpt(whole) + " is not in the camera");
    }
    const std::string_view name = takeUpTo(';', rest);
    const std::string_view address = takeUpTo(';', rest);
    const std::string_view length = takeUpTo('?', rest);
    const std::size_t nameStart = std::min(name.find_first_not_of("/ \t"), name.size());

    DescriptionUrl url;
    url.fileName = trimmed(name.substr(nameStart));
    url.zipped = lowered(url.fileName).ends_with(".zip");
    const std::uint64_t first = hexNumber(address);
    const std::uint64_t bytes = hexNumber(length);
    constexpr std::uint64_t spaceEnd = std::uint64_t{1} << 32;
    if (url.fileName.empty() || bytes == 0 || first >= spaceEnd || bytes > spaceEnd - first ||
        bytes > UINT32_MAX) {
        throw DescriptionError(excerpt(whole) + " names no place in the camera's registers");
    }
    url.address = static_cast<std::uint32_t>(first);
    url.length = static_cast<std::uint32_t>(bytes);
    return url;
}

std::unique_ptr<XmlDescription> loadDescription(RegisterPort& port, std::chrono::milliseconds time)
{
    const TimeLimit limit(port, time);
    std::string reasons;
    for (const std::uint32_t urlRegister : {gvcp::Register::FirstUrl, gvcp::Register::SecondUrl}) {
        reasons += urlRegister == gvcp::Register::FirstUrl ? "first URL: " : "; second URL: ";
        try {
            return loadFrom(port, urlRegister, limit);
        } catch (const DescriptionError& error) {
            reasons += error.what();
        } catch (const RefusalException& refusal) {
            reasons += refusal.GetDescription();
        } catch (const GenICam::AccessException& refusal) {
            reasons += refusal.GetDescription();
        } catch (const GenICam::TimeoutException& silence) {
            reasons += silence.GetDescription();
        }
    }
    throw DescriptionError(reasons);
}

} // namespace gige
