#include "MenuReading.h"
#include "MenuSamples.h"
#include "menu/FanSection.h"
#include "menu/TemperatureSection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace pulsebar {
namespace {

using reading::deed;
using reading::deeds;
using reading::titles;
using reading::titlesBelow;
using samples::fan;
using samples::keys;
using samples::record;
using testing::Each;
using testing::ElementsAre;

constexpr const char *kChooseTemperature = "changeTitleToDisplayType > controller #10";
constexpr const char *kChooseFans = "changeTitleToDisplayType > controller #11";
constexpr const char *kChooseNothing = "changeTitleToDisplayType > nobody";

const QString kDie = QStringLiteral("CPU Die");

TemperatureMenuState sensors(const QStringList &names)
{
    TemperatureMenuState state;
    state.temperatureKeys = keys(names);
    return state;
}

TEST(TemperatureSection, NothingMeasuredNoItem)
{
    EXPECT_FALSE(makeTemperatureMenuForDict({}, sensors({kDie})));
}

TEST(TemperatureSection, SensorsInTheirOrder)
{
    TemperatureMenuState state = sensors({QStringLiteral("GPU"), kDie, QStringLiteral("NVMe")});
    state.minuteStats.insert(kDie, record(45.5, 50, 41.25));
    const std::optional<MenuItem> item =
        makeTemperatureMenuForDict({{kDie, 45.0}, {QStringLiteral("GPU"), 50.26}}, state);
    ASSERT_TRUE(item);
    EXPECT_EQ(item->title, QStringLiteral("CPU Die: 45.0\u2103"));
    EXPECT_EQ(deed(*item), kChooseTemperature);
    EXPECT_EQ(item->submenu->title(), item->title);
    EXPECT_THAT(titles(*item->submenu), ElementsAre("GPU:50.3\u2103", "CPU Die:45.0\u2103"));
    EXPECT_THAT(deeds(*item->submenu), Each(kChooseTemperature));
}

TEST(TemperatureSection, StatisticsOfASensorThatHasThem)
{
    TemperatureMenuState state = sensors({kDie, QStringLiteral("GPU"), QStringLiteral("NVMe")});
    state.minuteStats.insert(kDie, record(45.5, 50, 41.25));
    state.minuteStats.insert(QStringLiteral("NVMe"), QStringLiteral("odd"));
    const std::optional<MenuItem> item = makeTemperatureMenuForDict(
        {{kDie, 45.0}, {QStringLiteral("GPU"), 50.0}, {QStringLiteral("NVMe"), 30.0}}, state);
    const QVector<MenuItem> &rows = item->submenu->items();
    ASSERT_EQ(rows.size(), 3);
    ASSERT_NE(rows[0].submenu, nullptr);
    EXPECT_EQ(rows[0].submenu->title(), QStringLiteral("Temperature__CPU Die"));
    EXPECT_THAT(titlesBelow(rows[0]), ElementsAre("Average: 45.5\u2103", "Maximum: 50.0\u2103",
                                                  "Minimum: 41.2\u2103", "Show Graph"));
    EXPECT_THAT(deeds(*rows[0].submenu), Each("showGraphView > controller"));
    EXPECT_EQ(rows[1].submenu, nullptr);
    EXPECT_EQ(rows[2].submenu, nullptr);
}

TEST(TemperatureSection, FahrenheitWithAndWithoutTheBlank)
{
    TemperatureMenuState state = sensors({kDie});
    state.fahrenheit = true;
    state.minuteStats.insert(kDie, record(113, 114, 112));
    const std::optional<MenuItem> item = makeTemperatureMenuForDict({{kDie, 113.0}}, state);
    ASSERT_TRUE(item);
    EXPECT_EQ(item->title, QStringLiteral("CPU Die: 113.0\u2109"));
    EXPECT_THAT(titlesBelow(*item), ElementsAre("CPU Die:113.0\u2109"));
    EXPECT_EQ(item->submenu->items()[0].submenu->items()[0].title,
              QStringLiteral("Average: 113.0\u2109"));
}

TEST(TemperatureSection, WithoutTheProcessorsSensor)
{
    const std::optional<MenuItem> item = makeTemperatureMenuForDict(
        {{QStringLiteral("GPU"), 50.0}}, sensors({kDie, QStringLiteral("GPU")}));
    ASSERT_TRUE(item);
    EXPECT_EQ(item->title, QStringLiteral("Temperature"));
    EXPECT_EQ(item->submenu->title(), QStringLiteral("Temperature"));
    EXPECT_EQ(deed(*item), kChooseTemperature);
    EXPECT_THAT(titlesBelow(*item), ElementsAre("GPU:50.0\u2103"));
}

TEST(TemperatureSection, OneSensor)
{
    EXPECT_FALSE(newTemperatureMenuItemForKey(kDie, {{QStringLiteral("GPU"), 5.0}}, {}));
    const std::optional<MenuItem> row = newTemperatureMenuItemForKey(kDie, {{kDie, -3.5}}, {});
    ASSERT_TRUE(row);
    EXPECT_EQ(row->title, QStringLiteral("CPU Die:-3.5\u2103"));
    EXPECT_EQ(deed(*row), kChooseTemperature);
}

TEST(TemperatureSection, NamesAreTexts)
{
    const QStringList names{QStringLiteral("100% %@ %n %d"), QStringLiteral("a_b & c"),
                            QStringLiteral("two\nlines"),    QStringLiteral("a__b"),
                            QString(64, QChar(0xE9)),        QStringLiteral("%1 %2$@")};
    TemperatureMenuState state = sensors(names);
    QVariantMap temperatures;
    for (const QString &name : names) {
        temperatures.insert(name, 20.0);
        state.minuteStats.insert(name, record(1, 2, 3));
    }
    const std::optional<MenuItem> item = makeTemperatureMenuForDict(temperatures, state);
    ASSERT_TRUE(item);
    const QVector<MenuItem> &rows = item->submenu->items();
    ASSERT_EQ(rows.size(), names.size());
    for (qsizetype i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].title, names[i] + QStringLiteral(":20.0\u2103"));
        EXPECT_EQ(rows[i].submenu->title(), QStringLiteral("Temperature__") + names[i]);
    }
    EXPECT_EQ(rows[2].shownTitle(), QStringLiteral("two lines:20.0\u2103"));
}

