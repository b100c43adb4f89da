#include "graph/GraphView.h"

#include "graph/GraphPoints.h"

#include <QImage>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace pulsebar;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr QSize windowSize(200, 70);

UsageCache samples(std::initializer_list<double> values)
{
    UsageCache cache;
    for (const double value : values)
        cache.append(value);
    return cache;
}

const UsageCache lively = samples({0.1, 0.7, 0.35, 0.9, 0.2, 0.2, 0.6});

/// A view that is shown red on black.
struct Shown
{
    Shown()
    {
        setting.setProperty("lineColor", QColor(Qt::red));
        setting.setProperty("backgroundColor", QColor(Qt::black));
    }

    QImage draw(GraphView &view, const UsageCache &array, double scale = 1.0) const
    {
        view.setViewSetting(&setting);
        view.setUsageCacheArray(array);
        QImage image(windowSize * scale, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::transparent);
        view.drawRect(image, QRectF(QPointF(0, 0), windowSize));
        return image;
    }

    GraphViewSetting setting;
};

bool hasLine(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qRed(image.pixel(x, y)) > 0)
                return true;
        }
    }
    return false;
}

/// From a pixel's centre to the polyline; all in pixels.
double distanceToLine(QPointF at, const QVector<QPointF> &points)
{
    double least = infinity;
    for (qsizetype i = 1; i < points.size(); ++i) {
        const QPointF way = points[i] - points[i - 1];
        const QPointF from = at - points[i - 1];
        const double part =
            std::clamp(QPointF::dotProduct(from, way) / QPointF::dotProduct(way, way), 0.0, 1.0);
        const QPointF left = from - way * part;
        least = std::min(least, std::hypot(left.x(), left.y()));
    }
    return least;
}

void expectLineOfTwoPoints(const QImage &image, QVector<QPointF> upward)
{
    const double scale = image.devicePixelRatio();
    for (QPointF &point : upward)
        point = QPointF(point.x(), windowSize.height() - point.y()) * scale;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const double distance = distanceToLine({x + 0.5, y + 0.5}, upward);
            const int red = qRed(image.pixel(x, y));
            if (distance < scale - 0.75) {
                ASSERT_GT(red, 230) << x << ", " << y;
            } else if (distance > scale + 0.75) {
                ASSERT_EQ(red, 0) << x << ", " << y;
            }
        }
    }
}

} // namespace

TEST(GraphViewSamples, AreCountedBackFromTheNewest)
{
    CPUGraphView view;
    view.setUsageCacheArray(samples({0, 0.25, 0.5, 0.75, 0.25})); // at 1, 50, 99, 148 and 197
    EXPECT_EQ(view.sampleAt(197.5, 200), 0U);
    EXPECT_EQ(view.sampleAt(99.5, 200), 2U);
    EXPECT_EQ(view.sampleAt(0.5, 200), 4U);
}

TEST(GraphViewSamples, AreThereWhereALineIs)
{
    CPUGraphView cpu;
    EXPECT_EQ(cpu.sampleAt(100, 200), std::nullopt);
    cpu.setUsageCacheArray(samples({0, 0.25, 0.5, 0.75}));
    EXPECT_EQ(cpu.sampleAt(100, 200), std::nullopt);
    NetworkGraphView network;
    network.setUsageCacheArray(lively);
    EXPECT_EQ(network.sampleAt(100, 200), std::nullopt);
}

TEST(GraphView, ShowsOnlyItsBackgroundWithFourSamples)
{
    const Shown shown;
    CPUGraphView view;
    const QImage four = shown.draw(view, samples({0.5, 0.5, 0.5, 0.5}));
    EXPECT_FALSE(hasLine(four));
    EXPECT_EQ(four.pixel(100, 35), qRgba(0, 0, 0, 255));
    EXPECT_TRUE(hasLine(shown.draw(view, samples({0.5, 0.5, 0.5, 0.5, 0.5}))));
    EXPECT_FALSE(hasLine(shown.draw(view, {})));
}

TEST(GraphView, DrawsNoLineOfItsOwn)
{
    const Shown shown;
    GraphView view;
    EXPECT_FALSE(hasLine(shown.draw(view, lively)));
}

