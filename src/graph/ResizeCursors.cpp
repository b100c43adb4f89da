#include "graph/ResizeCursors.h"

#include <QGuiApplication>
#include <QPixmap>

#include <algorithm>
#include <array>

namespace pulsebar {

namespace {

constexpr int hotSpot = 8;

struct Drawing
{
    double scale;
    QLatin1String suffix;
};

constexpr std::array drawings{
    Drawing{1.0, QLatin1String("")},
    Drawing{1.25, QLatin1String("@1.25x")},
    Drawing{1.5, QLatin1String("@1.5x")},
    Drawing{2.0, QLatin1String("@2x")},
};

/// From the drawing for the finest screen.
QCursor cursorFrom(const QString &name)
{
    const double wanted = qGuiApp->devicePixelRatio();
    const auto *drawing = std::find_if(drawings.begin(), drawings.end(),
                                       [&](const Drawing &it) { return it.scale >= wanted; });
    if (drawing == drawings.end()) {
        --drawing;
    }
    QPixmap pixmap(QStringLiteral(":/cursors/%1%2.png").arg(name, drawing->suffix));
    pixmap.setDevicePixelRatio(drawing->scale);
    return QCursor(pixmap, hotSpot, hotSpot);
}

const QCursor &madeOnce(std::optional<QCursor> &cursor, const QString &name)
{
    if (!cursor) {
        cursor = cursorFrom(name);
    }
    return *cursor;
}

} // namespace

const QCursor &ResizeCursors::southeastResizeCursor()
{
    return madeOnce(m_southeastResizeCursor, QStringLiteral("resizenorthwestsoutheast"));
}

const QCursor &ResizeCursors::southwestResizeCursor()
{
    return madeOnce(m_southwestResizeCursor, QStringLiteral("resizenortheastsouthwest"));
}

} // namespace pulsebar
