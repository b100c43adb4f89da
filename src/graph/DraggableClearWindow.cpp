#include "graph/DraggableClearWindow.h"

#include "graph/WindowServices.h"

#include <QEnterEvent>
#include <QMouseEvent>
#include <QWindow>

#include <utility>

namespace pulsebar {

namespace {

Qt::Edges edgesOf(TrackingRectTag tag)
{
    switch (tag) {
    case TrackingRectTag::ResizeRightBottom:
        return Qt::RightEdge | Qt::BottomEdge;
    case TrackingRectTag::ResizeRightTop:
        return Qt::RightEdge | Qt::TopEdge;
    case TrackingRectTag::ResizeLeftBottom:
        return Qt::LeftEdge | Qt::BottomEdge;
    case TrackingRectTag::ResizeLeftTop:
        return Qt::LeftEdge | Qt::TopEdge;
    case TrackingRectTag::ResizeTopEdge:
        return Qt::TopEdge;
    case TrackingRectTag::ResizeBottomEdge:
        return Qt::BottomEdge;
    case TrackingRectTag::ResizeRightEdge:
        return Qt::RightEdge;
    case TrackingRectTag::ResizeLeftEdge:
        return Qt::LeftEdge;
    case TrackingRectTag::None:
    case TrackingRectTag::Window:
        break;
    }
    return {};
}

QCursor cursorOf(DragCursor cursor, ResizeCursors &cursors)
{
    switch (cursor) {
    case DragCursor::Southeast:
        return cursors.southeastResizeCursor();
    case DragCursor::Southwest:
        return cursors.southwestResizeCursor();
    case DragCursor::UpDown:
        return Qt::SizeVerCursor;
    case DragCursor::LeftRight:
        return Qt::SizeHorCursor;
    case DragCursor::Arrow:
        break;
    }
    return Qt::ArrowCursor;
}

} // namespace

DraggableClearWindow::DraggableClearWindow(WindowServices *services)
    : ClearWindow(services)
{
    setMouseTracking(true);
}

QPointF DraggableClearWindow::upward(QPointF place) const
{
    return {place.x(), contentSize().height() - place.y()};
}

void DraggableClearWindow::pointerAt(std::optional<QPointF> place)
{
    m_pointer = place ? std::optional(upward(*place)) : std::nullopt;
    notify();
    showCursor();
}

void DraggableClearWindow::notify()
{
    for (const PointerTracking::Crossing crossing : m_tracking.pointerAt(m_pointer, m_pressed)) {
        if (crossing.entered) {
            mouseEntered(crossing.tag);
        } else {
            mouseExited(crossing.tag);
        }
    }
}

void DraggableClearWindow::showCursor()
{
    if (std::exchange(m_shownCursor, m_drag.cursor()) != m_drag.cursor()) {
        setCursor(cursorOf(m_drag.cursor(), services().cursors()));
    }
}

void DraggableClearWindow::updateTrackingRect()
{
    m_drag.updateTrackingRect(contentSize());
    m_tracking.updateResizeRects(contentSize());
    notify();
    showCursor();
}

void DraggableClearWindow::mouseEntered(TrackingRectTag tag)
{
    m_drag.mouseEntered(tag);
}

void DraggableClearWindow::mouseExited(TrackingRectTag tag)
{
    m_drag.mouseExited(tag);
}

void DraggableClearWindow::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    pointerAt(event->position());
    m_pressed = true;
    m_space = currentScreenSpace();
    m_drag.mouseDown(upward(event->position()), frame());
}

void DraggableClearWindow::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton)) {
        // A modal window that opens during a drag swallows the release.
        endDrag(event);
        return;
    }
    if (!m_pressed) {
        pointerAt(event->position());
        return;
    }
    if (!services().placesWindows()) {
        leaveDraggingToWindowSystem();
        return;
    }
    const QPointF pointer = m_space.flipped(event->globalPosition());
    setFrame(m_drag.mouseDragged(pointer, frame(), m_space.mainFrame()));
    // A window that follows is not left, however far the pointer went at once.
    pointerAt(event->globalPosition() - geometry().topLeft());
}

/// It keeps the pointer until the button is released, which it does not report.
void DraggableClearWindow::leaveDraggingToWindowSystem()
{
    m_pressed = false;
    const Qt::Edges edges = edgesOf(m_drag.resizing());
    m_drag.mouseUp();
    if (edges) {
        windowHandle()->startSystemResize(edges);
    } else {
        windowHandle()->startSystemMove();
    }
}

void DraggableClearWindow::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        endDrag(event);
    }
}

/// The button is up, as this event says.
void DraggableClearWindow::endDrag(QMouseEvent *event)
{
    const bool wasPressed = std::exchange(m_pressed, false);
    pointerAt(event->position());
    if (wasPressed) {
        mouseUp(event);
        showCursor();
    }
}

void DraggableClearWindow::mouseUp(QMouseEvent *event)
{
    if (isResizing()) {
        updateTrackingRect();
    }
    m_drag.mouseUp();
    // The press went to us alone. Whatever a click does to any window is done now.
    ClearWindow::mousePressEvent(event);
}

void DraggableClearWindow::enterEvent(QEnterEvent *event)
{
    pointerAt(event->position());
}

void DraggableClearWindow::leaveEvent(QEvent * /*event*/)
{
    pointerAt(std::nullopt);
}

void DraggableClearWindow::hideEvent(QHideEvent *event)
{
    m_pressed = false;
    m_drag.mouseUp();
    pointerAt(std::nullopt);
    ClearWindow::hideEvent(event);
}

void DraggableClearWindow::resizeEvent(QResizeEvent *event)
{
    ClearWindow::resizeEvent(event);
    m_tracking.resizeWindowRect(contentSize());
    // The parts that resize are laid anew when a drag ends.
    if (!m_pressed && m_tracking.hasResizeRects()) {
        DraggableClearWindow::updateTrackingRect();
    }
}

} // namespace pulsebar
