#include "net/errors.h"

#include <cstring>

namespace net {

namespace {

class ErrnoCategory : public std::error_category
{
public:
    [[nodiscard]] const char* name() const noexcept override { return "errno"; }
    [[nodiscard]] std::string message(int error) const override { return describeErrno(error); }
};

} // namespace

std::string describeErrno(int error)
{
    const char* const words = ::strerrordesc_np(error);
    return words != nullptr ? words : "error " + std::to_string(error);
}

const std::error_category& errnoCategory()
{
    static const ErrnoCategory category;
    return category;
}

} // namespace net
