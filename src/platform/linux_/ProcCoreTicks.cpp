#include "platform/linux_/ProcCoreTicks.h"

#include "platform/linux_/low/proc_stat.h"

namespace pulsebar {

ProcCoreTicks::ProcCoreTicks(const Sysroot &root)
    : m_stat(root.path("/proc/stat"))
{
}

std::optional<std::vector<CoreTicks>> ProcCoreTicks::readCoreTicks()
{
    const auto text = m_stat.read();
    const auto lines = text ? parseNumberedTicks(*text) : std::nullopt;
    if (!lines)
        return std::nullopt;
    std::vector<CoreTicks> cores;
    cores.reserve(lines->size());
    for (const auto &[number, ticks] : *lines)
        cores.push_back({number, ticks.user, ticks.nice, ticks.kernel, ticks.idle});
    return cores;
}

} // namespace pulsebar
