#include "e2e/WindowManager.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace pulsebar::e2e {

namespace {

struct Free
{
    void operator()(void *reply) const { std::free(reply); }
};
template <typename T> using Reply = std::unique_ptr<T, Free>;

/// A window that is never shown and only asks how wide its frame would be
/// (_NET_REQUEST_FRAME_EXTENTS, EWMH): what answers is a window manager that takes part in the
/// world's course.
///
/// That it has announced itself on the root window says less. openbox does so early, and a request
/// that comes before its event loop runs is read along with the answers of the server and then lies
/// in its queue until something else happens: on a quiet display for ever. A question that is asked
/// until it is answered is that something else.
class FrameQuestion
{
public:
    explicit FrameQuestion(const QString &display)
        : m_connection(xcb_connect(display.toUtf8().constData(), nullptr), &xcb_disconnect)
    {
        if (xcb_connection_has_error(connection()))
            throw std::runtime_error("the test's display cannot be reached");
        m_screen = xcb_setup_roots_iterator(xcb_get_setup(connection())).data;
        m_request = atom("_NET_REQUEST_FRAME_EXTENTS");
        m_answer = atom("_NET_FRAME_EXTENTS");
        m_window = xcb_generate_id(connection());
        xcb_create_window(connection(), XCB_COPY_FROM_PARENT, m_window, m_screen->root, 0, 0, 1, 1,
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    }

    void ask() const
    {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = m_window;
        event.type = m_request;
        xcb_send_event(connection(), 0, m_screen->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char *>(&event));
        xcb_flush(connection());
    }

    bool isAnswered() const
    {
        const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            connection(),
            xcb_get_property(connection(), 0, m_window, m_answer, XCB_ATOM_CARDINAL, 0, 4),
            nullptr));
        return reply && reply->format == 32;
    }

private:
    xcb_connection_t *connection() const { return m_connection.get(); }
    xcb_atom_t atom(std::string_view name) const
    {
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            connection(),
            xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr));
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> m_connection;
    const xcb_screen_t *m_screen = nullptr;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_atom_t m_request = XCB_ATOM_NONE;
    xcb_atom_t m_answer = XCB_ATOM_NONE;
};

} // namespace

WindowManager::WindowManager(Desktop &desktop)
    : m_process(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")}, desktop.environment())
{
    const FrameQuestion question(desktop.environment().value(QStringLiteral("DISPLAY")));
    const auto answers = [&question] {
        question.ask();
        return question.isAnswered();
    };
    if (!waitFor(answers))
        throw std::runtime_error("the window manager does not start: " +
                                 m_process.log().toStdString());
}

} // namespace pulsebar::e2e