TEST(TemperatureSection, OddLists)
{
    TemperatureMenuState state;
    state.temperatureKeys = {QVariant(),
                             5,
                             QVariantMap(),
                             QVariantMap{{QStringLiteral("Key"), 7}},
                             QVariantMap{{QStringLiteral("Key"), kDie}},
                             QVariantMap{{QStringLiteral("Key"), kDie}}};
    const std::optional<MenuItem> item =
        makeTemperatureMenuForDict({{kDie, QStringLiteral("hot")}}, state);
    ASSERT_TRUE(item);
    EXPECT_EQ(item->title, QStringLiteral("CPU Die: 0.0\u2103"));
    EXPECT_THAT(titlesBelow(*item), ElementsAre("CPU Die:0.0\u2103", "CPU Die:0.0\u2103"));
}

FanMenuState fanState(const QVariantList &minuteStats)
{
    FanMenuState state;
    state.fanKeys = keys({QStringLiteral("ActualSpeed"), QStringLiteral("MinimumSpeed"),
                          QStringLiteral("MaximumSpeed"), QStringLiteral("TargetSpeed")});
    state.minuteStats = minuteStats;
    return state;
}

QVariantMap fans(const QVariant &average, const QVariantList &fans)
{
    return {{QStringLiteral("AverageSpeed"), average}, {QStringLiteral("DataArray"), fans}};
}

