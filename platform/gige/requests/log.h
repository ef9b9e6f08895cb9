#pragma once

#include "ozlog/ozlog.h"

/// The trace log of the camera layer: "Lanvic.Camera.Search" reports how cameras are found,
/// "Lanvic.Camera.Requests" the requests to single cameras.
namespace gige {

template <typename... Args>
void logSearch(ozlog::LogLevel level, ozlog::Format<std::type_identity_t<Args>...> format,
               const Args&... arguments)
{
    static const unsigned long category = ozlog::LogGetCatID("Lanvic.Camera.Search");
    ozlog::LogTrace<Args...>(category, level, format, arguments...);
}

template <typename... Args>
void logRequest(ozlog::LogLevel level, ozlog::Format<std::type_identity_t<Args>...> format,
                const Args&... arguments)
{
    static const unsigned long category = ozlog::LogGetCatID("Lanvic.Camera.Requests");
    ozlog::LogTrace<Args...>(category, level, format, arguments...);
}

} // namespace gige
