#include "gige/description.h"

#include "gige/descriptionerror.h"
#include "gige/gvcp.h"
#include "gige/registerport.h"
#include "gige/xmldescription.h"
#include "gige/zipdescription.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace gige {

namespace {

std::string lowered(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
    });
    return lower;
}

/// The text before the next separator, which is taken off `rest` together with it.
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
        throw DescriptionError("'" + std::string(text) + "' is no hexadecimal number");
    }
    return value;
}

/// The URL text in that register, once it has been read.
std::string readUrl(RegisterPort& port, std::uint32_t address)
{
    std::vector<std::uint8_t> field(gvcp::Register::UrlSize);
    port.read(address, field);
    return {field.begin(), std::ranges::find(field, 0)};
}

std::unique_ptr<XmlDescription> loadFrom(RegisterPort& port, std::uint32_t urlRegister)
{
    const DescriptionUrl url = parseDescriptionUrl(readUrl(port, urlRegister));
    if (url.length > MaxDescriptionRead) {
        throw DescriptionError("'" + url.fileName + "' is larger than " + std::to_string(MaxDescriptionRead) +
                               " bytes");
    }
    std::vector<std::uint8_t> file(url.length);
    port.read(url.address, file);
    if (url.zipped) {
        return std::make_unique<XmlDescription>(unzipDescription(file, MaxDescriptionSize));
    }
    return std::make_unique<XmlDescription>(std::string(file.begin(), file.end()));
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
        throw DescriptionError("'" + whole + "' is not in the camera");
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
    constexpr std::uint64_t SpaceEnd = std::uint64_t{1} << 32;
    if (url.fileName.empty() || bytes == 0 || first >= SpaceEnd || bytes > SpaceEnd - first ||
        bytes > UINT32_MAX) {
        throw DescriptionError("'" + whole + "' names no place in the camera's registers");
    }
    url.address = static_cast<std::uint32_t>(first);
    url.length = static_cast<std::uint32_t>(bytes);
    return url;
}

std::unique_ptr<XmlDescription> loadDescription(RegisterPort& port)
{
    std::string reasons;
    for (const std::uint32_t urlRegister : {gvcp::Register::FirstUrl, gvcp::Register::SecondUrl}) {
        reasons += urlRegister == gvcp::Register::FirstUrl ? "first URL: " : "; second URL: ";
        try {
            return loadFrom(port, urlRegister);
        } catch (const DescriptionError& error) {
            reasons += error.what();
        } catch (const RefusalException& refusal) {
            reasons += refusal.GetDescription();
        } catch (const GenICam::AccessException& refusal) {
            reasons += refusal.GetDescription();
        }
    }
    throw DescriptionError(reasons);
}

} // namespace gige
