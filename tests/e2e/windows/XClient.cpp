#include "e2e/windows/XClient.h"

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <array>
#include <stdexcept>

namespace pulsebar::e2e {

XClient::XClient()
    : m_screen(X11Screen::open())
{
    if (!m_screen)
        throw std::runtime_error("the test's display cannot be reached");
    free(xcb_xfixes_query_version_reply(
        m_screen->connection(), xcb_xfixes_query_version(m_screen->connection(), 2, 0), nullptr));
}

xcb_visualid_t XClient::alphaVisual() const
{
    for (auto depth = xcb_screen_allowed_depths_iterator(&m_screen->screen()); depth.rem > 0;
         xcb_depth_next(&depth)) {
        const auto visuals = xcb_depth_visuals_iterator(depth.data);
        if (depth.data->depth == 32 && visuals.rem > 0)
            return visuals.data->visual_id;
    }
    throw std::runtime_error("the test's display has no alpha channel");
}

xcb_window_t XClient::open(const QRect &place, const Look &look)
{
    xcb_connection_t *connection = m_screen->connection();
    const xcb_screen_t &screen = m_screen->screen();
    const xcb_visualid_t visual = look.alpha ? alphaVisual() : screen.root_visual;
    const xcb_colormap_t colormap = xcb_generate_id(connection);
    xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colormap, screen.root, visual);
    const std::array<std::uint32_t, 3> values{0, 0, colormap};
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, look.alpha ? 32 : screen.root_depth, window, screen.root,
                      std::int16_t(place.x()), std::int16_t(place.y()),
                      std::uint16_t(place.width()), std::uint16_t(place.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_COLORMAP, values.data());
    // No decorations (Motif), and a position that the user asked for (ICCCM).
    const xcb_atom_t motif = m_screen->atom("_MOTIF_WM_HINTS");
    m_screen->setProperty(window, motif, motif, {2, 0, 0, 0, 0});
    m_screen->setProperty(window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS,
                          {1, std::uint32_t(place.x()), std::uint32_t(place.y()), 0, 0, 0, 0, 0, 0,
                           0, 0, 0, 0, 0, 0, 0, 0, 0});
    if (look.fullscreen)
        m_screen->setProperty(window, m_screen->atom("_NET_WM_STATE"), XCB_ATOM_ATOM,
                              {m_screen->atom("_NET_WM_STATE_FULLSCREEN")});
    xcb_map_window(connection, window);
    flush();
    return window;
}

void XClient::close(xcb_window_t window)
{
    xcb_destroy_window(m_screen->connection(), window);
    flush();
}

void XClient::askManager(xcb_window_t window, const char *what, std::uint32_t value)
{
    m_screen->sendMessage(m_screen->screen().root,
                          XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                          window, m_screen->atom(what), {value});
    flush();
}

void XClient::iconify(xcb_window_t window)
{
    constexpr std::uint32_t iconicState = 3;
    askManager(window, "WM_CHANGE_STATE", iconicState);
}

void XClient::raise(xcb_window_t window)
{
    constexpr std::uint32_t fromPager = 2;
    askManager(window, "_NET_ACTIVE_WINDOW", fromPager);
}

void XClient::set(xcb_window_t window, const char *property,
                  std::initializer_list<std::uint32_t> values)
{
    m_screen->setProperty(window, m_screen->atom(property), XCB_ATOM_CARDINAL, values);
    flush();
}

void XClient::remove(xcb_window_t window, const char *property)
{
    xcb_delete_property(m_screen->connection(), window, m_screen->atom(property));
    flush();
}

void XClient::shape(xcb_window_t window, const QRect &part)
{
    xcb_connection_t *connection = m_screen->connection();
    const xcb_xfixes_region_t region = xcb_generate_id(connection);
    const xcb_rectangle_t rect{std::int16_t(part.x()), std::int16_t(part.y()),
                               std::uint16_t(part.width()), std::uint16_t(part.height())};
    constexpr std::uint8_t bounding = 0;
    xcb_xfixes_create_region(connection, region, 1, &rect);
    xcb_xfixes_set_window_shape_region(connection, window, bounding, 0, 0, region);
    flush();
}

void XClient::own(const char *selection)
{
    xcb_connection_t *connection = m_screen->connection();
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, m_screen->screen().root, 0, 0, 1, 1,
                      0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(connection, window, m_screen->atom(selection), XCB_CURRENT_TIME);
    flush();
}

void XClient::disown(const char *selection)
{
    xcb_set_selection_owner(m_screen->connection(), XCB_NONE, m_screen->atom(selection),
                            XCB_CURRENT_TIME);
    flush();
}

std::vector<std::uint32_t> XClient::stacking() const
{
    return m_screen->property(m_screen->screen().root, m_screen->atom("_NET_CLIENT_LIST_STACKING"));
}

xcb_window_t XClient::parentOf(xcb_window_t window) const
{
    xcb_connection_t *connection = m_screen->connection();
    const XcbReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
    if (!tree)
        throw std::runtime_error("the window is gone");
    return tree->parent;
}

void XClient::flush() const
{
    xcb_flush(m_screen->connection());
}

} // namespace pulsebar::e2e
