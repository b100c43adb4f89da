#include "menu/AlertMenu.h"

#include "MenuReading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using reading::deed;
using reading::titles;
using testing::ElementsAre;

const QString kHot = QStringLiteral("alert-hot");
const QString kBusy = QStringLiteral("alert-busy");

AlertMenuState twoAlerts()
{
    AlertMenuState state;
    state.alerts = {{kHot, QStringLiteral("CPU Die above 90\u2103"), true},
                    {kBusy, QStringLiteral("Busy"), false}};
    return state;
}

TEST(AlertMenu, ListsEachAlertWithItsMark)
{
    const MenuItem alerts = makeAlertsMenu(twoAlerts());
    EXPECT_EQ(alerts.title, QStringLiteral("Alerts"));
    EXPECT_TRUE(alerts.enabled);
    EXPECT_THAT(titles(*alerts.submenu), ElementsAre("CPU Die above 90\u2103", "Busy", "-",
                                                     "Add Alert\u2026", "Edit\u2026", "Remove"));
    const QVector<MenuItem> &rows = alerts.submenu->items();
    EXPECT_EQ(rows.at(0).state, ItemState::On);
    EXPECT_EQ(rows.at(1).state, ItemState::Off);
    EXPECT_FALSE(rows.at(0).exclusive);
    EXPECT_EQ(deed(rows.at(1)), "switchAlert > controller");
    EXPECT_EQ(deed(rows.at(3)), "addAlert > controller");
}

TEST(AlertMenu, RowsCarryTheAlertNotItsPlace)
{
    const MenuItem alerts = makeAlertsMenu(twoAlerts());
    const QVector<MenuItem> &rows = alerts.submenu->items();
    EXPECT_EQ(rows.at(1).representedObject, kBusy);
    for (const int row : {4, 5}) {
        const MenuItem &choice = rows.at(row);
        ASSERT_TRUE(choice.submenu);
        EXPECT_TRUE(choice.enabled);
        EXPECT_TRUE(choice.action.isEmpty());
        EXPECT_THAT(titles(*choice.submenu), ElementsAre("CPU Die above 90\u2103", "Busy"));
        EXPECT_EQ(deed(choice.submenu->items().at(0)),
                  row == 4 ? "editAlert > controller" : "removeAlert > controller");
        EXPECT_EQ(choice.submenu->items().at(0).representedObject, kHot);
    }
}

TEST(AlertMenu, WithoutAlertsThereIsOnlyOneToAdd)
{
    const MenuItem alerts = makeAlertsMenu({});
    EXPECT_THAT(titles(*alerts.submenu), ElementsAre("Add Alert\u2026", "Edit\u2026", "Remove"));
    EXPECT_TRUE(alerts.submenu->items().at(0).enabled);
    EXPECT_FALSE(alerts.submenu->items().at(1).enabled);
    EXPECT_FALSE(alerts.submenu->items().at(2).enabled);
}

TEST(AlertMenu, AFullListTakesNoMore)
{
    AlertMenuState state = twoAlerts();
    state.mayAdd = false;
    const MenuItem alerts = makeAlertsMenu(state);
    EXPECT_FALSE(alerts.submenu->items().at(3).enabled);
    EXPECT_TRUE(alerts.submenu->items().at(4).enabled);
}

} // namespace
} // namespace pulsebar
