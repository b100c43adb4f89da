#include "graph/ResizeCursors.h"

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QVariant>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(ResizeCursors, AreTheSameOnEveryRequest)
{
    ResizeCursors cursors;
    const QCursor &southeast = cursors.southeastResizeCursor();
    const QCursor &southwest = cursors.southwestResizeCursor();
    EXPECT_EQ(&southeast, &cursors.southeastResizeCursor());
    EXPECT_EQ(&southwest, &cursors.southwestResizeCursor());
    EXPECT_EQ(southeast, cursors.southeastResizeCursor());
    EXPECT_NE(southeast, southwest);
}

TEST(ResizeCursors, CanBeReadByKey)
{
    ResizeCursors cursors;
    EXPECT_EQ(cursors.property("southeastResizeCursor").value<QCursor>(),
              cursors.southeastResizeCursor());
    EXPECT_EQ(cursors.property("southwestResizeCursor").value<QCursor>(),
              cursors.southwestResizeCursor());
}

TEST(ResizeCursors, PointWithTheirMiddle)
{
    ResizeCursors cursors;
    for (const QCursor &cursor :
         {cursors.southeastResizeCursor(), cursors.southwestResizeCursor()}) {
        EXPECT_EQ(cursor.shape(), Qt::BitmapCursor);
        EXPECT_EQ(cursor.hotSpot(), QPoint(8, 8));
        EXPECT_EQ(cursor.pixmap().deviceIndependentSize(), QSizeF(16, 16));
        EXPECT_EQ(cursor.pixmap().devicePixelRatio(), qGuiApp->devicePixelRatio());
    }
}

/// The colour at a place in points.
QColor colourAt(const QCursor &cursor, QPointF place)
{
    const QImage image = cursor.pixmap().toImage();
    return image.pixelColor((place * image.devicePixelRatio()).toPoint());
}

TEST(ResizeCursors, AreSeenOnAnything)
{
    ResizeCursors cursors;
    const QCursor &southeast = cursors.southeastResizeCursor();
    const QCursor &southwest = cursors.southwestResizeCursor();
    // Dark along the diagonal, clear in the two other corners.
    for (const double along : {3.0, 8.0, 13.0}) {
        EXPECT_LT(colourAt(southeast, {along, along}).lightness(), 80) << along;
        EXPECT_GT(colourAt(southeast, {along, along}).alpha(), 200) << along;
        EXPECT_LT(colourAt(southwest, {15.5 - along, along}).lightness(), 80) << along;
        EXPECT_GT(colourAt(southwest, {15.5 - along, along}).alpha(), 200) << along;
    }
    EXPECT_EQ(colourAt(southeast, {14, 1}).alpha(), 0);
    EXPECT_EQ(colourAt(southwest, {1, 1}).alpha(), 0);
    // With a light edge around.
    const QImage image = southeast.pixmap().toImage();
    int light = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            light +=
                image.pixelColor(x, y).alpha() > 128 && image.pixelColor(x, y).lightness() > 200;
    EXPECT_GT(light, image.width());
}

} // namespace
} // namespace pulsebar
