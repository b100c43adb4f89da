#include "engine/TopMonitor.h"
#include "support/FakeSources.h"
#include "support/LogCapture.h"
#include "support/QtPrinting.h"
#include "support/SamplerScript.h"
#include "support/WaitFor.h"
#include "util/Values.h"

namespace pulsebar {
namespace {

const QByteArray Report = "CPU usage: 3.52% user, 7.14% sys, 89.33% idle\n"
                          "PhysMem: 8167M used (1536M wired), 24M unused.\n"
                          "PID COMMAND %CPU TIME #TH USER SENT RECV BSD MACH POWER\n"
                          "123 Safari 12.5 01:23.45 20/1 user501 1234 567 8910 1112 3.2\n"
                          "456 Google Chrome H 0.0 00:00.10 5 user501 10 5 100 50 0.5\n";

QVariantMap observeEntry(int type)
{
    return {{QStringLiteral("type"), type}};
}

/// A monitor whose sampler is never found, for what needs none.
class TopMonitorTest : public ::testing::Test
{
protected:
    fakes::CoreTicksAnswer m_cores;
    fakes::InterfacesAnswer m_interfaces;
    fakes::BatteryAnswer m_battery;
    fakes::TemperaturesAnswer m_temperatures;
    fakes::FansAnswer m_fans;
    fakes::IconsAnswer m_icons;
    MonitorSources m_sources{&m_cores,   &m_interfaces,   nullptr, &m_icons,
                             &m_battery, &m_temperatures, &m_fans};
    TopMonitor m_monitor{m_sources, {}, 2, 1};
};

TEST_F(TopMonitorTest, StartsWithItsInitialSettings)
{
    const TopMonitor monitor(m_sources, {});
    EXPECT_FALSE(monitor.runTop() || monitor.monitorWithTimer() || monitor.monitorProcessUsage() ||
                 monitor.checkMemory() || monitor.sortByMemory() || monitor.fahrenheit());
    EXPECT_TRUE(monitor.autoEnableMonitor() && monitor.monitorCPU() && monitor.monitorNetwork() &&
                monitor.monitorBattery() && monitor.monitorTemperature() &&
                monitor.monitorFanMove());
    EXPECT_EQ(monitor.listMax(), 10);
    EXPECT_EQ(monitor.refreshSec(), 2);
    EXPECT_TRUE(monitor.topDict().isEmpty());
    EXPECT_TRUE(monitor.observeArray().isEmpty());
    EXPECT_FALSE(monitor.topTaskExists());
}

TEST_F(TopMonitorTest, APreparedMonitorHasEveryCollectorOff)
{
    const auto monitor = TopMonitor::prepareMonitor(m_sources, {});
    EXPECT_EQ(monitor->listMax(), 10);
    EXPECT_EQ(monitor->refreshSec(), 3);
    EXPECT_FALSE(monitor->monitorCPU() || monitor->monitorNetwork() || monitor->monitorBattery() ||
                 monitor->monitorTemperature() || monitor->monitorFanMove());
}

TEST_F(TopMonitorTest, SettingsAreReachedByTheirKeys)
{
    for (const char *key :
         {"runTop", "monitorWithTimer", "autoEnableMonitor", "monitorCPU", "monitorNetwork",
          "monitorBattery", "monitorProcessUsage", "monitorTemperature", "monitorFanMove",
          "checkMemory", "sortByMemory", "fahrenheit"}) {
        const bool before = m_monitor.property(key).toBool();
        EXPECT_TRUE(m_monitor.setProperty(key, !before)) << key;
        EXPECT_EQ(m_monitor.property(key), QVariant(!before)) << key;
    }
    EXPECT_TRUE(m_monitor.setProperty("listMax", 7));
    EXPECT_TRUE(m_monitor.setProperty("refreshSec", 5));
    EXPECT_EQ(m_monitor.property("listMax"), QVariant(7));
    EXPECT_EQ(m_monitor.property("refreshSec"), QVariant(5));
}

TEST_F(TopMonitorTest, TheArgumentsOfTheSampler)
{
    const QString columns =
        QStringLiteral("pid,command,cpu,time,threads,user,msgsent,msgrecv,sysbsd,sysmach,power");
    EXPECT_EQ(TopMonitor(m_sources, {}).topArguments().join(u' '),
              QStringLiteral("-l 0 -u -n 10 -s 2 -R -stats ") + columns);
    m_monitor.setCheckMemory(true);
    EXPECT_EQ(m_monitor.topArguments().join(u' '), QStringLiteral("-l 0 -u -n 2 -s 1 -stats ") +
                                                       columns +
                                                       QStringLiteral(",pageins,rsize,vsize"));
    m_monitor.setSortByMemory(true);
    m_monitor.setCheckMemory(false);
    EXPECT_EQ(m_monitor.topArguments().join(u' '),
              QStringLiteral("-l 0 -u -n 2 -s 1 -o rsize -R -stats ") + columns);
}

TEST_F(TopMonitorTest, ADamagedIntervalIsAskedOfTheSamplerAsOneSecond)
{
    for (const int seconds : {0, -7}) {
        m_monitor.setRefreshSec(seconds);
        EXPECT_EQ(m_monitor.refreshSec(), seconds);
        EXPECT_EQ(m_monitor.topArguments().mid(5, 2),
                  (QStringList{QStringLiteral("-s"), QStringLiteral("1")}));
    }
}

TEST_F(TopMonitorTest, SettersStartNothingWhileTheSamplerIsOff)
{
    m_monitor.setListMax(5);
    m_monitor.setRefreshSec(4);
    m_monitor.setCheckMemory(true);
    m_monitor.setSortByMemory(true);
    EXPECT_EQ(m_monitor.listMax(), 5);
    EXPECT_FALSE(m_monitor.topTaskExists());
    EXPECT_FALSE(m_monitor.runTop());
}

TEST_F(TopMonitorTest, RunTopStartsAndStopsTheSampler)
{
    m_monitor.setRunTop(true);
    EXPECT_TRUE(m_monitor.topTaskExists());
    m_monitor.stopMonitoringTop();
    EXPECT_FALSE(m_monitor.topTaskExists());
    EXPECT_TRUE(m_monitor.runTop());
    m_monitor.startMonitoringTop();
    m_monitor.setRunTop(false);
    EXPECT_FALSE(m_monitor.topTaskExists());
    EXPECT_FALSE(m_monitor.runTop());
}

TEST_F(TopMonitorTest, ProcessUsageStartsAndStopsTheSamplerWhoeverStartedIt)
{
    m_monitor.setMonitorProcessUsage(true);
    EXPECT_TRUE(m_monitor.runTop() && m_monitor.topTaskExists());
    m_monitor.setMonitorProcessUsage(false);
    EXPECT_FALSE(m_monitor.runTop() || m_monitor.topTaskExists());
    m_monitor.startMonitoringTop();
    m_monitor.setMonitorProcessUsage(false);
    EXPECT_FALSE(m_monitor.runTop() || m_monitor.topTaskExists());
}

TEST_F(TopMonitorTest, AFanObservationAloneSwitchesTheRestOff)
{
    m_monitor.setMonitorProcessUsage(true);
    m_monitor.setObserveArray({observeEntry(18)});
    EXPECT_FALSE(m_monitor.monitorCPU() || m_monitor.monitorNetwork() ||
                 m_monitor.monitorBattery() || m_monitor.monitorProcessUsage());
    EXPECT_TRUE(m_monitor.monitorTemperature() && m_monitor.monitorFanMove());
    EXPECT_FALSE(m_monitor.topTaskExists() || m_monitor.runTop());
}

TEST_F(TopMonitorTest, ObservationsSwitchTheirCollectorsOn)
{
    m_monitor.setMonitorTemperature(false);
    m_monitor.setObserveArray({observeEntry(10), observeEntry(11), observeEntry(12),
                               observeEntry(15), observeEntry(17), observeEntry(99)});
    EXPECT_TRUE(m_monitor.monitorCPU() && m_monitor.monitorNetwork() &&
                m_monitor.monitorBattery() && m_monitor.monitorProcessUsage() &&
                m_monitor.monitorTemperature());
    EXPECT_TRUE(m_monitor.runTop() && m_monitor.topTaskExists());
}

TEST_F(TopMonitorTest, ObservationsLeaveTheFlagsAloneWhereThatIsWanted)
{
    m_monitor.setAutoEnableMonitor(false);
    m_monitor.setObserveArray({observeEntry(18)});
    EXPECT_TRUE(m_monitor.monitorCPU());
    EXPECT_EQ(m_monitor.observeArray(), (QVariantList{observeEntry(18)}));
}

TEST_F(TopMonitorTest, TheTimerRunsOnlyWithoutTheSamplerAndWithACollector)
{
    EXPECT_FALSE(m_monitor.needToRunTimer());
    m_monitor.setMonitorWithTimer(true);
    EXPECT_TRUE(m_monitor.needToRunTimer() && m_monitor.timerExists());

    m_monitor.setMonitorNetwork(false);
    m_monitor.setMonitorBattery(false);
    m_monitor.setMonitorTemperature(false);
    m_monitor.setMonitorFanMove(false);
    EXPECT_TRUE(m_monitor.timerExists());
    m_monitor.setMonitorCPU(false);
    EXPECT_FALSE(m_monitor.needToRunTimer() || m_monitor.timerExists());
    m_monitor.setMonitorFanMove(true);
    EXPECT_TRUE(m_monitor.timerExists());

    m_monitor.setMonitorWithTimer(false);
    EXPECT_FALSE(m_monitor.timerExists());
}

TEST_F(TopMonitorTest, TheTimerGoesWhenItIsAdjustedWhileTheSamplerRuns)
{
    m_monitor.setMonitorWithTimer(true);
    m_monitor.setRunTop(true);
    EXPECT_FALSE(m_monitor.needToRunTimer());
    m_monitor.adjustTimer();
    EXPECT_FALSE(m_monitor.timerExists());
    m_monitor.startTimer();
    EXPECT_FALSE(m_monitor.timerExists());
    m_monitor.setRunTop(false);
    m_monitor.setRefreshSec(0); // a damaged interval makes no busy timer
    EXPECT_TRUE(m_monitor.timerExists());
}

TEST_F(TopMonitorTest, AReportBecomesASampleThatIsPublishedOnceAsAWhole)
{
    int published = 0;
    QObject::connect(&m_monitor, &TopMonitor::topDictChanged, &m_monitor, [&] { ++published; });
    m_monitor.loadTopInfo(Report);
    EXPECT_EQ(published, 1);
    const QVariantMap first = m_monitor.topDict();
    EXPECT_EQ(first.value(QStringLiteral("topResult")), QVariant(QString::fromUtf8(Report)));
    EXPECT_EQ(first.value(QStringLiteral("CPUUserUsage")), QVariant(QStringLiteral("3.52")));
    EXPECT_EQ(first.value(QStringLiteral("CPUSysUsage")), QVariant(QStringLiteral("7.14")));
    EXPECT_EQ(first.value(QStringLiteral("CPUIdle")), QVariant(QStringLiteral("89.33")));
    EXPECT_EQ(first.value(QStringLiteral("CPUTotalUsage")), QVariant(QStringLiteral("10.669998")));
    EXPECT_EQ(first.value(QStringLiteral("MemoryStats")).toMap().size(), 3);
    EXPECT_EQ(first.value(QStringLiteral("ProcessList")).toList().size(), 2);
    m_monitor.loadTopInfo({});
    EXPECT_EQ(published, 2);
    EXPECT_TRUE(m_monitor.topDict().value(QStringLiteral("ProcessList")).toList().isEmpty());
    EXPECT_EQ(first.value(QStringLiteral("ProcessList")).toList().size(), 2); // its holder keeps it
}

TEST_F(TopMonitorTest, EnergyIsSummedAndRecorded)
{
    m_monitor.loadTopInfo(Report);
    const QVariantMap sample = m_monitor.topDict();
    EXPECT_EQ(sample.value(QStringLiteral("EnergyConsumption")), QVariant(3.7F));
    EXPECT_EQ(sample.value(QStringLiteral("EnergyConsumption")).typeId(), QMetaType::Float);
    EXPECT_EQ(sample.value(QStringLiteral("EnergyUsageDict")).toMap().size(), 2);
    EXPECT_EQ(floatValueForKeyPath(sample, u"EnergyConsumptionMinuteStats.AverageValue"), 3.7F);
    m_monitor.loadTopInfo(Report);
    EXPECT_EQ(floatValueForKeyPath(m_monitor, u"topDict.EnergyConsumptionMinuteStats.LastValue"),
              3.7F);
}

TEST_F(TopMonitorTest, WithoutAnEnergyColumnThereAreNoEnergyKeys)
{
    m_monitor.loadTopInfo("%CPU\n1 a 1.0 t 2 u N/A N/A N/A N/A N/A\n");
    for (const QString &key : m_monitor.topDict().keys())
        EXPECT_FALSE(key.startsWith(QStringLiteral("Energy"))) << key.toStdString();
}

TEST_F(TopMonitorTest, AnEmptyReadIsASampleOfTheCollectorsAlone)
{
    m_monitor.loadTopInfo({});
    const QVariantMap sample = m_monitor.topDict();
    EXPECT_EQ(sample.value(QStringLiteral("topResult")), QVariant(QString()));
    EXPECT_EQ(sample.value(QStringLiteral("MemoryStats")), QVariant(QVariantMap()));
    EXPECT_EQ(sample.value(QStringLiteral("CPUTotalUsage")),
              QVariant(QStringLiteral("100.000000")));
    EXPECT_EQ(sample.value(QStringLiteral("ProcessList")), QVariant(QVariantList()));
    EXPECT_TRUE(sample.contains(QStringLiteral("BatteryStats")));
}

TEST_F(TopMonitorTest, TextThatIsNotUtf8LeavesTheResultOut)
{
    m_monitor.loadTopInfo(Report + '\xff');
    EXPECT_FALSE(m_monitor.topDict().contains(QStringLiteral("topResult")));
    EXPECT_EQ(m_monitor.topDict().value(QStringLiteral("ProcessList")), QVariant(QVariantList()));
}

TEST_F(TopMonitorTest, ProcessesAreRecordedOnlyWhereTheirUsageIsWanted)
{
    const QString key = QStringLiteral("CPUUsage__123//Safari");
    m_monitor.loadTopInfo(Report);
    EXPECT_FALSE(m_monitor.cacheDataForKey(key));
    m_monitor.setMonitorProcessUsage(true);
    m_monitor.loadTopInfo(Report);
    EXPECT_EQ(m_monitor.cacheDataForKey(key), (UsageCache{0.125F}));
    EXPECT_TRUE(m_monitor.usageInfoDictForKey(QStringLiteral("Google Chrome H")));
}

TEST_F(TopMonitorTest, AnObservedProcessFiresBeforeTheSampleIsPublished)
{
    m_monitor.setAutoEnableMonitor(false);
    m_monitor.setMonitorProcessUsage(true);
    const QVariantMap entry{{QStringLiteral("type"), 15},
                            {QStringLiteral("threshold"), 10},
                            {QStringLiteral("processName"), QStringLiteral("Safari")},
                            {QStringLiteral("note"), QStringLiteral("mine")}};
    m_monitor.setObserveArray({entry});
    QStringList story;
    QObject::connect(&m_monitor, &TopMonitor::hardwareEvent, &m_monitor,
                     [&](const QVariantMap &fired) {
                         EXPECT_EQ(fired, entry);
                         story << QStringLiteral("event");
                     });
    QObject::connect(&m_monitor, &TopMonitor::topDictChanged, &m_monitor,
                     [&] { story << QStringLiteral("sample"); });
    m_monitor.loadTopInfo(Report);
    m_monitor.loadTopInfo(Report);
    EXPECT_EQ(story, (QStringList{QStringLiteral("event"), QStringLiteral("sample"),
                                  QStringLiteral("sample")}));
}

TEST_F(TopMonitorTest, AccessorsAnswerFromTheNewestSample)
{
    EXPECT_FALSE(m_monitor.CPUTotalUsage().isValid());
    EXPECT_FALSE(m_monitor.networkIn().isValid());
    EXPECT_FALSE(m_monitor.processes().isValid());
    m_cores.answer = {fakes::core(0, 10, 100)};
    m_interfaces.answer = {fakes::ethernet(100, 100)};
    m_monitor.loadTopInfo(Report);
    m_cores.answer = {fakes::core(0, 60, 200)};
    m_interfaces.answer = {fakes::ethernet(400, 200)};
    m_monitor.loadTopInfo(Report);
    EXPECT_EQ(m_monitor.CPUTotalUsage(), QVariant(0.5));
    EXPECT_EQ(m_monitor.networkIn(), QVariant::fromValue<quint64>(300));
    EXPECT_EQ(m_monitor.networkOut(), QVariant::fromValue<quint64>(100));
    EXPECT_EQ(m_monitor.processes().toList().size(), 2);
    EXPECT_EQ(valueForKeyPath(m_monitor, u"topDict.NetStatistics.InBytes"), m_monitor.networkIn());
    EXPECT_FALSE(valueForKeyPath(m_monitor, u"topDict.DriveStats").isValid());
    EXPECT_EQ(m_monitor.cacheDataForKey(QStringLiteral("CPUTotalUsage")), (UsageCache{0.5}));
}

TEST_F(TopMonitorTest, SensorAccessorsReadAfresh)
{
    m_battery.answer = {{QStringLiteral("BatteryEnabled"), true},
                        {QStringLiteral("BatteryRemainPercent"), 50.0F}};
    m_temperatures.answer = QVariantMap{{QStringLiteral("CPU Die"), 52.0}};
    m_fans.answer = fakes::fanMove({1200.0F, 1800.0F});
    EXPECT_EQ(m_monitor.batteryIsEnable(), QVariant(true));
    EXPECT_EQ(m_monitor.batteryRemain(), QVariant(50.0F));
    EXPECT_FALSE(m_monitor.batteryIsFull().isValid());
    EXPECT_FALSE(m_monitor.batteryIsConnected().isValid());
    EXPECT_EQ(m_battery.asked, 4);
    EXPECT_EQ(m_monitor.CPUTemparatures(), QVariant(*m_temperatures.answer));
    EXPECT_EQ(m_monitor.fanMoves().toList(), (QVariantList{1200.0F, 1800.0F}));
    m_fans.answer.reset();
    m_temperatures.answer.reset();
    EXPECT_EQ(m_monitor.fanMoves().toList(), QVariantList());
    EXPECT_FALSE(m_monitor.CPUTemparatures().isValid());
}

TEST_F(TopMonitorTest, AccessorsOfMissingSourcesAnswerNothing)
{
    const TopMonitor bare({}, {});
    EXPECT_FALSE(bare.batteryRemain().isValid());
    EXPECT_FALSE(bare.CPUTemparatures().isValid());
    EXPECT_FALSE(bare.fanMoves().isValid());
    EXPECT_EQ(bare.iconForPID(QStringLiteral("1")), QString());
}

TEST_F(TopMonitorTest, NamesTheSensorsByNumber)
{
    m_temperatures.keys = {QVariantMap{{QStringLiteral("Key"), QStringLiteral("CPU Die")}},
                           QVariantMap{{QStringLiteral("Key"), QStringLiteral("GPU")}}};
    m_fans.keys = {QVariantMap{{QStringLiteral("Key"), QStringLiteral("ActualSpeed")}}};
    EXPECT_EQ(m_monitor.temperatureKeys(), m_temperatures.keys);
    EXPECT_EQ(m_monitor.fanKeys(), m_fans.keys);
    EXPECT_EQ(m_monitor.temperatureKeyForNumber(1), QStringLiteral("GPU"));
    EXPECT_EQ(m_monitor.localizedTemperatureKeyForNumber(0), QStringLiteral("CPU Die"));
    EXPECT_EQ(m_monitor.temperatureKeyForNumber(2), QString());
    EXPECT_EQ(m_monitor.temperatureKeyForNumber(-1), QString());

    const TopMonitor bare(MonitorSources(), {});
    EXPECT_EQ(bare.temperatureKeys(), QVariantList());
    EXPECT_EQ(bare.fanKeys(), QVariantList());
    EXPECT_EQ(bare.temperatureKeyForNumber(0), QString());
}

TEST_F(TopMonitorTest, PathsAndIconsAreThereAfterTheQuery)
{
    m_icons.answers[QStringLiteral("123")] = QStringLiteral("web-browser");
    m_monitor.readProcessPath("  PID COMMAND\n  123 /opt/browser --tab\n  ");
    EXPECT_EQ(m_monitor.pathForPID(QStringLiteral("123")), QStringLiteral("/opt/browser"));
    EXPECT_EQ(m_monitor.iconForPID(QStringLiteral("123-9")), QStringLiteral("web-browser"));
    EXPECT_EQ(m_monitor.dataForPID(QStringLiteral("123"), QStringLiteral("path")),
              QStringLiteral("/opt/browser"));
    EXPECT_EQ(m_monitor.processPathDict().size(), 1);
}

TEST_F(TopMonitorTest, SeriesKeepTheLengthThatTheIntervalAsks)
{
    m_monitor.setRefreshSec(20);
    UsageCache cache;
    for (int i = 0; i < 5; ++i)
        m_monitor.calcMinuteStatsWithCache(cache, i);
    EXPECT_EQ(cache, (UsageCache{2, 3, 4}));
}

QString resultOf(const TopMonitor &monitor)
{
    return monitor.topDict().value(QStringLiteral("topResult")).toString();
}

TEST_F(TopMonitorTest, AChangedSettingRestartsTheSamplerAndKeepsTheCaches)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler arguments \"$@\""));
    TopMonitor monitor(m_sources, script.command(), 3, 2);
    m_cores.answer = {fakes::core(0, 10, 100)};
    monitor.startMonitoringTop();
    ASSERT_TRUE(
        waitFor([&] { return resultOf(monitor).startsWith(QStringLiteral("-l 0 -u -n 3 ")); }));
    m_cores.answer = {fakes::core(0, 60, 200)};
    monitor.setListMax(4);
    ASSERT_TRUE(
        waitFor([&] { return resultOf(monitor).startsWith(QStringLiteral("-l 0 -u -n 4 ")); }));
    EXPECT_EQ(monitor.cacheDataForKey(QStringLiteral("CPUTotalUsage"))->size(), 1);
    m_cores.answer = {fakes::core(0, 70, 300)};
    monitor.setRefreshSec(1);
    ASSERT_TRUE(waitFor([&] { return resultOf(monitor).contains(QStringLiteral("-s 1 -R")); }));
    EXPECT_EQ(monitor.cacheDataForKey(QStringLiteral("CPUTotalUsage"))->size(), 2);
    monitor.setSortByMemory(true);
    ASSERT_TRUE(waitFor([&] { return resultOf(monitor).contains(QStringLiteral("-o rsize")); }));
    monitor.setCheckMemory(true);
    ASSERT_TRUE(waitFor([&] { return resultOf(monitor).endsWith(QStringLiteral("vsize")); }));
}

