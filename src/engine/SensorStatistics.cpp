#include "engine/SensorStatistics.h"

#include "engine/MinuteStats.h"
#include "util/Values.h"

namespace pulsebar {

namespace {

/// One cache per fan, and one for the average behind them.
void resizeFanCaches(std::vector<UsageCache> &caches, std::size_t fans)
{
    if (caches.empty())
        caches.emplace_back();
    while (caches.size() < fans + 1)
        caches.insert(caches.end() - 1, UsageCache());
    caches.erase(caches.begin() + static_cast<std::ptrdiff_t>(fans), caches.end() - 1);
}

} // namespace

QVariantMap processTemperatureStats(UsageCaches &caches, const QVariantMap &temperatures,
                                    int maximum)
{
    QVariantMap records;
    for (auto it = temperatures.begin(); it != temperatures.end(); ++it) {
        UsageCache &cache = caches.temperature[it.key()];
        records.insert(it.key(), calcMinuteStats(cache, it.value(), maximum));
    }
    return records;
}

QVariantList processFanMoveStats(UsageCaches &caches, const QVariantMap &fanMove, int maximum)
{
    const QVariantList fans = fanMove.value(QStringLiteral("DataArray")).toList();
    resizeFanCaches(caches.fanMove, static_cast<std::size_t>(fans.size()));
    QVariantList records;
    auto cache = caches.fanMove.begin();
    for (const QVariant &fan : fans) {
        const float speed = floatValueForKey(fan.toMap(), QStringLiteral("ActualSpeed"));
        records.append(calcMinuteStats(*cache++, speed, maximum));
    }
    const float average = floatValueForKey(fanMove, QStringLiteral("AverageSpeed"));
    records.append(calcMinuteStats(*cache, average, maximum));
    return records;
}

} // namespace pulsebar
