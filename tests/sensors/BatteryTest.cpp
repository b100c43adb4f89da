#include "sensors/Battery.h"

#include "engine/HardwareEvents.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace pulsebar {
namespace {

struct SourceAnswer : BatterySource
{
    std::optional<std::vector<BatteryInfo>> answer;
    int asked = 0;
    std::optional<std::vector<BatteryInfo>> readBatteries() override
    {
        ++asked;
        return answer;
    }
};

BatteryInfo battery(int flags, std::optional<std::int64_t> current = 2500,
                    std::optional<std::int64_t> capacity = 5000)
{
    BatteryInfo info;
    info.flags = flags;
    info.current = current;
    info.capacity = capacity;
    return info;
}

QVariantMap recordOf(const BatteryInfo &info)
{
    SourceAnswer source;
    source.answer = {info};
    return batteryStatus(source);
}

struct Flags
{
    bool enabled;
    bool connected;
    bool full;
    bool operator==(const Flags &) const = default;
};

Flags flagsOf(const QVariantMap &record)
{
    for (const char *key : {"BatteryEnabled", "IsConnected", "FullyCharged"})
        EXPECT_EQ(record.value(QLatin1String(key)).typeId(), QMetaType::Bool) << key;
    return {record.value(QStringLiteral("BatteryEnabled")).toBool(),
            record.value(QStringLiteral("IsConnected")).toBool(),
            record.value(QStringLiteral("FullyCharged")).toBool()};
}

TEST(Battery, TheFlagsSayWhatTheBatteryDoes)
{
    EXPECT_EQ(flagsOf(recordOf(battery(7))), (Flags{true, true, false}));
    EXPECT_EQ(flagsOf(recordOf(battery(5))), (Flags{true, true, true}));
    EXPECT_EQ(flagsOf(recordOf(battery(4))), (Flags{true, false, false}));
    EXPECT_EQ(flagsOf(recordOf(battery(6))), (Flags{true, false, false}));
    EXPECT_EQ(flagsOf(recordOf(battery(1))), (Flags{false, true, true}));
    EXPECT_EQ(flagsOf(recordOf(battery(3))), (Flags{false, true, false}));
    EXPECT_EQ(flagsOf(recordOf(battery(0))), (Flags{false, false, false}));
}

TEST(Battery, ThePercentageIsOfSinglePrecision)
{
    const QVariant percent = recordOf(battery(4)).value(QStringLiteral("BatteryRemainPercent"));
    EXPECT_EQ(percent.typeId(), QMetaType::Float);
    EXPECT_EQ(percent.toFloat(), 50.0F);
    EXPECT_EQ(recordOf(battery(4, 1, 3)).value(QStringLiteral("BatteryRemainPercent")).toFloat(),
              1.0F / 3.0F * 100.0F);
    // Packs that were charged beyond what they take for full say so.
    EXPECT_GT(recordOf(battery(4, 51, 50)).value(QStringLiteral("BatteryRemainPercent")).toFloat(),
              100.0F);
}

TEST(Battery, APercentageOfNothingIsStoredAsItIs)
{
    const auto percent = [](const BatteryInfo &info) {
        return recordOf(info).value(QStringLiteral("BatteryRemainPercent")).toFloat();
    };
    EXPECT_EQ(percent(battery(4, 10, 0)), std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(percent(battery(4, 0, 0))));
    EXPECT_TRUE(std::isnan(percent(battery(4, std::nullopt, std::nullopt))));
    EXPECT_EQ(percent(battery(4, std::nullopt, 10)), 0.0F);
}

TEST(Battery, WhatIsToldIsCopied)
{
    BatteryInfo info = battery(4);
    info.cycleCount = 312;
    info.voltage = 11'874;
    info.amperage = -1'520;
    const QVariantMap record = recordOf(info);
    EXPECT_EQ(record.value(QStringLiteral("BatteryCycleCount")), QVariant(qlonglong(312)));
    EXPECT_EQ(record.value(QStringLiteral("BatteryVoltage")), QVariant(qlonglong(11'874)));
    EXPECT_EQ(record.value(QStringLiteral("BatteryAmperage")), QVariant(qlonglong(-1'520)));
    EXPECT_EQ(record.size(), 7);
}

TEST(Battery, WhatIsNotToldIsLeftOut)
{
    const QVariantMap record = recordOf(battery(4));
    EXPECT_EQ(record.keys(),
              (QStringList{QStringLiteral("BatteryEnabled"), QStringLiteral("BatteryRemainPercent"),
                           QStringLiteral("FullyCharged"), QStringLiteral("IsConnected")}));
}

TEST(Battery, OnlyTheFirstBatteryCounts)
{
    SourceAnswer source;
    source.answer = {battery(5, 1, 4), battery(4, 4, 4)};
    EXPECT_EQ(batteryStatus(source).value(QStringLiteral("BatteryRemainPercent")).toFloat(), 25.0F);
    EXPECT_EQ(batteryStatus(source).value(QStringLiteral("IsConnected")), QVariant(true));
}

TEST(Battery, AMachineWithoutABatteryHasAnEmptyRecord)
{
    SourceAnswer source;
    EXPECT_TRUE(batteryStatus(source).isEmpty());
    EXPECT_EQ(isBatteryEnabled(source), 0);
    source.answer.emplace();
    EXPECT_TRUE(batteryStatus(source).isEmpty());
    EXPECT_EQ(isBatteryEnabled(source), 0);
}

TEST(Battery, AnInstalledBatteryIsTheBitItself)
{
    SourceAnswer source;
    for (const int flags : {4, 5, 6, 7}) {
        source.answer = {battery(flags)};
        EXPECT_EQ(isBatteryEnabled(source), 4);
    }
    source.answer = {battery(3)};
    EXPECT_EQ(isBatteryEnabled(source), 0);
}

TEST(Battery, EachRecordIsReadAnew)
{
    SourceAnswer source;
    Battery collector(source);
    EXPECT_EQ(source.asked, 0);
    EXPECT_TRUE(collector.batteryStatus().isEmpty());
    source.answer = {battery(7)};
    EXPECT_EQ(collector.batteryStatus().value(QStringLiteral("IsConnected")), QVariant(true));
    EXPECT_EQ(source.asked, 2);
}

/// A battery that is watched sample by sample.
class BatteryEventsTest : public testing::Test
{
protected:
    static QVariantMap observe(int trigger, int observeType = 0, double threshold = 0)
    {
        return {{QStringLiteral("type"), 12},
                {QStringLiteral("batteryTriggerEventType"), trigger},
                {QStringLiteral("observeType"), observeType},
                {QStringLiteral("threshold"), threshold}};
    }

    int firedAt(int flags, std::int64_t percent)
    {
        m_source.answer = {battery(flags, percent, 100)};
        return sample();
    }

    int sample()
    {
        m_fired = 0;
        const QVariantMap record{{QStringLiteral("BatteryStats"), m_collector.batteryStatus()}};
        m_events.checkBattery(m_entries, record);
        return m_fired;
    }

    SourceAnswer m_source;
    Battery m_collector{m_source};
    QVariantList m_entries;
    int m_fired = 0;
    HardwareEvents m_events{[this](const QVariantMap &) { ++m_fired; }};
};

TEST_F(BatteryEventsTest, PluggingInFiresOnceAndNotAtTheStart)
{
    m_entries = {observe(1)};
    EXPECT_EQ(firedAt(7, 50), 0); // it was plugged in before
    EXPECT_EQ(firedAt(4, 50), 0);
    EXPECT_EQ(firedAt(7, 50), 1);
    EXPECT_EQ(firedAt(5, 50), 0);
}

TEST_F(BatteryEventsTest, UnpluggingFiresOnceAndNotAtTheStart)
{
    m_entries = {observe(2)};
    EXPECT_EQ(firedAt(4, 50), 0);
    EXPECT_EQ(firedAt(5, 50), 0);
    EXPECT_EQ(firedAt(4, 49), 1);
    EXPECT_EQ(firedAt(4, 48), 0);
}

TEST_F(BatteryEventsTest, ARisingPercentageDoesNotFireRightAfterTheStart)
{
    m_entries = {observe(0, 0, 20)};
    EXPECT_EQ(firedAt(7, 20), 0);
    EXPECT_EQ(firedAt(4, 19), 0);
    EXPECT_EQ(firedAt(7, 20), 1);
    EXPECT_EQ(firedAt(7, 21), 0);
}

TEST_F(BatteryEventsTest, AFallingPercentageFiresWhenItGetsThere)
{
    m_entries = {observe(0, 1, 20)};
    EXPECT_EQ(firedAt(4, 21), 0);
    EXPECT_EQ(firedAt(4, 20), 1);
    EXPECT_EQ(firedAt(4, 19), 0);
}

TEST_F(BatteryEventsTest, APackThatIsTakenOutCountsAsUnpluggedAndEmpty)
{
    m_entries = {observe(2), observe(0, 1, 20)};
    EXPECT_EQ(firedAt(5, 80), 0);
    m_source.answer.emplace();
    EXPECT_EQ(sample(), 2);
    EXPECT_EQ(sample(), 0);
}

TEST_F(BatteryEventsTest, APercentageOfNothingFiresNothing)
{
    m_entries = {observe(0, 0, 20), observe(0, 1, 20)};
    EXPECT_EQ(firedAt(4, 50), 0);
    m_source.answer = {battery(4, 0, 0)};
    EXPECT_EQ(sample(), 0);
    EXPECT_EQ(firedAt(4, 50), 0);
}

} // namespace
} // namespace pulsebar
