#include "platform/linux_/desktop/LinuxDesktop.h"
#include "platform/linux_/desktop/X11Screen.h"

#include <array>
#include <utility>

namespace pulsebar {

namespace {

constexpr std::uint32_t allDesktops = 0xFFFFFFFF;
constexpr std::uint32_t addState = 1;
constexpr std::uint32_t fromApplication = 1;

/// Extended Window Manager Hints, as client messages to the root window.
class EwmhWindowHints : public WindowHints
{
public:
    explicit EwmhWindowHints(std::unique_ptr<X11Screen> screen)
        : m_screen(std::move(screen))
        , m_desktop(m_screen->atom("_NET_WM_DESKTOP"))
        , m_state(m_screen->atom("_NET_WM_STATE"))
        , m_skipTaskbar(m_screen->atom("_NET_WM_STATE_SKIP_TASKBAR"))
        , m_skipPager(m_screen->atom("_NET_WM_STATE_SKIP_PAGER"))
        , m_frameExtents(m_screen->atom("_GTK_FRAME_EXTENTS"))
        , m_shadow(m_screen->atom("_COMPTON_SHADOW"))
    {
    }

    void keepOnAllWorkspaces(quintptr window) override
    {
        // The properties are for a window manager that starts later, the messages for one that
        // runs.
        const auto id = xcb_window_t(window);
        m_screen->setProperty(id, m_desktop, XCB_ATOM_CARDINAL, {allDesktops});
        const std::array<std::uint32_t, 2> states{m_skipTaskbar, m_skipPager};
        xcb_change_property(m_screen->connection(), XCB_PROP_MODE_APPEND, id, m_state,
                            XCB_ATOM_ATOM, 32, states.size(), states.data());
        ask(id, m_desktop, {allDesktops, fromApplication});
        ask(id, m_state, {addState, m_skipTaskbar, m_skipPager, fromApplication});
        xcb_flush(m_screen->connection());
    }

    void withoutShadow(quintptr window) override
    {
        // Compositors give no shadow to what says that it draws its own around itself, be it 0
        // wide. Picom has a property for it, too, and looks for it on what the window manager put
        // around the window.
        const auto id = xcb_window_t(window);
        m_screen->setProperty(id, m_frameExtents, XCB_ATOM_CARDINAL, {0, 0, 0, 0});
        m_screen->setProperty(outermost(id), m_shadow, XCB_ATOM_CARDINAL, {0});
        xcb_flush(m_screen->connection());
    }

private:
    /// The window that holds a window and is a child of the root.
    xcb_window_t outermost(xcb_window_t window) const
    {
        xcb_connection_t *connection = m_screen->connection();
        for (;;) {
            const XcbReply<xcb_query_tree_reply_t> tree(
                xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
            if (!tree || tree->parent == XCB_NONE || tree->parent == tree->root) {
                return window;
            }
            window = tree->parent;
        }
    }

    void ask(xcb_window_t window, xcb_atom_t what, std::initializer_list<std::uint32_t> data) const
    {
        constexpr std::uint32_t toWindowManager =
            XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        m_screen->sendMessage(m_screen->screen().root, toWindowManager, window, what, data);
    }

    std::unique_ptr<X11Screen> m_screen;
    xcb_atom_t m_desktop;
    xcb_atom_t m_state;
    xcb_atom_t m_skipTaskbar;
    xcb_atom_t m_skipPager;
    xcb_atom_t m_frameExtents;
    xcb_atom_t m_shadow;
};

} // namespace

std::unique_ptr<WindowHints> makeWindowHints()
{
    auto screen = X11Screen::open();
    return screen ? std::make_unique<EwmhWindowHints>(std::move(screen)) : nullptr;
}

} // namespace pulsebar
