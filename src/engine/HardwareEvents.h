#pragma once

#include <QVariantList>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace pulsebar {

/// Watches thresholds in the figures of each sample.
///
/// An observe entry is a dictionary:
/// - "type": 10 CPU load, 11 network, 12 battery, 15 one process's CPU share, 17 a temperature,
///   18 the fans; anything else is ignored;
/// - "observeType": 0 fires when the value rises to or above the threshold, anything else when it
///   falls to or below it;
/// - "threshold": percent (10, 12, 15), bytes per second (11), degrees as shown (17), revolutions
///   per minute (18); a missing one is 0;
/// - "batteryTriggerEventType" (12): 0 the threshold, 1 the cable was plugged in, 2 it was
/// unplugged;
/// - "networkTriggerDataType" (11): 0 outgoing, anything else incoming;
/// - "temperaturePart" (17): a sensor's name; "processName" (15): a process name or process key.
/// Other keys are carried along. An entry fires on the sample that crosses its threshold, not while
/// the value stays beyond it.
class HardwareEvents
{
public:
    /// Called with the entry that fired, unchanged, in the order of the entries.
    using Post = std::function<void(const QVariantMap &entry)>;
    /// Answers the minute-stats record of a process (by key or name), empty when it is unknown.
    using ProcessRecord = std::function<QVariantMap(const QString &process)>;

    explicit HardwareEvents(Post post)
        : m_post(std::move(post))
    {
    }

    // Each reads what its collector has just put into the sample, and remembers it.
    void checkBattery(const QVariantList &entries, const QVariantMap &sample);
    void checkTemperatures(const QVariantList &entries, const QVariantMap &sample) const;
    void checkFans(const QVariantList &entries, const QVariantMap &sample) const;
    void checkCPU(const QVariantList &entries, const QVariantMap &sample);
    void checkNetwork(const QVariantList &entries, const QVariantMap &sample);
    void checkProcesses(const QVariantList &entries, const ProcessRecord &recordOf) const;

private:
    bool batteryFires(const QVariantMap &entry, float percent, bool connected) const;
    /// Posts the entries of a type for which the predicate holds.
    void postWhere(const QVariantList &entries, int type,
                   const std::function<bool(const QVariantMap &)> &fires) const;

    Post m_post;
    float m_prevCPUUsage = 0.0F;
    qint64 m_prevNetworkIn = 0;
    qint64 m_prevNetworkOut = 0;
    float m_prevBatteryRemain = 0.0F;            ///< 0 until the first sample
    std::optional<bool> m_powerCableIsConnected; ///< unknown until the first sample
};

} // namespace pulsebar
