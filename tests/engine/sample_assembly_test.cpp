#include "engine/SampleAssembly.h"
#include "support/FakeSources.h"
#include "support/QtPrinting.h"
#include "util/Values.h"

#include <cmath>

namespace pulsebar {
namespace {

using fakes::core;
using fakes::ethernet;

class SampleAssemblyTest : public ::testing::Test
{
protected:
    MonitorSources sources()
    {
        MonitorSources all;
        all.coreTicks = &m_cores;
        all.interfaces = &m_interfaces;
        all.disks = &m_disks;
        all.battery = &m_battery;
        all.temperatures = &m_temperatures;
        all.fans = &m_fans;
        return all;
    }
    QVariantMap sample()
    {
        m_previous = m_assembly.staticsDataDict(m_previous);
        return m_previous;
    }
    void observe(int type, int threshold)
    {
        m_settings.observeArray.append(
            QVariantMap{{QStringLiteral("type"), type}, {QStringLiteral("threshold"), threshold}});
    }
    /// The next interval of a core: so many of a hundred ticks in user mode.
    void load(std::initializer_list<int> percents)
    {
        std::vector<CoreTicks> ticks;
        int number = 0;
        for (const int percent : percents) {
            auto &[user, all] = m_ticks[number];
            user += static_cast<std::uint64_t>(percent);
            all += 100;
            ticks.push_back(core(number++, user, all));
        }
        m_cores.answer = ticks;
    }

