#pragma once

#include "graph/WindowDrag.h"

#include <QVector>

#include <optional>

namespace pulsebar {

/// Finds out, from where the pointer is, which parts of a window it has come onto and which it has
/// left. The toolkit alone would not tell that it left during a drag: until the button is released
/// all of its events go to the window.
class PointerTracking
{
public:
    struct Crossing
    {
        TrackingRectTag tag = TrackingRectTag::None;
        bool entered = false;

        bool operator==(const Crossing &) const = default;
    };

    /// The eight resizing parts lie anew over a window of this size. They know of no pointer yet.
    void updateResizeRects(QSizeF content);
    bool hasResizeRects() const { return m_resizeContent.has_value(); }
    /// The same for the window as a whole, which is not known of at all before.
    void updateWindowRect(QSizeF content);

    /// The window as a whole, if it is known of, has another size.
    void resizeWindowRect(QSizeF content);

    /// @param point in the window, counted upward; absent when the pointer is elsewhere
    /// @param pressed a button is held: what lies below the pointer is left alone until it is
    ///        released, but for the window as a whole
    /// @return what was left, then what was come onto
    QVector<Crossing> pointerAt(std::optional<QPointF> point, bool pressed);

private:
    void look(TrackingRectTag tag, const QRectF &rect, std::optional<QPointF> point);

    std::optional<QSizeF> m_resizeContent;
    std::optional<QSizeF> m_windowContent;
    QVector<TrackingRectTag> m_inside; ///< the parts that the pointer is on
    QVector<Crossing> m_left;
    QVector<Crossing> m_entered;
};

} // namespace pulsebar
