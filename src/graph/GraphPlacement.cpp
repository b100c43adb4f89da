#include "graph/GraphPlacement.h"

#include "graph/GraphViewSetting.h"
#include "graph/ScreenSpace.h"

#include <algorithm>

namespace pulsebar {

namespace {

constexpr QPointF kFallbackOrigin{200.0, 200.0};

QRectF chosenScreen(int screenNumber, const ScreenSpace &space)
{
    const bool exists = screenNumber >= 0 && screenNumber < space.screens.size();
    return exists ? space.screens.at(screenNumber) : space.mainFrame();
}

double inside(double value, double lowest, double highest)
{
    return std::max(lowest, std::min(value, highest));
}

} // namespace

GraphPlacement graphPlacement(const GraphViewSetting &setting, const ScreenSpace &space)
{
    const QRectF screen = chosenScreen(setting.screenNumber(), space);
    QRectF frame = setting.windowRectForScreen(screen);
    if (frame == QRectF()) {
        frame = setting.windowRect();
        if (!screen.contains(frame))
            frame.moveTopLeft(kFallbackOrigin);
    }
    return {frame, screen};
}

QRectF movedOntoScreen(const QRectF &frame, const ScreenSpace &space)
{
    const qsizetype number = space.screenOf(frame);
    const QRectF screen = number < 0 ? space.mainFrame() : space.screens.at(number);
    QRectF moved(frame.topLeft(), frame.size().boundedTo(screen.size()));
    if (number < 0)
        moved.moveCenter(screen.center());
    moved.moveLeft(inside(moved.left(), screen.left(), screen.right() - moved.width()));
    moved.moveTop(inside(moved.top(), screen.top(), screen.bottom() - moved.height()));
    return moved;
}

} // namespace pulsebar
