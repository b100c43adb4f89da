#pragma once

#include "graph/ClearWindow.h"
#include "graph/PointerTracking.h"
#include "graph/ScreenSpace.h"
#include "graph/WindowDrag.h"

#include <optional>

namespace pulsebar {

/// A clear window that is moved by dragging it anywhere and resized by dragging its rim, over which
/// the pointer takes the form that fits.
class DraggableClearWindow : public ClearWindow
{
    Q_OBJECT

public:
    explicit DraggableClearWindow(WindowServices *services);

    /// Whether the rim resizes. Off at first.
    void setResizable(bool resizable) { m_drag.setResizable(resizable); }
    bool isResizing() const { return m_drag.isResizing(); }

    /// Lays the parts that notice the pointer over the window as it is now. Needed once when it has
    /// its place; resizing does the rest.
    virtual void updateTrackingRect();

protected:
    /// The pointer came onto a part of the window, or left it.
    virtual void mouseEntered(TrackingRectTag tag);
    virtual void mouseExited(TrackingRectTag tag);
    /// The left button was released.
    virtual void mouseUp(QMouseEvent *event);

    /// Says where the pointer is.
    /// @param place in the window, as the toolkit counts; absent when it is elsewhere
    void pointerAt(std::optional<QPointF> place);
    PointerTracking &tracking() { return m_tracking; }
    QSizeF contentSize() const { return frame().size(); }

    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QPointF upward(QPointF place) const;
    void notify();
    void showCursor();
    void endDrag(QMouseEvent *event);
    void leaveDraggingToWindowSystem();

    WindowDrag m_drag;
    PointerTracking m_tracking;
    ScreenSpace m_space; ///< as of the press
    std::optional<QPointF> m_pointer;
    DragCursor m_shownCursor = DragCursor::Arrow;
    bool m_pressed = false;
};

} // namespace pulsebar
