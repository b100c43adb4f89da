#include "statusitem/MenuPopup.h"

#include <QActionGroup>
#include <QLabel>
#include <QWidgetAction>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

MenuItem row(const char *title)
{
    MenuItem item;
    item.title = QString::fromUtf8(title);
    item.action = QStringLiteral("act");
    return item;
}

TEST(RenderMenu, ShowsTitlesLetterByLetter)
{
    Menu menu;
    menu.addItem(row("a_b & c\td"));
    const auto rendered = renderMenu(menu, {}, {});
    EXPECT_EQ(rendered->actions().first()->text(), QStringLiteral("a_b && c d"));
}

TEST(RenderMenu, ShowsTheSameTree)
{
    Menu menu;
    menu.addItem(row("first"));
    menu.addItem(MenuItem::separatorItem());
    MenuItem more = row("more");
    auto below = std::make_shared<Menu>();
    below->addItem(row("below"));
    more.submenu = below;
    more.enabled = false;
    menu.addItem(more);
    MenuItem marked = row("marked");
    marked.state = ItemState::On;
    menu.addItem(marked);

    const auto rendered = renderMenu(menu, {}, {});
    const QList<QAction *> actions = rendered->actions();
    ASSERT_EQ(actions.size(), 4);
    EXPECT_TRUE(actions[1]->isSeparator());
    ASSERT_NE(actions[2]->menu(), nullptr);
    EXPECT_EQ(actions[2]->menu()->actions().first()->text(), QStringLiteral("below"));
    EXPECT_FALSE(actions[2]->isEnabled());
    EXPECT_FALSE(actions[0]->isCheckable());
    EXPECT_TRUE(actions[3]->isChecked());
}

TEST(RenderMenu, HandsTheChosenRowOver)
{
    Menu menu(QStringLiteral("CPUTotalUsage"));
    MenuItem item = row("chosen");
    item.tag = 42;
    menu.addItem(item);
    QString holder;
    int tag = 0;
    const auto choose = [&](const Menu &rows, const MenuItem &chosen) {
        holder = rows.title();
        tag = chosen.tag;
    };
    const auto rendered = renderMenu(menu, choose, {});
    rendered->actions().first()->trigger();
    EXPECT_EQ(tag, 42);
    EXPECT_EQ(holder, QStringLiteral("CPUTotalUsage"));
}

TEST(RenderMenu, MarksOneOfSeveralAsARadio)
{
    Menu menu;
    MenuItem item = row("one");
    item.exclusive = true;
    menu.addItem(item);
    item.state = ItemState::On;
    menu.addItem(item);
    const auto rendered = renderMenu(menu, {}, {});
    for (const QAction *action : rendered->actions()) {
        ASSERT_NE(action->actionGroup(), nullptr);
        EXPECT_TRUE(action->actionGroup()->isExclusive());
    }
    EXPECT_FALSE(rendered->actions()[0]->isChecked());
    EXPECT_TRUE(rendered->actions()[1]->isChecked());
}

TEST(RenderMenu, ShowsViewsWhereTheyAreMade)
{
    Menu menu;
    MenuItem item = row("slider");
    item.view = QStringLiteral("width");
    menu.addItem(item);
    item.view = QStringLiteral("unknown");
    menu.addItem(item);
    const MenuViewFactory factory = [](const MenuItem &of, const MenuItemChoice &,
                                       QWidget *parent) -> QWidget * {
        return of.view == u"width" ? new QLabel(of.title, parent) : nullptr;
    };
    const auto rendered = renderMenu(menu, {}, factory);
    EXPECT_NE(qobject_cast<QWidgetAction *>(rendered->actions()[0]), nullptr);
    EXPECT_EQ(qobject_cast<QWidgetAction *>(rendered->actions()[1]), nullptr);
    EXPECT_EQ(rendered->actions()[1]->text(), QStringLiteral("slider"));
}

} // namespace
} // namespace pulsebar
