#include "menu/PreferenceMenu.h"

#include "menu/TitleMenu.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pulsebar {
namespace {

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

std::vector<std::string> titles(const Menu &menu)
{
    std::vector<std::string> result;
    for (const MenuItem &item : menu.items())
        result.push_back(item.separator ? "-" : item.title.toStdString());
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
                            "-", "Title on Panel"));
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

TEST(PreferenceMenu, WaysOnThePanel)
{
    const MenuItem item = makeTitleOnPanelMenu(QStringLiteral("strip"));
    EXPECT_THAT(titles(*item.submenu), ElementsAre("Automatic", "Text", "Icon", "Strip"));
    for (const MenuItem &way : item.submenu->items())
        EXPECT_EQ(way.state == ItemState::On, way.representedObject == QStringLiteral("strip"));
}

} // namespace
} // namespace pulsebar
