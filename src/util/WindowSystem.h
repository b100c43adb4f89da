#pragma once

#include <QStringView>

namespace pulsebar {

/// Facts about window systems that every window of the program goes by which stands where it is
/// put. A platform is the toolkit's name of one ("xcb", "wayland", "offscreen").

/// Whether a program says where its windows stand. Wayland places them itself and moves them only
/// while the user drags.
bool placesWindows(QStringView platform);

/// Whether windows have to do without a window manager to stand above others at a place of their
/// own: an X server inside a Wayland session centres and ignores managed windows as it likes.
/// @param insideWayland a Wayland compositor is there, too (WAYLAND_DISPLAY is set)
bool bypassesWindowManager(QStringView platform, bool insideWayland);

/// Turns a place counted downward into one counted upward from the bottom of the main screen, and
/// back: both are the same turn.
/// @param y the upper edge of something, or its lower one when it is counted upward
/// @param height of the same thing; 0 for a point
/// @param mainScreenBottom the main screen's lower edge, counted downward
template <typename Number>
constexpr Number turnedOver(Number y, Number height, Number mainScreenBottom)
{
    return mainScreenBottom - y - height;
}

} // namespace pulsebar
