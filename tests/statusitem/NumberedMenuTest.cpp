#include "statusitem/NumberedMenu.h"

#include "platform/Processes.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

Menu menuOf(std::initializer_list<const char *> titles)
{
    Menu menu(QStringLiteral("Pulsebar"));
    for (const char *title : titles) {
        menu.addDummyItemWithTitle(QString::fromUtf8(title), ItemTarget::None);
    }
    return menu;
}

TEST(NumberedMenu, NumbersRowsBeforeTheirSubmenus)
{
    Menu menu = menuOf({"a", "b"});
    MenuItem withSubmenu;
    withSubmenu.title = QStringLiteral("c");
    withSubmenu.submenu = std::make_shared<Menu>(menuOf({"c1", "c2"}));
    menu.addItem(withSubmenu);
    menu.addDummyItemWithTitle(QStringLiteral("d"), ItemTarget::None);

    const NumberedMenu numbered(menu, 10);
    EXPECT_EQ(numbered.children(0), (QVector<int>{10, 11, 12, 15}));
    EXPECT_EQ(numbered.children(12), (QVector<int>{13, 14}));
    EXPECT_TRUE(numbered.children(13).isEmpty());
    EXPECT_EQ(numbered.item(14)->title, QStringLiteral("c2"));
    EXPECT_EQ(numbered.item(15)->title, QStringLiteral("d"));
    EXPECT_EQ(numbered.endId(), 16);
    EXPECT_EQ(numbered.holder(15), &numbered.menu());
    EXPECT_EQ(numbered.holder(13), withSubmenu.submenu.get());
    EXPECT_EQ(numbered.holder(0), nullptr);
    EXPECT_EQ(numbered.holder(16), nullptr);
    EXPECT_EQ(numbered.item(0), nullptr);
    EXPECT_EQ(numbered.item(9), nullptr);
    EXPECT_EQ(numbered.item(16), nullptr);
    EXPECT_TRUE(numbered.contains(0));
}

TEST(MenuBuilds, KeepsTheRowsOfTheBuildBefore)
{
    MenuBuilds builds;
    builds.add(menuOf({"first"}));
    const int id = builds.buildOf(0)->children(0).first();
    builds.add(menuOf({"second"}));
    ASSERT_NE(builds.item(id), nullptr);
    EXPECT_EQ(builds.item(id)->title, QStringLiteral("first")) << "the row that the user saw";
    EXPECT_EQ(builds.item(builds.buildOf(0)->children(0).first())->title, QStringLiteral("second"));
    builds.add(menuOf({"third"}));
    EXPECT_EQ(builds.item(id), nullptr) << "never a row that took its number over";
}

TEST(MenuBuilds, GivesANumberOnce)
{
    MenuBuilds builds;
    QVector<int> seen;
    for (int i = 0; i < 50; ++i) {
        builds.add(menuOf({"x", qPrintable(QString::number(i))}));
        for (const int id : builds.buildOf(0)->children(0)) {
            EXPECT_FALSE(seen.contains(id));
            seen.append(id);
        }
    }
}

TEST(MenuBuilds, CountsDifferentBuildsOnly)
{
    MenuBuilds builds;
    EXPECT_EQ(builds.revision(), 0U);
    builds.add(Menu());
    EXPECT_EQ(builds.revision(), 1U) << "an empty menu is a build as well";
    builds.add(menuOf({"a"}));
    const QVector<int> ids = builds.buildOf(0)->children(0);
    builds.add(menuOf({"a"}));
    EXPECT_EQ(builds.revision(), 2U);
    EXPECT_EQ(builds.buildOf(0)->children(0), ids);
    builds.add(menuOf({"b"}));
    EXPECT_EQ(builds.revision(), 3U);
}

class SomeProcess : public HeldProcess
{
public:
    SomeProcess(qint64 pid, quint64 startTime, int *held)
        : m_pid(pid)
        , m_startTime(startTime)
        , m_held(held)
    {
        ++*m_held;
    }
    ~SomeProcess() override { --*m_held; }
    qint64 pid() const override { return m_pid; }
    quint64 startTime() const override { return m_startTime; }
    bool isRunning() const override { return true; }
    bool askToEnd() override { return true; }
    int endDescriptor() const override { return -1; }

private:
    qint64 m_pid;
    quint64 m_startTime;
    int *m_held;
};

Menu menuOfProcess(quint64 startTime, int *held)
{
    Menu menu = menuOf({"12.3% : same name"});
    Menu withProcess(menu.title());
    MenuItem item = menu.items().first();
    item.process = std::make_shared<SomeProcess>(412, startTime, held);
    withProcess.addItem(item);
    return withProcess;
}

TEST(MenuBuilds, TellsProcessesOfTheSameTitleAndNumberApart)
{
    int held = 0;
    MenuBuilds builds;
    builds.add(menuOfProcess(1000, &held));
    const int seen = builds.buildOf(0)->children(0).first();
    builds.add(menuOfProcess(1000, &held));
    EXPECT_EQ(builds.revision(), 1U) << "the same process, held anew";
    builds.add(menuOfProcess(2000, &held));
    EXPECT_EQ(builds.revision(), 2U);
    EXPECT_NE(builds.buildOf(0)->children(0).first(), seen);
    EXPECT_EQ(builds.item(seen)->process->startTime(), 1000U) << "the one that the user saw";
}

TEST(MenuBuilds, HoldsTheProcessesOfTwoBuildsAtMost)
{
    int held = 0;
    MenuBuilds builds;
    for (quint64 i = 1; i <= 10; ++i) {
        builds.add(menuOfProcess(i, &held));
        EXPECT_LE(held, 2);
    }
    EXPECT_EQ(held, 2);
}

TEST(NumberedMenu, ShowsTheSubstituteOfARowWithAView)
{
    MenuItem item;
    item.title = QStringLiteral("Show Icon");
    item.view = QStringLiteral("widthSlider");
    auto substitute = std::make_shared<MenuItem>();
    substitute->title = QStringLiteral("Width on menubar");
    substitute->submenu = std::make_shared<Menu>(menuOf({"30", "40"}));
    item.substitute = substitute;
    Menu menu;
    menu.addItem(item);
    const NumberedMenu numbered(menu, 1);
    EXPECT_EQ(numbered.item(1)->title, QStringLiteral("Width on menubar"));
    EXPECT_EQ(numbered.children(1), (QVector<int>{2, 3}));
    EXPECT_EQ(numbered.holder(3), substitute->submenu.get());
}

} // namespace
} // namespace pulsebar
