#include "graph/LineRaster.h"

#include <QElapsedTimer>
#include <QPainter>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

using namespace pulsebar;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

QImage emptyImage(int width = 200, int height = 70)
{
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage line(const QVector<QPointF> &points, double width = 2.0, const QColor &color = Qt::white)
{
    QImage image = emptyImage();
    drawPolyline(image, points, width, color);
    return image;
}

int alphaAt(const QImage &image, int x, int y)
{
    return qAlpha(image.pixel(x, y));
}

bool isEmpty(const QImage &image)
{
    return image == emptyImage(image.width(), image.height());
}

QImage paintedByQt(const QVector<QPointF> &points, double width, const QColor &color)
{
    QImage image = emptyImage();
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF(points));
    return image;
}

struct Difference
{
    double mean = 0; ///< over the pixels that one of the two touched
    int greatest = 0;
};

Difference difference(const QImage &one, const QImage &other)
{
    Difference result;
    int touched = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const int a = alphaAt(one, x, y);
            const int b = alphaAt(other, x, y);
            touched += a != 0 || b != 0 ? 1 : 0;
            result.mean += std::abs(a - b);
            result.greatest = std::max(result.greatest, std::abs(a - b));
        }
    }
    result.mean /= std::max(touched, 1);
    return result;
}

QVector<QPointF> lively(int samples, double width, double height)
{
    QVector<QPointF> points;
    for (int i = 0; i < samples; ++i) {
        const double wave = std::abs(std::sin(i * 1.7) * std::cos(i * 0.31));
        points.append({2 + (width - 4) * i / (samples - 1), height - 2 - (height - 4) * wave});
    }
    return points;
}

struct Line
{
    QVector<QPointF> points;
    double width;
};

std::array<Line, 6> differentLines()
{
    return {{{lively(60, 200, 70), 2},
             {lively(20, 200, 70), 4},
             {{{10, 10}, {190, 60}}, 2},
             {{{10, 65}, {40, 5}, {70, 65}, {100, 5}}, 2.5},
             {{{10.3, 30.7}, {180.2, 31.1}}, 3},
             {{{100.5, 5}, {100.5, 65}}, 2}}};
}

double distanceToSegment(QPointF at, QPointF from, QPointF to)
{
    const QPointF way = to - from;
    const double part = QPointF::dotProduct(at - from, way) / QPointF::dotProduct(way, way);
    const QPointF left = at - from - way * std::clamp(part, 0.0, 1.0);
    return std::hypot(left.x(), left.y());
}

/// The share of a pixel's 8 by 8 places that any of the strokes covers.
int countedCoverage(int x, int y, const QVector<QPointF> &points, double width)
{
    constexpr int places = 8;
    int covered = 0;
    for (int i = 0; i < places * places; ++i) {
        const int row = i / places;
        const int column = i % places;
        const QPointF at(x + (column + 0.5) / places, y + (row + 0.5) / places);
        bool inside = false;
        for (qsizetype j = 1; j < points.size() && !inside; ++j) {
            const auto [left, right] = std::minmax({points[j - 1].x(), points[j].x()});
            inside = at.x() > left - width && at.x() < right + width &&
                     distanceToSegment(at, points[j - 1], points[j]) < width / 2;
        }
        covered += inside ? 1 : 0;
    }
    return covered * 255 / (places * places);
}

QImage coveredByCounting(const QVector<QPointF> &points, double width)
{
    QImage image = emptyImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int covered = countedCoverage(x, y, points, width);
            image.setPixel(x, y, qRgba(covered, covered, covered, covered));
        }
    }
    return image;
}

} // namespace

TEST(LineRaster, FillsWholePixelsExactly)
{
    const QImage image = line({{10, 20}, {100, 20}});
    for (const int y : {19, 20}) {
        EXPECT_EQ(alphaAt(image, 50, y), 255);
        EXPECT_EQ(alphaAt(image, 10, y), 255);
    }
    EXPECT_EQ(alphaAt(image, 50, 18), 0);
    EXPECT_EQ(alphaAt(image, 50, 21), 0);
    EXPECT_EQ(alphaAt(image, 102, 20), 0);
}

TEST(LineRaster, CoversPixelsInPart)
{
    const QImage image = line({{10, 20.25}, {100, 20.25}});
    EXPECT_NEAR(alphaAt(image, 50, 19), 191, 1);
    EXPECT_EQ(alphaAt(image, 50, 20), 255);
    EXPECT_NEAR(alphaAt(image, 50, 21), 64, 1);
}

TEST(LineRaster, IsSymmetricalInBothDirections)
{
    const QImage across = line({{10, 20}, {60, 35}, {62, 5}});
    EXPECT_EQ(across, line({{62, 5}, {60, 35}, {10, 20}}));
    const QImage mirrored = line({{194.5, 5.5}, {154.5, 60.5}}).mirrored(true, false);
    EXPECT_LE(difference(line({{5.5, 5.5}, {45.5, 60.5}}), mirrored).greatest, 1);
}

TEST(LineRaster, LooksLikeThePaintersLine)
{
    for (const Line &each : differentLines()) {
        const Difference found = difference(line(each.points, each.width),
                                            paintedByQt(each.points, each.width, Qt::white));
        EXPECT_LT(found.mean, 4.0);
    }
}

TEST(LineRaster, CoversEachPixelByItsShareOfTheStrokes)
{
    for (const Line &each : differentLines()) {
        const Difference found =
            difference(line(each.points, each.width), coveredByCounting(each.points, each.width));
        EXPECT_LT(found.mean, 6.0);
        EXPECT_LE(found.greatest, 64);
    }
}

