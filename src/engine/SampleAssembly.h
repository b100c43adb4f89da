#pragma once

#include "engine/CoreLoad.h"
#include "engine/DiskRates.h"
#include "engine/HardwareEvents.h"
#include "engine/MonitorSettings.h"
#include "engine/MonitorSources.h"
#include "engine/NetworkRates.h"
#include "engine/UsageCaches.h"

#include <QVariantMap>

#include <optional>

namespace pulsebar {

/// Builds the part of a sample that does not come from the sampler's report: runs the collectors
/// that are switched on in their fixed order, adds their minute statistics and checks the observed
/// thresholds. A collector whose source is missing or does not answer leaves its keys out.
class SampleAssembly
{
public:
    /// All three must outlive the assembly; the settings are read anew for each sample.
    SampleAssembly(const MonitorSources &sources, const MonitorSettings &settings,
                   UsageCaches &caches, HardwareEvents &events);

    /// @param previous the sample published last, empty when there is none
    QVariantMap staticsDataDict(const QVariantMap &previous);

private:
    using Collector = void (SampleAssembly::*)(QVariantMap &sample, const QVariantMap &previous);
    /// One row of the table of collectors; the rows stand in the order in which they run.
    struct Row
    {
        bool MonitorSettings::*flag; ///< null = runs always
        Collector collect;
    };
    static const Row Rows[];

    void collectBattery(QVariantMap &sample, const QVariantMap &previous);
    void collectTemperatures(QVariantMap &sample, const QVariantMap &previous);
    void collectFans(QVariantMap &sample, const QVariantMap &previous);
    void collectCPU(QVariantMap &sample, const QVariantMap &previous);
    void collectNetwork(QVariantMap &sample, const QVariantMap &previous);
    void collectDisks(QVariantMap &sample, const QVariantMap &previous);

    void keepPreviousCPU(QVariantMap &sample, const QVariantMap &previous);
    void addCores(QVariantMap &sample, const std::vector<CoreEntry> &cores);
    void addNetworkRecords(QVariantMap &sample, const QVariantMap &rates);
    QVariantMap minuteStats(UsageCache &cache, const QVariant &value) const;

    const MonitorSources &m_sources;
    const MonitorSettings &m_settings;
    UsageCaches &m_caches;
    HardwareEvents &m_events;
    std::optional<CoreLoad> m_coreLoad;
    std::optional<NetworkRates> m_networkRates;
    std::optional<DiskRates> m_diskRates;
    QVariantList m_observed; ///< the entries as they stood when the sample began
    bool m_saidNoCPU = false;
};

} // namespace pulsebar
