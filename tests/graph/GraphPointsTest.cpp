#include "graph/GraphPoints.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace pulsebar;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
/// The scale is shrunk by 2 points on each side: 196 wide and 66 high.
const QSizeF windowSize(200, 70);

UsageCache samples(std::initializer_list<double> values)
{
    UsageCache cache;
    for (const double value : values)
        cache.append(value);
    return cache;
}

} // namespace

TEST(CpuFullScale, IsTheWholeNumberBelowTheLargestPlusOne)
{
    EXPECT_EQ(cpuFullScale(samples({0.1, 0.99, 0.5})), 1.0);
    EXPECT_EQ(cpuFullScale(samples({40.0, 61.5, 60.0})), 62.0);
    EXPECT_EQ(cpuFullScale(samples({1200.0, 1998.0})), 1999.0);
    EXPECT_EQ(cpuFullScale(samples({1997.7, 1200.0})), 1998.0);
}

TEST(CpuFullScale, DoublesWhenTheLargestIsExactlyOne)
{
    EXPECT_EQ(cpuFullScale(samples({0.5, 1.0, 0.5})), 2.0);
}

TEST(CpuFullScale, IsOneForZerosNegativesAndNothing)
{
    EXPECT_EQ(cpuFullScale(samples({0, 0, 0, 0, 0})), 1.0);
    EXPECT_EQ(cpuFullScale(samples({-20, -3})), 1.0);
    EXPECT_EQ(cpuFullScale({}), 1.0);
    EXPECT_EQ(cpuFullScale(samples({notANumber, notANumber})), 1.0);
}

TEST(CpuFullScale, IsNotMisledBySamplesThatAreNoNumbers)
{
    EXPECT_EQ(cpuFullScale(samples({notANumber, 3.5, notANumber})), 4.0);
    EXPECT_EQ(cpuFullScale(samples({1.0, infinity})), infinity);
}

TEST(CpuGraphSampleAt, IsTheOneWhosePointIsNearest)
{
    const UsageCache five = samples({0, 0.25, 0.5, 0.75, 0.25}); // at 1, 50, 99, 148 and 197
    for (const auto &[x, index] : {std::pair(1.0, 0),
                                   {25.0, 0},
                                   {26.0, 1},
                                   {74.0, 1},
                                   {75.0, 2},
                                   {172.0, 3},
                                   {173.0, 4},
                                   {197.0, 4}})
        EXPECT_EQ(cpuGraphSampleAt(five, 200, x), index) << x;
}

TEST(CpuGraphSampleAt, AgreesWithEveryPointThatIsDrawn)
{
    UsageCache many;
    for (int i = 0; i < 61; ++i)
        many.append(i % 7 == 3 ? notANumber : i / 61.0);
    const auto points = cpuGraphPoints(many, windowSize);
    qsizetype drawn = 0;
    for (qsizetype i = 0; i < many.size(); ++i) {
        if (!std::isnan(many[i].toDouble())) {
            EXPECT_EQ(cpuGraphSampleAt(many, 200, points[drawn++].x()), i);
        }
    }
    EXPECT_EQ(drawn, points.size());
}

TEST(CpuGraphSampleAt, BeyondTheLineIsItsEnd)
{
    EXPECT_EQ(cpuGraphSampleAt(samples({1, 2, 3}), 200, -1e9), 0);
    EXPECT_EQ(cpuGraphSampleAt(samples({1, 2, 3}), 200, 1e9), 2);
    EXPECT_EQ(cpuGraphSampleAt(samples({1, 2, notANumber}), 200, 199), 1);
    EXPECT_EQ(cpuGraphSampleAt(samples({1}), 200, 100), 0);
    EXPECT_EQ(cpuGraphSampleAt(samples({1, 2}), 3, 2), 0) << "a view without room for a line";
    EXPECT_EQ(cpuGraphSampleAt(samples({notANumber, notANumber}), 200, 100), std::nullopt);
    EXPECT_EQ(cpuGraphSampleAt({}, 200, 100), std::nullopt);
}

TEST(CpuGraphPoints, GoFromOneToTheInsetWidthBeyondIt)
{
    const auto points = cpuGraphPoints(samples({0, 0.25, 0.5, 0.75, 0.25}), windowSize);
    ASSERT_EQ(points.size(), 5);
    EXPECT_EQ(points[0], QPointF(1, 1));
    EXPECT_EQ(points[1], QPointF(50, 17.5));
    EXPECT_EQ(points[2], QPointF(99, 34));
    EXPECT_EQ(points[3], QPointF(148, 50.5));
    EXPECT_EQ(points[4], QPointF(197, 17.5));
}

TEST(CpuGraphPoints, OfZerosLieOnePointAboveTheBottom)
{
    for (const QPointF point : cpuGraphPoints(samples({0, 0, 0, 0, 0}), windowSize))
        EXPECT_EQ(point.y(), 1.0);
}

TEST(CpuGraphPoints, ReachHalfTheHeightAtExactlyOne)
{
    const auto points = cpuGraphPoints(samples({1, 1, 1, 1, 1}), windowSize);
    EXPECT_EQ(points.last().y(), 34.0);
}

TEST(CpuGraphPoints, AreReckonedInSinglePrecision)
{
    const double value = 0.1;
    const auto points = cpuGraphPoints(samples({value, 0, 0, 0, 0}), windowSize);
    EXPECT_EQ(points[0].y(), double(float(value) / 1.0F * 66.0F + 1.0F));
    EXPECT_NE(points[0].y(), value * 66.0 + 1.0);
}

