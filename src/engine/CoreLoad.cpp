#include "engine/CoreLoad.h"

#include <utility>

namespace pulsebar {

namespace {

bool hasTicks(const CoreTicks &ticks)
{
    return ticks.user != 0 || ticks.nice != 0 || ticks.idle != 0 || ticks.kernel != 0;
}

QVariantMap sharesBetween(const CoreTicks &before, const CoreTicks &now)
{
    const std::uint64_t user = now.user - before.user;
    const std::uint64_t nice = now.nice - before.nice;
    const std::uint64_t idle = now.idle - before.idle;
    const std::uint64_t kernel = now.kernel - before.kernel;
    const std::uint64_t all = nice + user + idle + kernel;
    const auto share = [all](std::uint64_t ticks) {
        return static_cast<double>(ticks) / static_cast<double>(all);
    };
    return {{QStringLiteral("user"), share(user)},
            {QStringLiteral("nice"), share(nice)},
            {QStringLiteral("idle"), share(idle)},
            {QStringLiteral("kernel"), share(kernel)},
            {QStringLiteral("totalUsage"), share(all - idle)}};
}

} // namespace

std::vector<CoreEntry> CoreLoad::CPUUsageInfo()
{
    std::vector<CoreEntry> entries;
    const auto cores = m_source.readCoreTicks();
    if (!cores)
        return entries;
    std::map<int, CoreTicks> current;
    for (const CoreTicks &now : *cores) {
        const auto before = m_previous.find(now.number);
        if (before != m_previous.end() && hasTicks(before->second))
            entries.push_back({now.number, sharesBetween(before->second, now)});
        current.insert_or_assign(now.number, now);
    }
    m_previous = std::move(current);
    return entries;
}

} // namespace pulsebar
