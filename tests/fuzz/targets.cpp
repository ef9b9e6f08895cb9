#include "codec.h"
#include "csv.h"
#include "description.h"
#include "descriptionerror.h"
#include "registerport.h"
#include "stringnode.h"
#include "xmldescription.h"
#include "zipdescription.h"

#include <cstdlib>
#include <numeric>

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

constexpr std::uint64_t spaceEnd = std::uint64_t{1} << 32;

/// Takes every access that is within the register space, and those of writing in whole words only.
struct AnyPort : gige::RegisterPort
{
    void readMemory(std::uint32_t address, std::span<std::uint8_t> to) override { read(address, to); }
    void read(std::uint32_t address, std::span<std::uint8_t> to) override
    {
        require(!to.empty() && to.size() <= spaceEnd - address);
        std::iota(to.begin(), to.end(), static_cast<std::uint8_t>(address));
    }
    void write(std::uint32_t address, std::span<const std::uint8_t> from) override
    {
        require(!from.empty() && (address | from.size()) % 4 == 0 && from.size() <= spaceEnd - address);
    }
    [[nodiscard]] net::Ipv4 address() const override { return {}; }
};

// One function for each program, of its name: that is what FUZZED says when it is compiled.

using gvcp::Bytes;

void fuzz_description_url(Bytes input)
{
    const gige::DescriptionUrl url = gige::parseDescriptionUrl(std::string(input.begin(), input.end()));
    require(url.length != 0 && url.length <= spaceEnd - url.address && !url.fileName.empty());
}

void fuzz_zip(Bytes input)
{
    require(gige::unzipDescription(input, 1 << 20).size() <= 1 << 20);
}

void fuzz_nodemap(Bytes input)
try {
    const gige::XmlDescription description(std::string(input.begin(), input.end()));
    if (const pugi::xml_node node = description.find("DeviceUserID"); gige::XmlStringNode::handles(node)) {
        AnyPort port;
        gige::XmlStringNode name(node, description, port);
        static_cast<void>(name.GetValue(false));
        name.SetValue("abc", false);
        name.SetValue("abc", true);
    }
} catch (const GenICam::GenericException&) {
    return;
} catch (const gige::Unresolvable&) {
    return;
}

void fuzz_gvcp(Bytes input) noexcept
{
    const auto acknowledge = gvcp::decodeAcknowledge(input);
    const Bytes payload = acknowledge ? acknowledge->payload : Bytes();
    const auto identity = gvcp::decodeIdentity(payload);
    require(!identity || identity->userDefinedName.size() <= gvcp::DiscoveryAck::UserDefinedNameSize);
    require(!identity || identity->model.find('\0') == std::string::npos);
    const std::size_t count = payload.size() < 4 ? 0 : payload.size() - 4;
    require(gvcp::decodeReadMemAck(payload, 0, count).value_or(payload.last(count)).size() == count);
    static_cast<void>(gvcp::decodeReadRegAck(payload));
    static_cast<void>(gvcp::decodePendingAck(payload));
}

/// What was read comes back when it is written and read again. The first byte chooses the separator.
void fuzz_csv(Bytes input)
{
    const char separator = !input.empty() && input[0] % 2 == 1 ? ';' : ',';
    const cli::Csv read = cli::readCsv(std::string(input.begin(), input.end()), separator);
    std::string written = "begin\n"; // so that nothing behind it is a byte order mark
    for (const std::vector<cli::CsvField>& row : read.rows) {
        for (const cli::CsvField& field : row) {
            require(field.place.line >= 1 && field.place.column >= 1);
            written += cli::csvField(field.text) + separator;
        }
        written += "end\n";
    }
    const cli::Csv again = cli::readCsv(written, separator);
    require(!again.error && again.rows.size() == read.rows.size() + 1);
    for (std::size_t i = 0; i < read.rows.size(); ++i) {
        require(again.rows[i + 1].size() == read.rows[i].size() + 1);
        for (std::size_t j = 0; j < read.rows[i].size(); ++j) {
            require(again.rows[i + 1][j].text == read.rows[i][j].text);
        }
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
try {
    // In a buffer of its own, so that a byte read beyond it is seen.
    FUZZED(std::vector(data, data + size));
    return 0;
} catch (const gige::DescriptionError&) {
    return 0;
}
