#include "graph/DraggableClearWindow.h"

#include "graph/FakeWindowServices.h"
#include "graph/PointerOn.h"
#include "support/WaitFor.h"

#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

/// A window of 200 by 70 points at 300, 200 on a screen of 800 by 800 points. Frames are counted
/// upward, the pointer's places downward.
class DraggableClearWindowTest : public testing::Test
{
protected:
    DraggableClearWindowTest()
    {
        m_window.initWithContentRect({300, 200, 200, 70});
        m_window.setResizable(true);
        m_window.updateTrackingRect();
    }

    FakeWindowServices m_desktop;
    DraggableClearWindow m_window{&m_desktop.services};
    PointerOn m_pointer{m_window};
};

TEST_F(DraggableClearWindowTest, IsMovedByDraggingItAnywhere)
{
    m_pointer.enter({100, 35});
    m_pointer.press({100, 35});
    m_pointer.moveBy({30, -20});
    EXPECT_FALSE(m_window.isResizing());
    EXPECT_EQ(m_window.frame(), QRectF(330, 220, 200, 70));
    m_pointer.moveBy({-400, 5});
    EXPECT_EQ(m_window.frame(), QRectF(-70, 215, 200, 70));
    m_pointer.release();
    m_pointer.moveBy({10, 10});
    EXPECT_EQ(m_window.frame(), QRectF(-70, 215, 200, 70)) << "the button is up";
}

TEST_F(DraggableClearWindowTest, StopsAtTheTopOfTheMainScreen)
{
    const QRectF main = currentScreenSpace().mainFrame();
    m_pointer.press({100, 35});
    m_pointer.moveBy({0, -5000});
    EXPECT_EQ(m_window.frame(), QRectF(300, main.height() - 70, 200, 70));
}

TEST_F(DraggableClearWindowTest, OnlyTheLeftButtonDrags)
{
    m_pointer.press({100, 35}, Qt::RightButton);
    m_pointer.moveBy({30, 30});
    m_pointer.release(Qt::RightButton);
    EXPECT_EQ(m_window.frame(), QRectF(300, 200, 200, 70));
}

TEST_F(DraggableClearWindowTest, ShowsTheCursorOfThePartUnderThePointer)
{
    ResizeCursors &cursors = m_desktop.services.cursors();
    m_pointer.enter({100, 35});
    EXPECT_EQ(m_window.cursor().shape(), Qt::ArrowCursor);
    m_pointer.move({197, 67});
    EXPECT_EQ(m_window.cursor(), cursors.southeastResizeCursor());
    m_pointer.move({197, 2});
    EXPECT_EQ(m_window.cursor(), cursors.southwestResizeCursor());
    m_pointer.move({2, 2});
    EXPECT_EQ(m_window.cursor(), cursors.southeastResizeCursor());
    m_pointer.move({2, 67});
    EXPECT_EQ(m_window.cursor(), cursors.southwestResizeCursor());
    m_pointer.move({100, 0});
    EXPECT_EQ(m_window.cursor().shape(), Qt::SizeVerCursor);
    m_pointer.move({100, 69});
    EXPECT_EQ(m_window.cursor().shape(), Qt::SizeVerCursor);
    m_pointer.move({0, 35});
    EXPECT_EQ(m_window.cursor().shape(), Qt::SizeHorCursor);
    m_pointer.move({199, 35});
    EXPECT_EQ(m_window.cursor().shape(), Qt::SizeHorCursor);
    m_pointer.leave();
    EXPECT_EQ(m_window.cursor().shape(), Qt::ArrowCursor);
}

TEST_F(DraggableClearWindowTest, ShowsTheArrowWhereNothingResizes)
{
    m_window.setResizable(false);
    m_pointer.enter({199, 35});
    EXPECT_EQ(m_window.cursor().shape(), Qt::ArrowCursor);
    m_pointer.press({199, 35});
    m_pointer.moveBy({10, 0});
    EXPECT_EQ(m_window.frame(), QRectF(310, 200, 200, 70));
}

TEST_F(DraggableClearWindowTest, IsResizedByItsRim)
{
    m_pointer.enter({195, 65});
    m_pointer.press({195, 65});
    EXPECT_TRUE(m_window.isResizing());
    m_pointer.moveBy({40, 25});
    EXPECT_EQ(m_window.frame(), QRectF(300, 175, 240, 95));
    EXPECT_EQ(m_window.cursor(), m_desktop.services.cursors().southeastResizeCursor());
    m_pointer.moveBy({-500, -500});
    EXPECT_EQ(m_window.frame(), QRectF(300, 228, 120, 42));
    EXPECT_TRUE(m_window.isResizing());
    m_pointer.release();
    EXPECT_FALSE(m_window.isResizing());
}