TEST(GraphView, TellsThatItHasOtherSamples)
{
    GraphView view;
    int told = 0;
    view.setUsageCacheArray(lively);
    view.setNeedsDisplay([&told] { ++told; });
    view.setUsageCacheArray(lively);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(view.usageCacheArray().constData(), lively.constData()) << "shared, not copied";
}

TEST(GraphView, DrawsThePolylineOfTheFormula)
{
    const Shown shown;
    for (const double scale : {1.0, 2.0}) {
        CPUGraphView cpu;
        expectLineOfTwoPoints(shown.draw(cpu, lively, scale), cpuGraphPoints(lively, windowSize));
        NetworkGraphView network;
        const UsageCache traffic = samples({0, 3000, 12, 700, 2500, 4096, 100, 9});
        expectLineOfTwoPoints(shown.draw(network, traffic, scale),
                              networkGraphPoints(traffic, windowSize));
    }
}

TEST(GraphView, DrawsZerosAlongTheBottom)
{
    const Shown shown;
    CPUGraphView view;
    for (const int scale : {1, 2}) {
        const QImage image = shown.draw(view, samples({0, 0, 0, 0, 0}), scale);
        for (int y = 0; y < image.height(); ++y) {
            const bool onLine = y >= image.height() - 2 * scale;
            EXPECT_EQ(image.pixel(image.width() / 2, y), qRgba(onLine ? 255 : 0, 0, 0, 255)) << y;
        }
    }
}

TEST(GraphView, DrawsThroughTranslucentColours)
{
    Shown shown;
    shown.setting.setProperty("backgroundColor", QColor(0, 0, 255, 128));
    shown.setting.setProperty("lineColor", QColor(255, 0, 0, 128));
    CPUGraphView view;
    const QImage image = shown.draw(view, samples({0, 0, 0, 0, 0}));
    EXPECT_EQ(image.pixel(100, 10), qPremultiply(qRgba(0, 0, 255, 128)));
    EXPECT_EQ(qAlpha(image.pixel(100, 69)), 192);
}

TEST(GraphView, DrawsNothingInColoursThatAreNone)
{
    Shown shown;
    shown.setting.setProperty("backgroundColor", QColor());
    CPUGraphView view;
    EXPECT_EQ(qAlpha(shown.draw(view, lively).pixel(100, 1)), 0);
    shown.setting.setProperty("lineColor", QColor());
    EXPECT_FALSE(hasLine(shown.draw(view, lively)));
}

TEST(GraphView, IsNotHarmedByAnySample)
{
    const Shown shown;
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const double largest = std::numeric_limits<double>::max();
    const UsageCache strange[] = {
        samples({notANumber, notANumber, notANumber, notANumber, notANumber}),
        samples({1, infinity, -infinity, notANumber, 2, 3}),
        samples({largest, -largest, 1, 1, -largest, largest}),
        samples({-1e30, 1e30, -1e30, 1e30, 5}),
        {QStringLiteral("many"), QVariantList{1, 2}, QVariantMap{}, QVariant(), QByteArray("1")},
    };
    for (const UsageCache &array : strange) {
        for (const double scale : {1.0, 2.0}) {
            CPUGraphView cpu;
            NetworkGraphView network;
            for (GraphView *view :
                 {static_cast<GraphView *>(&cpu), static_cast<GraphView *>(&network)}) {
                const QImage image = shown.draw(*view, array, scale);
                EXPECT_EQ(image.pixel(100, 2), qRgba(qRed(image.pixel(100, 2)), 0, 0, 255));
            }
        }
    }
}

TEST(GraphView, InterruptsTheLineOfTrafficAtWhatIsNoNumber)
{
    const Shown shown;
    NetworkGraphView view;
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const QImage image = shown.draw(view, samples({0, 0, notANumber, 0, 0}));
    EXPECT_EQ(qRed(image.pixel(20, 69)), 255);
    EXPECT_EQ(qRed(image.pixel(99, 69)), 0);
    EXPECT_EQ(qRed(image.pixel(180, 69)), 255);
}
