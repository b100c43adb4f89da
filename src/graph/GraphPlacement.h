#pragma once

#include <QRectF>

namespace pulsebar {

class GraphViewSetting;
struct ScreenSpace;

/// Where a graph window goes, in coordinates that count upward from the bottom of the main screen.
struct GraphPlacement
{
    QRectF frame;
    QRectF screenFrame; ///< of the screen that was chosen for it
};

/// The place that the settings ask for: on the screen that the window was last on, or on the main
/// one when there are not as many; there, where it was last on a screen of that frame, or else
/// where it was last on any. A rectangle of the latter kind that does not lie wholly on the screen
/// keeps its size and goes to (200, 200).
GraphPlacement graphPlacement(const GraphViewSetting &setting, const ScreenSpace &space);

/// A window's frame moved, and if need be made smaller, so that all of it is on the screen that
/// holds most of it; in the middle of the main screen when it is on none.
QRectF movedOntoScreen(const QRectF &frame, const ScreenSpace &space);

} // namespace pulsebar
