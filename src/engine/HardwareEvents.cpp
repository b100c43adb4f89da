#include "engine/HardwareEvents.h"

#include "util/ObserveEntry.h"
#include "util/Values.h"

namespace pulsebar {

namespace {

using namespace observed;

float threshold(const QVariantMap &entry)
{
    return floatValueForKey(entry, QStringLiteral("threshold"));
}

bool isRising(const QVariantMap &entry)
{
    return intValueForKey(entry, QStringLiteral("observeType")) == 0;
}

/// The one rule of all thresholds, for a value and the one before it.
template <typename Number>
bool crosses(const QVariantMap &entry, Number limit, Number value, Number last)
{
    return isRising(entry) ? limit <= value && last < limit : value <= limit && limit < last;
}

bool recordCrosses(const QVariantMap &entry, const QVariantMap &record)
{
    const QVariant current = record.value(QStringLiteral("CurrentValue"));
    const QVariant last = record.value(QStringLiteral("LastValue"));
    if (!current.isValid() || !last.isValid())
        return false;
    return crosses(entry, threshold(entry), floatValue(current), floatValue(last));
}

} // namespace

void HardwareEvents::postWhere(const QVariantList &entries, int type,
                               const std::function<bool(const QVariantMap &)> &fires) const
{
    // Whoever hears of an event may let the next sample begin, which takes up other entries.
    const QVariantList held = entries; // NOLINT(performance-unnecessary-copy-initialization)
    for (const QVariant &element : held) {
        const QVariantMap entry = element.toMap();
        if (intValueForKey(entry, QStringLiteral("type")) == type && fires(entry))
            m_post(entry);
    }
}

bool HardwareEvents::batteryFires(const QVariantMap &entry, float percent, bool connected) const
{
    switch (intValueForKey(entry, QStringLiteral("batteryTriggerEventType"))) {
    case PercentThreshold: // nothing rises right after the start
        return crosses(entry, threshold(entry), percent, m_prevBatteryRemain) &&
               !(isRising(entry) && m_prevBatteryRemain == 0.0F);
    case CablePluggedIn:
        return connected && m_powerCableIsConnected == false;
    case CableUnplugged:
        return !connected && m_powerCableIsConnected == true;
    default:
        return false;
    }
}

void HardwareEvents::checkBattery(const QVariantList &entries, const QVariantMap &sample)
{
    const float percent = floatValueForKeyPath(sample, u"BatteryStats.BatteryRemainPercent");
    const bool connected = boolValue(valueForKeyPath(sample, u"BatteryStats.IsConnected"));
    postWhere(entries, Battery,
              [&](const QVariantMap &entry) { return batteryFires(entry, percent, connected); });
    m_powerCableIsConnected = connected;
    m_prevBatteryRemain = percent;
}

void HardwareEvents::checkTemperatures(const QVariantList &entries, const QVariantMap &sample) const
{
    const QVariantMap records = sample.value(QStringLiteral("CPUTemparaturesMinutesStats")).toMap();
    postWhere(entries, Temperature, [&](const QVariantMap &entry) {
        const QString part = entry.value(QStringLiteral("temperaturePart")).toString();
        return recordCrosses(entry, records.value(part).toMap());
    });
}

void HardwareEvents::checkFans(const QVariantList &entries, const QVariantMap &sample) const
{
    const QVariantList records = sample.value(QStringLiteral("FanMoveMinutesStats")).toList();
    const QVariantMap average = records.isEmpty() ? QVariantMap() : records.constLast().toMap();
    postWhere(entries, Fans,
              [&](const QVariantMap &entry) { return recordCrosses(entry, average); });
}

void HardwareEvents::checkCPU(const QVariantList &entries, const QVariantMap &sample)
{
    const float average = floatValueForKeyPath(sample, u"CPUUsageMinuteStats.AverageValue");
    postWhere(entries, CpuLoad, [&](const QVariantMap &entry) {
        return crosses(entry, threshold(entry) / 100.0F, average, m_prevCPUUsage);
    });
    m_prevCPUUsage = average;
}

void HardwareEvents::checkNetwork(const QVariantList &entries, const QVariantMap &sample)
{
    const auto average = [&](QStringView path) { return longValue(valueForKeyPath(sample, path)); };
    const qint64 in = average(u"NetworkInMinuteStats.AverageValue");
    const qint64 out = average(u"NetworkOutMinuteStats.AverageValue");
    postWhere(entries, Network, [&](const QVariantMap &entry) {
        const qint64 limit = longValueForKey(entry, QStringLiteral("threshold"));
        const bool outgoing = intValueForKey(entry, QStringLiteral("networkTriggerDataType")) == 0;
        return crosses(entry, limit, outgoing ? out : in,
                       outgoing ? m_prevNetworkOut : m_prevNetworkIn);
    });
    m_prevNetworkIn = in;
    m_prevNetworkOut = out;
}

void HardwareEvents::checkProcesses(const QVariantList &entries,
                                    const ProcessRecord &recordOf) const
{
    postWhere(entries, ProcessShare, [&](const QVariantMap &entry) {
        const QVariantMap record = recordOf(entry.value(QStringLiteral("processName")).toString());
        return crosses(entry, threshold(entry) / 100.0F,
                       floatValueForKey(record, QStringLiteral("AverageValue")),
                       floatValueForKey(record, QStringLiteral("lastAverage")));
    });
}

} // namespace pulsebar
