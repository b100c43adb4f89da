#include "e2e/Desktop.h"
#include "e2e/WindowManager.h"
#include "e2e/windows/XClient.h"
#include "platform/linux_/desktop/LinuxDesktop.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace pulsebar::e2e {
namespace {

/// A display that this process shows itself on.
class DisplayTest : public testing::Test
{
protected:
    DisplayTest()
    {
        qputenv("DISPLAY", m_desktop.environment().value(QStringLiteral("DISPLAY")).toUtf8());
    }
    ~DisplayTest() override { qunsetenv("DISPLAY"); }

    Desktop m_desktop;
};

class CompositingTest : public DisplayTest
{
protected:
    CompositingTest()
        : m_compositing(makeCompositing())
    {
        m_compositing->setListener([this] { ++m_changes; });
    }

    std::unique_ptr<Compositing> m_compositing;
    int m_changes = 0;
};

TEST_F(CompositingTest, BeginsAndEndsWithTheSelectionsOwner)
{
    EXPECT_FALSE(m_compositing->isRunning());
    {
        XClient manager;
        manager.own("_NET_WM_CM_S0");
        EXPECT_TRUE(waitFor([this] { return m_changes == 1; }));
        EXPECT_TRUE(m_compositing->isRunning());
        manager.disown("_NET_WM_CM_S0");
        EXPECT_TRUE(waitFor([this] { return m_changes == 2; }));
        EXPECT_FALSE(m_compositing->isRunning());
        manager.own("_NET_WM_CM_S0");
        EXPECT_TRUE(waitFor([this] { return m_changes == 3; }));
        EXPECT_TRUE(m_compositing->isRunning());
    }
    // A manager that dies takes its windows with it.
    EXPECT_TRUE(waitFor([this] { return m_changes == 4; }));
    EXPECT_FALSE(m_compositing->isRunning());
}

TEST_F(CompositingTest, OneThatIsAlreadyThereIsKnown)
{
    XClient manager;
    manager.own("_NET_WM_CM_S0");
    EXPECT_TRUE(waitFor([] { return makeCompositing()->isRunning(); }));
    EXPECT_TRUE(m_compositing->isRunning());
    EXPECT_EQ(m_changes, 0);
}

TEST_F(CompositingTest, OneManagerAfterAnotherChangesNothing)
{
    XClient first;
    first.own("_NET_WM_CM_S0");
    ASSERT_TRUE(waitFor([] { return makeCompositing()->isRunning(); }));
    ASSERT_TRUE(m_compositing->isRunning());
    XClient second;
    second.own("_NET_WM_CM_S0");
    second.disown("_NET_WM_CM_S0");
    EXPECT_TRUE(waitFor([this] { return m_changes > 0; }));
    EXPECT_EQ(m_changes, 1) << "only the end of the last";
    EXPECT_FALSE(m_compositing->isRunning());
}

/// A window that keeps above others, as ours do, and what lies over it.
class WindowCoverTest : public DisplayTest
{
protected:
    WindowCoverTest()
        : m_cover(makeWindowCover())
        , m_window(m_others.open(place))
    {
        m_cover->setUncoveredListener([this] { ++m_calls; });
        EXPECT_TRUE(waitFor([this] { return isListed(m_window); }));
    }

    bool isListed(xcb_window_t window) const
    {
        const auto all = m_others.stacking();
        return std::find(all.begin(), all.end(), window) != all.end();
    }
    bool isTopmost(xcb_window_t window) const
    {
        const auto all = m_others.stacking();
        return !all.empty() && all.back() == window;
    }
    xcb_window_t openAbove(const QRect &at, const XClient::Look &look)
    {
        const xcb_window_t window = m_others.open(at, look);
        EXPECT_TRUE(waitFor([&] { return isTopmost(window); }));
        return window;
    }
    xcb_window_t openAbove(const QRect &at) { return openAbove(at, XClient::Look()); }
    bool becomesCovered()
    {
        return waitFor([this] { return m_cover->isCovered(m_window); });
    }
    /// Goes by what it is told alone, as a window does.
    bool becomesUncovered()
    {
        return waitFor([this] { return m_calls > 0 && !m_cover->isCovered(m_window); });
    }

