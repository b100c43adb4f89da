#include "platform/linux_/desktop/CoveredArea.h"

#include <gtest/gtest.h>

#include <vector>

namespace pulsebar {
namespace {

const QRect window(100, 100, 200, 70);

bool hidden(const std::vector<QRect> &above)
{
    return isHiddenBy(window, above);
}

TEST(CoveredArea, OneThatHoldsItHidesIt)
{
    EXPECT_TRUE(hidden({{0, 0, 800, 600}}));
    EXPECT_TRUE(hidden({window}));
    EXPECT_FALSE(hidden({}));
}

TEST(CoveredArea, EveryPixelCounts)
{
    EXPECT_FALSE(hidden({{101, 0, 800, 600}}));
    EXPECT_FALSE(hidden({{0, 101, 800, 600}}));
    EXPECT_FALSE(hidden({{0, 0, 299, 600}}));
    EXPECT_FALSE(hidden({{0, 0, 800, 169}}));
    EXPECT_TRUE(hidden({{0, 0, 300, 170}}));
}

TEST(CoveredArea, SeveralHideItTogether)
{
    EXPECT_TRUE(hidden({{0, 0, 200, 600}, {200, 0, 200, 600}}));
    EXPECT_FALSE(hidden({{0, 0, 200, 600}, {201, 0, 200, 600}}));
    EXPECT_TRUE(hidden({{0, 0, 250, 600}, {150, 0, 250, 600}})) << "lying over each other";
    // A hole in the middle, and what fills it.
    const std::vector<QRect> around{
        {100, 100, 200, 20}, {100, 140, 200, 30}, {100, 120, 90, 20}, {210, 120, 90, 20}};
    EXPECT_FALSE(hidden(around));
    std::vector<QRect> filled = around;
    filled.emplace_back(190, 120, 20, 20);
    EXPECT_TRUE(hidden(filled));
}

TEST(CoveredArea, GivesUpOnVeryManyPieces)
{
    const auto withDots = [](int count) {
        std::vector<QRect> above;
        above.reserve(std::size_t(count) + 1);
        for (int dot = 0; dot < count; ++dot)
            above.emplace_back(101 + dot % 90 * 2, 101 + dot / 90 * 2, 1, 1);
        above.push_back(window);
        return above;
    };
    EXPECT_TRUE(hidden(withDots(100)));
    EXPECT_FALSE(hidden(withDots(3000)));
}

TEST(CoveredArea, WhatIsBesideOrEmptyHidesNothing)
{
    EXPECT_FALSE(hidden({{400, 100, 200, 70}, QRect()}));
    EXPECT_FALSE(isHiddenBy(QRect(), std::vector<QRect>{{0, 0, 800, 600}}));
}

} // namespace
} // namespace pulsebar
