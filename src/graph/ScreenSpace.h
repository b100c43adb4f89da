#pragma once

#include <QPointF>
#include <QRectF>
#include <QVector>

namespace pulsebar {

/// Screens and windows in coordinates that count upward from the bottom of the main screen, as
/// the settings have them. This is the one place where they are turned over.
struct ScreenSpace
{
    QVector<QRectF> screens;  ///< frames, in the system's order
    qsizetype mainScreen = 0; ///< index of the main one

    /// The toolkit's rectangle (downward from the top left of the virtual desktop), and back: both
    /// are the same turn.
    QRectF flipped(const QRectF &rect) const;
    QPointF flipped(QPointF point) const;

    QRectF mainFrame() const { return screens.value(mainScreen); }
    /// The index of the screen that holds most of a window; -1 when it is on none.
    qsizetype screenOf(const QRectF &window) const;

    double mainScreenBottom = 0.0; ///< in the toolkit's coordinates
};

/// The screens as they are now.
ScreenSpace currentScreenSpace();

} // namespace pulsebar
