#include "platform/linux_/desktop/X11Events.h"

#include <QAbstractEventDispatcher>

#include <utility>

namespace pulsebar {

X11Events::X11Events(const X11Screen &screen,
                     std::function<void(const xcb_generic_event_t &)> handler,
                     std::function<void()> handled)
    : m_connection(screen.connection())
    , m_handler(std::move(handler))
    , m_handled(std::move(handled))
    , m_notifier(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read)
{
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] {
        hand(&xcb_poll_for_event);
        if (xcb_connection_has_error(m_connection)) {
            m_notifier.setEnabled(false);
        }
    });
    // Waiting for an answer reads events along with it, and then the socket has nothing to tell.
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                     &m_notifier, [this] { hand(&xcb_poll_for_queued_event); });
}

X11Events::~X11Events() = default;

void X11Events::hand(xcb_generic_event_t *(*next)(xcb_connection_t *))
{
    bool any = false;
    while (const auto event = XcbReply<xcb_generic_event_t>(next(m_connection))) {
        any = true;
        m_handler(*event);
    }
    if (any && m_handled) {
        m_handled();
    }
}

} // namespace pulsebar
