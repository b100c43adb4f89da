#include "platform/linux_/low/proc_meminfo.h"

#include "platform/linux_/low/Scan.h"

#include <algorithm>
#include <array>

namespace pulsebar {

namespace {

struct Entry
{
    std::string_view key;
    std::optional<std::uint64_t> MemInfo::*field;
};

constexpr std::array entries{
    Entry{"MemTotal:", &MemInfo::memTotal},
    Entry{"MemFree:", &MemInfo::memFree},
    Entry{"MemAvailable:", &MemInfo::memAvailable},
    Entry{"Buffers:", &MemInfo::buffers},
    Entry{"Cached:", &MemInfo::cached},
    Entry{"Active:", &MemInfo::active},
    Entry{"Inactive:", &MemInfo::inactive},
    Entry{"Unevictable:", &MemInfo::unevictable},
    Entry{"SwapTotal:", &MemInfo::swapTotal},
    Entry{"SwapFree:", &MemInfo::swapFree},
    Entry{"Shmem:", &MemInfo::shmem},
    Entry{"SReclaimable:", &MemInfo::sReclaimable},
    Entry{"SUnreclaim:", &MemInfo::sUnreclaim},
    Entry{"KernelStack:", &MemInfo::kernelStack},
    Entry{"PageTables:", &MemInfo::pageTables},
    Entry{"SecPageTables:", &MemInfo::secPageTables},
};

} // namespace

MemInfo parseMemInfo(std::string_view text)
{
    MemInfo info;
    Scan lines(text);
    while (const auto line = lines.line()) {
        Scan scan(*line);
        const auto key = scan.word();
        const auto entry = std::find_if(entries.begin(), entries.end(),
                                        [&](const Entry &each) { return each.key == key; });
        if (entry == entries.end())
            continue;
        if (const auto value = scan.number())
            info.*entry->field = value;
    }
    return info;
}

} // namespace pulsebar
