#pragma once

#include "engine/UsageCache.h"

#include <QHash>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace pulsebar {

/// Keeps the CPU shares of the processes that were seen during the last minute.
///
/// A process is known by its process key: the number, "//" and the name ("123//Web Browser"), or
/// the name alone when there is no number.
class AppUsage
{
public:
    /// Adds one sample: each process of the list with its "CPUUsage", each known process that is
    /// not in the list with 0. A process whose whole window is 0 is forgotten.
    /// @param maximum length of a usage cache
    void calcMinuteAppUsage(const QVariantList &processList, int maximum);

    /// "usageCache" (the shares as float, fractions) and "usageInfo" (the newest minute-stats
    /// record, with the record before's "AverageValue" as "lastAverage", a float).
    /// @param key a process key, or a process name: then that process of the name is answered which
    ///        used most during the last minute
    std::optional<QVariantMap> usageInfoDictForKey(const QString &key) const;
    /// The process key of the one that is answered; empty when it is unknown. Key as above.
    QString processKeyFor(const QString &key) const;

    /// The newest record of a process, empty when it is unknown. Key as above.
    QVariantMap usageInfoForKey(const QString &key) const;
    /// The usage cache of a process. Key as above.
    std::optional<UsageCache> usageCacheForKey(const QString &key) const;

    qsizetype count() const { return m_infos.size(); }

private:
    struct Info
    {
        UsageCache usageCache;
        QVariantMap usageInfo;
    };
    using Infos = QHash<QString, Info>;
    Infos::const_iterator find(const QString &key) const;

    Infos m_infos; ///< by process key
};

} // namespace pulsebar
