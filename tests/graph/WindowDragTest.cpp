#include "graph/WindowDrag.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace pulsebar {
namespace {

using Tag = TrackingRectTag;

const QSizeF content(200, 70);
const QRectF frame(300, 400, 200, 70);
const QRectF mainScreen(0, 0, 1000, 800);

/// A drag that began in a part of the rim of a 200 by 70 window at 300, 400.
WindowDrag resizingFrom(Tag tag, QPointF p)
{
    WindowDrag drag;
    drag.setResizable(true);
    drag.updateTrackingRect(content);
    drag.mouseEntered(tag);
    drag.mouseDown(p, frame);
    return drag;
}

TEST(TrackingRects, LieAlongCornersAndEdges)
{
    EXPECT_EQ(trackingRect(Tag::ResizeRightBottom, content), QRectF(184, 0, 16, 16));
    EXPECT_EQ(trackingRect(Tag::ResizeRightTop, content), QRectF(184, 54, 16, 16));
    EXPECT_EQ(trackingRect(Tag::ResizeLeftBottom, content), QRectF(0, 0, 16, 16));
    EXPECT_EQ(trackingRect(Tag::ResizeLeftTop, content), QRectF(0, 54, 16, 16));
    EXPECT_EQ(trackingRect(Tag::ResizeTopEdge, content), QRectF(16, 62, 168, 8));
    EXPECT_EQ(trackingRect(Tag::ResizeBottomEdge, content), QRectF(16, 0, 168, 8));
    EXPECT_EQ(trackingRect(Tag::ResizeRightEdge, content), QRectF(192, 16, 8, 38));
    EXPECT_EQ(trackingRect(Tag::ResizeLeftEdge, content), QRectF(0, 16, 8, 38));
    EXPECT_EQ(trackingRect(Tag::Window, content), QRectF(0, 0, 200, 70));
    EXPECT_EQ(trackingRect(Tag::None, content), QRectF());
}

TEST(TrackingRects, EveryPixelOfTheRimBelongsToOnePart)
{
    const QSize smallest(120, 42);
    for (int row = 0; row < smallest.height(); ++row) {
        for (int column = 0; column < smallest.width(); ++column) {
            const QPointF point(column, smallest.height() - row);
            int parts = 0;
            for (const Tag tag : resizeTags)
                parts += isOn(trackingRect(tag, smallest), point) ? 1 : 0;
            const bool rim = column < 8 || column >= 112 || row < 8 || row >= 34;
            const bool corner = (column < 16 || column >= 104) && (row < 16 || row >= 26);
            ASSERT_EQ(parts, rim || corner ? 1 : 0) << column << ' ' << row;
        }
    }
}

TEST(TrackingRects, APointsPixelHangsDownFromIt)
{
    const QRectF rect(10, 20, 5, 5);
    EXPECT_TRUE(isOn(rect, {10, 25}));
    EXPECT_FALSE(isOn(rect, {10, 20}));
    EXPECT_TRUE(isOn(rect, {14.5, 20.5}));
    EXPECT_FALSE(isOn(rect, {15, 22}));
    EXPECT_FALSE(isOn(rect, {9.5, 22}));
}

TEST(ZoneCursor, FitsThePart)
{
    const std::vector<std::pair<Tag, DragCursor>> fitting{
        {Tag::ResizeRightBottom, DragCursor::Southeast},
        {Tag::ResizeLeftTop, DragCursor::Southeast},
        {Tag::ResizeRightTop, DragCursor::Southwest},
        {Tag::ResizeLeftBottom, DragCursor::Southwest},
        {Tag::ResizeTopEdge, DragCursor::UpDown},
        {Tag::ResizeBottomEdge, DragCursor::UpDown},
        {Tag::ResizeLeftEdge, DragCursor::LeftRight},
        {Tag::ResizeRightEdge, DragCursor::LeftRight},
    };
    for (const auto &[tag, cursor] : fitting) {
        WindowDrag drag;
        drag.setResizable(true);
        EXPECT_TRUE(drag.mouseEntered(tag));
        EXPECT_EQ(drag.cursor(), cursor);
        EXPECT_EQ(drag.currentTrackingRectTag(), tag);
        EXPECT_TRUE(drag.mouseExited(tag));
        EXPECT_EQ(drag.cursor(), DragCursor::Arrow);
        EXPECT_EQ(drag.currentTrackingRectTag(), Tag::None);
    }
}

TEST(ZoneCursor, StaysAnArrowWhereNothingResizes)
{
    WindowDrag drag;
    EXPECT_FALSE(drag.mouseEntered(Tag::ResizeLeftTop));
    EXPECT_EQ(drag.cursor(), DragCursor::Arrow);
    EXPECT_EQ(drag.currentTrackingRectTag(), Tag::None);
    EXPECT_FALSE(drag.mouseExited(Tag::ResizeLeftTop));
}

TEST(ZoneCursor, TheFirstPartEnteredCounts)
{
    WindowDrag drag;
    drag.setResizable(true);
    drag.mouseEntered(Tag::ResizeLeftEdge);
    EXPECT_FALSE(drag.mouseEntered(Tag::ResizeTopEdge));
    EXPECT_EQ(drag.currentTrackingRectTag(), Tag::ResizeLeftEdge);
    EXPECT_EQ(drag.cursor(), DragCursor::LeftRight);
}

TEST(ZoneCursor, AnythingElseEnteredGivesTheArrow)
{
    for (const Tag tag : {Tag::Window, Tag::None}) {
        WindowDrag drag;
        drag.setResizable(true);
        drag.mouseEntered(Tag::ResizeLeftEdge);
        EXPECT_FALSE(drag.mouseExited(tag)) << "of no use here";
        EXPECT_EQ(drag.currentTrackingRectTag(), Tag::None) << "but no part is current any more";
        EXPECT_EQ(drag.cursor(), DragCursor::LeftRight);
        EXPECT_TRUE(drag.mouseEntered(tag));
        EXPECT_EQ(drag.cursor(), DragCursor::Arrow);
        EXPECT_EQ(drag.currentTrackingRectTag(), Tag::None);
    }
}

TEST(MovingAWindow, FollowsThePointer)
{
    WindowDrag drag;
    drag.setResizable(true);
    drag.updateTrackingRect(content);
    drag.mouseDown({100, 35}, frame);
    EXPECT_FALSE(drag.isResizing());
    EXPECT_EQ(drag.mouseDragged({410, 430}, frame, mainScreen), QRectF(310, 395, 200, 70));
}

TEST(MovingAWindow, IsStoppedAtTheTopOfTheMainScreenOnly)
{
    WindowDrag drag;
    drag.mouseDown({100, 35}, frame);
    EXPECT_EQ(drag.mouseDragged({400, 765}, frame, mainScreen), QRectF(300, 730, 200, 70));
    EXPECT_EQ(drag.mouseDragged({400, 766}, frame, mainScreen), QRectF(300, 730, 200, 70));
    EXPECT_EQ(drag.mouseDragged({-500, 435}, frame, mainScreen), QRectF(-600, 400, 200, 70));
    EXPECT_EQ(drag.mouseDragged({2500, 435}, frame, mainScreen), QRectF(2400, 400, 200, 70));
    EXPECT_EQ(drag.mouseDragged({400, -900}, frame, mainScreen), QRectF(300, -935, 200, 70));
    // The main screen need not begin at 0.
    const QRectF raised(0, 50, 1000, 800);
    EXPECT_EQ(drag.mouseDragged({400, 1500}, frame, raised), QRectF(300, 780, 200, 70));
}

TEST(MovingAWindow, APressOnTheRimOfOneThatDoesNotResizeMovesIt)
{
    WindowDrag drag;
    drag.updateTrackingRect(content);
    drag.mouseEntered(Tag::ResizeLeftTop);
    drag.mouseDown({2, 68}, frame);
    EXPECT_FALSE(drag.isResizing());
    EXPECT_EQ(drag.mouseDragged({312, 478}, frame, mainScreen), QRectF(310, 410, 200, 70));
}

TEST(MovingAWindow, APressWithAResizeCursorBesideAllPartsKeepsTheOldPlaceInTheWindow)
{
    WindowDrag drag;
    drag.setResizable(true);
    drag.updateTrackingRect(content);
    drag.mouseDown({100, 35}, frame);
    drag.mouseUp();
    drag.mouseEntered(Tag::ResizeRightEdge);
    drag.mouseDown({50, 20}, frame);
    EXPECT_FALSE(drag.isResizing());
    EXPECT_EQ(drag.mouseDragged({350, 420}, frame, mainScreen), QRectF(250, 385, 200, 70))
        << "by 100, 35 of the press before";
    // The same without a current part, by the cursor alone.
    drag.mouseExited(Tag::Window);
    EXPECT_EQ(drag.cursor(), DragCursor::LeftRight);
    drag.mouseDown({50, 20}, frame);
    EXPECT_FALSE(drag.isResizing());
    EXPECT_EQ(drag.mouseDragged({350, 420}, frame, mainScreen), QRectF(250, 385, 200, 70));
}

TEST(ResizingAWindow, BeginsInThePartUnderThePress)
{
    for (const Tag tag : resizeTags) {
        const QRectF rect = trackingRect(tag, content);
        // What is current need not be what is pressed.
        const WindowDrag drag = resizingFrom(Tag::ResizeTopEdge, rect.center());
        EXPECT_EQ(drag.resizing(), tag);
    }
}

TEST(ResizingAWindow, EndsWithTheRelease)
{
    WindowDrag drag = resizingFrom(Tag::ResizeRightEdge, {195, 35});
    EXPECT_TRUE(drag.isResizing());
    drag.mouseUp();
    EXPECT_FALSE(drag.isResizing());
}

TEST(ResizingAWindow, PartsFollowTheSizeOnlyWhenTheyAreLaidAnew)
{
    const QRectF grown(300, 400, 300, 70);
    WindowDrag drag = resizingFrom(Tag::ResizeRightEdge, {195, 35});
    drag.mouseUp();
    drag.mouseDown({295, 35}, grown);
    EXPECT_FALSE(drag.isResizing());
    drag.updateTrackingRect(grown.size());
    drag.mouseEntered(Tag::ResizeRightEdge);
    drag.mouseDown({295, 35}, grown);
    EXPECT_EQ(drag.resizing(), Tag::ResizeRightEdge);
}

TEST(ResizingAWindow, AnEdgeMovesItsOwnSideOnly)
{
    const WindowDrag right = resizingFrom(Tag::ResizeRightEdge, {195, 35});
    EXPECT_EQ(right.mouseDragged({525, 300}, frame, mainScreen), QRectF(300, 400, 230, 70));
    const WindowDrag top = resizingFrom(Tag::ResizeTopEdge, {100, 66});
    EXPECT_EQ(top.mouseDragged({0, 496}, frame, mainScreen), QRectF(300, 400, 200, 100));
    const WindowDrag bottom = resizingFrom(Tag::ResizeBottomEdge, {100, 4});
    EXPECT_EQ(bottom.mouseDragged({0, 374}, frame, mainScreen), QRectF(300, 370, 200, 100));
    // At the left, where the press was counts twice: 4 points from the edge make 8 fewer.
    const WindowDrag left = resizingFrom(Tag::ResizeLeftEdge, {4, 35});
    EXPECT_EQ(left.mouseDragged({274, 35}, frame, mainScreen), QRectF(278, 400, 222, 70));
    const WindowDrag atTheEdge = resizingFrom(Tag::ResizeLeftEdge, {0, 35});
    EXPECT_EQ(atTheEdge.mouseDragged({270, 35}, frame, mainScreen), QRectF(270, 400, 230, 70));
}

TEST(ResizingAWindow, TheCornerOppositeStaysWhereItIs)
{
    const WindowDrag rightBottom = resizingFrom(Tag::ResizeRightBottom, {195, 5});
    EXPECT_EQ(rightBottom.mouseDragged({545, 385}, frame, mainScreen), QRectF(300, 380, 250, 90));
    const WindowDrag rightTop = resizingFrom(Tag::ResizeRightTop, {195, 65});
    EXPECT_EQ(rightTop.mouseDragged({545, 485}, frame, mainScreen), QRectF(300, 400, 250, 90));
    const WindowDrag leftBottom = resizingFrom(Tag::ResizeLeftBottom, {0, 5});
    EXPECT_EQ(leftBottom.mouseDragged({250, 385}, frame, mainScreen), QRectF(250, 380, 250, 90));
    const WindowDrag leftTop = resizingFrom(Tag::ResizeLeftTop, {0, 65});
    EXPECT_EQ(leftTop.mouseDragged({250, 485}, frame, mainScreen), QRectF(250, 400, 250, 90));
}

TEST(ResizingAWindow, GoesOnFromTheFrameOfTheLastStep)
{
    const WindowDrag drag = resizingFrom(Tag::ResizeLeftBottom, {0, 5});
    const QRectF first = drag.mouseDragged({250, 385}, frame, mainScreen);
    EXPECT_EQ(drag.mouseDragged({200, 365}, first, mainScreen), QRectF(200, 360, 300, 110));
    const WindowDrag bottom = resizingFrom(Tag::ResizeBottomEdge, {100, 4});
    const QRectF taller = bottom.mouseDragged({0, 374}, frame, mainScreen);
    EXPECT_EQ(bottom.mouseDragged({0, 394}, taller, mainScreen), QRectF(300, 390, 200, 80));
}

TEST(ResizingAWindow, LeavesNoneSmallerThanTheSmallest)
{
    const WindowDrag rightBottom = resizingFrom(Tag::ResizeRightBottom, {195, 5});
    EXPECT_EQ(rightBottom.mouseDragged({310, 460}, frame, mainScreen), QRectF(300, 428, 120, 42));
    const WindowDrag right = resizingFrom(Tag::ResizeRightEdge, {195, 35});
    EXPECT_EQ(right.mouseDragged({-900, 460}, frame, mainScreen), QRectF(300, 400, 120, 70));
    const WindowDrag top = resizingFrom(Tag::ResizeTopEdge, {100, 66});
    EXPECT_EQ(top.mouseDragged({0, -496}, frame, mainScreen), QRectF(300, 400, 200, 42));
    const WindowDrag leftTop = resizingFrom(Tag::ResizeLeftTop, {0, 65});
    EXPECT_EQ(leftTop.mouseDragged({490, 405}, frame, mainScreen), QRectF(380, 400, 120, 42));
    const WindowDrag bottom = resizingFrom(Tag::ResizeBottomEdge, {100, 4});
    EXPECT_EQ(bottom.mouseDragged({0, 900}, frame, mainScreen), QRectF(300, 428, 200, 42));
}

TEST(ResizingAWindow, TheLeftSideDraggedPastTheRightCountsOn)
{
    const WindowDrag drag = resizingFrom(Tag::ResizeLeftEdge, {4, 35});
    // 4 + (550 - 500) = 54, less than the smallest.
    EXPECT_EQ(drag.mouseDragged({550, 35}, frame, mainScreen), QRectF(380, 400, 120, 70));
    // 4 + (700 - 500) = 204: the width grows again, and the right side stays.
    EXPECT_EQ(drag.mouseDragged({700, 35}, frame, mainScreen), QRectF(296, 400, 204, 70));
}

TEST(ResizingAWindow, TheLeftSideGoesByWholePoints)
{
    const WindowDrag drag = resizingFrom(Tag::ResizeLeftEdge, {0, 35});
    // |trunc(250.25 - 500)| = 249
    EXPECT_EQ(drag.mouseDragged({250.25, 35}, frame, mainScreen), QRectF(251, 400, 249, 70));
    // |trunc(0.75 + 650 - 500)| = 150, from a press within a point
    const WindowDrag within = resizingFrom(Tag::ResizeLeftEdge, {0.75, 35});
    EXPECT_EQ(within.mouseDragged({650, 35}, frame, mainScreen), QRectF(350, 400, 150, 70));
    // The other sides keep fractions.
    const WindowDrag right = resizingFrom(Tag::ResizeRightEdge, {195, 35});
    EXPECT_EQ(right.mouseDragged({525.25, 35}, frame, mainScreen), QRectF(300, 400, 230.25, 70));
}

TEST(ResizingAWindow, SizesHaveSinglePrecision)
{
    const WindowDrag right = resizingFrom(Tag::ResizeRightEdge, {195, 35});
    const QRectF wide = right.mouseDragged({525.1, 35}, frame, mainScreen);
    EXPECT_EQ(wide.width(), double(float((500.0 - 495.0) + (525.1 - 300.0))));
    EXPECT_NE(wide.width(), (500.0 - 495.0) + (525.1 - 300.0));
}

} // namespace
} // namespace pulsebar
