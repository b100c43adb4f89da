#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace pulsebar {

/// One line of /proc/diskstats: cumulative counters of a block device or a partition.
struct DiskStatsLine
{
    std::string_view name; ///< points into the text
    std::uint64_t reads = 0;
    std::uint64_t sectorsRead = 0; ///< of 512 bytes, whatever the device
    std::uint64_t writes = 0;
    std::uint64_t sectorsWritten = 0;
};

/// All devices in the kernel's order; malformed lines are left out.
std::vector<DiskStatsLine> parseDiskStats(std::string_view text);

} // namespace pulsebar