TEST_F(TopMonitorTest, CollectorsGoOnWhenTheSamplerIsMissing)
{
    const LogCapture log;
    m_monitor.startMonitoringTop();
    m_cores.answer = {fakes::core(0, 10, 100)};
    ASSERT_TRUE(waitFor([&] { return !m_monitor.topDict().isEmpty(); }));
    m_cores.answer = {fakes::core(0, 60, 200)};
    ASSERT_TRUE(waitFor([&] { return m_monitor.CPUTotalUsage() == QVariant(0.5); }));
    EXPECT_EQ(LogCapture::lines().size(), 1);
    EXPECT_TRUE(m_monitor.topTaskExists());
    m_monitor.setRunTop(false);
    EXPECT_FALSE(m_monitor.topTaskExists());
}

TEST_F(TopMonitorTest, AMegabyteOfGarbageIsOneSample)
{
    const SamplerScript script(QStringLiteral("exec fake_sampler flood 1000000"));
    TopMonitor monitor(m_sources, script.command(), 20, 1);
    int samples = 0;
    QObject::connect(&monitor, &TopMonitor::topDictChanged, &monitor, [&] { ++samples; });
    monitor.startMonitoringTop();
    ASSERT_TRUE(waitFor([&] { return samples > 0; }));
    waitFor([] { return false; }, 30);
    EXPECT_EQ(samples, 1);
    EXPECT_FALSE(monitor.topDict().contains(QStringLiteral("topResult")));
}

} // namespace
} // namespace pulsebar