TEST(FanSection, StandingFansHideTheItem)
{
    EXPECT_FALSE(makeFanMoveMenuForDict({}, fanState({})));
    EXPECT_FALSE(makeFanMoveMenuForDict(fans(0.0F, {fan(0), fan(0)}), fanState({})));
    EXPECT_FALSE(makeFanMoveMenuForDict(fans(-0.0F, {}), fanState({})));
    EXPECT_TRUE(makeFanMoveMenuForDict(fans(0.25F, {fan(0), fan(0.5F)}), fanState({})));
}

TEST(FanSection, OneFanStandsForAll)
{
    QVariantMap values = fan(1200);
    values.insert(QStringLiteral("MaximumSpeed"), 6000.0F);
    const std::optional<MenuItem> item = makeFanMoveMenuForDict(
        fans(1200.0F, {values}), fanState({record(1190.5, 1300, 1100), record(1, 2, 3)}));
    ASSERT_TRUE(item);
    EXPECT_EQ(item->title, QStringLiteral("Fan: 1200RPM"));
    EXPECT_EQ(deed(*item), kChooseFans);
    ASSERT_NE(item->submenu, nullptr);
    EXPECT_EQ(item->submenu->title(), QStringLiteral("FanMove__Fan0"));
    EXPECT_THAT(titles(*item->submenu),
                ElementsAre("Actual: 1200RPM", "Maximum: 6000RPM", "-", "Average: 1190.5RPM",
                            "Maximum: 1300.0RPM", "Minimum: 1100.0RPM", "Show Graph"));
    const std::string graph = "showGraphView > controller";
    EXPECT_THAT(deeds(*item->submenu),
                ElementsAre(kChooseFans, kChooseFans, "-", graph, graph, graph, graph));
}

TEST(FanSection, TwoFansBelowTheirAverage)
{
    const std::optional<MenuItem> item = makeFanMoveMenuForDict(
        fans(1500.0F, {fan(1200), fan(1800)}),
        fanState({record(1, 2, 3), record(4, 5, 6), record(1500, 1600, 1400)}));
    ASSERT_TRUE(item);
    EXPECT_EQ(item->title, QStringLiteral("Fan: 1500RPM"));
    EXPECT_EQ(deed(*item), kChooseFans);
    EXPECT_EQ(item->submenu->title(), QStringLiteral("FanMove__FanAverage"));
    EXPECT_THAT(titles(*item->submenu),
                ElementsAre("-", "Average: 1500.0RPM", "Maximum: 1600.0RPM", "Minimum: 1400.0RPM",
                            "Show Graph", "-", "Fan #1: 1200RPM", "Fan #2: 1800RPM"));
    const QVector<MenuItem> &rows = item->submenu->items();
    EXPECT_EQ(deed(rows[6]), kChooseNothing);
    EXPECT_EQ(rows[6].submenu->title(), QStringLiteral("FanMove__Fan0"));
    EXPECT_EQ(rows[7].submenu->title(), QStringLiteral("FanMove__Fan1"));
    EXPECT_THAT(titlesBelow(rows[7]),
                ElementsAre("Actual: 1800RPM", "-", "Average: 4.0RPM", "Maximum: 5.0RPM",
                            "Minimum: 6.0RPM", "Show Graph"));
}

TEST(FanSection, ValuesInTheOrderOfTheList)
{
    QVariantMap values = fan(1000);
    values.insert(QStringLiteral("TargetSpeed"), 1001.6F);
    values.insert(QStringLiteral("MinimumSpeed"), 0.0F);
    values.insert(QStringLiteral("SafeSpeed"), 3000.0F);
    const MenuItem item = makeFanMoveMenuForFanDict(values, 9, fanState({}));
    EXPECT_EQ(item.title, QStringLiteral("Fan #10: 1000RPM"));
    EXPECT_EQ(deed(item), kChooseNothing);
    EXPECT_EQ(item.submenu->title(), QStringLiteral("FanMove__Fan9"));
    EXPECT_THAT(titlesBelow(item),
                ElementsAre("Actual: 1000RPM", "Minimum: 0RPM", "Target: 1002RPM", "-"));
}

