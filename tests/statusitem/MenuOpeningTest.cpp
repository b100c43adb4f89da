// The item's own menu, opened by every way there is.
#include "BusTesting.h"
#include "FakeTray.h"
#include "statusitem/MenuPopup.h"
#include "statusitem/PanelStatusItem.h"

#include <QScreen>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using testing::Client;
using testing::FakeTray;
using testing::FakeWatcher;
using testing::settle;
using testing::SignalLog;
using testing::visibleStrip;
using testing::waitFor;

/// A menu of some rows and a submenu whose texts count the builds.
class CountingMenu : public MenuDelegate
{
public:
    void menuNeedsUpdate(Menu &menu) override
    {
        ++builds;
        menu.removeAllItems();
        for (int i = 0; i < rows; ++i) {
            menu.addItemWithTitle(QStringLiteral("row %1 of build %2").arg(i).arg(builds),
                                  ItemTarget::Controller, QStringLiteral("act"));
        }
        auto below = std::make_shared<Menu>(QStringLiteral("below"));
        below->addItemWithTitle(QStringLiteral("build %1").arg(builds), ItemTarget::Controller,
                                QStringLiteral("act"));
        menu.addItemWithTitle(QStringLiteral("More"), ItemTarget::None, {}).submenu = below;
    }
    void performAction(const Menu &, const MenuItem &item, Qt::KeyboardModifiers held) override
    {
        chosen.append(item.title);
        modifiers = held;
    }

    int builds = 0;
    int rows = 2;
    QStringList chosen;
    Qt::KeyboardModifiers modifiers;
};

/// The menu on the screen that no other menu holds.
QMenu *openMenu()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *menu = qobject_cast<QMenu *>(widget);
        if (menu && menu->isVisible() && !menu->parentWidget()) {
            return menu;
        }
    }
    return nullptr;
}

int menusKept()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    int count = 0;
    for (const QWidget *widget : QApplication::allWidgets()) {
        count += qobject_cast<const QMenu *>(widget) != nullptr ? 1 : 0;
    }
    return count;
}

QStringList texts(const QMenu &menu)
{
    QStringList all;
    for (const QAction *action : menu.actions()) {
        all.append(action->text());
        if (action->menu()) {
            all += texts(*action->menu());
        }
    }
    return all;
}

class MenuOpeningTest : public ::testing::Test
{
protected:
    MenuOpeningTest()
    {
        PanelSurroundings around;
        around.trayDock = &tray;
        around.stripDelay = std::chrono::milliseconds(0);
        item = std::make_unique<PanelStatusItem>(around);
        item->setTitle(QStringLiteral("12.3%"));
        item->setMenuDelegate(&menu);
        // The exported menu stands before anything else is looked at.
        EXPECT_TRUE(waitFor([this] { return menu.builds > 0; }));
    }

    ~MenuOpeningTest() override
    {
        if (QMenu *open = openMenu()) {
            open->hide();
        }
        EXPECT_EQ(menusKept(), 0);
    }

    void clickRow(int index, Qt::KeyboardModifiers held)
    {
        QMenu *open = openMenu();
        ASSERT_NE(open, nullptr);
        const QPoint at = open->actionGeometry(open->actions()[index]).center();
        QTest::mouseMove(open->windowHandle(), at);
        QTest::mouseClick(open->windowHandle(), Qt::LeftButton, held, at);
    }

    CountingMenu menu;
    FakeTray tray;
    std::unique_ptr<PanelStatusItem> item;
};

TEST_F(MenuOpeningTest, OpensAtTheDockedWindow)
{
    tray.setPresent(true);
    ASSERT_TRUE(waitFor([this] { return !tray.wanted.isEmpty(); }));
    tray.give({60, 22});
    tray.click();
    ASSERT_TRUE(waitFor([] { return openMenu() != nullptr; }));
    EXPECT_EQ(openMenu()->pos(), QPoint(300, 22));
    EXPECT_TRUE(texts(*openMenu()).contains(QStringLiteral("row 0 of build %1").arg(menu.builds)));
}

TEST_F(MenuOpeningTest, OpensAtTheStripByMouseAndWhenAskedFor)
{
    ASSERT_TRUE(waitFor([] { return visibleStrip() != nullptr; }));
    QTest::mouseClick(visibleStrip(), Qt::LeftButton);
    ASSERT_TRUE(waitFor([] { return openMenu() != nullptr; }));
    openMenu()->hide();
    item->openMenu();
    ASSERT_TRUE(waitFor([] { return openMenu() != nullptr; }));
    EXPECT_GT(openMenu()->y(), visibleStrip()->y());
}

TEST_F(MenuOpeningTest, ShowsNewValuesAtEveryOpeningAndKeepsNothingInBetween)
{
    item->openMenu();
    const int first = menu.builds;
    EXPECT_TRUE(texts(*openMenu()).contains(QStringLiteral("row 0 of build %1").arg(first)));
    openMenu()->hide();
    EXPECT_TRUE(waitFor([] { return menusKept() == 0; }));
    item->openMenu();
    EXPECT_EQ(menu.builds, first + 1);
    EXPECT_TRUE(texts(*openMenu()).contains(QStringLiteral("row 0 of build %1").arg(first + 1)));
}

