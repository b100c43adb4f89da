#include "graph/GraphPlacement.h"

#include "graph/GraphViewSetting.h"
#include "graph/ScreenSpace.h"
#include "support/QtPrinting.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

constexpr QRectF kMain{0, 0, 1920, 1080};
constexpr QRectF kLeft{-1280, 56, 1280, 1024};

class GraphPlacementTest : public testing::Test
{
protected:
    void expectPlaced(const QRectF &frame, const QRectF &screen)
    {
        const GraphPlacement placement = graphPlacement(setting, space);
        EXPECT_EQ(placement.frame, frame);
        EXPECT_EQ(placement.screenFrame, screen);
    }

    GraphViewSetting setting;
    ScreenSpace space{{kMain, kLeft}, 0, 1080.0};
};

TEST_F(GraphPlacementTest, StartsAtTheDefaultPlaceOfTheFirstScreen)
{
    expectPlaced({200, 200, 200, 70}, kMain);
}

TEST_F(GraphPlacementTest, GoesToTheScreenOfItsNumber)
{
    setting.setScreenNumber(1);
    setting.setWindowRect({-1000, 300, 250, 80});
    expectPlaced({-1000, 300, 250, 80}, kLeft);
}

TEST_F(GraphPlacementTest, GoesToTheMainScreenWithoutThatNumber)
{
    for (const int number : {-1, 2, 77, std::numeric_limits<int>::min()}) {
        setting.setScreenNumber(number);
        expectPlaced({200, 200, 200, 70}, kMain);
    }
    space.mainScreen = 1;
    setting.setWindowRect({-1000, 300, 250, 80});
    expectPlaced({-1000, 300, 250, 80}, kLeft);
}

TEST_F(GraphPlacementTest, PrefersWhatIsRememberedForThatScreen)
{
    setting.setWindowRectForScreen({10, 20, 130, 50}, kMain);
    setting.setWindowRectForScreen({-500, 600, 300, 90}, kLeft);
    setting.setWindowRect({1, 2, 150, 60});
    expectPlaced({10, 20, 130, 50}, kMain);
    setting.setScreenNumber(1);
    expectPlaced({-500, 600, 300, 90}, kLeft);
}

TEST_F(GraphPlacementTest, TakesARememberedRectangleEvenPartlyOutside)
{
    setting.setWindowRectForScreen({1900, -40, 130, 50}, kMain);
    expectPlaced({1900, -40, 130, 50}, kMain);
}

TEST_F(GraphPlacementTest, BringsAStoredRectangleThatIsPartlyOutsideTo200)
{
    for (const QRectF &outside :
         {QRectF(1800, 300, 130, 50), QRectF(-1, 300, 130, 50), QRectF(300, 1040, 130, 50),
          QRectF(300, -0.5, 130, 50), QRectF(5000, 5000, 130, 50)}) {
        setting.setWindowRect(outside);
        expectPlaced({200, 200, 130, 50}, kMain);
    }
    // The place is not one of the chosen screen.
    setting.setScreenNumber(1);
    expectPlaced({200, 200, 130, 50}, kLeft);
}

TEST_F(GraphPlacementTest, AnExactFitIsInside)
{
    setting.setWindowRect(kMain);
    expectPlaced(kMain, kMain);
    setting.setWindowRect({1790, 1030, 130, 50});
    expectPlaced({1790, 1030, 130, 50}, kMain);
}

TEST_F(GraphPlacementTest, FollowsAMainScreenOfAnotherSize)
{
    setting.setWindowRectForScreen({1700, 1000, 200, 70}, kMain);
    setting.setWindowRect({1700, 1000, 200, 70});
    const QRectF smaller(0, 0, 1280, 800);
    space.screens = {smaller};
    expectPlaced({200, 200, 200, 70}, smaller);
    space.screens = {kMain};
    expectPlaced({1700, 1000, 200, 70}, kMain);
}

TEST_F(GraphPlacementTest, MovesAWindowOntoTheScreenThatHoldsMostOfIt)
{
    EXPECT_EQ(movedOntoScreen({100, 100, 300, 200}, space), QRectF(100, 100, 300, 200));
    EXPECT_EQ(movedOntoScreen({1800, 1000, 300, 200}, space), QRectF(1620, 880, 300, 200));
    EXPECT_EQ(movedOntoScreen({-1400, 0, 300, 200}, space), QRectF(-1280, 56, 300, 200));
    EXPECT_EQ(movedOntoScreen({9000, 9000, 300, 200}, space), QRectF(810, 440, 300, 200));
    EXPECT_EQ(movedOntoScreen({100, 100, 5000, 5000}, space), kMain);
}

} // namespace
} // namespace pulsebar