TEST_F(DraggableClearWindowTest, TheRimFollowsTheSizeWhenTheButtonIsReleased)
{
    m_pointer.enter({195, 35});
    m_pointer.press({195, 35});
    m_pointer.moveBy({100, 0});
    m_pointer.release();
    EXPECT_EQ(m_window.frame(), QRectF(300, 200, 300, 70));
    EXPECT_EQ(m_window.cursor().shape(), Qt::SizeHorCursor) << "the pointer is on it still";
    m_pointer.move({195, 35});
    EXPECT_EQ(m_window.cursor().shape(), Qt::ArrowCursor);
    m_pointer.move({295, 35});
    EXPECT_EQ(m_window.cursor().shape(), Qt::SizeHorCursor);
}

TEST_F(DraggableClearWindowTest, AReleaseBesideTheRimLeavesNoResizeCursor)
{
    m_pointer.enter({195, 35});
    m_pointer.press({195, 35});
    m_pointer.moveBy({-130, 0});
    EXPECT_EQ(m_window.frame(), QRectF(300, 200, 120, 70));
    EXPECT_EQ(m_window.cursor().shape(), Qt::SizeHorCursor);
    m_pointer.release();
    EXPECT_EQ(m_window.cursor().shape(), Qt::ArrowCursor);
    m_pointer.press({60, 35});
    m_pointer.moveBy({10, 0});
    EXPECT_EQ(m_window.frame(), QRectF(310, 200, 120, 70)) << "so the next press moves it";
}

TEST_F(DraggableClearWindowTest, TheRimFollowsASizeOfTheWindowSystem)
{
    m_window.orderFront();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    m_window.windowHandle()->setGeometry(50, 60, 300, 80);
    ASSERT_TRUE(waitFor([this] { return m_window.frame().width() == 300; }));
    m_pointer.enter({197, 35});
    EXPECT_EQ(m_window.cursor().shape(), Qt::ArrowCursor);
    m_pointer.move({297, 35});
    EXPECT_EQ(m_window.cursor().shape(), Qt::SizeHorCursor);
}

TEST_F(DraggableClearWindowTest, WhatAClickDoesToAnyWindowHappensAtTheRelease)
{
    // Without a window manager a click takes the focus.
    m_desktop.services.setBypassesWindowManager(true);
    m_window.orderFront();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    m_pointer.press({100, 35});
    QCoreApplication::processEvents();
    EXPECT_TRUE(other.isActiveWindow());
    m_pointer.release();
    EXPECT_TRUE(waitFor([this] { return m_window.isActiveWindow(); }));
}

TEST_F(DraggableClearWindowTest, LeavesTheFocusToAWindowManager)
{
    m_window.orderFront();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    m_pointer.press({100, 35});
    m_pointer.release();
    QCoreApplication::processEvents();
    EXPECT_TRUE(other.isActiveWindow());
}

TEST_F(DraggableClearWindowTest, WhereWindowsArePlacedByOthersTheyAreDraggedByThem)
{
    m_desktop.services.setPlacesWindows(false);
    m_window.orderFront();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    m_pointer.press({195, 35});
    EXPECT_TRUE(m_window.isResizing());
    m_pointer.moveBy({40, 0});
    EXPECT_FALSE(m_window.isResizing()) << "no release will be reported";
    m_pointer.moveBy({40, 0});
    EXPECT_EQ(m_window.frame(), QRectF(300, 200, 200, 70));
}

TEST_F(DraggableClearWindowTest, ADragEndsWithAReleaseThatWasNotTold)
{
    m_pointer.press({195, 35});
    m_pointer.moveBy({40, 0});
    ASSERT_TRUE(m_window.isResizing());
    m_pointer.loseButtons();
    m_pointer.moveBy({-20, 0});
    EXPECT_FALSE(m_window.isResizing());
    EXPECT_EQ(m_window.frame().width(), 240);
    EXPECT_EQ(m_window.cursor().shape(), Qt::ArrowCursor) << "the pointer left the rim";
}

TEST_F(DraggableClearWindowTest, ADragEndsWhenTheWindowIsHidden)
{
    m_window.orderFront();
    m_pointer.press({195, 35});
    m_window.orderOut();
    EXPECT_FALSE(m_window.isResizing());
    m_pointer.moveBy({40, 0});
    EXPECT_EQ(m_window.frame(), QRectF(300, 200, 200, 70));
}

} // namespace
} // namespace pulsebar
