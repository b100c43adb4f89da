#include "platform/linux_/desktop/LinuxDesktop.h"
#include "platform/linux_/desktop/X11Events.h"

#include <xcb/xfixes.h>

#include <string>
#include <utility>

namespace pulsebar {

namespace {

/// A compositing manager owns the selection _NET_WM_CM_S<screen> (EWMH); the XFIXES extension tells
/// when that changes. Nothing is looked at before the first question.
class X11Compositing : public Compositing
{
public:
    explicit X11Compositing(std::unique_ptr<X11Screen> screen)
        : m_screen(std::move(screen))
    {
    }

    bool isRunning() override
    {
        if (!m_events) {
            start();
        }
        return m_running;
    }

    void setListener(std::function<void()> listener) override { m_listener = std::move(listener); }

private:
    void start();
    bool hasOwner() const;
    void handle(const xcb_generic_event_t &event);

    std::unique_ptr<X11Screen> m_screen;
    std::unique_ptr<X11Events> m_events;
    std::function<void()> m_listener;
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    std::uint8_t m_notification = 0; ///< the number of the extension's event; 0 without it
    bool m_running = false;
};

bool X11Compositing::hasOwner() const
{
    xcb_connection_t *connection = m_screen->connection();
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, m_selection), nullptr));
    return reply && reply->owner != XCB_NONE;
}

void X11Compositing::start()
{
    xcb_connection_t *connection = m_screen->connection();
    m_selection = m_screen->atom("_NET_WM_CM_S" + std::to_string(m_screen->number()));
    m_events = std::make_unique<X11Events>(
        *m_screen, [this](const xcb_generic_event_t &event) { handle(event); });
    const xcb_query_extension_reply_t *fixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (fixes && fixes->present) {
        // The extension answers no request before it was asked for its version.
        const XcbReply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
            connection, xcb_xfixes_query_version(connection, 1, 0), nullptr));
        m_notification = std::uint8_t(fixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
        xcb_xfixes_select_selection_input(
            connection, m_screen->screen().root, m_selection,
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    // Asked after listening, so that no change falls between.
    m_running = hasOwner();
}

void X11Compositing::handle(const xcb_generic_event_t &event)
{
    if (m_notification == 0 || X11Events::type(event) != m_notification) {
        return;
    }
    const bool runs = hasOwner();
    if (std::exchange(m_running, runs) != runs && m_listener) {
        m_listener();
    }
}

} // namespace

std::unique_ptr<Compositing> makeCompositing()
{
    auto screen = X11Screen::open();
    return screen ? std::make_unique<X11Compositing>(std::move(screen)) : nullptr;
}

} // namespace pulsebar
