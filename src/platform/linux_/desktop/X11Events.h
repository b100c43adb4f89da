#pragma once

#include "platform/linux_/desktop/X11Screen.h"

#include <QSocketNotifier>

#include <functional>

namespace pulsebar {

/// Hands the events of a connection to its owner, from the run loop. Costs nothing while there are
/// none.
class X11Events
{
public:
    /// @param handler told of each event; errors come along as events of type 0
    /// @param handled called when there are no more for now
    X11Events(const X11Screen &screen, std::function<void(const xcb_generic_event_t &)> handler,
              std::function<void()> handled = {});
    ~X11Events();
    X11Events(const X11Events &) = delete;
    X11Events &operator=(const X11Events &) = delete;

    /// Its number among the events, without the mark of one that another program sent.
    static std::uint8_t type(const xcb_generic_event_t &event)
    {
        return event.response_type & 0x7F;
    }
    template <typename Event> static const Event &as(const xcb_generic_event_t &event)
    {
        return reinterpret_cast<const Event &>(event);
    }

private:
    void hand(xcb_generic_event_t *(*next)(xcb_connection_t *));

    xcb_connection_t *m_connection;
    std::function<void(const xcb_generic_event_t &)> m_handler;
    std::function<void()> m_handled;
    QSocketNotifier m_notifier;
};

} // namespace pulsebar
