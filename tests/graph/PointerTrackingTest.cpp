#include "graph/PointerTracking.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using Tag = TrackingRectTag;
using Crossings = QVector<PointerTracking::Crossing>;

constexpr QSizeF content(200, 70);
constexpr QPointF middle(100, 35);
constexpr QPointF onRightEdge(195, 35);
constexpr QPointF onRightTop(195, 60);

PointerTracking registered()
{
    PointerTracking tracking;
    tracking.updateWindowRect(content);
    tracking.updateResizeRects(content);
    return tracking;
}

TEST(PointerTracking, KnowsOfNothingBeforeItIsLaid)
{
    PointerTracking tracking;
    EXPECT_EQ(tracking.pointerAt(middle, false), Crossings());
    EXPECT_FALSE(tracking.hasResizeRects());
}

TEST(PointerTracking, SaysEveryCrossingOnce)
{
    PointerTracking tracking = registered();
    EXPECT_EQ(tracking.pointerAt(middle, false), Crossings({{Tag::Window, true}}));
    EXPECT_EQ(tracking.pointerAt(middle, false), Crossings());
    EXPECT_EQ(tracking.pointerAt(onRightEdge, false), Crossings({{Tag::ResizeRightEdge, true}}));
    EXPECT_EQ(tracking.pointerAt(std::nullopt, false),
              Crossings({{Tag::Window, false}, {Tag::ResizeRightEdge, false}}));
    EXPECT_EQ(tracking.pointerAt(std::nullopt, false), Crossings());
}

TEST(PointerTracking, SaysWhatWasLeftFirst)
{
    PointerTracking tracking = registered();
    tracking.pointerAt(onRightEdge, false);
    EXPECT_EQ(tracking.pointerAt(onRightTop, false),
              Crossings({{Tag::ResizeRightEdge, false}, {Tag::ResizeRightTop, true}}));
}

TEST(PointerTracking, APointBesideTheWindowIsElsewhere)
{
    PointerTracking tracking = registered();
    tracking.pointerAt(middle, false);
    EXPECT_EQ(tracking.pointerAt(QPointF(-1, 35), false), Crossings({{Tag::Window, false}}));
}

TEST(PointerTracking, DuringADragOnlyTheWindowIsLeft)
{
    PointerTracking tracking = registered();
    tracking.pointerAt(onRightEdge, false);
    EXPECT_EQ(tracking.pointerAt(QPointF(150, 35), true), Crossings());
    EXPECT_EQ(tracking.pointerAt(QPointF(300, 35), true), Crossings({{Tag::Window, false}}));
    EXPECT_EQ(tracking.pointerAt(onRightTop, true), Crossings({{Tag::Window, true}}));
    EXPECT_EQ(tracking.pointerAt(onRightTop, false),
              Crossings({{Tag::ResizeRightEdge, false}, {Tag::ResizeRightTop, true}}));
}

TEST(PointerTracking, WhatIsLaidAnewKnowsOfNoPointer)
{
    PointerTracking tracking = registered();
    tracking.pointerAt(onRightEdge, false);
    tracking.updateResizeRects(content);
    EXPECT_EQ(tracking.pointerAt(onRightEdge, false), Crossings({{Tag::ResizeRightEdge, true}}));
    tracking.updateWindowRect(content);
    EXPECT_EQ(tracking.pointerAt(onRightEdge, false), Crossings({{Tag::Window, true}}));
}

TEST(PointerTracking, AWindowOfAnotherSizeKeepsItsPointer)
{
    PointerTracking tracking = registered();
    tracking.pointerAt(middle, false);
    tracking.resizeWindowRect({300, 70});
    EXPECT_EQ(tracking.pointerAt(QPointF(250, 35), false), Crossings());
    tracking.resizeWindowRect({200, 70});
    EXPECT_EQ(tracking.pointerAt(QPointF(250, 35), false), Crossings({{Tag::Window, false}}));
}

TEST(PointerTracking, AWindowThatIsNotKnownStaysUnknown)
{
    PointerTracking tracking;
    tracking.resizeWindowRect(content);
    EXPECT_EQ(tracking.pointerAt(middle, false), Crossings());
}

} // namespace
} // namespace pulsebar
