#include "controller/TitleTexts.h"

#include <gtest/gtest.h>

namespace pulsebar::titles {
namespace {

const QString kCelsius = QStringLiteral("\u2103");
const QString kFahrenheit = QStringLiteral("\u2109");

QVariantMap one(const char *key, const QVariant &value)
{
    return {{QString::fromLatin1(key), value}};
}

TEST(TitleTexts, TextsOfASample)
{
    const QVariantMap network{{QStringLiteral("InBytes"), quint64(1536)},
                              {QStringLiteral("OutBytes"), quint64(5)}};
    EXPECT_EQ(CPUUsageAsTitle(one("CPUTotalUsage", QStringLiteral("10.720000"))),
              QStringLiteral("10.7%"));
    EXPECT_EQ(inByteAsTitle(one("NetStatistics", network)), QStringLiteral("In 1.5KB"));
    EXPECT_EQ(outByteAsTitle(one("NetStatistics", network)), QStringLiteral("Out 5.0B"));
    EXPECT_EQ(diskReadAsTitle(one("diskReadBytesPerSec", qint64(15) << 20)),
              QStringLiteral("Read 15MB"));
    EXPECT_EQ(diskWriteAsTitle(one("diskWriteBytesPerSec", qint64(1024))),
              QStringLiteral("Write 1024B"));
    EXPECT_EQ(fanMoveAsTitle(one("FanMove", one("AverageSpeed", 1234.6F))),
              QStringLiteral("1235RPM"));
}

TEST(TitleTexts, FullBatteryIsAWord)
{
    QVariantMap battery{{QStringLiteral("BatteryRemainPercent"), 99.94F},
                        {QStringLiteral("FullyCharged"), false}};
    EXPECT_EQ(batteryStatsAsTitle(one("BatteryStats", battery)), QStringLiteral("99.9%"));
    battery[QStringLiteral("FullyCharged")] = true;
    EXPECT_EQ(batteryStatsAsTitle(one("BatteryStats", battery)), QStringLiteral("Full"));
}

TEST(TitleTexts, ProcessShareIsAFraction)
{
    const QVariantMap process{{QStringLiteral("CPUUsage"), QStringLiteral("0.035000")},
                              {QStringLiteral("PID"), QStringLiteral("42")},
                              {QStringLiteral("ProcessName"), QStringLiteral("Web Content")}};
    const QVariantMap sample = one("ProcessList", QVariantList{process});
    EXPECT_EQ(processUsageAsTitle(sample), QStringLiteral("3.5%"));
    EXPECT_EQ(busiestProcess(sample), QStringLiteral("42"));
    EXPECT_EQ(processNameAsTitle(process), QStringLiteral("Web Content"));
}

TEST(TitleTexts, TemperatureWithItsUnit)
{
    const QVariantMap sample = one("CPUTemparatures", one("CPU Die", 49.5));
    EXPECT_EQ(temperatureAsTitle(sample, false), QStringLiteral("CPU:50") + kCelsius);
    EXPECT_EQ(temperatureAsTitle(one("CPUTemparatures", one("CPU Die", 122.0)), true),
              QStringLiteral("CPU:122") + kFahrenheit);
    EXPECT_EQ(temperatureAsTitle(one("CPUTemparatures", one("GPU", 60.0)), false),
              QStringLiteral("N/A"));
    EXPECT_EQ(temperatureAsTitle({}, false), QStringLiteral("N/A"));
}

TEST(TitleTexts, MissingValuesReadAsZero)
{
    EXPECT_EQ(CPUUsageAsTitle({}), QStringLiteral("0.0%"));
    EXPECT_EQ(inByteAsTitle({}), QStringLiteral("In 0.0B"));
    EXPECT_EQ(batteryStatsAsTitle({}), QStringLiteral("0.0%"));
    EXPECT_EQ(diskReadAsTitle({}), QStringLiteral("Read 0.0B"));
    EXPECT_EQ(fanMoveAsTitle({}), QStringLiteral("0RPM"));
    EXPECT_EQ(processUsageAsTitle({}), QStringLiteral("0.0%"));
    EXPECT_EQ(processUsageAsTitle(one("ProcessList", QVariantList())), QStringLiteral("0.0%"));
    EXPECT_EQ(busiestProcess({}), QString());
}

TEST(TitleTexts, TypesWithoutTextAreEmpty)
{
    for (const int type : {0, 7, 8, 12, -1}) {
        EXPECT_EQ(titleOfType(type, {}, false), QString()) << type;
        EXPECT_EQ(widestTitleOfType(type, false), QString()) << type;
    }
}

TEST(TitleTexts, WidestTexts)
{
    EXPECT_EQ(widestTitleOfType(kCpuUsage, false), QStringLiteral("100.0%"));
    EXPECT_EQ(widestTitleOfType(kBattery, false), QStringLiteral("100.0%"));
    EXPECT_EQ(widestTitleOfType(kBusiestProcess, false), QStringLiteral("100.0%"));
    EXPECT_EQ(widestTitleOfType(kNetworkIn, false), QStringLiteral("In 1023MB"));
    EXPECT_EQ(widestTitleOfType(kNetworkOut, false), QStringLiteral("Out 1023MB"));
    EXPECT_EQ(widestTitleOfType(kDiskRead, false), QStringLiteral("Read 1023MB"));
    EXPECT_EQ(widestTitleOfType(kDiskWrite, false), QStringLiteral("Write 1023MB"));
    EXPECT_EQ(widestTitleOfType(kTemperature, false), QStringLiteral("CPU:100") + kCelsius);
    EXPECT_EQ(widestTitleOfType(kFanSpeed, false), QStringLiteral("9999RPM"));
}

} // namespace
} // namespace pulsebar::titles
