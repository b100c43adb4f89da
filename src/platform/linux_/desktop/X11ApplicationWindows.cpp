#include "platform/linux_/desktop/LinuxDesktop.h"
#include "platform/linux_/desktop/X11Screen.h"

#include <xcb/res.h>

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace pulsebar {

namespace {

// As a pager or a task list speaks, not as a window that wants to be in front.
constexpr std::uint32_t fromUser = 2;

bool contains(const std::vector<std::uint32_t> &list, std::uint32_t value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

/// The windows that the window manager keeps (EWMH), by the processes that own them. The X server
/// knows whose connection a window came over (X-Resource extension 1.2), and no program can say
/// otherwise. Where the server lacks that, what a window says about itself (_NET_WM_PID) is all
/// there is.
class ManagedWindows
{
public:
    explicit ManagedWindows(const X11Screen &screen)
        : m_screen(screen)
        , m_serverKnowsOwners(askForOwners())
    {
    }

    struct Window
    {
        xcb_window_t id;
        qint64 owner;
    };

    /// From the bottom to the top.
    std::vector<Window> all() const
    {
        const xcb_window_t root = m_screen.screen().root;
        auto ids = m_screen.property(root, m_screen.atom("_NET_CLIENT_LIST_STACKING"));
        if (ids.empty())
            ids = m_screen.property(root, m_screen.atom("_NET_CLIENT_LIST"));
        const Connections known = m_serverKnowsOwners ? connections() : Connections();
        std::vector<Window> windows;
        for (const xcb_window_t id : ids) {
            const qint64 owner = ownerOf(id, known);
            if (owner > 1 && isForSwitching(id))
                windows.push_back({id, owner});
        }
        return windows;
    }

    std::vector<xcb_window_t> of(qint64 pid) const
    {
        std::vector<xcb_window_t> own;
        for (const Window &window : all()) {
            if (window.owner == pid)
                own.push_back(window.id);
        }
        return own;
    }

private:
    /// Process numbers by the part that all windows of a connection have in common.
    using Connections = std::unordered_map<std::uint32_t, qint64>;

    bool askForOwners() const
    {
        xcb_connection_t *connection = m_screen.connection();
        const auto *extension = xcb_get_extension_data(connection, &xcb_res_id);
        if (!extension || !extension->present)
            return false;
        const XcbReply<xcb_res_query_version_reply_t> version(xcb_res_query_version_reply(
            connection, xcb_res_query_version(connection, 1, 2), nullptr));
        return version && (version->server_major > 1 || version->server_minor >= 2);
    }

    std::uint32_t connectionOf(std::uint32_t resource) const
    {
        return resource & ~xcb_get_setup(m_screen.connection())->resource_id_mask;
    }

    Connections connections() const
    {
        Connections owners;
        xcb_connection_t *connection = m_screen.connection();
        const xcb_res_client_id_spec_t everybody{XCB_NONE, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        const XcbReply<xcb_res_query_client_ids_reply_t> reply(xcb_res_query_client_ids_reply(
            connection, xcb_res_query_client_ids(connection, 1, &everybody), nullptr));
        if (!reply)
            return owners;
        for (auto at = xcb_res_query_client_ids_ids_iterator(reply.get()); at.rem > 0;
             xcb_res_client_id_value_next(&at)) {
            if ((at.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
                xcb_res_client_id_value_value_length(at.data) > 0)
                owners[connectionOf(at.data->spec.client)] =
                    *xcb_res_client_id_value_value(at.data);
        }
        return owners;
    }

    qint64 ownerOf(xcb_window_t window, const Connections &connections) const
    {
        if (m_serverKnowsOwners) {
            const auto found = connections.find(connectionOf(window));
            return found == connections.end() ? 0 : found->second;
        }
        const auto said = m_screen.property(window, m_screen.atom("_NET_WM_PID"));
        return said.empty() ? 0 : qint64(said.front());
    }

    /// Panels and desktops have windows, too, but nobody switches to them.
    bool isForSwitching(xcb_window_t window) const
    {
        const auto types = m_screen.property(window, m_screen.atom("_NET_WM_WINDOW_TYPE"));
        return !contains(types, m_screen.atom("_NET_WM_WINDOW_TYPE_DOCK")) &&
               !contains(types, m_screen.atom("_NET_WM_WINDOW_TYPE_DESKTOP"));
    }

    const X11Screen &m_screen;
    bool m_serverKnowsOwners;
};

void ask(const X11Screen &screen, xcb_window_t window, const char *what,
         std::initializer_list<std::uint32_t> data)
{
    constexpr std::uint32_t toWindowManager =
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    screen.sendMessage(screen.screen().root, toWindowManager, window, screen.atom(what), data);
}

/// Waits until the server has taken everything: what is still on its way when the connection ends
/// may be lost.
void finish(const X11Screen &screen)
{
    xcb_connection_t *connection = screen.connection();
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

/// Connects for each question: they are rare, and a connection costs both sides memory.
class X11ApplicationWindows : public ApplicationWindows
{
public:
    QVector<qint64> owners() const override
    {
        QVector<qint64> pids;
        const auto screen = X11Screen::open();
        if (!screen)
            return pids;
        for (const auto &window : ManagedWindows(*screen).all()) {
            if (!pids.contains(window.owner))
                pids.append(window.owner);
        }
        return pids;
    }

    bool raise(qint64 pid) override
    {
        const auto screen = X11Screen::open();
        const auto own = screen ? ManagedWindows(*screen).of(pid) : std::vector<xcb_window_t>();
        if (own.empty())
            return false;
        // From the bottom to the top, so that they keep their order.
        constexpr std::uint32_t above = 0;
        for (const xcb_window_t window : own)
            ask(*screen, window, "_NET_RESTACK_WINDOW", {fromUser, XCB_NONE, above});
        ask(*screen, own.back(), "_NET_ACTIVE_WINDOW", {fromUser, XCB_CURRENT_TIME, XCB_NONE});
        finish(*screen);
        return true;
    }

    bool askToClose(qint64 pid) override
    {
        const auto screen = X11Screen::open();
        if (!screen)
            return false;
        const xcb_atom_t protocols = screen->atom("WM_PROTOCOLS");
        const xcb_atom_t deleteWindow = screen->atom("WM_DELETE_WINDOW");
        bool asked = false;
        for (const xcb_window_t window : ManagedWindows(*screen).of(pid)) {
            // The others can only be cut off from the display, which is no way to ask.
            if (!contains(screen->property(window, protocols), deleteWindow))
                continue;
            screen->sendMessage(window, XCB_EVENT_MASK_NO_EVENT, window, protocols,
                                {deleteWindow, XCB_CURRENT_TIME});
            asked = true;
        }
        finish(*screen);
        return asked;
    }
};

} // namespace

std::unique_ptr<ApplicationWindows> makeApplicationWindows()
{
    return std::make_unique<X11ApplicationWindows>();
}

} // namespace pulsebar