TEST(CpuGraphPoints, LeaveOutWhatIsNoNumberAndMoveUp)
{
    const auto points = cpuGraphPoints(samples({0.5, 0.5, notANumber, 0.5, 0.5}), windowSize);
    ASSERT_EQ(points.size(), 4);
    EXPECT_EQ(points[2], QPointF(99, 34));
    EXPECT_EQ(points[3], QPointF(148, 34)); // one step short of the right edge
}

TEST(CpuGraphPoints, OfNoNumbersAreNone)
{
    EXPECT_TRUE(
        cpuGraphPoints(samples({notANumber, notANumber, notANumber, notANumber, notANumber}),
                       windowSize)
            .isEmpty());
    EXPECT_TRUE(
        cpuGraphPoints({QVariant(std::nanf("")), QVariant(std::nanf(""))}, windowSize).isEmpty());
}

TEST(CpuGraphPoints, OfNegativeSamplesLieBelowTheView)
{
    const auto points = cpuGraphPoints(samples({-20, -20, -20, -20, -20}), windowSize);
    EXPECT_EQ(points[0].y(), -1319.0);
}

TEST(CpuGraphPoints, StayAsManyAsTheSamplesWithInfiniteOnes)
{
    const auto points = cpuGraphPoints(samples({1, infinity, 2, -infinity, 3}), windowSize);
    ASSERT_EQ(points.size(), 5);
    EXPECT_EQ(points[0].y(), 1.0); // nothing, against an infinite scale
    EXPECT_FALSE(std::isfinite(points[1].y()));
    EXPECT_EQ(points[4].x(), 197.0);
}

TEST(CpuGraphPoints, ReadOtherValuesAsNumbers)
{
    const UsageCache mixed{QStringLiteral("0.5"), QVariantMap{}, QVariant(), true, 1U};
    const auto points = cpuGraphPoints(mixed, windowSize);
    ASSERT_EQ(points.size(), 5);
    EXPECT_EQ(points[0].y(), 17.5); // full scale 2
    EXPECT_EQ(points[1].y(), 1.0);
    EXPECT_EQ(points[2].y(), 1.0);
    EXPECT_EQ(points[3].y(), 34.0);
    EXPECT_EQ(points[4].y(), 34.0);
}

TEST(CpuGraphPoints, OfOneSampleIsAtTheLeft)
{
    EXPECT_EQ(cpuGraphPoints(samples({0}), windowSize), QVector<QPointF>{QPointF(1, 1)});
    EXPECT_TRUE(cpuGraphPoints({}, windowSize).isEmpty());
}

TEST(NetworkFullScale, IsNeverLessThanAKilobyte)
{
    EXPECT_EQ(networkFullScale(samples({0, 512, 3})), 1024.0);
    EXPECT_EQ(networkFullScale(samples({1024.5, 512})), 1024.5);
    EXPECT_EQ(networkFullScale(samples({5e9, notANumber})), 5e9);
    EXPECT_EQ(networkFullScale({}), 1024.0);
}

TEST(NetworkGraphPoints, OfHalfAKilobyteReachHalfTheHeight)
{
    const auto points = networkGraphPoints(samples({0, 512, 0, 256, 512}), windowSize);
    ASSERT_EQ(points.size(), 5);
    EXPECT_EQ(points[0], QPointF(1, 1));
    EXPECT_EQ(points[1], QPointF(50, 34));
    EXPECT_EQ(points[3], QPointF(148, 17.5));
    EXPECT_EQ(points[4], QPointF(197, 34));
}

TEST(NetworkGraphPoints, FillTheHeightWithTheLargestSample)
{
    const auto points = networkGraphPoints(samples({0, 0, 0, 0, 4096}), windowSize);
    EXPECT_EQ(points[4].y(), 67.0);
}

TEST(NetworkGraphPoints, AreReckonedInDoublePrecisionFromASingleValue)
{
    const double value = 16777217.0; // no single-precision number
    const auto points = networkGraphPoints(samples({value, 1000, 0, 0, 0}), windowSize);
    EXPECT_EQ(points[0].y(), 16777216.0 * 66.0 / 16777217.0 + 1.0);
    EXPECT_EQ(points[1].y(), 1000.0 * 66.0 / 16777217.0 + 1.0);
}

TEST(NetworkGraphPoints, KeepTheirPlacesBesideWhatIsNoNumber)
{
    const auto points =
        networkGraphPoints(samples({512, notANumber, 512, infinity, 512}), windowSize);
    ASSERT_EQ(points.size(), 5);
    EXPECT_TRUE(std::isnan(points[1].y()));
    EXPECT_EQ(points[2].x(), 99.0);
    EXPECT_FALSE(std::isfinite(points[3].y()));
    EXPECT_EQ(points[4].x(), 197.0);
}

TEST(NetworkGraphPoints, TakeThe64BitCountersOfTraffic)
{
    UsageCache cache;
    for (int i = 0; i < 5; ++i)
        cache.append(QVariant::fromValue(quint64(1) << (60 + i % 2)));
    const auto points = networkGraphPoints(cache, windowSize);
    EXPECT_EQ(points[1].y(), 67.0);
    EXPECT_EQ(points[0].y(), 34.0);
}
