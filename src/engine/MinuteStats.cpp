#include "engine/MinuteStats.h"

#include "util/Values.h"

namespace pulsebar {

namespace {

struct Extent
{
    double sum = 0.0;
    double maximum = 0.0;
    double minimum = 0.0;
};

Extent extentOf(const UsageCache &cache)
{
    Extent extent;
    for (const QVariant &element : cache) {
        const double value = static_cast<double>(floatValue(element));
        extent.sum += value;
        if (value > extent.maximum)
            extent.maximum = value;
        if (extent.minimum == 0.0)
            extent.minimum = value;
        else
            extent.minimum = extent.minimum < value ? extent.minimum : value;
    }
    return extent;
}

} // namespace

QVariantMap calcMinuteStats(UsageCache &cache, const QVariant &newValue, int maximum)
{
    QVariantMap record;
    record.insert(QStringLiteral("CurrentValue"), newValue);
    double first = 0.0;
    if (!cache.isEmpty()) {
        record.insert(QStringLiteral("LastValue"), cache.constLast());
        first = static_cast<double>(floatValue(cache.constFirst()));
        if (cache.size() >= maximum)
            cache.removeFirst();
    }
    cache.append(newValue);

    const Extent extent = extentOf(cache);
    const auto count = static_cast<double>(cache.size());
    const double newest = static_cast<double>(floatValue(newValue));
    record.insert(QStringLiteral("MaxValue"), extent.maximum);
    record.insert(QStringLiteral("MinValue"), extent.minimum);
    record.insert(QStringLiteral("AverageValue"), extent.sum / count);
    record.insert(QStringLiteral("PreAverage"), (first + extent.sum - newest) / count);
    return record;
}

} // namespace pulsebar
