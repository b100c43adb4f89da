#pragma once

#include "engine/UsageCache.h"

#include <QMap>
#include <QString>

#include <map>
#include <optional>
#include <vector>

namespace pulsebar {

class AppUsage;

/// The usage caches of the cores and of their average.
class CoreCaches
{
public:
    /// Keeps the caches of these processors and makes the missing ones; the average's cache stays.
    void setCores(const std::vector<int> &numbers);
    UsageCache &core(int number) { return m_cores[number]; }
    UsageCache &average() { return m_average; }

    /// The caches as one array: one per core in ascending order, the average last. 0 = none yet.
    std::size_t count() const { return m_created ? m_cores.size() + 1 : 0; }
    /// @param index position in that array
    std::optional<UsageCache> at(std::size_t index) const;
    std::optional<UsageCache> last() const;

private:
    bool m_created = false;
    std::map<int, UsageCache> m_cores; ///< by the processor's number
    UsageCache m_average;
};

/// The usage caches of a monitor, but for those of the processes.
struct UsageCaches
{
    CoreCaches cpuUsage;
    quint64 loads = 0; ///< values that the cores' average has ever had
    UsageCache networkIn;
    UsageCache networkOut;
    UsageCache energyConsumption;
    QMap<QString, UsageCache> temperature; ///< by sensor name
    std::vector<UsageCache> fanMove;       ///< per fan, the average last; empty = none yet
};

/// The cache that a graph key names: a kind, "__" and a name. Absent when there is none.
/// "CPUTotalUsage" alone is the core average, "CPUUsage__CPU1" the first core, "FanMove__Fan0" the
/// first fan; the fans' average also answers for a fan beyond the last.
std::optional<UsageCache> cacheDataForKey(const UsageCaches &caches, const AppUsage &appUsage,
                                          const QString &graphKey);

} // namespace pulsebar
