#pragma once

#include "engine/MonitorSettings.h"
#include "engine/MonitorSources.h"
#include "engine/UsageCache.h"

#include <QObject>
#include <QVariantMap>

#include <memory>
#include <optional>

class QTimer;

namespace pulsebar {

class AppUsage;
class HardwareEvents;
class ProcessPaths;
class SampleAssembly;
class SamplerProcess;
struct UsageCaches;

/// The sampling engine. Runs the sampler as a long-lived child; every completed read of its output
/// becomes one statistics dictionary, published whole as topDict.
///
/// Settings are properties: each setter stores its value first and then follows its own rule
/// (restart the sampler, start or stop the timer). Everything runs on the thread of the monitor.
class TopMonitor : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool runTop READ runTop WRITE setRunTop)
    Q_PROPERTY(bool monitorWithTimer READ monitorWithTimer WRITE setMonitorWithTimer)
    Q_PROPERTY(bool autoEnableMonitor READ autoEnableMonitor WRITE setAutoEnableMonitor)
    Q_PROPERTY(bool monitorCPU READ monitorCPU WRITE setMonitorCPU)
    Q_PROPERTY(bool monitorNetwork READ monitorNetwork WRITE setMonitorNetwork)
    Q_PROPERTY(bool monitorBattery READ monitorBattery WRITE setMonitorBattery)
    Q_PROPERTY(bool monitorProcessUsage READ monitorProcessUsage WRITE setMonitorProcessUsage)
    Q_PROPERTY(bool monitorTemperature READ monitorTemperature WRITE setMonitorTemperature)
    Q_PROPERTY(bool monitorFanMove READ monitorFanMove WRITE setMonitorFanMove)
    Q_PROPERTY(bool checkMemory READ checkMemory WRITE setCheckMemory)
    Q_PROPERTY(bool sortByMemory READ sortByMemory WRITE setSortByMemory)
    Q_PROPERTY(int listMax READ listMax WRITE setListMax)
    Q_PROPERTY(int refreshSec READ refreshSec WRITE setRefreshSec)
    Q_PROPERTY(bool fahrenheit READ fahrenheit WRITE setFahrenheit)
    Q_PROPERTY(QVariantMap topDict READ topDict NOTIFY topDictChanged)
    Q_PROPERTY(QVariantList observeArray READ observeArray WRITE setObserveArray)
    // Answers of the accessors, so that they can be reached by key path too.
    Q_PROPERTY(QVariant CPUTotalUsage READ CPUTotalUsage)
    Q_PROPERTY(QVariant networkIn READ networkIn)
    Q_PROPERTY(QVariant networkOut READ networkOut)
    Q_PROPERTY(QVariant processes READ processes)
    Q_PROPERTY(QVariant batteryRemain READ batteryRemain)
    Q_PROPERTY(QVariant CPUTemparatures READ CPUTemparatures)
    Q_PROPERTY(QVariant fanMoves READ fanMoves)

