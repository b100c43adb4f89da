#include "statusitem/NumberedMenu.h"

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

} // namespace
} // namespace pulsebar
