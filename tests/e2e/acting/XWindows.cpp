// A program with windows, for the tests that raise and close them.
//
// usage: x_windows TITLE COUNT [KEY]...   where KEY is
//   stubborn    the windows do not take part in being closed
//   dock        they are those of a panel
//   desktop     they are the desktop itself
//   claim=PID   they say that they belong to that process
//
// Writes "ready" when its windows are there, and "delete N" when window N is asked to close; it
// ends with its last window.

#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

xcb_connection_t *connection = nullptr;

xcb_atom_t atom(const std::string &name)
{
    auto *reply = xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr);
    const xcb_atom_t found = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return found;
}

void set(xcb_window_t window, const char *name, xcb_atom_t type, std::uint32_t value)
{
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(name), type, 32, 1, &value);
}

xcb_window_t openWindow(const xcb_screen_t &screen, const std::string &title,
                        const std::vector<std::string> &keys)
{
    const xcb_window_t window = xcb_generate_id(connection);
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_create_window(connection, screen.root_depth, window, screen.root, 10, 10, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual, XCB_CW_EVENT_MASK,
                      &events);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(title.size()),
                        title.c_str());
    bool closes = true;
    for (const std::string &key : keys) {
        closes = closes && key != "stubborn";
        if (key == "dock")
            set(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, atom("_NET_WM_WINDOW_TYPE_DOCK"));
        if (key == "desktop")
            set(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, atom("_NET_WM_WINDOW_TYPE_DESKTOP"));
        if (key.rfind("claim=", 0) == 0)
            set(window, "_NET_WM_PID", XCB_ATOM_CARDINAL,
                static_cast<std::uint32_t>(std::strtoul(key.c_str() + 6, nullptr, 10)));
    }
    if (closes)
        set(window, "WM_PROTOCOLS", XCB_ATOM_ATOM, atom("WM_DELETE_WINDOW"));
    xcb_map_window(connection, window);
    return window;
}

} // namespace

int main(int argc, char *argv[])
{
    connection = xcb_connect(nullptr, nullptr);
    if (argc < 3 || xcb_connection_has_error(connection))
        return 1;
    const xcb_screen_t &screen = *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const std::vector<std::string> keys(argv + 3, argv + argc);
    const auto count = std::strtoul(argv[2], nullptr, 10);
    std::vector<xcb_window_t> windows;
    windows.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        windows.push_back(openWindow(screen, argv[1], keys));
    xcb_flush(connection);
    std::size_t shown = 0;
    std::size_t closed = 0;
    while (auto *event = xcb_wait_for_event(connection)) {
        const int type = event->response_type & 0x7F;
        if (type == XCB_MAP_NOTIFY && ++shown == windows.size()) {
            std::puts("ready");
            std::fflush(stdout);
        }
        if (type == XCB_CLIENT_MESSAGE) {
            const auto asked = reinterpret_cast<xcb_client_message_event_t *>(event)->window;
            for (std::size_t i = 0; i < windows.size(); ++i) {
                if (windows[i] == asked)
                    std::printf("delete %zu\n", i);
            }
            std::fflush(stdout);
            xcb_destroy_window(connection, asked);
            xcb_flush(connection);
            ++closed;
        }
        std::free(event);
        if (closed == windows.size())
            return 0;
    }
    return 1;
}
