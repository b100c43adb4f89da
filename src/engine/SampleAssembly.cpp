#include "engine/SampleAssembly.h"

#include "engine/MinuteStats.h"
#include "engine/SensorStatistics.h"
#include "util/Values.h"

#include <QLoggingCategory>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logAssembly, "pulsebar.engine")

const QString CpuUsage = QStringLiteral("CPUUsage");
const QString CpuUsageCoreAverage = QStringLiteral("CPUUsageCoreAverage");
const QString CpuUsageMinuteStats = QStringLiteral("CPUUsageMinuteStats");

} // namespace

const SampleAssembly::Row SampleAssembly::Rows[] = {
    {&MonitorSettings::monitorBattery, &SampleAssembly::collectBattery},
    {&MonitorSettings::monitorTemperature, &SampleAssembly::collectTemperatures},
    {&MonitorSettings::monitorFanMove, &SampleAssembly::collectFans},
    {&MonitorSettings::monitorCPU, &SampleAssembly::collectCPU},
    {&MonitorSettings::monitorNetwork, &SampleAssembly::collectNetwork},
    {nullptr, &SampleAssembly::collectDisks},
};

SampleAssembly::SampleAssembly(const MonitorSources &sources, const MonitorSettings &settings,
                               UsageCaches &caches, HardwareEvents &events)
    : m_sources(sources)
    , m_settings(settings)
    , m_caches(caches)
    , m_events(events)
{
    if (sources.coreTicks)
        m_coreLoad.emplace(*sources.coreTicks);
    if (sources.interfaces)
        m_networkRates.emplace(*sources.interfaces);
    if (sources.disks)
        m_diskRates.emplace(*sources.disks);
}

QVariantMap SampleAssembly::staticsDataDict(const QVariantMap &previous)
{
    QVariantMap sample;
    m_observed = m_settings.observeArray;
    for (const Row &row : Rows) {
        if (!row.flag || m_settings.*row.flag)
            (this->*row.collect)(sample, previous);
    }
    return sample;
}

QVariantMap SampleAssembly::minuteStats(UsageCache &cache, const QVariant &value) const
{
    return calcMinuteStats(cache, value, m_settings.cacheLength());
}

void SampleAssembly::collectBattery(QVariantMap &sample, const QVariantMap & /*previous*/)
{
    if (!m_sources.battery)
        return;
    sample.insert(QStringLiteral("BatteryStats"), m_sources.battery->batteryStatus());
    m_events.checkBattery(m_observed, sample);
}

void SampleAssembly::collectTemperatures(QVariantMap &sample, const QVariantMap & /*previous*/)
{
    if (!m_sources.temperatures)
        return;
    const auto temperatures = m_sources.temperatures->SMCGetTemperatures(m_settings.fahrenheit);
    if (!temperatures)
        return;
    sample.insert(QStringLiteral("CPUTemparatures"), *temperatures);
    sample.insert(QStringLiteral("CPUTemparaturesMinutesStats"),
                  processTemperatureStats(m_caches, *temperatures, m_settings.cacheLength()));
    m_events.checkTemperatures(m_observed, sample);
}

void SampleAssembly::collectFans(QVariantMap &sample, const QVariantMap & /*previous*/)
{
    if (!m_sources.fans)
        return;
    const auto fanMove = m_sources.fans->SMCGetFanMove();
    if (!fanMove)
        return;
    sample.insert(QStringLiteral("FanMove"), *fanMove);
    sample.insert(QStringLiteral("FanMoveMinutesStats"),
                  processFanMoveStats(m_caches, *fanMove, m_settings.cacheLength()));
    m_events.checkFans(m_observed, sample);
}

void SampleAssembly::collectCPU(QVariantMap &sample, const QVariantMap &previous)
{
    if (!m_coreLoad)
        return;
    const std::vector<CoreEntry> cores = m_coreLoad->CPUUsageInfo();
    if (cores.empty()) {
        keepPreviousCPU(sample, previous);
        return;
    }
    addCores(sample, cores);
    m_events.checkCPU(m_observed, sample);
}

void SampleAssembly::keepPreviousCPU(QVariantMap &sample, const QVariantMap &previous)
{
    if (previous.isEmpty())
        return;
    if (!previous.contains(CpuUsage) && !m_saidNoCPU) {
        qCInfo(logAssembly) << "the previous sample has no \"CPUUsage\"";
        m_saidNoCPU = true;
    }
    for (const QString &key : {CpuUsage, CpuUsageCoreAverage, CpuUsageMinuteStats}) {
        const auto value = previous.constFind(key);
        if (value != previous.constEnd())
            sample.insert(key, *value);
    }
}

void SampleAssembly::addCores(QVariantMap &sample, const std::vector<CoreEntry> &cores)
{
    std::vector<int> numbers;
    numbers.reserve(cores.size());
    for (const CoreEntry &core : cores)
        numbers.push_back(core.number);
    m_caches.cpuUsage.setCores(numbers);

    QVariantList entries;
    double sum = 0.0;
    for (const CoreEntry &core : cores) {
        QVariantMap entry = core.shares;
        const QVariant usage = entry.value(QStringLiteral("totalUsage"));
        sum += usage.toDouble();
        entry.insert(CpuUsageMinuteStats, minuteStats(m_caches.cpuUsage.core(core.number), usage));
        entries.append(entry);
    }
    const double average = sum / static_cast<double>(cores.size());
    sample.insert(CpuUsage, entries);
    sample.insert(CpuUsageCoreAverage, average);
    sample.insert(CpuUsageMinuteStats, minuteStats(m_caches.cpuUsage.average(), average));
    ++m_caches.loads;
}

void SampleAssembly::collectNetwork(QVariantMap &sample, const QVariantMap & /*previous*/)
{
    if (!m_networkRates)
        return;
    const QVariantMap rates = m_networkRates->netStatistics(m_settings.interval());
    sample.insert(QStringLiteral("NetStatistics"), rates);
    if (rates.isEmpty())
        return;
    addNetworkRecords(sample, rates);
    m_events.checkNetwork(m_observed, sample);
}

void SampleAssembly::addNetworkRecords(QVariantMap &sample, const QVariantMap &rates)
{
    const QVariant out = rates.value(QStringLiteral("OutBytes"));
    const QVariant in = rates.value(QStringLiteral("InBytes"));
    // The zeros before any traffic was seen would drag the first minute's averages down.
    if (m_caches.networkOut.isEmpty() && out.toULongLong() == 0 && in.toULongLong() == 0)
        return;
    sample.insert(QStringLiteral("NetworkOutMinuteStats"), minuteStats(m_caches.networkOut, out));
    sample.insert(QStringLiteral("NetworkInMinuteStats"), minuteStats(m_caches.networkIn, in));
}

void SampleAssembly::collectDisks(QVariantMap &sample, const QVariantMap & /*previous*/)
{
    if (!m_diskRates)
        return;
    if (const auto disks = m_diskRates->diskStatistics(sample, m_settings.interval()))
        sample.insert(QStringLiteral("DiskStatistics"), *disks);
}

} // namespace pulsebar
