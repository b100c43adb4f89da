#include "graph/WindowDrag.h"

#include <algorithm>
#include <cmath>

namespace pulsebar {

namespace {

using Tag = TrackingRectTag;

constexpr double corner = 16.0;
constexpr double edge = 8.0;

/// In the order in which a press looks for its part.
constexpr std::array pressOrder{
    Tag::ResizeRightBottom, Tag::ResizeRightTop,  Tag::ResizeLeftBottom, Tag::ResizeLeftTop,
    Tag::ResizeLeftEdge,    Tag::ResizeRightEdge, Tag::ResizeTopEdge,    Tag::ResizeBottomEdge,
};

bool isResizeTag(Tag tag)
{
    return tag != Tag::None && tag != Tag::Window;
}

bool isLeft(Tag tag)
{
    return tag == Tag::ResizeLeftEdge || tag == Tag::ResizeLeftTop || tag == Tag::ResizeLeftBottom;
}

bool isTop(Tag tag)
{
    return tag == Tag::ResizeTopEdge || tag == Tag::ResizeRightTop || tag == Tag::ResizeLeftTop;
}

DragCursor cursorOf(Tag tag)
{
    switch (tag) {
    case Tag::ResizeRightBottom:
    case Tag::ResizeLeftTop:
        return DragCursor::Southeast;
    case Tag::ResizeRightTop:
    case Tag::ResizeLeftBottom:
        return DragCursor::Southwest;
    case Tag::ResizeTopEdge:
    case Tag::ResizeBottomEdge:
        return DragCursor::UpDown;
    case Tag::ResizeLeftEdge:
    case Tag::ResizeRightEdge:
        return DragCursor::LeftRight;
    case Tag::None:
    case Tag::Window:
        break;
    }
    return DragCursor::Arrow;
}

} // namespace

QRectF trackingRect(TrackingRectTag tag, QSizeF content)
{
    const double width = content.width();
    const double height = content.height();
    switch (tag) {
    case Tag::ResizeRightBottom:
        return {width - corner, 0.0, corner, corner};
    case Tag::ResizeRightTop:
        return {width - corner, height - corner, corner, corner};
    case Tag::ResizeLeftBottom:
        return {0.0, 0.0, corner, corner};
    case Tag::ResizeLeftTop:
        return {0.0, height - corner, corner, corner};
    case Tag::ResizeTopEdge:
        return {corner, height - edge, width - 2 * corner, edge};
    case Tag::ResizeBottomEdge:
        return {corner, 0.0, width - 2 * corner, edge};
    case Tag::ResizeRightEdge:
        return {width - edge, corner, edge, height - 2 * corner};
    case Tag::ResizeLeftEdge:
        return {0.0, corner, edge, height - 2 * corner};
    case Tag::Window:
        return {0.0, 0.0, width, height};
    case Tag::None:
        break;
    }
    return {};
}

bool isOn(const QRectF &rect, QPointF point)
{
    return point.x() >= rect.x() && point.x() < rect.x() + rect.width() && point.y() > rect.y() &&
           point.y() <= rect.y() + rect.height();
}

void WindowDrag::updateTrackingRect(QSizeF content)
{
    m_content = content;
    m_currentTrackingRectTag = Tag::None;
}

bool WindowDrag::mouseEntered(TrackingRectTag tag)
{
    if (!m_resizable || m_currentTrackingRectTag != Tag::None) {
        return false;
    }
    m_currentTrackingRectTag = isResizeTag(tag) ? tag : Tag::None;
    m_cursor = cursorOf(tag);
    return true;
}

bool WindowDrag::mouseExited(TrackingRectTag tag)
{
    m_currentTrackingRectTag = Tag::None;
    if (!m_resizable || !isResizeTag(tag)) {
        return false;
    }
    m_cursor = DragCursor::Arrow;
    return true;
}

void WindowDrag::mouseDown(QPointF p, const QRectF &frame)
{
    const QPointF onScreen = frame.topLeft() + p;
    if (m_cursor == DragCursor::Arrow && m_currentTrackingRectTag == Tag::None) {
        m_initialLocation = onScreen - frame.topLeft();
        return;
    }
    const auto *const hit = std::find_if(pressOrder.begin(), pressOrder.end(), [&](Tag tag) {
        return isOn(trackingRect(tag, m_content), p);
    });
    // Beside all of them the drag stays a move, by the place of the last one.
    if (hit != pressOrder.end()) {
        m_resizing = *hit;
    }
    m_mouseDownPoint = onScreen;
    m_baseRightTopPoint = frame.topLeft() + QPointF(frame.width(), frame.height());
    m_baseLeftBottomPoint = frame.topLeft();
}

QRectF WindowDrag::moved(QPointF m, const QRectF &frame, const QRectF &mainScreen) const
{
    QPointF origin = m - m_initialLocation;
    // Only the top: nothing could be dragged back from above a screen.
    const double top = mainScreen.y() + mainScreen.height();
    origin.setY(std::min(origin.y(), top - frame.height()));
    return {origin, frame.size()};
}

float WindowDrag::draggedWidth(QPointF m, const QRectF &frame) const
{
    if (isLeft(m_resizing)) {
        const double width =
            (m_mouseDownPoint.x() - m_baseLeftBottomPoint.x()) + (m.x() - m_baseRightTopPoint.x());
        return std::max(float(std::abs(std::trunc(width))), smallestWidth);
    }
    const double width = (m_baseRightTopPoint.x() - m_mouseDownPoint.x()) + (m.x() - frame.x());
    return std::max(float(width), smallestWidth);
}

float WindowDrag::draggedHeight(QPointF m) const
{
    const double height = isTop(m_resizing) ? (m_baseRightTopPoint.y() - m_mouseDownPoint.y()) +
                                                  (m.y() - m_baseLeftBottomPoint.y())
                                            : (m_mouseDownPoint.y() - m_baseLeftBottomPoint.y()) +
                                                  (m_baseRightTopPoint.y() - m.y());
    return std::max(float(height), smallestHeight);
}

QRectF WindowDrag::mouseDragged(QPointF m, const QRectF &frame, const QRectF &mainScreen) const
{
    if (!isResizing()) {
        return moved(m, frame, mainScreen);
    }
    const double width = double(draggedWidth(m, frame));
    const double height = double(draggedHeight(m));
    const double fromLeft = frame.x() - (width - frame.width());
    const double fromBottom = m_baseRightTopPoint.y() - height;
    switch (m_resizing) {
    case Tag::ResizeRightBottom:
        return {frame.x(), fromBottom, width, height};
    case Tag::ResizeRightTop:
        return {frame.x(), frame.y(), width, height};
    case Tag::ResizeLeftBottom:
        return {fromLeft, fromBottom, width, height};
    case Tag::ResizeLeftTop:
        return {fromLeft, frame.y(), width, height};
    case Tag::ResizeLeftEdge:
        return {fromLeft, frame.y(), width, frame.height()};
    case Tag::ResizeRightEdge:
        return {frame.x(), frame.y(), width, frame.height()};
    case Tag::ResizeTopEdge:
        return {frame.x(), frame.y(), frame.width(), height};
    case Tag::ResizeBottomEdge:
        return {frame.x(), frame.y() - (height - frame.height()), frame.width(), height};
    case Tag::None:
    case Tag::Window:
        break;
    }
    return frame;
}

} // namespace pulsebar
