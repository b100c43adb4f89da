#include "statusitem/TitleText.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(ShortTitle, IsTheFirstValue)
{
    EXPECT_EQ(shortTitle(QStringLiteral("12.3%")), QStringLiteral("12"));
    EXPECT_EQ(shortTitle(QStringLiteral("100.0%")), QStringLiteral("100"));
    EXPECT_EQ(shortTitle(QStringLiteral("0,4%")), QStringLiteral("0"));
    EXPECT_EQ(shortTitle(QStringLiteral("In 1.2MB")), QStringLiteral("1.2M"));
    EXPECT_EQ(shortTitle(QStringLiteral("Out 1023 KB")), QStringLiteral("1023K"));
    EXPECT_EQ(shortTitle(QStringLiteral("Read 512.7KB")), QStringLiteral("512K"));
    EXPECT_EQ(shortTitle(QStringLiteral("In 0B")), QStringLiteral("0"));
    EXPECT_EQ(shortTitle(QStringLiteral("CPU:67℃")), QStringLiteral("67°"));
    EXPECT_EQ(shortTitle(QStringLiteral("CPU:152℉")), QStringLiteral("152°"));
    EXPECT_EQ(shortTitle(QStringLiteral("2400RPM")), QStringLiteral("2400"));
    EXPECT_EQ(shortTitle(QStringLiteral("12.3% | In 1.2MB")), QStringLiteral("12"));
    EXPECT_EQ(shortTitle(QStringLiteral(" | 7.0%")), QStringLiteral("7"));
}

TEST(ShortTitle, IsAWordWithoutANumber)
{
    EXPECT_EQ(shortTitle(QStringLiteral("Full")), QStringLiteral("Full"));
    EXPECT_EQ(shortTitle(QStringLiteral("N/A")), QStringLiteral("N/A"));
    EXPECT_EQ(shortTitle(QStringLiteral("Usage")), QStringLiteral("Usag"));
    EXPECT_EQ(shortTitle(QString()), QString());
    EXPECT_EQ(shortTitle(QStringLiteral("  ")), QString());
}

TEST(ShortTitle, TakesAPointOnlyInsideANumber)
{
    EXPECT_EQ(shortTitle(QStringLiteral("3.")), QStringLiteral("3"));
    EXPECT_EQ(shortTitle(QStringLiteral("3.MB")), QStringLiteral("3"));
}

TEST(ItemWidth, NeverCutsAndNeverJumps)
{
    EXPECT_EQ(itemWidth(50, 60, 0, 0), 60);
    EXPECT_EQ(itemWidth(40, 60, 0, 0), 60);
    EXPECT_EQ(itemWidth(50, 60, 18, 0), 78);
    EXPECT_EQ(itemWidth(90, 60, 0, 80), 90) << "a chosen length does not cut a text";
    EXPECT_EQ(itemWidth(50, 60, 0, 80), 80);
}

TEST(Place, CountsUpwardAndBack)
{
    const QPoint topLeft(10, 20);
    const QPoint upward = placeUpward(topLeft, 25, 700);
    EXPECT_EQ(upward, QPoint(10, 655));
    EXPECT_EQ(placeDownward(upward, 25, 700), topLeft);
}

TEST(Place, ComesBackOntoTheScreen)
{
    const QRect area(100, 0, 800, 600);
    const QSize size(120, 24);
    EXPECT_EQ(insideArea({300, 200}, size, area), QPoint(300, 200));
    EXPECT_EQ(insideArea({2500, 200}, size, area), QPoint(780, 200));
    EXPECT_EQ(insideArea({0, -50}, size, area), QPoint(100, 0));
    EXPECT_EQ(insideArea({300, 5000}, size, area), QPoint(300, 576));
    EXPECT_EQ(insideArea({300, 200}, {2000, 24}, area), QPoint(100, 200))
        << "a strip wider than the screen starts at its left";
}

TEST(Square, IsToldFromASmallerWidth)
{
    EXPECT_TRUE(cutToSquare({120, 22}, {22, 22}));
    EXPECT_FALSE(cutToSquare({120, 22}, {119, 28}));
    EXPECT_FALSE(cutToSquare({22, 22}, {22, 22})) << "an icon asks for a square";
}

} // namespace
} // namespace pulsebar
