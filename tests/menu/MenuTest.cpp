#include "menu/Menu.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

std::shared_ptr<Menu> submenuWith(const QString &row)
{
    auto menu = std::make_shared<Menu>(QStringLiteral("sub"));
    menu->addDummyItemWithTitle(row, ItemTarget::Controller);
    return menu;
}

TEST(Menu, AppendsRowsInOrderAndReturnsThem)
{
    Menu menu(QStringLiteral("Pulsebar"));
    menu.addItemWithTitle(QStringLiteral("Quit"), ItemTarget::Application,
                          QStringLiteral("terminate"))
        .tag = 7;
    menu.addItem(MenuItem::separatorItem());
    menu.addDummyItemWithTitle(QStringLiteral("a row"), ItemTarget::None);

    ASSERT_EQ(menu.items().size(), 3);
    EXPECT_EQ(menu.items()[0].action, QStringLiteral("terminate"));
    EXPECT_EQ(menu.items()[0].tag, 7);
    EXPECT_TRUE(menu.items()[1].separator);
    EXPECT_EQ(menu.items()[2].action, QStringLiteral("dummy"));
    EXPECT_EQ(menu.items()[2].target, ItemTarget::None);
}

TEST(Menu, MovesRowsFromAnotherMenu)
{
    Menu menu;
    menu.addDummyItemWithTitle(QStringLiteral("1"), ItemTarget::None);
    Menu other;
    other.addDummyItemWithTitle(QStringLiteral("2"), ItemTarget::None);
    other.addDummyItemWithTitle(QStringLiteral("3"), ItemTarget::None);
    menu.addItemsFromMenu(other);

    EXPECT_TRUE(other.isEmpty());
    ASSERT_EQ(menu.items().size(), 3);
    EXPECT_EQ(menu.items()[1].title, QStringLiteral("2"));
    EXPECT_EQ(menu.items()[2].title, QStringLiteral("3"));
}

TEST(Menu, SetsTheStateOfEveryRow)
{
    Menu menu;
    menu.addDummyItemWithTitle(QStringLiteral("1"), ItemTarget::None);
    menu.addDummyItemWithTitle(QStringLiteral("2"), ItemTarget::None).state = ItemState::Mixed;
    menu.setStateToAllItem(ItemState::On);
    for (const MenuItem &item : menu.items()) {
        EXPECT_EQ(item.state, ItemState::On);
    }
}

TEST(Menu, HasNoServicesToShareWith)
{
    EXPECT_EQ(Menu::menuForSharingItems({QStringLiteral("x")}, ItemTarget::Controller,
                                        QStringLiteral("share")),
              nullptr);
}

TEST(Menu, ComparesBySubmenuContents)
{
    MenuItem one;
    one.submenu = submenuWith(QStringLiteral("x"));
    MenuItem two;
    two.submenu = submenuWith(QStringLiteral("x"));
    EXPECT_TRUE(sameItem(one, two));
    two.submenu = submenuWith(QStringLiteral("y"));
    EXPECT_FALSE(sameItem(one, two));
    two.submenu = nullptr;
    EXPECT_FALSE(sameItem(one, two));
}

TEST(Menu, ComparesEveryPartOfARow)
{
    MenuItem one;
    MenuItem two;
    two.representedObject = 1;
    EXPECT_FALSE(sameItem(one, two));
    two = one;
    two.enabled = false;
    EXPECT_FALSE(sameItem(one, two));
    two = one;
    two.image = QStringLiteral("firefox");
    EXPECT_FALSE(sameItem(one, two));
    two = one;
    EXPECT_TRUE(sameItem(one, two));
}

TEST(MenuItem, ShowsNoNul)
{
    MenuItem item;
    item.title = QStringLiteral("a") + QChar(u'\0') + QStringLiteral("b");
    item.indentation = 2;
    EXPECT_EQ(item.shownTitle(), QStringLiteral("  a\uFFFDb"));
}

TEST(MenuItem, IsShownOnOneLine)
{
    MenuItem item;
    item.title = QStringLiteral("a\nb\r\nc\u2028d\te");
    EXPECT_EQ(item.shownTitle(), QStringLiteral("a b  c d\te"));
}

TEST(MenuItem, ShowsTheBeginningOfAnEndlessTitleAndKeepsItWhole)
{
    MenuItem item;
    item.title = QStringLiteral("12.3% : ") + QString(4096, u'x');
    EXPECT_LE(item.shownTitle().size(), 160);
    EXPECT_TRUE(item.shownTitle().startsWith(QStringLiteral("12.3% : xxx")));
    EXPECT_TRUE(item.shownTitle().endsWith(QStringLiteral("x…")));
    EXPECT_EQ(item.title.size(), 4096 + 8);

    item.title = QString(160, u'x');
    EXPECT_EQ(item.shownTitle(), item.title) << "what just fits is not cut";
    // Wherever the cut falls, it parts no character.
    for (const int before : {157, 158, 159}) {
        item.title = QString(before, u'x') + QStringLiteral("\U0001F525").repeated(4);
        const QString shown = item.shownTitle();
        EXPECT_EQ(QString::fromUtf8(shown.toUtf8()), shown);
    }
    item.title = QStringLiteral("x");
    item.indentation = 1 << 30;
    EXPECT_LE(item.shownTitle().size(), 160);
}

TEST(MenuItem, IsItselfWhereItHasNoView)
{
    MenuItem item;
    EXPECT_EQ(&item.withoutView(), &item);
    item.view = QStringLiteral("slider");
    EXPECT_EQ(&item.withoutView(), &item);
    item.substitute = std::make_shared<MenuItem>();
    EXPECT_EQ(&item.withoutView(), item.substitute.get());
}

} // namespace
} // namespace pulsebar