TEST(LineRaster, HasNoSeamsWhereStrokesMeet)
{
    const QColor translucent(0, 200, 100, 100);
    // Many joins on one straight line, and a way back over it, are still one stroke.
    QVector<QPointF> manyJoins;
    for (int x = 10; x <= 100; ++x)
        manyJoins.append({double(x), 30});
    for (int x = 99; x >= 10; x -= 3)
        manyJoins.append({double(x), 30});
    EXPECT_EQ(line(manyJoins, 2, translucent), line({{10, 30}, {100, 30}}, 2, translucent));
    const QImage crossing = line({{10, 10}, {60, 60}, {60, 10}, {10, 60}}, 3, translucent);
    int strongest = 0;
    for (int y = 0; y < 70; ++y) {
        for (int x = 0; x < 200; ++x)
            strongest = std::max(strongest, alphaAt(crossing, x, y));
    }
    EXPECT_EQ(strongest, 100);
}

TEST(LineRaster, BlendsOverWhatIsThere)
{
    QImage image = emptyImage();
    image.fill(QColor(Qt::blue));
    drawPolyline(image, {{10, 20}, {100, 20}}, 2, QColor(255, 0, 0, 128));
    EXPECT_EQ(image.pixel(50, 20), qRgba(128, 0, 127, 255));
    EXPECT_EQ(image.pixel(50, 40), qRgba(0, 0, 255, 255));
}

TEST(LineRaster, WritesPremultipliedPixels)
{
    const QImage image = line({{10, 20}, {100, 20}}, 2, QColor(200, 100, 50, 128));
    const QRgb pixel = reinterpret_cast<const QRgb *>(image.constScanLine(20))[50];
    EXPECT_EQ(pixel, qPremultiply(qRgba(200, 100, 50, 128)));
}

TEST(LineRaster, CutsWhatLiesOutside)
{
    EXPECT_TRUE(isEmpty(line({{-50, -50}, {-10, 60}})));
    EXPECT_TRUE(isEmpty(line({{-50, 80}, {250, 75}})));
    EXPECT_FALSE(isEmpty(line({{-50, 30}, {250, 30}})));
    // A cut end is not a round end.
    EXPECT_EQ(alphaAt(line({{-50, 30}, {250, 30}}), 0, 29), 255);
    EXPECT_EQ(alphaAt(line({{-50, 30}, {250, 30}}), 199, 30), 255);
}

TEST(LineRaster, DoesNotMoveWhatIsCut)
{
    // The same straight line, once with both ends far outside.
    const QImage inside = line({{-10, -5}, {210, 75}});
    const QPointF way(220, 80);
    const QImage outside = line({QPointF(-10, -5) - way * 1000, QPointF(210, 75) + way * 1000});
    EXPECT_LE(difference(inside, outside).greatest, 1);
}

TEST(LineRaster, IsQuickHoweverFarAwayThePointsAre)
{
    QElapsedTimer timer;
    timer.start();
    for (const double far : {1e6, 1e12, 1e300, std::numeric_limits<double>::max()}) {
        QVector<QPointF> points;
        for (int i = 0; i < 1000; ++i)
            points.append({i / 5.0, i % 2 ? far : -far});
        EXPECT_FALSE(isEmpty(line(points)));
        EXPECT_TRUE(isEmpty(line({{far, far}, {far, -far}, {-far, -far}})));
    }
    EXPECT_LT(timer.elapsed(), 5000);
}

TEST(LineRaster, LeavesOutPointsThatAreNowhere)
{
    const QImage interrupted = line({{10, 20}, {50, 20}, {60, notANumber}, {70, 20}, {90, 20}});
    EXPECT_EQ(alphaAt(interrupted, 30, 20), 255);
    EXPECT_EQ(alphaAt(interrupted, 60, 20), 0);
    EXPECT_EQ(alphaAt(interrupted, 80, 20), 255);
    EXPECT_EQ(interrupted, line({{10, 20}, {50, 20}, {60, -infinity}, {70, 20}, {90, 20}}));
    EXPECT_TRUE(isEmpty(line({{notANumber, 1}, {infinity, 20}, {3, -infinity}})));
}

TEST(LineRaster, DrawsAPointThatStandsAloneAsADot)
{
    for (const auto &points : {QVector<QPointF>{{30, 20}}, QVector<QPointF>{{30, 20}, {30, 20}},
                               QVector<QPointF>{{1, notANumber}, {30, 20}, {60, notANumber}}}) {
        const QImage image = line(points, 4);
        EXPECT_EQ(alphaAt(image, 30, 20), 255);
        EXPECT_EQ(alphaAt(image, 33, 20), 0);
        EXPECT_EQ(alphaAt(image, 30, 23), 0);
    }
}

TEST(LineRaster, DrawsNothingWithoutImageColourOrWidth)
{
    EXPECT_TRUE(isEmpty(line({{10, 20}, {100, 20}}, 2, QColor())));
    EXPECT_TRUE(isEmpty(line({{10, 20}, {100, 20}}, 2, Qt::transparent)));
    EXPECT_TRUE(isEmpty(line({{10, 20}, {100, 20}}, 0)));
    EXPECT_TRUE(isEmpty(line({{10, 20}, {100, 20}}, notANumber)));
    EXPECT_TRUE(isEmpty(line({})));
    QImage none;
    drawPolyline(none, {{10, 20}, {100, 20}}, 2, Qt::white);
    EXPECT_TRUE(none.isNull());
}
