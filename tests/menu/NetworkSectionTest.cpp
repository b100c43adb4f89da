#include "menu/NetworkSection.h"

#include "MenuReading.h"
#include "MenuSamples.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace pulsebar {
namespace {

using reading::deed;
using reading::deeds;
using reading::titles;
using reading::titlesBelow;
using samples::traffic;
using testing::Each;
using testing::ElementsAre;

QVariantMap byName(const QVector<QVariantMap> &entries)
{
    QVariantMap processes;
    for (const QVariantMap &entry : entries)
        processes.insert(entry.value(QStringLiteral("name")).toString(), entry);
    return processes;
}

std::vector<std::string> names(const Menu &menu)
{
    std::vector<std::string> result;
    for (const MenuItem &item : menu.items())
        result.push_back(item.submenu ? item.submenu->title().toStdString() : reading::title(item));
    return result;
}

TEST(NetworkSection, AProcessWithTwoConnections)
{
    QVariantMap process = traffic(QStringLiteral("Safari.412"), 1536, 200, 600.0, 0.0);
    process.insert(QStringLiteral("subprocess"),
                   QVariantList{samples::connection(900, 150), samples::connection(1 << 21, 5)});
    const MenuItem item = makeNetworkMenuForDict(process);
    EXPECT_EQ(item.title, QStringLiteral("\u21931.5KB(+600B)/\u2191200B(+0.0B):Safari.412"));
    EXPECT_EQ(deed(item), "dummy > nobody");
    EXPECT_EQ(item.submenu->title(), QStringLiteral("Safari.412"));
    EXPECT_THAT(
        titles(*item.submenu),
        ElementsAre("\u2193900B/\u2191150B:tcp4(Established) 10.0.1.2:50123<->192.0.2.7:443",
                    "\u21932.0MB/\u21915.0B:tcp4(Established) 10.0.1.2:50123<->192.0.2.7:443"));
    EXPECT_THAT(deeds(*item.submenu), Each("dummy > nobody"));
}

TEST(NetworkSection, NoConnectionsAreAnEmptySubmenu)
{
    QVariantMap process = traffic(QStringLiteral("x.1"), 1, 2, 3.0, 4.0);
    process.remove(QStringLiteral("subprocess"));
    const MenuItem item = makeNetworkMenuForDict(process);
    ASSERT_NE(item.submenu, nullptr);
    EXPECT_TRUE(item.submenu->isEmpty());
}

TEST(NetworkSection, EntriesThatTellNothing)
{
    const MenuItem item = makeNetworkMenuForDict(
        {{QStringLiteral("subprocess"), QVariantList{1, QStringLiteral("x")}}});
    EXPECT_EQ(item.title, QStringLiteral("\u21930.0B(+0.0B)/\u21910.0B(+0.0B):"));
    EXPECT_THAT(titlesBelow(item), Each("\u21930.0B/\u21910.0B:() "));
}

TEST(NetworkSection, NamesAreNoFormats)
{
    const QString name = QStringLiteral("%@%n_&//x");
    const MenuItem item = makeNetworkMenuForDict(traffic(name, 0, 0, 0.0, 0.0));
    EXPECT_EQ(item.title, QStringLiteral("\u21930.0B(+0.0B)/\u21910.0B(+0.0B):") + name);
    EXPECT_EQ(item.submenu->title(), name);
}

TEST(NetworkSection, TheBusiestStandInTheMenu)
{
    const QVariantMap processes = byName(
        {traffic(QStringLiteral("a"), 1, 1, 1.0, 0.0), traffic(QStringLiteral("b"), 1, 1, 0.0, 5.0),
         traffic(QStringLiteral("c"), 1, 1, 2.0, 2.0), traffic(QStringLiteral("d"), 1, 1, 3.0, 0.0),
         traffic(QStringLiteral("e"), 1, 1, 1.0, 1.0)});
    Menu menu;
    addNetworkProcesses(menu, processes, 2);
    EXPECT_THAT(names(menu), ElementsAre("b", "c", "Other Network Activities", "-"));
    const MenuItem &others = menu.items()[2];
    EXPECT_EQ(others.title, QStringLiteral("Other Network Activities"));
    EXPECT_EQ(deed(others), "dummy > nobody");
    EXPECT_THAT(names(*others.submenu), ElementsAre("d", "e", "a"));
}

TEST(NetworkSection, EqualTrafficIsOrderedByTotals)
{
    const QVariantMap processes = byName({traffic(QStringLiteral("a"), 10, 10, 2.0, 2.0),
                                          traffic(QStringLiteral("b"), 30, 0, 4.0, 0.0),
                                          traffic(QStringLiteral("c"), 0, 25, 0.0, 4.0)});
    Menu menu;
    addNetworkProcesses(menu, processes, 5);
    EXPECT_THAT(names(menu), ElementsAre("b", "c", "a", "-"));
}

TEST(NetworkSection, CountsOutsideTheChoices)
{
    const QVariantMap processes = byName({traffic(QStringLiteral("a"), 1, 1, 1.0, 0.0)});
    for (const qint64 count : {qint64(0), qint64(-3), std::numeric_limits<qint64>::min()}) {
        Menu menu;
        addNetworkProcesses(menu, processes, count);
        EXPECT_THAT(names(menu), ElementsAre("Other Network Activities", "-")) << count;
    }
    Menu menu;
    addNetworkProcesses(menu, processes, std::numeric_limits<qint64>::max());
    EXPECT_THAT(names(menu), ElementsAre("a", "-"));
}

TEST(NetworkSection, NothingIsOrderedByNotANumber)
{
    QVector<QVariantMap> entries;
    for (int i = 0; i < 40; ++i)
        entries.append(traffic(QStringLiteral("p%1").arg(i), i, 0,
                               i % 2 == 0 ? std::numeric_limits<double>::quiet_NaN() : i, 0.0));
    Menu menu;
    addNetworkProcesses(menu, byName(entries), 1);
    EXPECT_THAT(names(menu), ElementsAre("p39", "Other Network Activities", "-"));
    EXPECT_EQ(menu.items()[1].submenu->items().size(), 39);
}

TEST(NetworkSection, NoProcesses)
{
    Menu menu;
    addNetworkProcesses(menu, {{QStringLiteral("x"), 1}}, 5);
    EXPECT_THAT(names(menu), ElementsAre("-"));
}

TEST(NetworkSection, StatisticsInBytes)
{
    const auto menu = menuForStaticsForNetwork(samples::record(1536.0, 1048577.0, 3.0),
                                               QStringLiteral("NetworkInMinuteStats"));
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->title(), QStringLiteral("Network__NetworkInMinuteStats"));
    EXPECT_THAT(titles(*menu), ElementsAre("Average: 1.5KB", "Maximum: 1.0MB", "Minimum: 3.0B"));
    EXPECT_THAT(deeds(*menu), Each("showGraphView > controller"));
}

TEST(NetworkSection, NoStatisticsNoSubmenu)
{
    EXPECT_EQ(menuForStaticsForNetwork({}, QStringLiteral("x")), nullptr);
    EXPECT_EQ(menuForStaticsForNetwork(5, QStringLiteral("x")), nullptr);
}

} // namespace
} // namespace pulsebar