    fakes::CoreTicksAnswer m_cores;
    fakes::InterfacesAnswer m_interfaces;
    fakes::DisksAnswer m_disks;
    fakes::BatteryAnswer m_battery;
    fakes::TemperaturesAnswer m_temperatures;
    fakes::FansAnswer m_fans;
    std::map<int, std::pair<std::uint64_t, std::uint64_t>> m_ticks;
    MonitorSources m_sources = sources();
    MonitorSettings m_settings;
    UsageCaches m_caches;
    QVariantList m_fired;
    HardwareEvents m_events{[this](const QVariantMap &entry) { m_fired.append(entry); }};
    SampleAssembly m_assembly{m_sources, m_settings, m_caches, m_events};
    QVariantMap m_previous;
};

TEST_F(SampleAssemblyTest, TheFirstSampleHasNoCpuAndSevenNetworkZeros)
{
    load({50});
    m_interfaces.answer = {ethernet(1000, 1000)};
    observe(10, 0);
    const QVariantMap first = sample();
    EXPECT_FALSE(first.contains(QStringLiteral("CPUUsage")));
    EXPECT_FALSE(first.contains(QStringLiteral("CPUUsageCoreAverage")));
    EXPECT_FALSE(first.contains(QStringLiteral("CPUUsageMinuteStats")));
    const QVariantMap network = first.value(QStringLiteral("NetStatistics")).toMap();
    EXPECT_EQ(network.size(), 7);
    for (const QVariant &rate : network)
        EXPECT_EQ(rate, QVariant::fromValue<quint64>(0));
    EXPECT_TRUE(m_fired.isEmpty());
}

TEST_F(SampleAssemblyTest, CoresGetTheirRecordsAndAnAverage)
{
    load({0, 0});
    sample();
    load({20, 60});
    sample();
    load({40, 80});
    const QVariantMap third = sample();
    const QVariantList cores = third.value(QStringLiteral("CPUUsage")).toList();
    ASSERT_EQ(cores.size(), 2);
    EXPECT_EQ(floatValueForKeyPath(cores[0].toMap(), u"CPUUsageMinuteStats.AverageValue"), 0.3F);
    EXPECT_EQ(floatValueForKeyPath(cores[1].toMap(), u"CPUUsageMinuteStats.LastValue"), 0.6F);
    EXPECT_EQ(cores[1].toMap().value(QStringLiteral("totalUsage")), QVariant(0.8));
    EXPECT_NEAR(third.value(QStringLiteral("CPUUsageCoreAverage")).toDouble(), 0.6, 1e-9);
    EXPECT_FLOAT_EQ(floatValueForKeyPath(third, u"CPUUsageMinuteStats.AverageValue"), 0.5F);
    EXPECT_EQ(m_caches.cpuUsage.last()->size(), 2);
}

TEST_F(SampleAssemblyTest, AMissingReadingKeepsThePreviousCpuFigures)
{
    load({0});
    sample();
    load({50});
    const QVariantMap second = sample();
    m_cores.answer.reset();
    const QVariantMap third = sample();
    for (const QString &key : {QStringLiteral("CPUUsage"), QStringLiteral("CPUUsageCoreAverage"),
                               QStringLiteral("CPUUsageMinuteStats")}) {
        EXPECT_TRUE(third.value(key).isValid());
        EXPECT_EQ(third.value(key), second.value(key));
    }
    EXPECT_EQ(m_caches.cpuUsage.last()->size(), 1);
}

TEST_F(SampleAssemblyTest, WithoutPreviousFiguresNoneAreKept)
{
    m_previous = {{QStringLiteral("topResult"), QString()}};
    EXPECT_FALSE(sample().contains(QStringLiteral("CPUUsage")));
}

TEST_F(SampleAssemblyTest, ACpuEventFiresWhenTheMinuteAverageCrosses)
{
    observe(10, 50);
    for (const int percent : {0, 45, 50, 55, 90})
        load({percent}), sample();
    // Averages from the second sample on: .45, .475, .5, .6
    ASSERT_EQ(m_fired.size(), 1);
    EXPECT_EQ(m_fired[0], m_settings.observeArray[0]);
}

TEST_F(SampleAssemblyTest, WithoutCoresNoCpuEventIsCheckedAndNothingForgotten)
{
    const QVariantMap falling{{QStringLiteral("type"), 10},
                              {QStringLiteral("observeType"), 1},
                              {QStringLiteral("threshold"), 46}};
    m_settings.observeArray = {falling};
    load({0});
    sample();
    load({90});
    sample();
    m_cores.answer.reset();
    m_previous.clear(); // so that there is no load to be copied
    sample();
    EXPECT_TRUE(m_fired.isEmpty());
    load({0});
    sample();
    // The mean of 0.9 and 0, which crosses only because 0.9 is remembered.
    EXPECT_EQ(m_fired, QVariantList{falling});
}

TEST_F(SampleAssemblyTest, AnIntervalWithoutTicksPassesThrough)
{
    load({10});
    sample();
    const QVariantMap second = sample();
    EXPECT_TRUE(std::isnan(second.value(QStringLiteral("CPUUsageCoreAverage")).toDouble()));
}

TEST_F(SampleAssemblyTest, SilenceBeforeTheFirstTrafficDoesNotEnterTheCaches)
{
    const QString in = QStringLiteral("NetworkInMinuteStats");
    m_interfaces.answer = {ethernet(0, 0)};
    sample();
    EXPECT_FALSE(sample().contains(in));
    m_interfaces.answer = {ethernet(600, 0)};
    m_settings.refreshSec = 2;
    const QVariantMap busy = sample();
    EXPECT_EQ(floatValueForKeyPath(busy, u"NetworkInMinuteStats.CurrentValue"), 300.0F);
    EXPECT_EQ(floatValueForKeyPath(busy, u"NetworkOutMinuteStats.CurrentValue"), 0.0F);
    EXPECT_TRUE(sample().contains(in)); // silence after traffic counts
    EXPECT_EQ(m_caches.networkIn.size(), 2);
    EXPECT_EQ(m_caches.networkOut.size(), 2);
}

TEST_F(SampleAssemblyTest, AnUnansweredNetworkReadingIsNoSample)
{
    m_interfaces.answer = {ethernet(0, 0)};
    sample();
    m_interfaces.answer = {ethernet(600, 600)};
    sample();
    m_settings.observeArray = {QVariantMap{{QStringLiteral("type"), 11},
                                           {QStringLiteral("observeType"), 1},
                                           {QStringLiteral("threshold"), 10}}};
    m_interfaces.answer.reset();
    const QVariantMap missing = sample();
    EXPECT_EQ(missing.value(QStringLiteral("NetStatistics")), QVariant(QVariantMap()));
    EXPECT_FALSE(missing.contains(QStringLiteral("NetworkInMinuteStats")));
    EXPECT_EQ(m_caches.networkIn.size(), 1);
    EXPECT_TRUE(m_fired.isEmpty());
}

TEST_F(SampleAssemblyTest, DisksAreThereWhateverIsSwitchedOff)
{
    DiskCounters disk;
    disk.readBytes = 5;
    m_disks.answer = {disk};
    m_interfaces.answer = {ethernet(1, 1)};
    m_settings.monitorNetwork = false;
    m_settings.monitorCPU = false;
    m_settings.monitorBattery = false;
    m_settings.monitorTemperature = false;
    m_settings.monitorFanMove = false;
    EXPECT_EQ(sample().keys(),
              (QStringList{QStringLiteral("DiskStatistics"), QStringLiteral("diskReadBytesPerSec"),
                           QStringLiteral("diskWriteBytesPerSec")}));
}

TEST_F(SampleAssemblyTest, SourcesThatDoNotAnswerLeaveTheirKeysOut)
{
    m_settings.monitorBattery = false;
    EXPECT_EQ(sample().keys(), (QStringList{QStringLiteral("NetStatistics")}));
}

TEST_F(SampleAssemblyTest, MissingSourcesLeaveTheirKeysOut)
{
    const MonitorSources none;
    SampleAssembly assembly(none, m_settings, m_caches, m_events);
    EXPECT_TRUE(assembly.staticsDataDict({}).isEmpty());
    EXPECT_TRUE(assembly.staticsDataDict({{QStringLiteral("x"), 1}}).isEmpty());
}

TEST_F(SampleAssemblyTest, SensorsGetTheirRecordsAndEvents)
{
    m_settings.fahrenheit = true;
    m_settings.observeArray = {
        QVariantMap{{QStringLiteral("type"), 17},
                    {QStringLiteral("threshold"), 60},
                    {QStringLiteral("temperaturePart"), QStringLiteral("CPU Die")}},
        QVariantMap{{QStringLiteral("type"), 18}, {QStringLiteral("threshold"), 1500}}};
    m_temperatures.answer = QVariantMap{{QStringLiteral("CPU Die"), 50.0}};
    m_fans.answer = fakes::fanMove({1000.0F, 1200.0F});
    sample();
    EXPECT_TRUE(m_fired.isEmpty());
    m_temperatures.answer = QVariantMap{{QStringLiteral("CPU Die"), 70.0}};
    m_fans.answer = fakes::fanMove({1200.0F, 1800.0F});
    const QVariantMap second = sample();

    EXPECT_TRUE(m_temperatures.fahrenheit);
    EXPECT_EQ(second.value(QStringLiteral("CPUTemparatures")), QVariant(*m_temperatures.answer));
    EXPECT_EQ(second.value(QStringLiteral("FanMove")), QVariant(*m_fans.answer));
    EXPECT_EQ(floatValue(second.value(QStringLiteral("CPUTemparaturesMinutesStats"))
                             .toMap()
                             .value(QStringLiteral("CPU Die"))
                             .toMap()
                             .value(QStringLiteral("AverageValue"))),
              60.0F);
    const QVariantList fans = second.value(QStringLiteral("FanMoveMinutesStats")).toList();
    ASSERT_EQ(fans.size(), 3);
    EXPECT_EQ(fans[2].toMap().value(QStringLiteral("CurrentValue")), QVariant(1500.0F));
    EXPECT_EQ(m_fired, m_settings.observeArray);
}

TEST_F(SampleAssemblyTest, FansThatComeAndGoKeepTheAverageLast)
{
    observe(18, 500);
    m_fans.answer = fakes::fanMove({1000.0F});
    sample();
    m_fans.answer = fakes::fanMove({1000.0F, 2000.0F, 3000.0F});
    EXPECT_EQ(sample().value(QStringLiteral("FanMoveMinutesStats")).toList().size(), 4);
    EXPECT_EQ(m_caches.fanMove.back(), (UsageCache{1000.0F, 2000.0F}));
    m_fans.answer = fakes::fanMove({3000.0F});
    EXPECT_EQ(sample().value(QStringLiteral("FanMoveMinutesStats")).toList().size(), 2);
    EXPECT_EQ(m_caches.fanMove.back(), (UsageCache{1000.0F, 2000.0F, 3000.0F}));
    m_fans.answer = QVariantMap{{QStringLiteral("DataArray"), QVariantList()},
                                {QStringLiteral("AverageSpeed"), std::nanf("")}};
    const QVariantList records = sample().value(QStringLiteral("FanMoveMinutesStats")).toList();
    ASSERT_EQ(records.size(), 1);
    const QVariant average = records[0].toMap().value(QStringLiteral("CurrentValue"));
    EXPECT_TRUE(std::isnan(average.toFloat()));
    EXPECT_TRUE(m_fired.isEmpty()); // 500 was never reached from below
}

TEST_F(SampleAssemblyTest, ASensorThatWasAwayGoesOnWhereItStopped)
{
    m_settings.observeArray = {
        QVariantMap{{QStringLiteral("type"), 17},
                    {QStringLiteral("threshold"), 60},
                    {QStringLiteral("temperaturePart"), QStringLiteral("Disk")}}};
    m_temperatures.answer = QVariantMap{{QStringLiteral("Disk"), 50.0}};
    sample();
    m_temperatures.answer = QVariantMap();
    const QVariantMap without = sample();
    EXPECT_EQ(without.value(QStringLiteral("CPUTemparaturesMinutesStats")),
              QVariant(QVariantMap()));
    EXPECT_TRUE(m_fired.isEmpty());
    m_temperatures.answer = QVariantMap{{QStringLiteral("Disk"), 60.0}};
    const QVariantMap back = sample();
    EXPECT_EQ(back.value(QStringLiteral("CPUTemparaturesMinutesStats"))
                  .toMap()
                  .value(QStringLiteral("Disk"))
                  .toMap()
                  .value(QStringLiteral("LastValue")),
              QVariant(50.0));
    EXPECT_EQ(m_fired, m_settings.observeArray);
}

TEST_F(SampleAssemblyTest, BatteryIsReadOncePerSampleAndOnlyWhenSwitchedOn)
{
    m_battery.answer = {{QStringLiteral("BatteryRemainPercent"), 42.0F}};
    EXPECT_EQ(sample().value(QStringLiteral("BatteryStats")), QVariant(m_battery.answer));
    EXPECT_EQ(m_battery.asked, 1);
    m_settings.monitorBattery = false;
    EXPECT_FALSE(sample().contains(QStringLiteral("BatteryStats")));
    EXPECT_EQ(m_battery.asked, 1);
}

TEST_F(SampleAssemblyTest, ADamagedIntervalDividesByOne)
{
    for (const int seconds : {0, -5}) {
        m_settings.refreshSec = seconds;
        m_interfaces.answer = {ethernet(1000, 0)};
        sample();
        m_interfaces.answer = {ethernet(1500, 0)};
        EXPECT_EQ(floatValueForKeyPath(sample(), u"NetStatistics.InBytes"), 500.0F);
    }
}

TEST_F(SampleAssemblyTest, AnObserverMayReplaceTheEntries)
{
    observe(10, 10);
    observe(10, 20);
    const QVariantList before = m_settings.observeArray;
    QVariantList heard;
    HardwareEvents events([&](const QVariantMap &entry) {
        heard.append(entry);
        m_settings.observeArray.clear();
    });
    SampleAssembly assembly(m_sources, m_settings, m_caches, events);
    load({0});
    assembly.staticsDataDict({});
    load({90});
    assembly.staticsDataDict({});
    EXPECT_EQ(heard, before);
}

} // namespace
} // namespace pulsebar
