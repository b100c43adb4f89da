#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pulsebar {

/// What /proc/meminfo tells, in KiB. A line that the kernel does not print is absent.
struct MemInfo
{
    std::optional<std::uint64_t> memTotal;
    std::optional<std::uint64_t> memFree;
    std::optional<std::uint64_t> memAvailable;
    std::optional<std::uint64_t> buffers;
    std::optional<std::uint64_t> cached;
    std::optional<std::uint64_t> active;
    std::optional<std::uint64_t> inactive;
    std::optional<std::uint64_t> unevictable;
    std::optional<std::uint64_t> swapTotal;
    std::optional<std::uint64_t> swapFree;
    std::optional<std::uint64_t> shmem;
    std::optional<std::uint64_t> sReclaimable;
    std::optional<std::uint64_t> sUnreclaim;
    std::optional<std::uint64_t> kernelStack;
    std::optional<std::uint64_t> pageTables;
    std::optional<std::uint64_t> secPageTables;
};

/// Parses /proc/meminfo. Unknown and malformed lines are left out; an empty text has no figures.
MemInfo parseMemInfo(std::string_view text);

} // namespace pulsebar
