#include "menu/CpuSection.h"

#include "MenuReading.h"
#include "MenuSamples.h"
#include "menu/EnergySection.h"
#include "menu/StatisticsRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace pulsebar {
namespace {

using reading::deed;
using reading::deeds;
using reading::titles;
using reading::titlesBelow;
using testing::Each;
using testing::ElementsAre;

TEST(StatisticsRows, ShowARecordInItsUnit)
{
    Menu menu(QStringLiteral("key"));
    addOneMinuteStatics(samples::record(1.26, 20.0, 0.0), QStringLiteral("W"), &menu, 2.0F);
    EXPECT_THAT(titles(menu),
                ElementsAre("Average: 2.5W", "Maximum: 40.0W", "Minimum: 0.0W", "Show Graph"));
    EXPECT_THAT(deeds(menu), Each("showGraphView > controller"));
}

TEST(StatisticsRows, NothingWithoutRecordOrMenu)
{
    Menu menu;
    for (const QVariant &record :
         {QVariant(), QVariant(1.0), QVariant(QVariantList{1}), QVariant(QStringLiteral("x"))})
        addOneMinuteStatics(record, QStringLiteral("%"), &menu, 1.0F);
    EXPECT_TRUE(menu.isEmpty());
    addOneMinuteStatics(samples::record(1, 2, 3), QStringLiteral("%"), nullptr, 1.0F);
}

TEST(StatisticsRows, AnEmptyRecordReadsAsZero)
{
    Menu menu;
    addOneMinuteStatics(QVariantMap(), QStringLiteral("%"), &menu, 100.0F);
    EXPECT_THAT(titles(menu),
                ElementsAre("Average: 0.0%", "Maximum: 0.0%", "Minimum: 0.0%", "Show Graph"));
}

TEST(StatisticsRows, AUnitIsNoFormat)
{
    Menu menu;
    addOneMinuteStatics(QVariantMap(), QStringLiteral("%d%@%%"), &menu, 1.0F);
    EXPECT_EQ(menu.items()[0].title, QStringLiteral("Average: 0.0%d%@%%"));
}

TEST(CpuSection, CoreRows)
{
    const MenuItem item = usageMenuForCore(samples::core(0.45, 0.05), 3);
    EXPECT_EQ(item.title, QStringLiteral("Core #3: 45.0%"));
    EXPECT_EQ(deed(item), "changeTitleToDisplayType > controller #1");
    EXPECT_EQ(item.submenu->title(), QStringLiteral("CPUUsage__CPU3"));
    EXPECT_THAT(titles(*item.submenu),
                ElementsAre("System:   5.0%", "    User: 20.0%", "    Nice:   0.0%",
                            "     Idle: 55.0%", "-", "Average: 45.0%", "Maximum: 90.0%",
                            "Minimum: 1.0%", "Show Graph"));
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(deed(item.submenu->items()[i]), "changeTitleToDisplayType > controller #1");
}

TEST(CpuSection, TwoDigitsNeedOneBlank)
{
    EXPECT_EQ(usageMenuForCore(samples::core(0.2, 0.125), 1).submenu->items()[0].title,
              QStringLiteral("System: 12.5%"));
    EXPECT_EQ(cpuMenuTitleWithLabelAndValue(QStringLiteral("x"), 10.0), QStringLiteral("x: 10.0%"));
    // The value decides, not what is left of it after rounding.
    EXPECT_EQ(cpuMenuTitleWithLabelAndValue(QStringLiteral("x"), 9.99),
              QStringLiteral("x:   10.0%"));
}

TEST(CpuSection, ACoreThatTellsNothing)
{
    const MenuItem item = usageMenuForCore({}, 1);
    EXPECT_EQ(item.title, QStringLiteral("Core #1: 0.0%"));
    EXPECT_THAT(titles(*item.submenu), ElementsAre("System:   0.0%", "    User:   0.0%",
                                                   "    Nice:   0.0%", "     Idle:   0.0%", "-"));
}

TEST(CpuSection, NewItemMakesTheLoadTheTitle)
{
    const MenuItem item = newCPUMenuItemWithTitle(QStringLiteral("a % b"));
    EXPECT_EQ(item.title, QStringLiteral("a % b"));
    EXPECT_EQ(deed(item), "changeTitleToDisplayType > controller #1");
}

TEST(CpuSection, AllCores)
{
    const QVariantMap topDict{
        {QStringLiteral("CPUUsageCoreAverage"), 0.355},
        {QStringLiteral("CPUTotalUsage"), QStringLiteral("99.0")},
        {QStringLiteral("CPUUsageMinuteStats"), samples::record(0.3, 0.5, 0.1)},
        {QStringLiteral("CPUUsage"),
         QVariantList{samples::core(0.5, 0.1), samples::core(0.21, 0.1)}}};
    const MenuItem item = CPUMenuItem(topDict);
    EXPECT_EQ(item.title, QStringLiteral("CPU Average: 35.5%"));
    EXPECT_EQ(deed(item), "changeTitleToDisplayType > nobody");
    EXPECT_EQ(item.submenu->title(), QStringLiteral("CPUTotalUsage"));
    EXPECT_THAT(titles(*item.submenu),
                ElementsAre("Average: 30.0%", "Maximum: 50.0%", "Minimum: 10.0%", "Show Graph", "-",
                            "Core #1: 50.0%", "Core #2: 21.0%"));
}

TEST(CpuSection, NothingMeasuredYet)
{
    const MenuItem item = CPUMenuItem({});
    EXPECT_EQ(item.title, QStringLiteral("CPU Average: 0.0%"));
    EXPECT_THAT(titles(*item.submenu), ElementsAre("-"));
}

TEST(EnergySection, OrderedByNumber)
{
    const QVariantMap shares{{QStringLiteral("a"), QStringLiteral("3.5")},
                             {QStringLiteral("b"), QStringLiteral("12.0")},
                             {QStringLiteral("c"), QStringLiteral("0.04")},
                             {QStringLiteral("9%:d"), QStringLiteral("5")}};
    const QVariantMap topDict{
        {QStringLiteral("EnergyConsumption"), 15.54F},
        {QStringLiteral("EnergyConsumptionMinuteStats"), samples::record(15.5, 20.0, 2.0)}};
    const MenuItem item = powerUsageMenuItem(shares, topDict);
    EXPECT_EQ(item.title, QStringLiteral("Energy Consumption: 15.5%"));
    EXPECT_EQ(deed(item), "changeTitleToDisplayType > nobody");
    EXPECT_EQ(item.submenu->title(), QStringLiteral("CPUTotalUsage"));
    EXPECT_THAT(titles(*item.submenu),
                ElementsAre("Average: 15.5%", "Maximum: 20.0%", "Minimum: 2.0%", "Show Graph", "-",
                            "12.0%:b", "5.0%:9%:d", "3.5%:a", "0.0%:c"));
    EXPECT_EQ(deed(item.submenu->items()[5]), "dummy > nobody");
}

TEST(EnergySection, ComparesTheNumberBeforeThePercentSign)
{
    const QString twelve = QStringLiteral("12.0%:a");
    const QString three = QStringLiteral("3.5%:b");
    EXPECT_LT(sortPowerUsageText(twelve, three), 0);
    EXPECT_GT(sortPowerUsageText(three, twelve), 0);
    EXPECT_EQ(sortPowerUsageText(three, QStringLiteral("3.5%:c")), 0);
    EXPECT_EQ(sortPowerUsageText(QString(), QStringLiteral("x")), 0);
}

TEST(EnergySection, NumbersThatAreNone)
{
    QVariantMap shares;
    for (int i = 0; i < 40; ++i)
        shares.insert(QString::number(i), i % 2 == 0
                                              ? QVariant(std::numeric_limits<double>::quiet_NaN())
                                              : QVariant(QStringLiteral("%1").arg(i)));
    const std::vector<std::string> rows = titlesBelow(powerUsageMenuItem(shares, {}));
    ASSERT_EQ(rows.size(), 41);
    EXPECT_EQ(rows[1], "39.0%:39");
}

TEST(EnergySection, NoShares)
{
    EXPECT_THAT(titlesBelow(powerUsageMenuItem({}, {})), ElementsAre("-"));
}

} // namespace
} // namespace pulsebar
