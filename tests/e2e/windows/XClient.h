#pragma once

#include "platform/linux_/desktop/X11Screen.h"

#include <QRect>

#include <memory>

namespace pulsebar::e2e {

/// Another program of the test's display, with windows of its own.
class XClient
{
public:
    XClient();

    struct Look
    {
        bool alpha = false; ///< an alpha channel
        bool fullscreen = false;
    };
    /// A window without decorations that a window manager manages, at a place that it asks for.
    xcb_window_t open(const QRect &place, const Look &look);
    xcb_window_t open(const QRect &place) { return open(place, Look()); }
    void close(xcb_window_t window);
    /// Asks the window manager to put it out of the way.
    void iconify(xcb_window_t window);
    /// Asks the window manager, as a list of windows does, to bring it to the front.
    void raise(xcb_window_t window);
    void set(xcb_window_t window, const char *property,
             std::initializer_list<std::uint32_t> values);
    void remove(xcb_window_t window, const char *property);
    /// Cuts the window to a part of it, in its own coordinates.
    void shape(xcb_window_t window, const QRect &part);

    /// Takes a selection, or gives it up.
    void own(const char *selection);
    void disown(const char *selection);

    /// Windows from the bottom to the top, as the window manager says.
    std::vector<std::uint32_t> stacking() const;
    /// Throws when there is no such window.
    xcb_window_t parentOf(xcb_window_t window) const;
    const X11Screen &screen() const { return *m_screen; }
    void flush() const;

private:
    void askManager(xcb_window_t window, const char *what, std::uint32_t value);
    xcb_visualid_t alphaVisual() const;

    std::unique_ptr<X11Screen> m_screen;
};

} // namespace pulsebar::e2e
