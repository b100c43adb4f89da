#include "menu/PreferenceMenu.h"

#include "MenuReading.h"
#include "menu/TitleMenu.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace pulsebar {
namespace {

using reading::deed;
using reading::titles;
using testing::ElementsAre;

QVector<int> tags(const Menu &menu)
{
    QVector<int> result;
    for (const MenuItem &item : menu.items())
        result += item.separator ? -1 : item.tag;
    return result;
}

QVector<int> checkedTags(const Menu &menu)
{
    QVector<int> result;
    for (const MenuItem &item : menu.items()) {
        if (item.state == ItemState::On)
            result += item.tag;
    }
    return result;
}

TEST(TitleMenu, OffersWhatIsMeasured)
{
    TitleMenuState state;
    state.titleTypesToDisplay = {1, 3};
    const MenuItem poor = makeTitleOptionMenu(state);
    EXPECT_EQ(poor.title, QStringLiteral("Top Title"));
    EXPECT_TRUE(poor.action.isEmpty());
    EXPECT_EQ(poor.submenu->title(), QStringLiteral("Title type to Display"));
    EXPECT_EQ(tags(*poor.submenu), (QVector<int>{1, 2, 3, 5, 6, 7, 8, 9}));
    EXPECT_EQ(checkedTags(*poor.submenu), (QVector<int>{1, 3}));
    state.batteryEnabled = state.monitorFanMove = state.monitorTemperature = true;
    const MenuItem rich = makeTitleOptionMenu(state);
    EXPECT_EQ(tags(*rich.submenu), (QVector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
    EXPECT_THAT(titles(*rich.submenu),
                ElementsAre("CPU Usage", "Network In", "Network Out", "Battery", "Disk Read",
                            "Disk Write", "Rotate", "Icon Only", "Busiest Process",
                            "CPU Temperature", "Fan Speed"));
    for (const MenuItem &item : rich.submenu->items()) {
        EXPECT_EQ(item.action, QStringLiteral("changeTitleToDisplayType"));
        EXPECT_EQ(item.target, ItemTarget::Controller);
    }
}

TEST(TitleMenu, RotationHasItsMembers)
{
    TitleMenuState state;
    state.titleTypesToDisplay = {7};
    state.toggleTitleOptionArray = QVector<bool>(12, false);
    state.toggleTitleOptionArray[10] = true;
    const MenuItem item = makeTitleOptionMenu(state);
    EXPECT_EQ(tags(*item.submenu),
              (QVector<int>{1, 2, 3, 5, 6, 7, 8, 9, -1, 0, 1, 2, 4, 5, 8, 9, 10}));
    EXPECT_EQ(checkedTags(*item.submenu), (QVector<int>{7, 10}));
    EXPECT_EQ(item.submenu->items().constLast().action, QStringLiteral("changeToggleTitleOption"));
    EXPECT_EQ(item.submenu->items().constLast().title, QStringLiteral("Fan Speed"));
    // The rotation's block belongs to a rotation that stands first.
    state.titleTypesToDisplay = {1, 7};
    EXPECT_EQ(tags(*makeTitleOptionMenu(state).submenu), (QVector<int>{1, 2, 3, 5, 6, 7, 8, 9}));
}

TEST(PreferenceMenu, StandsInItsOrder)
{
    PreferenceMenuState state;
    state.titleOnPanel = QStringLiteral("text");
    const MenuItem item = makePreferenceOptionsMenu(state);
    EXPECT_EQ(item.title, QStringLiteral("Preference"));
    EXPECT_THAT(titles(*item.submenu),
                ElementsAre("Check Memory", "Sort by Memory", "Top Title", "Refresh Time",
                            "Max of List", "Max of Network", "Show Icon", "In Fahrenheit",
                            "Auto Launch When Mac Starts up", "-", "Show Icon", "-", "Show Manual",
                            "-", "Title on Panel", "Alerts"));
}

TEST(PreferenceMenu, RefreshTimes)
{
    const MenuItem item = makeRefreshTimeMenu(2);
    EXPECT_THAT(titles(*item.submenu),
                ElementsAre("1 Second", "2 Seconds", "3 Seconds", "4 Seconds", "5 Seconds"));
    EXPECT_EQ(checkedTags(*item.submenu), QVector<int>{2});
    EXPECT_EQ(item.submenu->items().constFirst().action, QStringLiteral("changeRefreshTime"));
}

TEST(PreferenceMenu, ListMaximum)
{
    const MenuItem item = makeProcessListMaxMenu(10);
    EXPECT_EQ(item.submenu->title(), QStringLiteral("Refresh Time"));
    EXPECT_EQ(item.submenu->items().size(), 20);
    EXPECT_EQ(checkedTags(*item.submenu), QVector<int>{10});
    EXPECT_TRUE(checkedTags(*makeProcessListMaxMenu(21).submenu).isEmpty());
    EXPECT_TRUE(checkedTags(*makeProcessListMaxMenu(0).submenu).isEmpty());
}

TEST(PreferenceMenu, NetworkMaximum)
{
    const MenuItem item = makeNetworkListMaxMenu(0);
    EXPECT_EQ(item.title, QStringLiteral("Max of Network"));
    EXPECT_EQ(item.submenu->title(), QStringLiteral("Refresh Time"));
    EXPECT_EQ(item.submenu->items().size(), 21);
    EXPECT_EQ(item.submenu->items().constFirst().title, QStringLiteral("0"));
    EXPECT_EQ(checkedTags(*item.submenu), QVector<int>{0});
    EXPECT_EQ(deed(item.submenu->items().constLast()), "changeNetworkListMax > controller #20");
    EXPECT_TRUE(checkedTags(*makeNetworkListMaxMenu(-1).submenu).isEmpty());
    // Not even one whose low half looks like a choice.
    EXPECT_TRUE(checkedTags(*makeNetworkListMaxMenu((qint64(1) << 32) + 5).submenu).isEmpty());
}

TEST(PreferenceMenu, CheckRowsFollowTheirSettings)
{
    struct
    {
        MenuItem on;
        MenuItem off;
        const char *title;
        const char *deed;
    } const rows[]{
        {makeCheckMemoryMenu(true), makeCheckMemoryMenu(false), "Check Memory",
         "switchCheckMemory > controller"},
        {makeSortByMemoryMenu(true), makeSortByMemoryMenu(false), "Sort by Memory",
         "switchSortByMemory > controller"},
        {makeShowIconMenu(true), makeShowIconMenu(false), "Show Icon",
         "switchShowIcon > controller"},
        {makeFahrenheitMenu(true), makeFahrenheitMenu(false), "In Fahrenheit",
         "switchFahrenheit > controller"},
        {makeLaunchAtStartupMenu(true), makeLaunchAtStartupMenu(false),
         "Auto Launch When Mac Starts up", "switchAutoLaunch > controller"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(reading::title(row.on), row.title);
        EXPECT_EQ(row.on.state, ItemState::On) << row.title;
        EXPECT_EQ(row.off.state, ItemState::Off) << row.title;
        EXPECT_EQ(deed(row.on), row.deed);
    }
}

TEST(PreferenceMenu, EachRowHasItsOwnState)
{
    const auto checked = [](const PreferenceMenuState &state) {
        const MenuItem item = makePreferenceOptionsMenu(state);
        QStringList result;
        for (const MenuItem &row : item.submenu->items()) {
            if (row.state == ItemState::On)
                result += row.title;
        }
        return result;
    };
    PreferenceMenuState state;
    EXPECT_TRUE(checked(state).isEmpty());
    state.checkMemory = true;
    EXPECT_EQ(checked(state), QStringList{QStringLiteral("Check Memory")});
    state = {};
    state.sortByMemory = true;
    EXPECT_EQ(checked(state), QStringList{QStringLiteral("Sort by Memory")});
    state = {};
    state.showIcon = true;
    EXPECT_EQ(checked(state), QStringList{QStringLiteral("Show Icon")});
    state = {};
    state.fahrenheit = true;
    EXPECT_EQ(checked(state), QStringList{QStringLiteral("In Fahrenheit")});
    state = {};
    state.autoLaunch = true;
    EXPECT_EQ(checked(state), QStringList{QStringLiteral("Auto Launch When Mac Starts up")});
}

TEST(PreferenceMenu, EachListHasItsOwnValue)
{
    PreferenceMenuState state;
    state.refreshSec = 2;
    state.listMax = 3;
    state.networkMax = 4;
    const MenuItem item = makePreferenceOptionsMenu(state);
    EXPECT_EQ(checkedTags(*item.submenu->items()[3].submenu), QVector<int>{2});
    EXPECT_EQ(checkedTags(*item.submenu->items()[4].submenu), QVector<int>{3});
    EXPECT_EQ(checkedTags(*item.submenu->items()[5].submenu), QVector<int>{4});
}

TEST(PreferenceMenu, TheManualHasNoTarget)
{
    const MenuItem item = makePreferenceOptionsMenu({});
    const MenuItem &manual = item.submenu->items()[12];
    EXPECT_EQ(manual.title, QStringLiteral("Show Manual"));
    EXPECT_EQ(deed(manual), "showManual > nobody");
}

TEST(PreferenceMenu, WidthSliderAndWhatStandsForIt)
{
    const MenuItem item = makeItemWidthSliderMenu(79.6);
    EXPECT_EQ(item.title, QStringLiteral("Show Icon"));
    EXPECT_EQ(deed(item), "dummy > controller #80");
    EXPECT_EQ(item.view, QStringLiteral("widthSlider"));
    ASSERT_NE(item.substitute, nullptr);
    EXPECT_EQ(item.substitute->title, QStringLiteral("Width on menubar"));
    const Menu &widths = *item.substitute->submenu;
    ASSERT_EQ(widths.items().size(), 18);
    EXPECT_EQ(deed(widths.items().constFirst()), "setItemWidth > controller #30");
    EXPECT_EQ(deed(widths.items().constLast()), "setItemWidth > controller #200");
    EXPECT_EQ(widths.items().constFirst().title, QStringLiteral("30"));
    EXPECT_TRUE(widths.items().constFirst().exclusive);
    EXPECT_EQ(checkedTags(widths), QVector<int>{80});
    EXPECT_TRUE(checkedTags(*makeItemWidthSliderMenu(72.5).substitute->submenu).isEmpty());
    EXPECT_EQ(makeItemWidthSliderMenu(std::numeric_limits<double>::quiet_NaN()).tag, 0);
}

TEST(PreferenceMenu, WaysOnThePanel)
{
    const MenuItem item = makeTitleOnPanelMenu(QStringLiteral("strip"));
    EXPECT_THAT(titles(*item.submenu), ElementsAre("Automatic", "Text", "Icon", "Strip"));
    for (const MenuItem &way : item.submenu->items())
        EXPECT_EQ(way.state == ItemState::On, way.representedObject == QStringLiteral("strip"));
}

} // namespace
} // namespace pulsebar
