#include "platform/linux_/low/block_stat.h"

#include "platform/linux_/low/Scan.h"

#include <array>

namespace pulsebar {

std::optional<BlockStat> parseBlockStat(std::string_view text)
{
    // Reads completed, reads merged, sectors, milliseconds; then the same for writes.
    std::array<std::uint64_t, 8> columns{};
    Scan scan(text);
    for (auto &column : columns) {
        const auto value = scan.number();
        if (!value)
            return std::nullopt;
        column = *value;
    }
    return BlockStat{columns[0], columns[2], columns[3], columns[4], columns[6], columns[7]};
}

} // namespace pulsebar
