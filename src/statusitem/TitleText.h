#pragma once

#include <QRect>
#include <QSize>
#include <QString>

namespace pulsebar {

/// The title's first value, short enough for a square: "12.3%" gives "12", "In 1.2MB" gives "1.2M",
/// "CPU:67℃" gives "67°", "2400RPM" gives "2400". A title without a number gives its first word,
/// cut to four characters.
QString shortTitle(const QString &title);

/// Width of an item, in the unit of the arguments. A text is never cut; a shorter one leaves the
/// width as it is, so that neighbours do not move; a chosen length widens but never cuts.
double itemWidth(double textWidth, double guideWidth, double imageWidth, double length);

/// Turns a rectangle's top left place, counted downward from the top of a screen of `screenHeight`,
/// into its lower left place counted upward, and back.
QPoint placeUpward(QPoint topLeft, int height, int screenHeight);
QPoint placeDownward(QPoint bottomLeft, int height, int screenHeight);

/// `topLeft` moved so that a window of `size` lies inside `area` as far as it fits.
QPoint insideArea(QPoint topLeft, QSize size, const QRect &area);

/// True when a tray gave a square in place of the width that was asked for.
bool cutToSquare(QSize wanted, QSize given);

} // namespace pulsebar
