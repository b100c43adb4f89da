#include "menu/MainMenu.h"

#include "MenuReading.h"
#include "MenuSamples.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace pulsebar {
namespace {

using reading::deed;
using reading::titles;
using reading::titlesBelow;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

MainMenuState fullState()
{
    MainMenuState state;
    state.topDict = {
        {QStringLiteral("ProcessList"),
         QVariantList{samples::process(QStringLiteral("12"), QStringLiteral("b")),
                      samples::process(QStringLiteral("5"), QStringLiteral("a"))}},
        {QStringLiteral("CPUUsageCoreAverage"), 0.5},
        {QStringLiteral("CPUUsage"), QVariantList{samples::core(0.5, 0.1)}},
        {QStringLiteral("EnergyUsageDict"), QVariantMap()},
        {QStringLiteral("EnergyConsumption"), 2.0F},
        {QStringLiteral("MemoryStats"), samples::memory()},
        {QStringLiteral("DiskStatistics"), QVariantList{samples::disk(), samples::disk()}},
        {QStringLiteral("NetStatistics"), QVariantMap{{QStringLiteral("InBytes"), quint64(1536)},
                                                      {QStringLiteral("OutBytes"), quint64(20)}}},
        {QStringLiteral("NetworkInMinuteStats"), samples::record(1, 2, 3)},
        {QStringLiteral("NetworkOutMinuteStats"), samples::record(4, 5, 6)},
        {QStringLiteral("diskReadBytesPerSec"), qint64(2048)},
        {QStringLiteral("diskWriteBytesPerSec"), qint64(10)},
        {QStringLiteral("BatteryStats"),
         QVariantMap{{QStringLiteral("BatteryEnabled"), true},
                     {QStringLiteral("BatteryRemainPercent"), 50.0F}}},
        {QStringLiteral("CPUTemparatures"), QVariantMap{{QStringLiteral("CPU Die"), 45.0}}},
        {QStringLiteral("CPUTemparaturesMinutesStats"),
         QVariantMap{{QStringLiteral("CPU Die"), samples::record(45, 46, 44)}}},
        {QStringLiteral("FanMove"),
         QVariantMap{
             {QStringLiteral("AverageSpeed"), 1500.0F},
             {QStringLiteral("DataArray"), QVariantList{samples::fan(1200), samples::fan(1800)}}}},
        {QStringLiteral("FanMoveMinutesStats"),
         QVariantList{samples::record(1, 2, 3), samples::record(4, 5, 6),
                      samples::record(7, 8, 9)}},
        {QStringLiteral("topResult"), QStringLiteral("text")}};
    state.temperatureKeys = samples::keys({QStringLiteral("CPU Die")});
    state.fanKeys = samples::keys({QStringLiteral("ActualSpeed")});
    state.preferences.titles.monitorTemperature = true;
    state.preferences.titles.monitorFanMove = true;
    state.networkProcesses =
        QVariantMap{{QStringLiteral("n"), samples::traffic(QStringLiteral("n"), 0, 0, 0.0, 0.0)}};
    state.preferences.networkMax = 5;
    return state;
}

Menu built(const MainMenuState &state)
{
    Menu menu(QStringLiteral("Pulsebar"));
    addMainMenu(menu, state);
    return menu;
}

const MenuItem &rowTitled(const Menu &menu, const char *title)
{
    static const MenuItem none;
    for (const MenuItem &item : menu.items()) {
        if (item.title == QString::fromUtf8(title))
            return item;
    }
    ADD_FAILURE() << "no row " << title;
    return none;
}

TEST(MainMenu, SectionsInTheirOrder)
{
    EXPECT_THAT(titles(built(fullState())),
                ElementsAre("12.5% : b", "12.5% : a", "-", "\u21930.0B(+0.0B)/\u21910.0B(+0.0B):n",
                            "-", "CPU Average: 50.0%", "Energy Consumption: 2.0%",
                            "CPU Die: 45.0\u2103", "Fan: 1500RPM", "System Memory", "Disk #1",
                            "Disk #2", "Network In: 1.5KB/sec", "Network Out: 20B/sec",
                            " Disk Read: 2.0KB/sec", "Disk Write: 10B/sec", "Battery: 50.0%",
                            "Detailed Information", "-", "Hide Graph", "Preference", "-", "Quit"));
}

TEST(MainMenu, ASampleThatTellsNothing)
{
    EXPECT_THAT(titles(built({})),
                ElementsAre("-", "CPU Average: 0.0%", "Network In: 0.0B/sec",
                            "Network Out: 0.0B/sec", " Disk Read: 0.0B/sec", "Disk Write: 0.0B/sec",
                            "Detailed Information", "-", "Hide Graph", "Preference", "-", "Quit"));
}

TEST(MainMenu, ValuesOfOtherTypes)
{
    MainMenuState state;
    state.preferences.titles.monitorTemperature = true;
    state.preferences.titles.monitorFanMove = true;
    for (const char *key :
         {"ProcessList", "CPUUsage", "CPUUsageCoreAverage", "EnergyUsageDict", "MemoryStats",
          "DiskStatistics", "NetStatistics", "NetworkInMinuteStats", "BatteryStats", "topResult",
          "CPUTemparatures", "CPUTemparaturesMinutesStats", "FanMove", "FanMoveMinutesStats"})
        state.topDict.insert(QString::fromLatin1(key), QStringLiteral("odd"));
    EXPECT_EQ(titles(built(state)), titles(built({})));
    for (const char *key : {"ProcessList", "EnergyUsageDict", "BatteryStats"})
        state.topDict.insert(QString::fromLatin1(key), QVariantList{1, QStringLiteral("x")});
    EXPECT_EQ(titles(built(state)), titles(built({})));
}

/// Hands on the value with each of its parts, and the whole, replaced by `odd`, one at a time.
void withEachPartReplaced(const QVariant &whole, const QVariant &odd,
                          const std::function<void(const QVariant &)> &use)
{
    use(odd);
    const QVariantMap map = whole.toMap();
    for (auto part = map.begin(); part != map.end(); ++part) {
        withEachPartReplaced(part.value(), odd, [&](const QVariant &replaced) {
            QVariantMap changed = map;
            changed.insert(part.key(), replaced);
            use(changed);
        });
    }
    const QVariantList list = whole.toList();
    for (qsizetype i = 0; i < list.size(); ++i) {
        withEachPartReplaced(list[i], odd, [&](const QVariant &replaced) {
            QVariantList changed = list;
            changed[i] = replaced;
            use(changed);
        });
    }
}

TEST(MainMenu, AnyValueAnywhere)
{
    using Real = std::numeric_limits<double>;
    MainMenuState state = fullState();
    state.processes.monitorProcessUsage = true;
    state.processes.usageInfoDictForKey = [](const QString & /*key*/) {
        return QVariantMap{{QStringLiteral("usageInfo"), samples::record(1, 2, 3)}};
    };
    const QVariant topDict = state.topDict;
    const QVariant network = *state.networkProcesses;
    int built = 0;
    const auto build = [&built, &state] {
        Menu menu;
        addMainMenu(menu, state);
        ++built;
        ASSERT_GE(menu.items().size(), 12);
        EXPECT_EQ(menu.items().constLast().title, QStringLiteral("Quit"));
    };
    for (const QVariant &odd :
         {QVariant(), QVariant(-1), QVariant(true), QVariant(std::numeric_limits<quint64>::max()),
          QVariant(std::numeric_limits<qint64>::min()), QVariant(Real::quiet_NaN()),
          QVariant(Real::infinity()), QVariant(-Real::max()), QVariant(QString()),
          QVariant(QStringLiteral("%@ %n // __")), QVariant(QByteArray("x")),
          QVariant(QVariantList{QVariantMap(), 1}),
          QVariant(QVariantMap{{QString(), QVariantList{1}}})}) {
        withEachPartReplaced(topDict, odd, [&](const QVariant &changed) {
            state.topDict = changed.toMap();
            build();
        });
        state.topDict = topDict.toMap();
        withEachPartReplaced(network, odd, [&](const QVariant &changed) {
            state.networkProcesses = changed.toMap();
            build();
        });
        state.networkProcesses = network.toMap();
    }
    EXPECT_GT(built, 1000);
}

TEST(MainMenu, AnEmptyEntryIsNoProcess)
{
    MainMenuState state;
    state.topDict.insert(
        QStringLiteral("ProcessList"),
        QVariantList{samples::process(QStringLiteral("12"), QStringLiteral("b")), QVariantMap()});
    EXPECT_EQ(titles(built(state)).size(), titles(built({})).size() + 1);
}

TEST(MainMenu, TrafficIsSilentlyAbsent)
{
    MainMenuState state = fullState();
    state.networkProcesses.reset();
    EXPECT_EQ(titles(built(state)).size(), titles(built(fullState())).size() - 2);
    // A monitor that runs but has seen nobody leaves its line.
    state.networkProcesses = QVariantMap();
    EXPECT_EQ(titles(built(state)).size(), titles(built(fullState())).size() - 1);
}

TEST(MainMenu, RatesChooseTheTitle)
{
    const Menu menu = built(fullState());
    const MenuItem &in = rowTitled(menu, "Network In: 1.5KB/sec");
    EXPECT_EQ(deed(in), "changeTitleToDisplayType > controller #2");
    EXPECT_EQ(in.submenu->title(), QStringLiteral("Network__NetworkInMinuteStats"));
    EXPECT_THAT(titlesBelow(in), ElementsAre("Average: 1.0B", "Maximum: 2.0B", "Minimum: 3.0B"));
    const MenuItem &out = rowTitled(menu, "Network Out: 20B/sec");
    EXPECT_EQ(deed(out), "changeTitleToDisplayType > controller #3");
    EXPECT_EQ(out.submenu->title(), QStringLiteral("Network__NetworkOutMinuteStats"));
    EXPECT_THAT(titlesBelow(out), ElementsAre("Average: 4.0B", "Maximum: 5.0B", "Minimum: 6.0B"));
    const MenuItem &read = rowTitled(menu, " Disk Read: 2.0KB/sec");
    EXPECT_EQ(deed(read), "changeTitleToDisplayType > controller #5");
    EXPECT_EQ(read.submenu, nullptr);
    const MenuItem &written = rowTitled(menu, "Disk Write: 10B/sec");
    EXPECT_EQ(deed(written), "changeTitleToDisplayType > controller #6");
    EXPECT_EQ(written.submenu, nullptr);
}

TEST(MainMenu, RatesWithoutRecordsHaveNoSubmenu)
{
    const Menu menu = built({});
    EXPECT_EQ(rowTitled(menu, "Network In: 0.0B/sec").submenu, nullptr);
    EXPECT_EQ(rowTitled(menu, "Network Out: 0.0B/sec").submenu, nullptr);
}

TEST(MainMenu, BatteryOnlyWhenThereIsOne)
{
    MainMenuState state = fullState();
    state.topDict.insert(QStringLiteral("BatteryStats"),
                         QVariantMap{{QStringLiteral("BatteryRemainPercent"), 50.0F}});
    EXPECT_EQ(titles(built(state)).size(), titles(built(fullState())).size() - 1);
}

TEST(MainMenu, SensorsOnlyWhenTheyAreMonitored)
{
    MainMenuState state = fullState();
    rowTitled(built(state), "CPU Die: 45.0\u2103");
    rowTitled(built(state), "Fan: 1500RPM");
    state.preferences.titles.monitorTemperature = false;
    EXPECT_THAT(titles(built(state)), Not(Contains("CPU Die: 45.0\u2103")));
    state.preferences.titles.monitorFanMove = false;
    EXPECT_THAT(titles(built(state)), Not(Contains("Fan: 1500RPM")));
    state = fullState();
    for (const char *key : {"CPUTemparatures", "FanMove"})
        state.topDict.remove(QString::fromLatin1(key));
    EXPECT_EQ(titles(built(state)).size(), titles(built(fullState())).size() - 2);
}

TEST(MainMenu, SensorsWithTheirStatistics)
{
    MainMenuState state = fullState();
    state.preferences.fahrenheit = true;
    const Menu menu = built(state);
    const MenuItem &die = rowTitled(menu, "CPU Die: 45.0\u2109");
    EXPECT_EQ(deed(die), "changeTitleToDisplayType > controller #10");
    ASSERT_THAT(titlesBelow(die), ElementsAre("CPU Die:45.0\u2109"));
    EXPECT_THAT(titlesBelow(die.submenu->items()[0]), Contains("Maximum: 46.0\u2109"));
    const MenuItem &fans = rowTitled(menu, "Fan: 1500RPM");
    EXPECT_EQ(deed(fans), "changeTitleToDisplayType > controller #11");
    EXPECT_THAT(titlesBelow(fans), Contains("Average: 7.0RPM"));
}

TEST(MainMenu, GraphsAndTheEnd)
{
    MainMenuState state;
    Menu menu = built(state);
    const MenuItem &shown = rowTitled(menu, "Hide Graph");
    EXPECT_EQ(deed(shown), "switchGraphWindow > controller #101");
    EXPECT_EQ(shown.state, ItemState::Off);
    state.hideGraphWindow = true;
    menu = built(state);
    EXPECT_EQ(rowTitled(menu, "Hide Graph").state, ItemState::On);
    EXPECT_EQ(deed(menu.items().constLast()), "terminate > application");
}

TEST(MainMenu, AppendsToWhatIsThere)
{
    Menu menu;
    menu.addDummyItemWithTitle(QStringLiteral("first"), ItemTarget::None);
    addMainMenu(menu, {});
    EXPECT_EQ(menu.items()[0].title, QStringLiteral("first"));
}

} // namespace
} // namespace pulsebar
