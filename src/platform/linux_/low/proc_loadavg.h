#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pulsebar {

/// What /proc/loadavg tells.
struct LoadAverage
{
    /// The three averages as the kernel prints them ("0.52"); they point into the text.
    std::string_view oneMinute;
    std::string_view fiveMinutes;
    std::string_view fifteenMinutes;
    /// The process or thread number given out last, in the reader's namespace.
    int lastPid = 0;
};

/// Absent when the text is not such a file.
std::optional<LoadAverage> parseLoadAverage(std::string_view text);

} // namespace pulsebar
