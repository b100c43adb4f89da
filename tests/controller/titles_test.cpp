#include "FakeCollectors.h"
#include "FakeStatusItem.h"
#include "controller/Titles.h"
#include "engine/TopMonitor.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

constexpr const char *kReport =
    "Processes: 1 total\n"
    "CPU usage: 10.00% user, 2.34% sys, 87.66% idle\n"
    "PhysMem: 8167M used, 100M free.\n"
    "\n"
    "PID COMMAND %CPU TIME #TH USER #MSENT #MRECV SYSBSD SYSMACH POWER\n"
    "42 Web Content 35.0 00:01.00 3 ada N/A N/A N/A N/A 35.0\n";

QVector<bool> rotation(std::initializer_list<int> types)
{
    QVector<bool> members(12, false);
    for (const int type : types)
        members[type - 1] = true;
    return members;
}

class TitlesTest : public testing::Test
{
protected:
    TitlesTest()
        : m_monitor(sources(), SamplerCommand{[] { return QString(); }})
        , titles(m_monitor, item, QStringLiteral("program"))
    {
        titles.setToggleTitleOptionArray(rotation({}));
    }

    void sample(const char *report = kReport)
    {
        m_monitor.loadTopInfo(report);
        titles.update();
    }

    /// What ps tells about the busiest process, some time after it was first asked for.
    void learnPath() { m_monitor.readProcessPath("PID COMMAND\n42 /opt/browser"); }

    FakeStatusItem item;
    FakeBattery battery;
    FakeTemperatures temperatures;
    FakeIcons icons;

private:
    MonitorSources sources()
    {
        MonitorSources sources;
        sources.battery = &battery;
        sources.temperatures = &temperatures;
        sources.icons = &icons;
        sources.pathQuery.program = QStringLiteral("/nonexistent/ps");
        return sources;
    }

protected:
    TopMonitor m_monitor;
    Titles titles;
};

TEST_F(TitlesTest, ValuesStandSideBySide)
{
    m_monitor.setFahrenheit(true);
    titles.setTitleTypesToDisplay({1, 10});
    sample();
    EXPECT_EQ(item.title(), QStringLiteral("12.3% | CPU:122\u2109"));
    EXPECT_EQ(item.guide, QStringLiteral("100.0% | CPU:100\u2109"));
    EXPECT_EQ(item.image(), QString());
    EXPECT_EQ(titles.titleState(), 10);
}

TEST_F(TitlesTest, BusiestProcessHasItsIcon)
{
    titles.setTitleTypesToDisplay({9, 1});
    sample();
    EXPECT_EQ(item.title(), QStringLiteral("35.0% | 12.3%"));
    EXPECT_EQ(item.image(), QStringLiteral("application-x-executable"));
    learnPath();
    sample();
    EXPECT_EQ(item.image(), QStringLiteral("browser"));
    EXPECT_EQ(icons.asked, QStringList{QStringLiteral("42")});
    titles.setTitleTypesToDisplay({1});
    sample();
    EXPECT_EQ(item.image(), QString());
}

TEST_F(TitlesTest, ProcessWithoutAnIconIsAnyProgram)
{
    icons.icon.clear();
    titles.setTitleTypesToDisplay({8});
    sample();
    EXPECT_EQ(item.title(), QString());
    EXPECT_EQ(item.image(), QStringLiteral("application-x-executable"));
}

TEST_F(TitlesTest, WithoutAProcessItsShareIsZeroAndThereIsNoIcon)
{
    for (const int type : {8, 9}) {
        titles.setTitleTypesToDisplay({type});
        sample("");
        EXPECT_EQ(item.title(), QStringLiteral("0.0%")) << type;
        EXPECT_EQ(item.image(), QString()) << type;
    }
}

TEST_F(TitlesTest, SeparatorComesBeforeATypeWithoutText)
{
    titles.setTitleTypesToDisplay({1, 8});
    learnPath();
    sample();
    EXPECT_EQ(item.title(), QStringLiteral("12.3% | "));
    EXPECT_EQ(item.image(), QStringLiteral("browser"));
    titles.setTitleTypesToDisplay({1, 7, 99, 1});
    sample();
    EXPECT_EQ(item.title(), QStringLiteral("12.3% |  |  | 12.3%"));
    titles.setTitleTypesToDisplay({0});
    sample();
    EXPECT_EQ(item.title(), QString());
}

TEST_F(TitlesTest, RotationShowsOneMemberPerSample)
{
    titles.setTitleTypesToDisplay({7});
    titles.setToggleTitleOptionArray(rotation({1, 9, 11}));
    learnPath();
    sample();
    EXPECT_EQ(item.title(), QStringLiteral("12.3%"));
    EXPECT_EQ(item.image(), QString());
    sample();
    EXPECT_EQ(item.title(), QStringLiteral("35.0%"));
    EXPECT_EQ(item.image(), QStringLiteral("browser"));
    sample();
    EXPECT_EQ(item.title(), QStringLiteral("0RPM"));
    EXPECT_EQ(item.image(), QString());
    EXPECT_EQ(titles.titleState(), 11);
    sample();
    EXPECT_EQ(titles.titleState(), 1);
    EXPECT_EQ(item.guide, QStringLiteral("9999RPM"));
}

TEST_F(TitlesTest, RotationPassesOverAnAbsentBattery)
{
    titles.setTitleTypesToDisplay({7});
    titles.setToggleTitleOptionArray(rotation({3, 4, 5}));
    sample();
    EXPECT_EQ(titles.titleState(), 3);
    sample();
    EXPECT_EQ(titles.titleState(), 5);
    battery.status = {{QStringLiteral("BatteryEnabled"), true}};
    sample();
    EXPECT_EQ(titles.titleState(), 3);
    sample();
    EXPECT_EQ(titles.titleState(), 4);
}

