#include "platform/linux_/low/proc_diskstats.h"

#include "platform/linux_/low/Scan.h"

#include <optional>

namespace pulsebar {

namespace {

std::optional<DiskStatsLine> parseLine(std::string_view line)
{
    Scan scan(line);
    if (!scan.number() || !scan.number()) // device numbers
        return std::nullopt;
    const auto name = scan.word();
    const auto reads = scan.number();
    scan.skipWords(1); // merged
    const auto sectorsRead = scan.number();
    scan.skipWords(1); // milliseconds
    const auto writes = scan.number();
    scan.skipWords(1);
    const auto sectorsWritten = scan.number();
    if (!name || !reads || !sectorsRead || !writes || !sectorsWritten)
        return std::nullopt;
    return DiskStatsLine{*name, *reads, *sectorsRead, *writes, *sectorsWritten};
}

} // namespace

std::vector<DiskStatsLine> parseDiskStats(std::string_view text)
{
    return parseEachLine<DiskStatsLine>(text, parseLine);
}

} // namespace pulsebar
