#include "graph/PointerTracking.h"

#include <algorithm>
#include <utility>

namespace pulsebar {

void PointerTracking::updateResizeRects(QSizeF content)
{
    m_resizeContent = content;
    const bool inWindow = m_inside.contains(TrackingRectTag::Window);
    m_inside.clear();
    if (inWindow) {
        m_inside.append(TrackingRectTag::Window);
    }
}

void PointerTracking::updateWindowRect(QSizeF content)
{
    m_windowContent = content;
    m_inside.removeAll(TrackingRectTag::Window);
}

void PointerTracking::resizeWindowRect(QSizeF content)
{
    if (m_windowContent) {
        m_windowContent = content;
    }
}

void PointerTracking::look(TrackingRectTag tag, const QRectF &rect, std::optional<QPointF> point)
{
    const bool now = point && isOn(rect, *point);
    if (now == m_inside.contains(tag)) {
        return;
    }
    if (now) {
        m_inside.append(tag);
        m_entered.append({tag, true});
    } else {
        m_inside.removeAll(tag);
        m_left.append({tag, false});
    }
}

QVector<PointerTracking::Crossing> PointerTracking::pointerAt(std::optional<QPointF> point,
                                                              bool pressed)
{
    if (m_windowContent) {
        look(TrackingRectTag::Window, trackingRect(TrackingRectTag::Window, *m_windowContent),
             point);
    }
    if (m_resizeContent && !pressed) {
        for (const TrackingRectTag tag : resizeTags) {
            look(tag, trackingRect(tag, *m_resizeContent), point);
        }
    }
    return std::exchange(m_left, {}) + std::exchange(m_entered, {});
}

} // namespace pulsebar
