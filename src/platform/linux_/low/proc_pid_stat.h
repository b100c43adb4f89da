#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pulsebar {

/// What /proc/PID/stat tells about a process. Ticks are USER_HZ (1/100 s).
struct PidStat
{
    std::string_view comm;    ///< the process's own choice: any bytes but NUL; points into the text
    char state = '?';         ///< R, S, D, T, t, Z, X, I
    std::uint64_t parent = 0; ///< process number of the parent; 0 without one
    std::uint64_t majorFaults = 0;
    std::uint64_t userTicks = 0;
    std::uint64_t kernelTicks = 0;
    std::uint64_t threads = 0;
    std::uint64_t startTicks = 0; ///< since boot, suspended time included
    std::uint64_t virtualBytes = 0;
    std::uint64_t residentPages = 0;
};

/// Parses /proc/PID/stat. Absent when the text is cut short or is not such a file. The name may
/// hold brackets, blanks and newlines: it ends at the last closing bracket.
std::optional<PidStat> parsePidStat(std::string_view text);

} // namespace pulsebar
