#include "engine/UsageCaches.h"

#include "engine/AppUsage.h"
#include "util/DecimalText.h"
#include "util/Text.h"

#include <algorithm>

namespace pulsebar {

namespace {

/// The number in a name such as "CPU3" or "Fan0"; 0 without a name.
int numberIn(const Text &name, const QString &word)
{
    return name ? intFromText(removeString(*name, word)) : 0;
}

std::optional<UsageCache> fanCache(const std::vector<UsageCache> &caches, const Text &name)
{
    if (caches.empty())
        return std::nullopt;
    if (name == QStringLiteral("FanAverage"))
        return caches.back();
    const int number = numberIn(name, QStringLiteral("Fan"));
    if (number < 0)
        return std::nullopt;
    return caches[std::min(static_cast<std::size_t>(number), caches.size() - 1)];
}

std::optional<UsageCache> coreCache(const CoreCaches &caches, const Text &name)
{
    const int number = numberIn(name, QStringLiteral("CPU"));
    if (number < 1)
        return std::nullopt;
    return caches.at(static_cast<std::size_t>(number) - 1);
}

} // namespace

void CoreCaches::setCores(const std::vector<int> &numbers)
{
    m_created = true;
    std::erase_if(m_cores, [&](const auto &core) {
        return std::find(numbers.begin(), numbers.end(), core.first) == numbers.end();
    });
    for (const int number : numbers)
        m_cores.try_emplace(number);
}

std::optional<UsageCache> CoreCaches::at(std::size_t index) const
{
    if (index >= count())
        return std::nullopt;
    if (index == m_cores.size())
        return m_average;
    return std::next(m_cores.begin(), static_cast<std::ptrdiff_t>(index))->second;
}

std::optional<UsageCache> CoreCaches::last() const
{
    if (!m_created)
        return std::nullopt;
    return m_average;
}

std::optional<UsageCache> cacheDataForKey(const UsageCaches &caches, const AppUsage &appUsage,
                                          const QString &graphKey)
{
    const Text kind = substringTo(graphKey, QStringLiteral("__"));
    const Text name = substringFrom(graphKey, QStringLiteral("__"));
    if (kind == QStringLiteral("Temperature")) {
        const auto found = caches.temperature.constFind(name.value_or(QString()));
        return found == caches.temperature.constEnd() ? std::nullopt : std::optional(*found);
    }
    if (kind == QStringLiteral("FanMove"))
        return fanCache(caches.fanMove, name);
    if (graphKey == u"CPUTotalUsage")
        return caches.cpuUsage.last();
    if (!name || name->startsWith(QStringLiteral("CPU")))
        return coreCache(caches.cpuUsage, name);
    if (name == QStringLiteral("NetworkInMinuteStats"))
        return caches.networkIn;
    if (name == QStringLiteral("NetworkOutMinuteStats"))
        return caches.networkOut;
    return appUsage.usageCacheForKey(*name);
}

} // namespace pulsebar
