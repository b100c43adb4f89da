#include "MenuReading.h"
#include "MenuSamples.h"
#include "menu/BatterySection.h"
#include "menu/DetailSection.h"
#include "menu/DiskSection.h"
#include "menu/MemorySection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using reading::deed;
using reading::deeds;
using reading::titles;
using reading::titlesBelow;
using testing::Each;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

QVariantMap holding(const char *key, const QVariant &value)
{
    return {{QString::fromLatin1(key), value}};
}

std::optional<MenuItem> memoryItem(const QVariantMap &memory)
{
    return makeMemoryStatsMenu(holding("MemoryStats", memory));
}

TEST(MemorySection, SharesOfFreeAndUsed)
{
    const std::optional<MenuItem> item = memoryItem(samples::memory());
    ASSERT_TRUE(item);
    EXPECT_EQ(item->title, QStringLiteral("System Memory"));
    EXPECT_EQ(deed(*item), "dummy > controller");
    EXPECT_EQ(item->submenu->title(), QStringLiteral("Memory"));
    EXPECT_THAT(titles(*item->submenu),
                ElementsAre("Free: 2000M (25.0%)", "Wired: 1000M (12.5%)", "Active: 2500M (31.2%)",
                            "Inactive: 500M (6.2%)"));
    EXPECT_THAT(deeds(*item->submenu), Each("dummy > controller"));
}

TEST(MemorySection, NeedsThreeToFiveEntries)
{
    QVariantMap memory = samples::memory();
    memory.insert(QStringLiteral("sixth"), QStringLiteral("1M"));
    EXPECT_FALSE(memoryItem(memory));
    EXPECT_FALSE(memoryItem({{QStringLiteral("free"), QStringLiteral("1M")},
                             {QStringLiteral("used"), QStringLiteral("1M")}}));
    EXPECT_FALSE(makeMemoryStatsMenu({}));
    EXPECT_FALSE(makeMemoryStatsMenu(holding("MemoryStats", QStringLiteral("five"))));
    memory = samples::memory();
    memory.remove(QStringLiteral("active"));
    memory.remove(QStringLiteral("inactive"));
    const std::optional<MenuItem> item = memoryItem(memory);
    ASSERT_TRUE(item);
    EXPECT_THAT(titlesBelow(*item), ElementsAre("Free: 2000M (25.0%)", "Wired: 1000M (12.5%)"));
}

TEST(MemorySection, NothingInUseAndNothingFree)
{
    const std::optional<MenuItem> item =
        memoryItem({{QStringLiteral("free"), QStringLiteral("0M")},
                    {QStringLiteral("used"), QStringLiteral("0M")},
                    {QStringLiteral("wired"), QStringLiteral("5M")}});
    ASSERT_TRUE(item);
    EXPECT_EQ(item->submenu->items()[1].title, QStringLiteral("Wired: 5M (inf%)"));
}

TEST(MemorySection, ValuesAreNoFormats)
{
    const std::optional<MenuItem> item =
        memoryItem({{QStringLiteral("free"), QStringLiteral("%@%n")},
                    {QStringLiteral("used"), QStringLiteral("1M")},
                    {QStringLiteral("wired"), QVariantList()}});
    ASSERT_TRUE(item);
    EXPECT_THAT(titlesBelow(*item), ElementsAre("Free: %@%n (0.0%)", "Wired:  (0.0%)"));
}

TEST(DiskSection, FiguresInPairs)
{
    const std::optional<MenuItem> item = makeOneDiskStatsMenu(samples::disk(), 2);
    ASSERT_TRUE(item);
    EXPECT_EQ(item->title, QStringLiteral("Disk #2"));
    EXPECT_EQ(deed(*item), "dummy > controller");
    EXPECT_EQ(item->submenu->title(), QStringLiteral("Disk #2"));
    EXPECT_THAT(titles(*item->submenu),
                ElementsAre("Disk Read / Write", "Speed: 1.5KB/s / 0.0B/s", "Total: 5.0GB / 3.0MB",
                            "Operations: 1234 / 77", "Time: 1024 ms / 2048 ms"));
    EXPECT_EQ(deed(item->submenu->items()[0]), " > nobody");
    EXPECT_EQ(deed(item->submenu->items()[1]), "dummy > controller");
}

TEST(DiskSection, EveryFigure)
{
    QVariantMap disk;
    for (const char *key :
         {"IODiskReadBytesPerSec", "IODiskWrittenBytesPerSec", "IODiskReadBytes",
          "IODiskWrittenBytes", "IODiskReadNumber", "IODiskWrittenNumber", "IODiskReadError",
          "IODiskWrittenError", "IODiskReadRetries", "IODiskWrittenRetries", "IODiskReadTime",
          "IODiskWrittenTime", "IODiskReadLatent", "IODiskWrittenLatent"})
        disk.insert(QString::fromLatin1(key), 2000 + int(disk.size()));
    const std::optional<MenuItem> item = makeOneDiskStatsMenu(disk, 1);
    ASSERT_TRUE(item);
    EXPECT_THAT(titlesBelow(*item), ElementsAre("Disk Read / Write", "Speed: 2.0KB/s / 2.0KB/s",
                                                "Total: 2.0KB / 2.0KB", "Operations: 2004 / 2005",
                                                "Errors: 2006 / 2007", "Retries: 2008 / 2009",
                                                "Time: 2010 ms / 2011 ms", "Latency: 2012 / 2013"));
}