    const QRect place{100, 100, 200, 70};
    WindowManager m_manager{m_desktop};
    XClient m_others;
    std::unique_ptr<WindowCover> m_cover;
    xcb_window_t m_window;
    int m_calls = 0;
};

TEST_F(WindowCoverTest, AFullscreenWindowCoversUntilItIsGone)
{
    EXPECT_FALSE(m_cover->isCovered(m_window));
    const xcb_window_t video = openAbove({0, 0, 800, 600}, {.alpha = false, .fullscreen = true});
    EXPECT_TRUE(becomesCovered());
    EXPECT_EQ(m_calls, 0);
    m_others.close(video);
    EXPECT_TRUE(becomesUncovered());
    EXPECT_EQ(m_calls, 1);
}

TEST_F(WindowCoverTest, OneThatIsPutAwayUncovers)
{
    const xcb_window_t video = openAbove({0, 0, 800, 600});
    EXPECT_TRUE(becomesCovered());
    m_others.iconify(video);
    EXPECT_TRUE(becomesUncovered());
}

TEST_F(WindowCoverTest, OneThatIsPutAwayButStaysMappedUncovers)
{
    const xcb_window_t video = openAbove({0, 0, 800, 600});
    EXPECT_TRUE(becomesCovered());
    constexpr std::uint32_t normal = 1;
    constexpr std::uint32_t iconic = 3;
    m_others.set(video, "WM_STATE", {iconic, 0});
    EXPECT_TRUE(becomesUncovered());
    m_others.set(video, "WM_STATE", {normal, 0});
    EXPECT_TRUE(becomesCovered());
}

TEST_F(WindowCoverTest, OneThatComesToTheTopIsUncovered)
{
    openAbove({0, 0, 800, 600});
    EXPECT_TRUE(becomesCovered());
    m_others.raise(m_window);
    EXPECT_TRUE(becomesUncovered());
}

TEST_F(WindowCoverTest, OneThatIsMovedAwayUncovers)
{
    const xcb_window_t other = openAbove({90, 90, 300, 300});
    EXPECT_TRUE(becomesCovered());
    const std::array<std::uint32_t, 2> aside{400, 90};
    xcb_configure_window(m_others.screen().connection(), other,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, aside.data());
    m_others.flush();
    EXPECT_TRUE(becomesUncovered());
}

TEST_F(WindowCoverTest, SeveralCoverTogether)
{
    openAbove({50, 50, 150, 300});
    EXPECT_FALSE(m_cover->isCovered(m_window));
    openAbove({200, 50, 150, 300});
    EXPECT_TRUE(becomesCovered());
}

TEST_F(WindowCoverTest, TranslucentWindowsDoNotCover)
{
    const xcb_window_t other = openAbove({0, 0, 800, 600});
    EXPECT_TRUE(becomesCovered());
    m_others.set(other, "_NET_WM_WINDOW_OPACITY", {0xE6666666});
    EXPECT_TRUE(becomesUncovered());
    m_others.set(other, "_NET_WM_WINDOW_OPACITY", {0xFFFFFFFF});
    EXPECT_TRUE(becomesCovered());
}

TEST_F(WindowCoverTest, OfAnAlphaChannelOnlyWhatIsSaidToBeOpaqueCovers)
{
    const xcb_window_t other = openAbove({10, 10, 780, 580}, {.alpha = true, .fullscreen = false});
    EXPECT_FALSE(m_cover->isCovered(m_window));
    m_others.set(other, "_NET_WM_OPAQUE_REGION", {0, 0, 800, 150, 0, 150, 800, 450});
    EXPECT_TRUE(becomesCovered());
    m_others.set(other, "_NET_WM_OPAQUE_REGION", {0, 0, 800, 100});
    EXPECT_TRUE(becomesUncovered());
    m_others.set(other, "_NET_WM_OPAQUE_REGION", {0, 0, 0x7FFFFFFF, 0x7FFFFFFF});
    EXPECT_TRUE(becomesCovered()) << "all of it, as some programs say";
    m_others.remove(other, "_NET_WM_OPAQUE_REGION");
    EXPECT_TRUE(becomesUncovered());
}

TEST_F(WindowCoverTest, AHoleInAWindowUncovers)
{
    const xcb_window_t other = m_others.open({0, 0, 800, 600});
    m_others.shape(other, {0, 0, 150, 600});
    EXPECT_TRUE(waitFor([&] { return isTopmost(other); }));
    EXPECT_FALSE(m_cover->isCovered(m_window));
}

TEST_F(WindowCoverTest, WhatLiesBelowDoesNotCover)
{
    openAbove({0, 0, 800, 600});
    m_others.raise(m_window);
    EXPECT_TRUE(waitFor([this] { return isTopmost(m_window); }));
    EXPECT_FALSE(m_cover->isCovered(m_window));
}

TEST_F(WindowCoverTest, TellsNothingWhileNothingChangesThatCounts)
{
    const xcb_window_t video = openAbove({0, 0, 800, 600});
    EXPECT_TRUE(becomesCovered());
    m_others.set(video, "_PULSEBAR_TEST", {1});
    m_others.set(m_others.screen().screen().root, "_PULSEBAR_TEST", {1});
    // What comes after those has been told when they have been.
    m_others.set(video, "_NET_WM_WINDOW_OPACITY", {1});
    EXPECT_TRUE(waitFor([this] { return m_calls > 0; }));
    EXPECT_EQ(m_calls, 1);
    EXPECT_FALSE(m_cover->isCovered(m_window));
}

TEST_F(WindowCoverTest, AWindowThatNobodyKnowsIsNotCovered)
{
    openAbove({0, 0, 800, 600});
    EXPECT_FALSE(m_cover->isCovered(0x7FFFFFFF));
}

TEST_F(DisplayTest, AWindowWithoutAShadowSaysSoInItsFrame)
{
    const WindowManager manager(m_desktop);
    XClient others;
    const X11Screen &screen = others.screen();
    const xcb_window_t window = others.open({100, 100, 200, 70});
    const xcb_window_t root = screen.screen().root;
    ASSERT_TRUE(waitFor([&] { return others.parentOf(window) != root; })) << "it is managed";
    const auto hints = makeWindowHints();
    hints->withoutShadow(window);
    const xcb_atom_t extents = screen.atom("_GTK_FRAME_EXTENTS");
    EXPECT_TRUE(waitFor(
        [&] { return screen.property(window, extents) == std::vector<std::uint32_t>(4, 0); }));
    // The window manager's own may be several, one in the other.
    xcb_window_t frame = window;
    for (xcb_window_t outer = others.parentOf(window); outer != root;
         outer = others.parentOf(frame))
        frame = outer;
    const xcb_atom_t shadow = screen.atom("_COMPTON_SHADOW");
    EXPECT_TRUE(
        waitFor([&] { return screen.property(frame, shadow) == std::vector<std::uint32_t>{0}; }));
}

TEST_F(DisplayTest, WithoutAWindowManagerNothingIsCovered)
{
    XClient others;
    const xcb_window_t window = others.open({100, 100, 200, 70});
    others.open({0, 0, 800, 600});
    EXPECT_FALSE(makeWindowCover()->isCovered(window));
}

TEST(WindowSystem, WithoutADisplayThereIsNeither)
{
    qunsetenv("DISPLAY");
    EXPECT_EQ(makeCompositing(), nullptr);
    EXPECT_EQ(makeWindowCover(), nullptr);
}

} // namespace
} // namespace pulsebar::e2e