TEST_F(TitlesTest, RotationWithoutAMemberLeavesTheTitle)
{
    titles.setTitleTypesToDisplay({7});
    item.setTitle(QStringLiteral("before"));
    sample();
    EXPECT_EQ(item.title(), QStringLiteral("before"));
    EXPECT_EQ(titles.titleState(), 0);
    // A battery that is not there is no member either.
    titles.setToggleTitleOptionArray(rotation({4}));
    sample();
    EXPECT_EQ(item.title(), QStringLiteral("before"));
}

TEST_F(TitlesTest, RotationTakesOverTheItemsLength)
{
    titles.setTitleTypesToDisplay({7});
    item.setLength(77.0);
    sample();
    EXPECT_EQ(titles.itemWidth(), 77.0F);
}

TEST_F(TitlesTest, PlainClickChoosesOne)
{
    titles.setTitleTypesToDisplay({1, 2});
    titles.changeTitleToDisplayType(5, false);
    EXPECT_EQ(titles.titleTypesToDisplay(), QVector<int>{5});
    EXPECT_EQ(item.title(), QStringLiteral("Usage"));
    EXPECT_EQ(item.image(), QString());
}

TEST_F(TitlesTest, CommandClickAddsAndTakesAway)
{
    titles.setTitleTypesToDisplay({1});
    titles.changeTitleToDisplayType(1, true);
    EXPECT_EQ(titles.titleTypesToDisplay(), QVector<int>{1});
    titles.changeTitleToDisplayType(2, true);
    EXPECT_EQ(titles.titleTypesToDisplay(), (QVector<int>{1, 2}));
    titles.changeTitleToDisplayType(9, true);
    EXPECT_EQ(titles.titleTypesToDisplay(), (QVector<int>{9, 1, 2}));
    titles.changeTitleToDisplayType(1, true);
    EXPECT_EQ(titles.titleTypesToDisplay(), (QVector<int>{9, 2}));
}

TEST_F(TitlesTest, CommandClickDropsWhatStandsAlone)
{
    titles.setTitleTypesToDisplay({7});
    titles.changeTitleToDisplayType(3, true);
    EXPECT_EQ(titles.titleTypesToDisplay(), QVector<int>{3});
    titles.changeTitleToDisplayType(8, true);
    EXPECT_EQ(titles.titleTypesToDisplay(), QVector<int>{8});
    titles.changeTitleToDisplayType(9, true);
    EXPECT_EQ(titles.titleTypesToDisplay(), QVector<int>{9});
}

TEST_F(TitlesTest, IconModeEndsAtItsWidth)
{
    titles.setItemWidth(90.0F);
    titles.changeTitleToDisplayType(8, false);
    EXPECT_EQ(titles.itemWidth(), Titles::kIconWidth);
    EXPECT_EQ(item.length(), 30.0);
    EXPECT_EQ(item.title(), QString());
    EXPECT_EQ(item.image(), QStringLiteral("program"));
    learnPath();
    sample();
    EXPECT_EQ(item.image(), QStringLiteral("browser"));
}

TEST_F(TitlesTest, WidthFollowsTheChoice)
{
    const auto width = [this](const QVector<int> &types) {
        titles.chooseTitleTypes(types);
        return item.length();
    };
    EXPECT_EQ(width({1}), 60.0);
    EXPECT_EQ(width({1, 2}), 60.0);
    EXPECT_EQ(width({1, 2, 3}), 90.0);
    EXPECT_EQ(width({9, 1}), 70.0);
    titles.setToggleTitleOptionArray(rotation({9}));
    EXPECT_EQ(width({1}), 80.0);
    EXPECT_EQ(width({1, 2, 3}), 120.0);
    EXPECT_EQ(width({7}), 80.0);
    // A short list has no entry for the busiest process.
    titles.setToggleTitleOptionArray(QVector<bool>(8, true));
    EXPECT_EQ(width({1}), 60.0);
}

TEST_F(TitlesTest, WidthIsToldWhenItChanges)
{
    int told = 0;
    titles.setWidthListener([&told] { ++told; });
    titles.setItemWidth(60.0F);
    titles.setItemWidth(60.0F);
    EXPECT_EQ(told, 1);
}

TEST_F(TitlesTest, RotationMembersAreSwitched)
{
    titles.setTitleTypesToDisplay({7});
    titles.changeToggleTitleOption(8);
    EXPECT_EQ(titles.toggleTitleOptionArray(), rotation({9}));
    EXPECT_EQ(item.length(), 80.0);
    EXPECT_EQ(item.title(), QStringLiteral("Usage"));
    titles.changeToggleTitleOption(12);
    titles.changeToggleTitleOption(-1);
    EXPECT_EQ(titles.toggleTitleOptionArray(), rotation({9}));
}

TEST(AdjustWidth, FitsTheTitle)
{
    EXPECT_EQ(adjustWidthWithShrink(60.5, 1, 8.0, false, false), 30.0);
    EXPECT_EQ(adjustWidthWithShrink(60.5, 5, 60.0, false, false), 60.0);
    EXPECT_EQ(adjustWidthWithShrink(60.5, 5, 60.2, false, false), 66.0);
    EXPECT_EQ(adjustWidthWithShrink(60.5, 5, 40.9, false, true), 44.0);
    EXPECT_EQ(adjustWidthWithShrink(60.5, 5, 40.9, true, true), 79.0);
}

} // namespace
} // namespace pulsebar
