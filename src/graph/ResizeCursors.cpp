#include "graph/ResizeCursors.h"

#include <QGuiApplication>
#include <QPixmap>

namespace pulsebar {

namespace {

constexpr int hotSpot = 8;

/// The drawing at the scale of the finest screen.
QCursor cursorFrom(const QString &name)
{
    const double scale = qGuiApp->devicePixelRatio();
    const QString suffix = scale > 1.5    ? QStringLiteral("@2x")
                           : scale > 1.25 ? QStringLiteral("@1.5x")
                           : scale > 1.0  ? QStringLiteral("@1.25x")
                                          : QString();
    return QCursor(QPixmap(QStringLiteral(":/cursors/%1%2.png").arg(name, suffix)), hotSpot,
                   hotSpot);
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
