#include "engine/AppUsage.h"

#include "engine/MinuteStats.h"
#include "util/Text.h"
#include "util/Values.h"

namespace pulsebar {

namespace {

QString separator()
{
    return QStringLiteral("//");
}

/// Absent for an entry without a name.
std::optional<QString> processKey(const QVariantMap &entry)
{
    const QVariant name = entry.value(QStringLiteral("ProcessName"));
    if (!name.isValid())
        return std::nullopt;
    const QVariant pid = entry.value(QStringLiteral("PID"));
    return pid.isValid() ? pid.toString() + separator() + name.toString() : name.toString();
}

QHash<QString, float> sharesByKey(const QVariantList &processList)
{
    QHash<QString, float> shares;
    for (const QVariant &element : processList) {
        const QVariantMap entry = element.toMap();
        if (const auto key = processKey(entry))
            shares.insert(*key, floatValueForKey(entry, QStringLiteral("CPUUsage")));
    }
    return shares;
}

} // namespace

void AppUsage::calcMinuteAppUsage(const QVariantList &processList, int maximum)
{
    const QHash<QString, float> shares = sharesByKey(processList);
    for (auto share = shares.begin(); share != shares.end(); ++share)
        m_infos[share.key()]; // a process seen for the first time starts an empty cache

    for (auto it = m_infos.begin(); it != m_infos.end();) {
        Info &info = it.value();
        const QString average = QStringLiteral("AverageValue");
        const float lastAverage = floatValueForKey(info.usageInfo, average);
        QVariantMap record = calcMinuteStats(info.usageCache, shares.value(it.key()), maximum);
        record.insert(QStringLiteral("lastAverage"), lastAverage);
        info.usageInfo = record;
        const bool idle = record.value(average).toDouble() == 0.0;
        it = idle && info.usageCache.size() >= maximum ? m_infos.erase(it) : std::next(it);
    }
}

/// Of several processes of one name the busiest is meant: who watches a browser's helpers by their
/// name wants to hear of the one that runs wild. Equals go by their keys, so that the answer is the
/// same at every call.
AppUsage::Infos::const_iterator AppUsage::find(const QString &key) const
{
    auto found = m_infos.constFind(key);
    if (found != m_infos.cend())
        return found;
    double most = 0.0;
    for (auto it = m_infos.cbegin(); it != m_infos.cend(); ++it) {
        if (substringFrom(it.key(), separator()) != key)
            continue;
        const double average = it->usageInfo.value(QStringLiteral("AverageValue")).toDouble();
        const bool isFirst = found == m_infos.cend();
        if (isFirst || average > most || (average == most && it.key() < found.key())) {
            found = it;
            most = average;
        }
    }
    return found;
}

QString AppUsage::processKeyFor(const QString &key) const
{
    const auto info = find(key);
    return info != m_infos.cend() ? info.key() : QString();
}

std::optional<QVariantMap> AppUsage::usageInfoDictForKey(const QString &key) const
{
    const auto info = find(key);
    if (info == m_infos.cend())
        return std::nullopt;
    return QVariantMap{{QStringLiteral("usageCache"), info->usageCache},
                       {QStringLiteral("usageInfo"), info->usageInfo}};
}

QVariantMap AppUsage::usageInfoForKey(const QString &key) const
{
    const auto info = find(key);
    return info != m_infos.cend() ? info->usageInfo : QVariantMap();
}

std::optional<UsageCache> AppUsage::usageCacheForKey(const QString &key) const
{
    const auto info = find(key);
    if (info == m_infos.cend())
        return std::nullopt;
    return info->usageCache;
}

} // namespace pulsebar