TEST_F(MenuOpeningTest, GoesWithItsItem)
{
    item->openMenu();
    item.reset();
    EXPECT_EQ(openMenu(), nullptr);
    QCoreApplication::processEvents();
    EXPECT_EQ(menusKept(), 0);
}

TEST_F(MenuOpeningTest, IsBuiltAnewWhenItIsAskedForWhileOpen)
{
    item->openMenu();
    const int first = menu.builds;
    item->openMenu();
    EXPECT_EQ(menu.builds, first + 1);
    ASSERT_NE(openMenu(), nullptr);
    EXPECT_TRUE(texts(*openMenu()).contains(QStringLiteral("row 0 of build %1").arg(first + 1)));
    QCoreApplication::processEvents();
    EXPECT_NE(openMenu(), nullptr);
}

TEST_F(MenuOpeningTest, StaysStillWhileSamplesArrive)
{
    item->openMenu();
    const QMenu *open = openMenu();
    const QStringList shown = texts(*open);
    const int builds = menu.builds;
    for (int sample = 0; sample < 20; ++sample) {
        item->setTitle(QStringLiteral("%1.5%").arg(sample));
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(openMenu(), open);
    EXPECT_EQ(texts(*open), shown);
    EXPECT_EQ(menu.builds, builds);
}

TEST_F(MenuOpeningTest, CostsNothingPerSampleWhileNobodyLooks)
{
    FakeWatcher watcher;
    Client panel;
    const SignalLog sent{
        panel,
        QStringLiteral("/MenuBar"),
        QStringLiteral("com.canonical.dbusmenu"),
        {QStringLiteral("LayoutUpdated"), QStringLiteral("ItemsPropertiesUpdated")}};
    ASSERT_TRUE(waitFor([&] { return !watcher.items().isEmpty(); }));
    settle({panel.bus()});
    const int builds = menu.builds;
    const int signals = sent.count(QStringLiteral("LayoutUpdated"));
    for (int sample = 0; sample < 50; ++sample) {
        item->setTitle(QStringLiteral("%1.5%").arg(sample));
        settle({panel.bus()});
    }
    EXPECT_EQ(menu.builds, builds);
    EXPECT_EQ(sent.count(QStringLiteral("LayoutUpdated")), signals);
    EXPECT_EQ(sent.count(QStringLiteral("ItemsPropertiesUpdated")), 0);
    EXPECT_EQ(menusKept(), 0);
}

TEST_F(MenuOpeningTest, HandsTheHeldKeysOver)
{
    for (const Qt::KeyboardModifier held : {Qt::NoModifier, Qt::ControlModifier, Qt::AltModifier}) {
        menu.chosen.clear();
        item->openMenu();
        clickRow(1, held);
        ASSERT_TRUE(waitFor([this] { return !menu.chosen.isEmpty(); }));
        EXPECT_EQ(menu.modifiers, Qt::KeyboardModifiers(held));
        EXPECT_EQ(menu.chosen.first(), QStringLiteral("row 1 of build %1").arg(menu.builds));
        EXPECT_TRUE(waitFor([] { return openMenu() == nullptr; }));
    }
}

TEST_F(MenuOpeningTest, StaysOpenWhenAltIsPressed)
{
    item->openMenu();
    QTest::keyPress(openMenu()->windowHandle(), Qt::Key_Alt, Qt::AltModifier);
    ASSERT_NE(openMenu(), nullptr);
    clickRow(0, Qt::AltModifier);
    ASSERT_TRUE(waitFor([this] { return !menu.chosen.isEmpty(); }));
    EXPECT_EQ(menu.modifiers, Qt::KeyboardModifiers(Qt::AltModifier));
}

TEST_F(MenuOpeningTest, IsWalkedThroughByKeys)
{
    item->openMenu();
    QWindow *window = openMenu()->windowHandle();
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(window, Qt::Key_Down);
    }
    QTest::keyClick(window, Qt::Key_Right);
    const QMenu *below = openMenu()->actions()[2]->menu();
    ASSERT_TRUE(waitFor([below] { return below->isVisible(); }));
    QTest::keyClick(below->windowHandle(), Qt::Key_Return);
    ASSERT_TRUE(waitFor([this] { return !menu.chosen.isEmpty(); }));
    EXPECT_EQ(menu.chosen.first(), QStringLiteral("build %1").arg(menu.builds));
}

TEST_F(MenuOpeningTest, ScrollsWhenItIsTallerThanTheScreen)
{
    menu.rows = 3;
    item->openMenu();
    const int width = openMenu()->width();
    openMenu()->hide();
    menu.rows = 200;
    item->openMenu();
    const QMenu *open = openMenu();
    EXPECT_LE(open->height(), open->screen()->geometry().height());
    EXPECT_LT(open->width(), 2 * width) << "rows stand below each other, never side by side";
    QTest::keyClick(open->windowHandle(), Qt::Key_End);
    const QRect last = open->actionGeometry(open->actions().last());
    EXPECT_TRUE(open->rect().contains(last)) << "every row comes into sight";
}

} // namespace
} // namespace pulsebar
