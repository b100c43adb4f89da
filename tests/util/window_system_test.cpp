#include "util/WindowSystem.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(WindowSystem, OnlyWaylandPlacesWindowsItself)
{
    EXPECT_FALSE(placesWindows(u"wayland"));
    EXPECT_TRUE(placesWindows(u"xcb"));
    EXPECT_TRUE(placesWindows(u"offscreen"));
}

TEST(WindowSystem, OnlyAnXServerInsideWaylandIsBypassed)
{
    EXPECT_TRUE(bypassesWindowManager(u"xcb", true));
    EXPECT_FALSE(bypassesWindowManager(u"xcb", false));
    EXPECT_FALSE(bypassesWindowManager(u"wayland", true));
}

TEST(WindowSystem, TurnsPlacesOverAndBack)
{
    EXPECT_EQ(turnedOver(20, 25, 700), 655);
    EXPECT_EQ(turnedOver(655, 25, 700), 20);
    EXPECT_DOUBLE_EQ(turnedOver(-10.5, 0.0, 600.0), 610.5);
    // The main screen's bottom may lie below 0 downward of the virtual desktop's top.
    EXPECT_EQ(turnedOver(300, 70, 1068), 698);
}

} // namespace
} // namespace pulsebar
