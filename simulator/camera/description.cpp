#include "camera/description.h"

#include "gvcp/gvcp.h"

#include <zip.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace sim {

namespace {

constexpr std::uint32_t hugeSize = 0x40000000; // bytes
constexpr std::size_t endlessSize = 0x800000;  // bytes

std::string hex(std::uint32_t value)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%X", value);
    return text.data();
}

std::string escaped(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            // XML cannot represent the other control characters.
            out += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
        }
    }
    return out;
}

std::string stringRegister(const char* name, std::uint32_t address, std::size_t size, const char* access)
{
    return std::string("  <StringReg Name=\"") + name + "\" NameSpace=\"Standard\">\n    <Address>0x" +
           hex(address) + "</Address>\n    <Length>" + std::to_string(size) + "</Length>\n    <AccessMode>" +
           access + "</AccessMode>\n    <pPort>Device</pPort>\n  </StringReg>\n";
}

std::string integerFeature(const char* name, std::uint32_t address, int maximum)
{
    const std::string text(name);
    return "  <Integer Name=\"" + text + "\" NameSpace=\"Standard\">\n    <pValue>" + text +
           "Reg</pValue>\n    <Min>1</Min>\n    <Max>" + std::to_string(maximum) +
           "</Max>\n  </Integer>\n  <IntReg Name=\"" + text + "Reg\">\n    <Address>0x" + hex(address) +
           "</Address>\n    <Length>4</Length>\n    <AccessMode>RW</AccessMode>\n    <pPort>Device</pPort>\n"
           "    <Sign>Unsigned</Sign>\n    <Endianess>BigEndian</Endianess>\n  </IntReg>\n";
}

std::string builtInXml(DescriptionKind kind, const std::string& vendor, const std::string& model)
{
    using namespace gvcp;
    const bool named = kind != DescriptionKind::NoUserId;
    std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<RegisterDescription ModelName=\"" + escaped(model) +
        "\" VendorName=\"" + escaped(vendor) +
        "\" StandardNameSpace=\"GEV\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\""
        " SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\""
        " ProductGuid=\"6F1C2B70-58A3-4E19-9D44-7B0E3A5C2D11\""
        " VersionGuid=\"A2E84C05-9B17-4F63-8C2D-05D1E6B79F34\""
        " xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n"
        "  <Category Name=\"Root\" NameSpace=\"Standard\">\n    <pFeature>DeviceControl</pFeature>\n"
        "    <pFeature>ImageFormatControl</pFeature>\n  </Category>\n"
        "  <Category Name=\"DeviceControl\" NameSpace=\"Standard\">\n"
        "    <pFeature>DeviceVendorName</pFeature>\n    <pFeature>DeviceModelName</pFeature>\n";
    xml += named ? "    <pFeature>DeviceUserID</pFeature>\n" : "";
    xml += "  </Category>\n  <Category Name=\"ImageFormatControl\" NameSpace=\"Standard\">\n"
           "    <pFeature>Width</pFeature>\n    <pFeature>Height</pFeature>\n  </Category>\n";
    xml += stringRegister("DeviceVendorName", Register::Manufacturer, DiscoveryAck::ManufacturerSize, "RO");
    xml += stringRegister("DeviceModelName", Register::Model, DiscoveryAck::ModelSize, "RO");
    if (kind == DescriptionKind::FormulaUserId) {
        xml += "  <StringReg Name=\"DeviceUserID\" NameSpace=\"Standard\">\n    <IntSwissKnife>"
               "<Formula>16 * 16 - 24</Formula></IntSwissKnife>\n    <Length>16</Length>\n"
               "    <AccessMode>RW</AccessMode>\n    <pPort>Device</pPort>\n  </StringReg>\n";
    } else if (named) {
        xml += stringRegister("DeviceUserID", Register::UserDefinedName, DiscoveryAck::UserDefinedNameSize,
                              kind == DescriptionKind::ReadOnlyUserId ? "RO" : "RW");
    }
    xml += integerFeature("Width", FeatureAddress, 4096);
    xml += integerFeature("Height", FeatureAddress + 4, 3072);
    xml += "  <Port Name=\"Device\" NameSpace=\"Standard\">\n  </Port>\n</RegisterDescription>\n";
    return xml;
}

[[noreturn]] void failZip(zip_t* archive, zip_error_t& error)
{
    const std::string reason = archive != nullptr ? zip_strerror(archive) : zip_error_strerror(&error);
    if (archive != nullptr) {
        zip_discard(archive);
    }
    throw std::runtime_error("the description cannot be compressed: " + reason);
}

/// Makes a zip archive of one deflated file in memory.
std::vector<std::uint8_t> zipped(const std::string& name, const std::string& text)
{
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const target = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_t* archive = nullptr;
    if (target != nullptr) {
        archive = zip_open_from_source(target, ZIP_TRUNCATE, &error);
    }
    if (archive == nullptr) {
        zip_source_free(target);
        failZip(nullptr, error);
    }
    zip_source_keep(target); // Closing the archive releases one reference.
    zip_source_t* const file = zip_source_buffer(archive, text.data(), text.size(), 0);
    const zip_int64_t index = file != nullptr ? zip_file_add(archive, name.c_str(), file, 0) : -1;
    // A fixed date, so that the same scene yields the same bytes.
    if (index < 0 || zip_file_set_mtime(archive, static_cast<zip_uint64_t>(index), 1'700'000'000, 0) != 0 ||
        zip_close(archive) != 0) {
        zip_source_free(target);
        failZip(archive, error);
    }
    zip_stat_t size{};
    std::vector<std::uint8_t> bytes;
    if (zip_source_open(target) == 0 && zip_source_stat(target, &size) == 0) {
        bytes.resize(size.size);
        const zip_int64_t got = zip_source_read(target, bytes.data(), bytes.size());
        bytes.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
        zip_source_close(target);
    }
    zip_source_free(target);
    if (bytes.empty()) {
        throw std::runtime_error("the description cannot be compressed");
    }
    return bytes;
}

} // namespace

std::shared_ptr<const Description> makeDescription(DescriptionKind kind, const std::string& vendor,
                                                   const std::string& model, std::string xml)
{
    auto description = std::make_shared<Description>();
    description->kind = kind;
    if (kind == DescriptionKind::Missing) {
        return description;
    }
    if (xml.empty()) {
        xml = builtInXml(kind, vendor, model);
    }
    if (kind == DescriptionKind::Malformed) {
        xml.resize(xml.size() / 2);
    }
    const bool isZip = kind == DescriptionKind::Zipped;
    if (kind == DescriptionKind::Endless) {
        xml.resize(endlessSize, ' ');
    } else if (kind == DescriptionKind::WordTail) {
        xml.resize(xml.size() / gvcp::MaxDataSize * gvcp::MaxDataSize + gvcp::MaxDataSize +
                   gvcp::RegisterSize);
    }
    description->bytes =
        isZip ? zipped("camera.xml", xml) : std::vector<std::uint8_t>(xml.begin(), xml.end());
    const std::uint32_t size =
        kind == DescriptionKind::Huge ? hugeSize : static_cast<std::uint32_t>(description->bytes.size());
    description->bytes.resize((description->bytes.size() + 3) / 4 * 4);
    const std::string url = std::string("Local:") + (isZip ? "camera.zip" : "camera.xml") + ";" +
                            hex(DescriptionAddress) + ";" + hex(size);
    if (kind == DescriptionKind::SecondUrl) {
        description->firstUrl = "http://orvik.example/camera.xml";
        description->secondUrl = url;
    } else {
        description->firstUrl = url;
    }
    return description;
}

} // namespace sim
