#include "graph/ScreenSpace.h"

#include "util/WindowSystem.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace pulsebar {

QRectF ScreenSpace::flipped(const QRectF &rect) const
{
    return {rect.x(), turnedOver(rect.y(), rect.height(), mainScreenBottom), rect.width(),
            rect.height()};
}

QPointF ScreenSpace::flipped(QPointF point) const
{
    return {point.x(), turnedOver(point.y(), 0.0, mainScreenBottom)};
}

qsizetype ScreenSpace::screenOf(const QRectF &window) const
{
    qsizetype best = -1;
    double most = 0.0;
    for (qsizetype at = 0; at < screens.size(); ++at) {
        const QRectF common = screens[at].intersected(window);
        const double area = common.width() * common.height();
        if (area > most) {
            most = area;
            best = at;
        }
    }
    return best;
}

ScreenSpace currentScreenSpace()
{
    ScreenSpace space;
    const QScreen *primary = QGuiApplication::primaryScreen();
    if (!primary) {
        return space;
    }
    const QList<QScreen *> screens = QGuiApplication::screens();
    const QRectF main = primary->geometry();
    space.mainScreenBottom = main.y() + main.height();
    space.mainScreen =
        std::distance(screens.cbegin(), std::find(screens.cbegin(), screens.cend(), primary));
    for (const QScreen *screen : screens) {
        space.screens.append(space.flipped(QRectF(screen->geometry())));
    }
    return space;
}

} // namespace pulsebar
