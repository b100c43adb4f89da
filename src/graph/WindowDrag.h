#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QtGlobal>

#include <array>

namespace pulsebar {

/// Parts of a window that notice the pointer: eight that resize it, and the window as a whole.
/// None is a notification that no part sent.
enum class TrackingRectTag : qint64 {
    None = 0,
    ResizeRightBottom,
    ResizeRightTop,
    ResizeLeftBottom,
    ResizeLeftTop,
    ResizeTopEdge,
    ResizeBottomEdge,
    ResizeRightEdge,
    ResizeLeftEdge,
    Window,
};

/// The eight that resize, in the order in which they are registered.
inline constexpr std::array resizeTags{
    TrackingRectTag::ResizeRightBottom, TrackingRectTag::ResizeRightTop,
    TrackingRectTag::ResizeLeftBottom,  TrackingRectTag::ResizeLeftTop,
    TrackingRectTag::ResizeTopEdge,     TrackingRectTag::ResizeBottomEdge,
    TrackingRectTag::ResizeRightEdge,   TrackingRectTag::ResizeLeftEdge,
};

/// Where a part lies in a window of a size, counted upward from its lower left corner. Corners are
/// 16 by 16 points; edges are 8 deep and stop 16 short of each corner. The zero rectangle for None.
QRectF trackingRect(TrackingRectTag tag, QSizeF content);

/// Whether a point that is counted upward is on a rectangle. The pixel of a point hangs down from
/// it, so the upper edge belongs to the rectangle and the lower one does not.
bool isOn(const QRectF &rect, QPointF point);

/// The smallest size that a window is dragged to.
inline constexpr float smallestWidth = 120.0F;
inline constexpr float smallestHeight = 42.0F;

enum class DragCursor { Arrow, Southeast, Southwest, UpDown, LeftRight };

/// Moving a window by dragging it anywhere, and resizing it by dragging its rim: what the pointer's
/// doings mean, without a window. Everything is counted upward, in points: `p` in the window, `m`
/// on the screens, `frame` is the window's on the screens.
class WindowDrag
{
public:
    /// Whether the rim resizes. Off at first.
    void setResizable(bool resizable) { m_resizable = resizable; }
    bool resizable() const { return m_resizable; }

    bool isResizing() const { return m_resizing != TrackingRectTag::None; }
    TrackingRectTag resizing() const { return m_resizing; }
    TrackingRectTag currentTrackingRectTag() const { return m_currentTrackingRectTag; }
    DragCursor cursor() const { return m_cursor; }

    /// Lays the eight parts anew over a window of this size. The pointer is on none of them before
    /// it is said to be.
    void updateTrackingRect(QSizeF content);

    /// @return false when the notification is of no use here
    bool mouseEntered(TrackingRectTag tag);
    bool mouseExited(TrackingRectTag tag);

    void mouseDown(QPointF p, const QRectF &frame);
    /// @return the frame that the window is to have
    QRectF mouseDragged(QPointF m, const QRectF &frame, const QRectF &mainScreen) const;
    /// The button is up: the next press begins something new.
    void mouseUp() { m_resizing = TrackingRectTag::None; }

private:
    QRectF moved(QPointF m, const QRectF &frame, const QRectF &mainScreen) const;
    float draggedWidth(QPointF m, const QRectF &frame) const;
    float draggedHeight(QPointF m) const;

    bool m_resizable = false;
    TrackingRectTag m_resizing = TrackingRectTag::None; ///< the part in which the drag began
    TrackingRectTag m_currentTrackingRectTag = TrackingRectTag::None;
    DragCursor m_cursor = DragCursor::Arrow;
    QSizeF m_content;
    QPointF m_initialLocation; ///< of a move: the pointer, from the window's origin
    // Of a resize, as of its press, on the screens:
    QPointF m_mouseDownPoint;
    QPointF m_baseRightTopPoint;
    QPointF m_baseLeftBottomPoint;
};

} // namespace pulsebar
