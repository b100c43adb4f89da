#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pulsebar {

/// What /proc/PID/status (or a thread's /proc/PID/task/TID/status) tells beyond `stat`.
struct PidStatus
{
    char state = '?';
    std::optional<std::uint32_t> effectiveUid;
    /// How often the thread gave its processor away to wait: each is followed by one wake-up.
    /// Counts this one thread, not the process.
    std::optional<std::uint64_t> voluntarySwitches;
};

/// Parses such a file; a line that is missing or malformed is absent.
PidStatus parsePidStatus(std::string_view text);

} // namespace pulsebar
