#include "graph/GraphWindowButton.h"

#include <QEvent>

#include <utility>

namespace pulsebar {

GraphWindowButton::GraphWindowButton(const QString &name, QWidget *parent)
    : QAbstractButton(parent)
{
    setAccessibleName(name);
    setToolTip(name);
    // A click is no reason to show a focus.
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover);
    connect(this, &QAbstractButton::pressed, this, &GraphWindowButton::lookChanged);
    connect(this, &QAbstractButton::released, this, &GraphWindowButton::lookChanged);
}

void GraphWindowButton::setOffered(bool offered)
{
    if (std::exchange(m_offered, offered) != offered) {
        Q_EMIT lookChanged();
    }
}

GraphButtonLook GraphWindowButton::look() const
{
    if (!m_offered && !hasFocus()) {
        return GraphButtonLook::Hidden;
    }
    if (isDown()) {
        return GraphButtonLook::Pressed;
    }
    return underMouse() ? GraphButtonLook::Hovered : GraphButtonLook::Plain;
}

bool GraphWindowButton::event(QEvent *event)
{
    const bool handled = QAbstractButton::event(event);
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverLeave:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        Q_EMIT lookChanged();
        break;
    default:
        break;
    }
    return handled;
}

void GraphWindowButton::paintEvent(QPaintEvent * /*event*/) {}

} // namespace pulsebar