public:
    /// @param listMax rows of the process list
    /// @param refreshSec seconds between two samples, meant to lie in 1..60; see MonitorSettings
    TopMonitor(const MonitorSources &sources, SamplerCommand sampler, int listMax = 10,
               int refreshSec = 2, QObject *parent = nullptr);
    ~TopMonitor() override;

    /// A new monitor (listMax 10, refreshSec 3) with every collector switched off.
    static std::unique_ptr<TopMonitor> prepareMonitor(const MonitorSources &sources,
                                                      SamplerCommand sampler);

    bool runTop() const { return m_settings.runTop; }
    bool monitorWithTimer() const { return m_settings.monitorWithTimer; }
    bool autoEnableMonitor() const { return m_settings.autoEnableMonitor; }
    bool monitorCPU() const { return m_settings.monitorCPU; }
    bool monitorNetwork() const { return m_settings.monitorNetwork; }
    bool monitorBattery() const { return m_settings.monitorBattery; }
    bool monitorProcessUsage() const { return m_settings.monitorProcessUsage; }
    bool monitorTemperature() const { return m_settings.monitorTemperature; }
    bool monitorFanMove() const { return m_settings.monitorFanMove; }
    bool checkMemory() const { return m_settings.checkMemory; }
    bool sortByMemory() const { return m_settings.sortByMemory; }
    int listMax() const { return m_settings.listMax; }
    int refreshSec() const { return m_settings.refreshSec; }
    bool fahrenheit() const { return m_settings.fahrenheit; }
    const QVariantMap &topDict() const { return m_topDict; }
    const QVariantList &observeArray() const { return m_settings.observeArray; }

    /// On without a sampler: starts it. Off with a sampler: stops it.
    void setRunTop(bool on);
    void setMonitorWithTimer(bool on);
    void setAutoEnableMonitor(bool on) { m_settings.autoEnableMonitor = on; }
    void setMonitorCPU(bool on);
    void setMonitorNetwork(bool on);
    void setMonitorBattery(bool on);
    /// Process usage needs the sampler: it is started and stopped with it.
    void setMonitorProcessUsage(bool on);
    void setMonitorTemperature(bool on);
    void setMonitorFanMove(bool on);
    /// These four change the sampler's command line and restart it while runTop is set.
    void setCheckMemory(bool on);
    void setSortByMemory(bool on);
    void setListMax(int rows);
    void setRefreshSec(int seconds);
    void setFahrenheit(bool on) { m_settings.fahrenheit = on; }
    /// Entries as HardwareEvents.h describes them. With autoEnableMonitor the monitor flags follow
    /// from the entries.
    void setObserveArray(const QVariantList &entries);

    /// Starts the sampler with the present settings, after stopping the one that runs. The process
    /// is launched at the end of the current turn of the event loop, so that several changes of
    /// settings in a row start one process.
    void startMonitoringTop();
    /// Ends the sampler, if there is one; nothing that it still writes is read. Leaves runTop
    /// alone.
    void stopMonitoringTop();
    /// Whether there is a sampler: running, about to be launched, or ended on its own and replaced
    /// by empty samples.
    bool topTaskExists() const;
    /// The sampler's argument list for the present settings. A refreshSec of 0 or less is asked of
    /// it as 1: it takes no such interval, and a damaged setting is to cost nobody the process
    /// list.
    QStringList topArguments() const;

    /// The timer is a hook for work between samples: it keeps its rules and does nothing.
    bool needToRunTimer() const;
    using QObject::startTimer;
    void startTimer();
    void stopTimer();
    void adjustTimer();
    bool timerExists() const { return m_timer != nullptr; }

    /// Switches the monitor flags as the observe entries need them.
    void enableObservationFlags();

    /// Turns one completed read of the sampler's output into a sample and publishes it.
    void loadTopInfo(const QByteArray &data);
    /// A fresh dictionary of everything but the sampler's own figures; checks the observed
    /// thresholds.
    QVariantMap staticsDataDict();

    /// Appends a value to a series and answers its minute-stats record (see MinuteStats.h).
    QVariantMap calcMinuteStatsWithCache(UsageCache &cache, const QVariant &newValue) const;
    /// Updates the records of the processes from a sample's process list.
    void calcMinuteAppUsage(const QVariantList &processList);
    /// The record of a process ("usageCache", "usageInfo") by process key "PID//name" or by name.
    std::optional<QVariantMap> usageInfoDictForKey(const QString &key) const;
    /// The process key of whom that record is, empty when there is none: of several processes of a
    /// name it is the busiest.
    QString processKeyFor(const QString &key) const;
    /// The usage cache behind a graph key ("CPUTotalUsage", "CPUUsage__CPU1",
    /// "Network__NetworkInMinuteStats", "CPUUsage__123//name", ...); absent when there is none.
    std::optional<UsageCache> cacheDataForKey(const QString &graphKey) const;

    /// How many values "CPUTotalUsage" has had, those that it has lost since included. A sample for
    /// which the cores could not be read repeats the load before it and adds no value.
    quint64 CPUTotalUsageCount() const;

    /// The mean load of the cores in the newest sample, a fraction (double).
    QVariant CPUTotalUsage() const;
    /// Bytes per second in the newest sample (quint64).
    QVariant networkIn() const;
    QVariant networkOut() const;
    /// The newest sample's process list (QVariantList of QVariantMap).
    QVariant processes() const;
    /// Fresh readings; invalid where there is no collector or no such value.
    QVariant batteryIsEnable() const;
    QVariant batteryRemain() const;
    QVariant batteryIsFull() const;
    QVariant batteryIsConnected() const;
    QVariant CPUTemparatures() const;
    /// The fans' speeds (QVariantList of float), empty when they cannot be read.
    QVariant fanMoves() const;

    /// What is shown of the sensors and of each fan, in order (see Collectors.h); empty without a
    /// collector.
    QVariantList temperatureKeys() const;
    QVariantList fanKeys() const;
    /// The name of the nth of the temperatureKeys, and its text in the user's language (table
    /// "Temperature"); empty beyond the last.
    QString temperatureKeyForNumber(int number) const;
    QString localizedTemperatureKeyForNumber(int number) const;

    /// What is known about processes by their numbers as text; see ProcessPaths.h. The first lookup
    /// of a number answers nothing and starts a query in the background.
    const QVariantMap &processPathDict() const;
    /// The path of its executable or application bundle; empty when it is not known (yet).
    QString pathForPID(const QString &pid) const;
    /// A themed icon's name or an image file's path; empty when there is none (yet).
    QString iconForPID(const QString &pid) const;
    /// The record's value for "path" or "icon".
    QVariant dataForPID(const QString &pid, const QString &type) const;
    void checkPathForPID(const QString &pid);
    void readProcessPath(const QByteArray &report);

Q_SIGNALS:
    /// topDict was replaced; once per sample.
    void topDictChanged();
    /// A watched value crossed its threshold ("VUObservedHardwareEventOccured"); carries the
    /// observe entry, unchanged. Emitted while the sample is assembled, before it is published.
    void hardwareEvent(const QVariantMap &entry);

private:
    void setTopDict(QVariantMap sample);
    void restartIfRunning();
    void setFlag(bool MonitorSettings::*flag, bool on);
    QVariant batteryValue(const QString &key) const;
    void addTopReport(const QByteArray &data, QVariantMap &sample);

    MonitorSources m_sources;
    MonitorSettings m_settings;
    QVariantMap m_topDict;
    std::unique_ptr<UsageCaches> m_caches;
    std::unique_ptr<AppUsage> m_appUsage;
    std::unique_ptr<HardwareEvents> m_events;
    std::unique_ptr<SampleAssembly> m_assembly;
    std::unique_ptr<SamplerProcess> m_sampler;
    std::unique_ptr<ProcessPaths> m_paths;
    std::unique_ptr<QTimer> m_timer;
};

} // namespace pulsebar