TEST(FanSection, ValuesNobodyWroteATextFor)
{
    FanMenuState state;
    state.fanKeys = keys({QStringLiteral("SafeSpeed"), QStringLiteral("%.0f %n")});
    const MenuItem item = makeFanMoveMenuForFanDict(
        {{QStringLiteral("SafeSpeed"), 3000.0F}, {QStringLiteral("%.0f %n"), 5.0F}}, 0, state);
    EXPECT_EQ(item.title, QStringLiteral("Fan #1: 0RPM"));
    EXPECT_THAT(titlesBelow(item), ElementsAre("SafeSpeed: 3000RPM", "%.0f %n: 5RPM", "-"));
}

TEST(FanSection, FasterThanAnyOrdinaryFan)
{
    const std::optional<MenuItem> item =
        makeFanMoveMenuForDict(fans(22000.0F, {fan(22000)}), fanState({}));
    ASSERT_TRUE(item);
    EXPECT_EQ(item->title, QStringLiteral("Fan: 22000RPM"));
}

TEST(FanSection, FewerStatisticsThanFans)
{
    const std::optional<MenuItem> item = makeFanMoveMenuForDict(
        fans(1500.0F, {fan(1), fan(2), fan(3)}), fanState({record(10, 20, 5)}));
    ASSERT_TRUE(item);
    const QVector<MenuItem> &rows = item->submenu->items();
    ASSERT_EQ(rows.size(), 9);
    EXPECT_EQ(rows[6].submenu->items().size(), 6);
    EXPECT_THAT(titlesBelow(rows[7]), ElementsAre("Actual: 2RPM", "-"));
    EXPECT_THAT(titlesBelow(rows[8]), ElementsAre("Actual: 3RPM", "-"));
}

TEST(FanSection, NoStatisticsAtAll)
{
    const std::optional<MenuItem> item =
        makeFanMoveMenuForDict(fans(1500.0F, {fan(1), fan(2)}), fanState({}));
    ASSERT_TRUE(item);
    EXPECT_THAT(titlesBelow(*item), ElementsAre("-", "-", "Fan #1: 1RPM", "Fan #2: 2RPM"));
}

// A controller that counts no fans has an average that is not a number, and that is not 0.
TEST(FanSection, AnAverageOfNoFans)
{
    const float none = std::numeric_limits<float>::quiet_NaN();
    const std::optional<MenuItem> item =
        makeFanMoveMenuForDict(fans(-none, {}), fanState({record(double(none), 0, double(none))}));
    ASSERT_TRUE(item);
    EXPECT_EQ(item->title, QStringLiteral("Fan: nanRPM"));
    EXPECT_THAT(titlesBelow(*item), ElementsAre("-", "Average: nanRPM", "Maximum: 0.0RPM",
                                                "Minimum: nanRPM", "Show Graph", "-"));
}

TEST(FanSection, OddFans)
{
    const std::optional<MenuItem> item = makeFanMoveMenuForDict(
        fans(QStringLiteral("1500"), {QVariant(), QStringLiteral("x"), QVariantList{1}}),
        {{QVariant(), 5}, {QVariant(), QStringLiteral("y")}});
    ASSERT_TRUE(item);
    EXPECT_THAT(titlesBelow(*item),
                ElementsAre("-", "-", "Fan #1: 0RPM", "Fan #2: 0RPM", "Fan #3: 0RPM"));
    const std::optional<MenuItem> noList = makeFanMoveMenuForDict(
        {{QStringLiteral("AverageSpeed"), 5.0F}, {QStringLiteral("DataArray"), 7}}, {});
    ASSERT_TRUE(noList);
    EXPECT_EQ(noList->submenu->title(), QStringLiteral("FanMove__FanAverage"));
    EXPECT_THAT(titlesBelow(*noList), ElementsAre("-", "-"));
}

} // namespace
} // namespace pulsebar
