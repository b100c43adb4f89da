#pragma once

#include "engine/UsageCache.h"

#include <QVariantMap>

namespace pulsebar {

/// Appends a value to a series and computes its minute-stats record:
/// "CurrentValue" and "LastValue" (the samples as given; no "LastValue" on the first one),
/// "MaxValue" (never below 0), "MinValue" (0 counts as unset, unless it is the newest),
/// "AverageValue" (mean of the cache with this value) and "PreAverage" (mean of the window before
/// this value; while the cache still fills, the oldest value counts twice), all four double.
///
/// Values are read in single and summed in double precision.
/// @param cache the series, oldest first; loses at most one value per call
/// @param maximum number of values that the series may hold; with 0 only the new one stays
QVariantMap calcMinuteStats(UsageCache &cache, const QVariant &newValue, int maximum);

} // namespace pulsebar
