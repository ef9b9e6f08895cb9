#pragma once

#include <stdexcept>

namespace gige {

/// The camera offers no usable description. `what()` says why, for a trace line.
class DescriptionError : public std::runtime_error
{
public:
    using runtime_error::runtime_error;
};

} // namespace gige
