#include "gige/descriptionerror.h"
#include "gige/zipdescription.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t MaxSize = std::size_t{1} << 20;
    try {
        if (gige::unzipDescription({data, size}, MaxSize).size() > MaxSize) {
            std::abort();
        }
    } catch (const gige::DescriptionError&) {
        return 0;
    }
    return 0;
}
