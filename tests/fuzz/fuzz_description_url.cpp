#include "gige/description.h"
#include "gige/descriptionerror.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        const gige::DescriptionUrl url =
            gige::parseDescriptionUrl(std::string(reinterpret_cast<const char*>(data), size));
        if (url.length == 0 || url.address + std::uint64_t{url.length} > std::uint64_t{1} << 32 ||
            url.fileName.empty()) {
            std::abort();
        }
    } catch (const gige::DescriptionError&) {
        return 0;
    }
    return 0;
}
