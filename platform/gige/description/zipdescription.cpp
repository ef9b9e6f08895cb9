#include "zipdescription.h"

#include "descriptionerror.h"

#include <strings.h>
#include <zip.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

namespace gige {

namespace {

using Archive = std::unique_ptr<zip_t, decltype(&zip_discard)>;
using Entry = std::unique_ptr<zip_file_t, decltype(&zip_fclose)>;

[[noreturn]] void fail(const std::string& reason)
{
    throw DescriptionError("the zip archive cannot be used: " + reason);
}

/// Limits the number of entries, each of which begins with this signature in the directory. The library keeps
/// some hundred bytes per entry in memory and their names in a hash table, whose chains an archive can make
/// long.
void checkDirectory(std::span<const std::uint8_t> bytes)
{
    constexpr std::array<std::uint8_t, 4> signature{'P', 'K', 1, 2};
    constexpr int maxEntries = 16;
    int entries = 0;
    const auto next = [&](auto from) {
        return std::search(from, bytes.end(), signature.begin(), signature.end());
    };
    for (auto found = next(bytes.begin()); found != bytes.end(); found = next(found + signature.size())) {
        if (++entries > maxEntries) {
            fail("it holds more than " + std::to_string(maxEntries) + " files");
        }
    }
}

/// `bytes` must outlive the archive.
Archive openArchive(std::span<const std::uint8_t> bytes)
{
    zip_error_t error;
    zip_error_init(&error);
    zip_t* archive = nullptr;
    zip_source_t* const source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
    if (source != nullptr) {
        archive = zip_open_from_source(source, ZIP_RDONLY, &error);
        if (archive == nullptr) {
            zip_source_free(source);
        }
    }
    const std::string reason = archive == nullptr ? zip_error_strerror(&error) : "";
    zip_error_fini(&error);
    if (archive == nullptr) {
        fail(reason);
    }
    return {archive, &zip_discard};
}

bool isXmlName(const char* name)
{
    constexpr std::size_t suffixSize = 4;
    const std::string_view text = name != nullptr ? name : "";
    return text.size() >= suffixSize &&
           ::strcasecmp(text.substr(text.size() - suffixSize).data(), ".xml") == 0;
}

zip_uint64_t indexOfXml(zip_t* archive)
{
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        if (isXmlName(zip_get_name(archive, index, ZIP_FL_ENC_RAW))) {
            return index;
        }
    }
    if (count != 1) {
        fail("it holds " + std::to_string(count) + " files and none is XML");
    }
    return 0;
}

/// Other methods would let the archive decide how much memory its decoder takes.
bool isStoredOrDeflated(zip_t* archive, zip_uint64_t index)
{
    zip_stat_t stat;
    return zip_stat_index(archive, index, 0, &stat) == 0 && (stat.valid & ZIP_STAT_COMP_METHOD) != 0 &&
           (stat.comp_method == ZIP_CM_STORE || stat.comp_method == ZIP_CM_DEFLATE);
}

} // namespace

std::string unzipDescription(std::span<const std::uint8_t> archive, std::size_t maxSize)
{
    checkDirectory(archive);
    const Archive opened = openArchive(archive);
    const zip_uint64_t index = indexOfXml(opened.get());
    if (!isStoredOrDeflated(opened.get(), index)) {
        fail("its file is neither stored nor deflated");
    }
    const Entry entry(zip_fopen_index(opened.get(), index, 0), &zip_fclose);
    if (entry == nullptr) {
        fail(zip_strerror(opened.get()));
    }
    std::string xml;
    xml.reserve(maxSize); // unwritten pages take no memory; growing would take twice as much
    std::array<char, std::size_t{64} << 10> chunk{};
    while (true) {
        const zip_int64_t size = zip_fread(entry.get(), chunk.data(), chunk.size());
        if (size < 0) {
            fail(zip_file_strerror(entry.get()));
        }
        if (size == 0) {
            return xml;
        }
        if (static_cast<std::size_t>(size) > maxSize - xml.size()) {
            fail("its file has more than " + std::to_string(maxSize) + " bytes");
        }
        xml.append(chunk.data(), static_cast<std::size_t>(size));
    }
}

} // namespace gige
