#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pulsebar {

/// Frees what the X library allocates.
struct XcbFree
{
    void operator()(void *reply) const { std::free(reply); }
};
template <typename T> using XcbReply = std::unique_ptr<T, XcbFree>;

/// A connection to the X server and its default screen.
class X11Screen
{
public:
    /// Nothing when there is no X server or it refuses.
    static std::unique_ptr<X11Screen> open();
    ~X11Screen();
    X11Screen(const X11Screen &) = delete;
    X11Screen &operator=(const X11Screen &) = delete;

    xcb_connection_t *connection() const { return m_connection; }
    const xcb_screen_t &screen() const { return *m_screen; }
    int number() const { return m_number; }

    xcb_atom_t atom(const std::string &name) const;
    /// The 32-bit items of a window's property; empty when it is absent or of another format.
    std::vector<std::uint32_t> property(xcb_window_t window, xcb_atom_t name) const;
    void setProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                     std::initializer_list<std::uint32_t> values) const;
    /// Sends a client message about `window` to `to`; `mask` is XCB_EVENT_MASK_NO_EVENT for a
    /// message to the window itself.
    void sendMessage(xcb_window_t to, std::uint32_t mask, xcb_window_t window, xcb_atom_t type,
                     std::initializer_list<std::uint32_t> data) const;
    /// Depth of a visual; nothing when the screen does not have it.
    std::optional<std::uint8_t> depthOf(xcb_visualid_t visual) const;

private:
    X11Screen(xcb_connection_t *connection, xcb_screen_t *screen, int number);

    xcb_connection_t *m_connection;
    xcb_screen_t *m_screen;
    int m_number;
};

} // namespace pulsebar
