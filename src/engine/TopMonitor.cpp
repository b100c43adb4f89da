#include "engine/TopMonitor.h"

#include "engine/AppUsage.h"
#include "engine/HardwareEvents.h"
#include "engine/MinuteStats.h"
#include "engine/ProcessPaths.h"
#include "engine/SampleAssembly.h"
#include "engine/SamplerProcess.h"
#include "engine/TopReportParser.h"
#include "engine/UsageCaches.h"
#include "util/Localisation.h"
#include "util/Values.h"

#include <QTimer>

#include <chrono>
#include <utility>

namespace pulsebar {

namespace {

void insertIfPresent(QVariantMap &sample, const QString &key, const std::optional<QString> &value)
{
    if (value)
        sample.insert(key, *value);
}

/// The monitor flag that an observe entry of a type needs; null when it needs none.
bool MonitorSettings::*flagForType(int type)
{
    switch (type) {
    case 10:
        return &MonitorSettings::monitorCPU;
    case 11:
        return &MonitorSettings::monitorNetwork;
    case 12:
        return &MonitorSettings::monitorBattery;
    case 15:
        return &MonitorSettings::monitorProcessUsage;
    case 17:
        return &MonitorSettings::monitorTemperature;
    default:
        return nullptr;
    }
}

} // namespace

TopMonitor::TopMonitor(const MonitorSources &sources, SamplerCommand sampler, int listMax,
                       int refreshSec, QObject *parent)
    : QObject(parent)
    , m_sources(sources)
    , m_caches(std::make_unique<UsageCaches>())
    , m_appUsage(std::make_unique<AppUsage>())
    , m_events(std::make_unique<HardwareEvents>(
          [this](const QVariantMap &entry) { Q_EMIT hardwareEvent(entry); }))
    , m_assembly(std::make_unique<SampleAssembly>(m_sources, m_settings, *m_caches, *m_events))
    , m_sampler(std::make_unique<SamplerProcess>(std::move(sampler)))
    , m_paths(std::make_unique<ProcessPaths>(m_sources))
{
    m_settings.listMax = listMax;
    m_settings.refreshSec = refreshSec;
    connect(m_sampler.get(), &SamplerProcess::sampleReady, this, &TopMonitor::loadTopInfo);
}

TopMonitor::~TopMonitor() = default;

std::unique_ptr<TopMonitor> TopMonitor::prepareMonitor(const MonitorSources &sources,
                                                       SamplerCommand sampler)
{
    auto monitor = std::make_unique<TopMonitor>(sources, std::move(sampler), 10, 3);
    for (const char *key :
         {"monitorCPU", "monitorNetwork", "monitorBattery", "monitorTemperature", "monitorFanMove"})
        monitor->setProperty(key, false);
    return monitor;
}

void TopMonitor::setRunTop(bool on)
{
    m_settings.runTop = on;
    if (on && !topTaskExists())
        startMonitoringTop();
    else if (!on && topTaskExists())
        stopMonitoringTop();
}

void TopMonitor::setMonitorWithTimer(bool on)
{
    m_settings.monitorWithTimer = on;
    if (on)
        startTimer();
    else
        stopTimer();
}

void TopMonitor::setFlag(bool MonitorSettings::*flag, bool on)
{
    m_settings.*flag = on;
    adjustTimer();
}

void TopMonitor::setMonitorCPU(bool on)
{
    setFlag(&MonitorSettings::monitorCPU, on);
}

void TopMonitor::setMonitorNetwork(bool on)
{
    setFlag(&MonitorSettings::monitorNetwork, on);
}

void TopMonitor::setMonitorBattery(bool on)
{
    setFlag(&MonitorSettings::monitorBattery, on);
}

void TopMonitor::setMonitorTemperature(bool on)
{
    setFlag(&MonitorSettings::monitorTemperature, on);
}

void TopMonitor::setMonitorFanMove(bool on)
{
    setFlag(&MonitorSettings::monitorFanMove, on);
}

void TopMonitor::setMonitorProcessUsage(bool on)
{
    m_settings.monitorProcessUsage = on;
    setRunTop(on);
}

void TopMonitor::restartIfRunning()
{
    if (m_settings.runTop)
        startMonitoringTop();
}

void TopMonitor::setCheckMemory(bool on)
{
    m_settings.checkMemory = on;
    restartIfRunning();
}

void TopMonitor::setSortByMemory(bool on)
{
    m_settings.sortByMemory = on;
    restartIfRunning();
}

void TopMonitor::setListMax(int rows)
{
    m_settings.listMax = rows;
    restartIfRunning();
}

void TopMonitor::setRefreshSec(int seconds)
{
    m_settings.refreshSec = seconds;
    restartIfRunning();
    if (m_settings.monitorWithTimer) {
        stopTimer();
        startTimer();
    }
}

void TopMonitor::setObserveArray(const QVariantList &entries)
{
    m_settings.observeArray = entries;
    if (m_settings.autoEnableMonitor)
        enableObservationFlags();
}

void TopMonitor::enableObservationFlags()
{
    m_settings.monitorProcessUsage = false;
    m_settings.monitorBattery = false;
    m_settings.monitorNetwork = false;
    m_settings.monitorCPU = false;
    for (const QVariant &entry : std::as_const(m_settings.observeArray)) {
        const int type = intValueForKey(entry.toMap(), QStringLiteral("type"));
        if (const auto flag = flagForType(type))
            m_settings.*flag = true;
    }
    adjustTimer();
    setRunTop(m_settings.monitorProcessUsage);
}

QStringList TopMonitor::topArguments() const
{
    QStringList arguments{QStringLiteral("-l"),
                          QStringLiteral("0"),
                          QStringLiteral("-u"),
                          QStringLiteral("-n"),
                          QString::number(m_settings.listMax),
                          QStringLiteral("-s"),
                          QString::number(m_settings.interval())};
    if (m_settings.sortByMemory)
        arguments << QStringLiteral("-o") << QStringLiteral("rsize");
    if (!m_settings.checkMemory)
        arguments << QStringLiteral("-R");
    QString columns =
        QStringLiteral("pid,command,cpu,time,threads,user,msgsent,msgrecv,sysbsd,sysmach,power");
    if (m_settings.checkMemory)
        columns += QStringLiteral(",pageins,rsize,vsize");
    return arguments << QStringLiteral("-stats") << columns;
}

void TopMonitor::startMonitoringTop()
{
    stopMonitoringTop();
    m_settings.runTop = true;
    m_sampler->start(topArguments(), m_settings.interval());
}

void TopMonitor::stopMonitoringTop()
{
    m_sampler->stop();
}

bool TopMonitor::topTaskExists() const
{
    return m_sampler->isActive();
}

bool TopMonitor::needToRunTimer() const
{
    const bool anyCollector = m_settings.monitorCPU || m_settings.monitorNetwork ||
                              m_settings.monitorBattery || m_settings.monitorTemperature ||
                              m_settings.monitorFanMove;
    return !m_settings.runTop && m_settings.monitorWithTimer && anyCollector;
}

void TopMonitor::startTimer()
{
    if (!needToRunTimer()) {
        stopTimer();
    } else if (!m_timer) {
        m_timer = std::make_unique<QTimer>();
        m_timer->setTimerType(Qt::VeryCoarseTimer);
        m_timer->start(std::chrono::seconds(std::min(m_settings.interval(), 86400)));
    }
}

void TopMonitor::stopTimer()
{
    m_timer.reset();
}

void TopMonitor::adjustTimer()
{
    if (!m_timer && needToRunTimer())
        startTimer();
    else if (m_timer && !needToRunTimer())
        stopTimer();
}

void TopMonitor::loadTopInfo(const QByteArray &data)
{
    QVariantMap sample = staticsDataDict();
    addTopReport(data, sample);
    setTopDict(std::move(sample));
}

QVariantMap TopMonitor::staticsDataDict()
{
    return m_assembly->staticsDataDict(m_topDict);
}

void TopMonitor::addTopReport(const QByteArray &data, QVariantMap &sample)
{
    const TopReport report = parseTopReport(data, m_settings.listMax);
    insertIfPresent(sample, QStringLiteral("topResult"), report.text);
    sample.insert(QStringLiteral("MemoryStats"), report.memoryStats);
    insertIfPresent(sample, QStringLiteral("CPUUserUsage"), report.user);
    insertIfPresent(sample, QStringLiteral("CPUSysUsage"), report.sys);
    insertIfPresent(sample, QStringLiteral("CPUIdle"), report.idle);
    sample.insert(QStringLiteral("CPUTotalUsage"), report.total);
    sample.insert(QStringLiteral("ProcessList"), report.processList);
    if (m_settings.monitorProcessUsage)
        calcMinuteAppUsage(report.processList);
    if (report.energyUsageDict.isEmpty())
        return;
    sample.insert(QStringLiteral("EnergyUsageDict"), report.energyUsageDict);
    sample.insert(QStringLiteral("EnergyConsumption"), report.energyConsumption);
    sample.insert(QStringLiteral("EnergyConsumptionMinuteStats"),
                  calcMinuteStatsWithCache(m_caches->energyConsumption, report.energyConsumption));
}

void TopMonitor::setTopDict(QVariantMap sample)
{
    m_topDict = std::move(sample);
    Q_EMIT topDictChanged();
}

QVariantMap TopMonitor::calcMinuteStatsWithCache(UsageCache &cache, const QVariant &newValue) const
{
    return calcMinuteStats(cache, newValue, m_settings.cacheLength());
}

void TopMonitor::calcMinuteAppUsage(const QVariantList &processList)
{
    m_appUsage->calcMinuteAppUsage(processList, m_settings.cacheLength());
    // Whoever hears an event may change the entries.
    const QVariantList observed = m_settings.observeArray;
    m_events->checkProcesses(
        observed, [this](const QString &process) { return m_appUsage->usageInfoForKey(process); });
}

std::optional<QVariantMap> TopMonitor::usageInfoDictForKey(const QString &key) const
{
    return m_appUsage->usageInfoDictForKey(key);
}

QString TopMonitor::processKeyFor(const QString &key) const
{
    return m_appUsage->processKeyFor(key);
}

std::optional<UsageCache> TopMonitor::cacheDataForKey(const QString &graphKey) const
{
    return pulsebar::cacheDataForKey(*m_caches, *m_appUsage, graphKey);
}

quint64 TopMonitor::CPUTotalUsageCount() const
{
    return m_caches->loads;
}

QVariant TopMonitor::CPUTotalUsage() const
{
    return m_topDict.value(QStringLiteral("CPUUsageCoreAverage"));
}

QVariant TopMonitor::networkIn() const
{
    return valueForKeyPath(m_topDict, u"NetStatistics.InBytes");
}

QVariant TopMonitor::networkOut() const
{
    return valueForKeyPath(m_topDict, u"NetStatistics.OutBytes");
}

QVariant TopMonitor::processes() const
{
    return m_topDict.value(QStringLiteral("ProcessList"));
}

QVariant TopMonitor::batteryValue(const QString &key) const
{
    return m_sources.battery ? m_sources.battery->batteryStatus().value(key) : QVariant();
}

QVariant TopMonitor::batteryIsEnable() const
{
    return batteryValue(QStringLiteral("BatteryEnabled"));
}

QVariant TopMonitor::batteryRemain() const
{
    return batteryValue(QStringLiteral("BatteryRemainPercent"));
}

QVariant TopMonitor::batteryIsFull() const
{
    return batteryValue(QStringLiteral("FullyCharged"));
}

QVariant TopMonitor::batteryIsConnected() const
{
    return batteryValue(QStringLiteral("IsConnected"));
}

QVariant TopMonitor::CPUTemparatures() const
{
    if (!m_sources.temperatures)
        return {};
    const auto temperatures = m_sources.temperatures->SMCGetTemperatures(m_settings.fahrenheit);
    return temperatures ? QVariant(*temperatures) : QVariant();
}

QVariant TopMonitor::fanMoves() const
{
    if (!m_sources.fans)
        return {};
    QVariantList speeds;
    const QVariantMap fanMove = m_sources.fans->SMCGetFanMove().value_or(QVariantMap());
    for (const QVariant &fan : fanMove.value(QStringLiteral("DataArray")).toList())
        speeds.append(fan.toMap().value(QStringLiteral("ActualSpeed")));
    return speeds;
}

QVariantList TopMonitor::temperatureKeys() const
{
    return m_sources.temperatures ? m_sources.temperatures->temperatureKeys() : QVariantList();
}

QVariantList TopMonitor::fanKeys() const
{
    return m_sources.fans ? m_sources.fans->fanKeys() : QVariantList();
}

QString TopMonitor::temperatureKeyForNumber(int number) const
{
    const QVariantMap sensor = temperatureKeys().value(number).toMap();
    return sensor.value(QStringLiteral("Key")).toString();
}

QString TopMonitor::localizedTemperatureKeyForNumber(int number) const
{
    return localizedString(temperatureKeyForNumber(number), QStringLiteral("Temperature"), {});
}

const QVariantMap &TopMonitor::processPathDict() const
{
    return m_paths->processPathDict();
}

QString TopMonitor::pathForPID(const QString &pid) const
{
    return dataForPID(pid, QStringLiteral("path")).toString();
}

QString TopMonitor::iconForPID(const QString &pid) const
{
    return dataForPID(pid, QStringLiteral("icon")).toString();
}

QVariant TopMonitor::dataForPID(const QString &pid, const QString &type) const
{
    return m_paths->dataForPID(pid, type);
}

void TopMonitor::checkPathForPID(const QString &pid)
{
    m_paths->checkPathForPID(pid);
}

void TopMonitor::readProcessPath(const QByteArray &report)
{
    m_paths->readProcessPath(report);
}

} // namespace pulsebar
