#pragma once

#include <QCoreApplication>
#include <QEnterEvent>
#include <QMouseEvent>
#include <QWidget>

namespace pulsebar {

/// What a pointer does over a window, without one. Places are counted downward from the window's
/// top left corner at the time.
class PointerOn
{
public:
    explicit PointerOn(QWidget &window)
        : m_window(&window)
    {
    }

    void enter(QPointF place)
    {
        m_global = global(place);
        QEnterEvent event(place, place, m_global);
        QCoreApplication::sendEvent(m_window, &event);
    }
    void leave()
    {
        QEvent event(QEvent::Leave);
        QCoreApplication::sendEvent(m_window, &event);
    }
    void move(QPointF place) { moveTo(global(place)); }
    /// The same by the distance from where it is.
    void moveBy(QPointF distance) { moveTo(m_global + distance); }
    void press(QPointF place, Qt::MouseButton button = Qt::LeftButton)
    {
        m_global = global(place);
        m_buttons = button;
        send(QEvent::MouseButtonPress, button);
    }
    void release(Qt::MouseButton button = Qt::LeftButton)
    {
        m_buttons = Qt::NoButton;
        send(QEvent::MouseButtonRelease, button);
    }
    /// Releases them without a word to the window.
    void loseButtons() { m_buttons = Qt::NoButton; }

private:
    QPointF global(QPointF place) const { return place + m_window->geometry().topLeft(); }
    void moveTo(QPointF to)
    {
        m_global = to;
        send(QEvent::MouseMove, Qt::NoButton);
    }
    void send(QEvent::Type type, Qt::MouseButton button)
    {
        const QPointF place = m_global - m_window->geometry().topLeft();
        QMouseEvent event(type, place, m_global, button, m_buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(m_window, &event);
    }

    QWidget *m_window;
    QPointF m_global;
    Qt::MouseButtons m_buttons;
};

} // namespace pulsebar
