#include "gige/descriptionerror.h"
#include "gige/registerport.h"
#include "gige/stringnode.h"
#include "gige/xmldescription.h"

#include <cstdlib>

/// Takes every access that is within the register space, and those of writing in whole words only.
struct AnyPort : gige::RegisterPort
{
    void read(std::uint32_t address, std::span<std::uint8_t> to) override
    {
        std::uint64_t next = address;
        for (std::uint8_t& byte : to) {
            byte = static_cast<std::uint8_t>(next++);
        }
        if (to.empty() || next > std::uint64_t{1} << 32) {
            std::abort();
        }
    }
    void write(std::uint32_t address, std::span<const std::uint8_t> from) override
    {
        if (from.empty() || (address | from.size()) % 4 != 0 ||
            from.size() > (std::uint64_t{1} << 32) - address) {
            std::abort();
        }
    }
};

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
try {
    const gige::XmlDescription description(std::string(reinterpret_cast<const char*>(data), size));
    if (const pugi::xml_node node = description.find("DeviceUserID"); gige::XmlStringNode::handles(node)) {
        AnyPort port;
        gige::XmlStringNode name(node, description, port);
        static_cast<void>(name.GetValue(false));
        name.SetValue("abc", false);
        name.SetValue("abc", true);
    }
    return 0;
} catch (const gige::DescriptionError&) {
    return 0;
} catch (const GenICam::GenericException&) {
    return 0;
}
