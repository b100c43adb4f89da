#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pulsebar {

/// The figures of /sys/block/NAME/stat that we use: totals since the device appeared.
struct BlockStat
{
    std::uint64_t readOperations = 0;
    std::uint64_t readSectors = 0; ///< of 512 bytes, whatever the device's own sector size is
    std::uint64_t readMilliseconds = 0;
    std::uint64_t writeOperations = 0;
    std::uint64_t writtenSectors = 0; ///< of 512 bytes
    std::uint64_t writeMilliseconds = 0;
};

/// Parses the one line of /sys/block/NAME/stat. Absent when one of the figures is missing or is
/// not a number; what newer kernels append (discards, flushes) is left out.
std::optional<BlockStat> parseBlockStat(std::string_view text);

} // namespace pulsebar