TEST(DiskSection, WhatIsNotCountedIsADash)
{
    const std::optional<MenuItem> item =
        makeOneDiskStatsMenu({{QStringLiteral("IODiskReadBytesPerSec"), 20},
                              {QStringLiteral("IODiskWrittenError"), 0},
                              {QStringLiteral("IODiskReadTime"), QVariantList()}},
                             1);
    ASSERT_TRUE(item);
    EXPECT_THAT(titlesBelow(*item),
                ElementsAre("Disk Read / Write", "Speed: 20B/s / \u2013/s", "Errors: \u2013 / 0"));
}

TEST(DiskSection, OnlyItemsUseUpNumbers)
{
    const QVector<MenuItem> items = makeDisksStatsMenu(
        holding("DiskStatistics", QVariantList{samples::disk(), QVariantMap(), samples::disk()}));
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[0].title, QStringLiteral("Disk #1"));
    EXPECT_EQ(items[1].title, QStringLiteral("Disk #2"));
    EXPECT_EQ(makeDisksStatsMenu(
                  holding("DiskStatistics", QVariantList{5, QStringLiteral("x"), samples::disk()}))
                  .size(),
              1);
    EXPECT_TRUE(makeDisksStatsMenu({}).isEmpty());
    EXPECT_TRUE(makeDisksStatsMenu(holding("DiskStatistics", samples::disk())).isEmpty());
}

TEST(DiskSection, Drives)
{
    const QVariantMap drives{{QStringLiteral("readTimes"), 5},
                             {QStringLiteral("readBytes"), 4096},
                             {QStringLiteral("writtenTimes"), 6},
                             {QStringLiteral("writtenBytes"), 8192}};
    const std::optional<MenuItem> item = makeDiskStatsMenu(holding("DriveStats", drives));
    ASSERT_TRUE(item);
    EXPECT_EQ(item->title, QStringLiteral("Disk Access"));
    EXPECT_EQ(item->submenu->title(), QStringLiteral("Disk Access"));
    EXPECT_EQ(deed(*item), "dummy > controller");
    EXPECT_THAT(titles(*item->submenu),
                ElementsAre("Reads: 5", "Bytes Read: 4096", "Writes: 6", "Bytes Written: 8192"));
    EXPECT_THAT(deeds(*item->submenu), Each("dummy > controller"));
    QVariantMap three = drives;
    three.remove(QStringLiteral("readTimes"));
    EXPECT_FALSE(makeDiskStatsMenu(holding("DriveStats", three)));
    EXPECT_FALSE(makeDiskStatsMenu({}));
}

MenuItem batteryItem(const QVariantMap &battery)
{
    return makeBatteryStatusMenu(holding("BatteryStats", battery));
}

TEST(BatterySection, SaysWhatItDoes)
{
    QVariantMap battery{{QStringLiteral("BatteryRemainPercent"), 50.04F},
                        {QStringLiteral("IsConnected"), false}};
    EXPECT_EQ(batteryItem(battery).title, QStringLiteral("Battery: 50.0%"));
    battery.insert(QStringLiteral("IsConnected"), true);
    EXPECT_EQ(batteryItem(battery).title, QStringLiteral("Charging: 50.0%"));
    battery.insert(QStringLiteral("FullyCharged"), true);
    EXPECT_EQ(batteryItem(battery).title, QStringLiteral("Battery is charged"));
    EXPECT_EQ(deed(batteryItem(battery)), "changeTitleToDisplayType > controller #4");
}

TEST(BatterySection, Figures)
{
    const MenuItem item =
        batteryItem({{QStringLiteral("BatteryRemainPercent"), 50.0F},
                     {QStringLiteral("BatteryVoltage"), 12100},
                     {QStringLiteral("BatteryAmperage"), -1500},
                     {QStringLiteral("BatteryCycleCount"), QStringLiteral("120")}});
    ASSERT_NE(item.submenu, nullptr);
    EXPECT_EQ(item.submenu->title(), item.title);
    EXPECT_THAT(titles(*item.submenu),
                UnorderedElementsAre(" Voltage:12100mV", "Amperage:-1500mA", "Cycle Count:120"));
    EXPECT_THAT(deeds(*item.submenu), Each("dummy > nobody"));
}

TEST(BatterySection, WithoutFiguresNoSubmenu)
{
    EXPECT_EQ(batteryItem({{QStringLiteral("BatteryRemainPercent"), 5.0F}}).submenu, nullptr);
    EXPECT_EQ(batteryItem({}).title, QStringLiteral("Battery: 0.0%"));
}

TEST(DetailSection, TheReportAsItCame)
{
    const QString report = QStringLiteral("Processes: 5\n 12 %@\n");
    const MenuItem item = makeDetailMenu(holding("topResult", report));
    EXPECT_EQ(item.title, QStringLiteral("Detailed Information"));
    EXPECT_EQ(deed(item), " > nobody");
    EXPECT_EQ(item.submenu->title(), QStringLiteral("Detail"));
    ASSERT_EQ(item.submenu->items().size(), 1);
    const MenuItem &row = item.submenu->items()[0];
    EXPECT_EQ(row.title, QStringLiteral("Detail"));
    EXPECT_EQ(deed(row), "changeRefreshTime > controller");
    EXPECT_EQ(row.view, QStringLiteral("detailText"));
    EXPECT_EQ(row.representedObject, QVariant(report));
    ASSERT_NE(row.substitute, nullptr);
    EXPECT_EQ(row.substitute->title, QStringLiteral("Detail"));
    EXPECT_EQ(deed(*row.substitute), "showDetailWindow > controller");
}

} // namespace
} // namespace pulsebar
