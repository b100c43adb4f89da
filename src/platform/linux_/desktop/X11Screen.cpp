#include "platform/linux_/desktop/X11Screen.h"

#include <algorithm>
#include <utility>

namespace pulsebar {

namespace {

constexpr std::uint32_t longestProperty = 1024;

xcb_screen_t *screenOf(xcb_connection_t *connection, int number)
{
    auto at = xcb_setup_roots_iterator(xcb_get_setup(connection));
    while (number-- > 0 && at.rem > 1) {
        xcb_screen_next(&at);
    }
    return at.rem > 0 ? at.data : nullptr;
}

} // namespace

std::unique_ptr<X11Screen> X11Screen::open()
{
    int number = 0;
    xcb_connection_t *connection = xcb_connect(nullptr, &number);
    xcb_screen_t *screen =
        xcb_connection_has_error(connection) ? nullptr : screenOf(connection, number);
    if (!screen) {
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::unique_ptr<X11Screen>(new X11Screen(connection, screen, number));
}

X11Screen::X11Screen(xcb_connection_t *connection, xcb_screen_t *screen, int number)
    : m_connection(connection)
    , m_screen(screen)
    , m_number(number)
{
}

X11Screen::~X11Screen()
{
    xcb_disconnect(m_connection);
}

xcb_atom_t X11Screen::atom(const std::string &name) const
{
    const auto cookie = xcb_intern_atom(m_connection, 0, std::uint16_t(name.size()), name.c_str());
    const XcbReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(m_connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

std::vector<std::uint32_t> X11Screen::property(xcb_window_t window, xcb_atom_t name) const
{
    const auto cookie =
        xcb_get_property(m_connection, 0, window, name, XCB_ATOM_ANY, 0, longestProperty);
    const XcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(m_connection, cookie, nullptr));
    if (!reply || reply->format != 32) {
        return {};
    }
    const auto *values = static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get()));
    return {values, values + xcb_get_property_value_length(reply.get()) / 4};
}

void X11Screen::setProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                            std::initializer_list<std::uint32_t> values) const
{
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, name, type, 32,
                        std::uint32_t(values.size()), std::data(values));
}

void X11Screen::sendMessage(xcb_window_t to, std::uint32_t mask, xcb_window_t window,
                            xcb_atom_t type, std::initializer_list<std::uint32_t> data) const
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    std::copy_n(data.begin(), std::min<std::size_t>(data.size(), 5), std::begin(event.data.data32));
    xcb_send_event(m_connection, 0, to, mask, reinterpret_cast<const char *>(&event));
}

std::optional<std::uint8_t> X11Screen::depthOf(xcb_visualid_t visual) const
{
    for (auto depth = xcb_screen_allowed_depths_iterator(m_screen); depth.rem > 0;
         xcb_depth_next(&depth)) {
        for (auto at = xcb_depth_visuals_iterator(depth.data); at.rem > 0;
             xcb_visualtype_next(&at)) {
            if (at.data->visual_id == visual) {
                return depth.data->depth;
            }
        }
    }
    return std::nullopt;
}

} // namespace pulsebar
