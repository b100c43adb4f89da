#include "graph/ScreenSpace.h"

#include <QGuiApplication>
#include <QScreen>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

/// The main screen at the right of a taller one, whose top is the top of the desktop.
ScreenSpace twoScreens()
{
    ScreenSpace space;
    space.mainScreenBottom = 1000;
    space.mainScreen = 1;
    space.screens = {space.flipped(QRectF(0, 0, 800, 1200)),
                     space.flipped(QRectF(800, 200, 1280, 800))};
    return space;
}

TEST(ScreenSpace, CountsUpwardFromTheBottomOfTheMainScreen)
{
    const ScreenSpace space = twoScreens();
    EXPECT_EQ(space.mainFrame(), QRectF(800, 0, 1280, 800));
    EXPECT_EQ(space.screens[0], QRectF(0, -200, 800, 1200));
    EXPECT_EQ(space.flipped(QRectF(850, 250, 200, 70)), QRectF(850, 680, 200, 70));
    EXPECT_EQ(space.flipped(QPointF(850, 250)), QPointF(850, 750));
}

TEST(ScreenSpace, TheSameTurnGoesBack)
{
    const ScreenSpace space = twoScreens();
    const QRectF rect(12.5, -30, 200, 70);
    EXPECT_EQ(space.flipped(space.flipped(rect)), rect);
    EXPECT_EQ(space.flipped(space.flipped(rect.topLeft())), rect.topLeft());
}

TEST(ScreenSpace, AWindowIsOnTheScreenThatHoldsMostOfIt)
{
    const ScreenSpace space = twoScreens();
    EXPECT_EQ(space.screenOf({750, 100, 200, 70}), 1);
    EXPECT_EQ(space.screenOf({650, 100, 200, 70}), 0);
    EXPECT_EQ(space.screenOf({700, 100, 200, 70}), 0) << "half and half: the first";
    EXPECT_EQ(space.screenOf({3000, 100, 200, 70}), -1);
    EXPECT_EQ(ScreenSpace().screenOf({0, 0, 200, 70}), -1);
    EXPECT_EQ(ScreenSpace().mainFrame(), QRectF());
}

TEST(ScreenSpace, IsThatOfTheRunningDesktop)
{
    const ScreenSpace space = currentScreenSpace();
    ASSERT_EQ(space.screens.size(), QGuiApplication::screens().size());
    const QRect main = QGuiApplication::primaryScreen()->geometry();
    EXPECT_EQ(space.mainFrame(), QRectF(main.x(), 0, main.width(), main.height()));
}

} // namespace
} // namespace pulsebar
