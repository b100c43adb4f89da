#pragma once

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QVector>

namespace pulsebar {

/// Draws smooth lines from point to point, with round joins and ends, over an image. Where strokes
/// of one call meet or cross, their union is drawn: a translucent colour has no seams.
///
/// A point with a coordinate that is not finite is left out and interrupts the line; a point that
/// then stands alone is a dot. Everything outside the image is cut, however far away it is.
///
/// The toolkit's painter is not used: it spreads antialiased shapes over a pool of threads, and
/// waking them costs more than the line.
/// @param image premultiplied ARGB
/// @param points in pixels, downward from the image's top left corner; a pixel's centre lies at .5
/// @param width in pixels
void drawPolyline(QImage &image, const QVector<QPointF> &points, double width, const QColor &color);

} // namespace pulsebar
