#pragma once

#include "graph/GraphPicture.h"

#include <QImage>
#include <QRectF>

namespace pulsebar {

enum class GraphButton { Close, Setting };

/// Draws a button: a dark disc with a light rim, so that it is seen on any background, and on it a
/// cross or a gear.
/// @param image premultiplied ARGB; its devicePixelRatio is how many of its pixels are a point
/// @param box in points
/// @param focused with a ring around it, for who uses the keyboard
void drawGraphButton(QImage &image, const QRectF &box, GraphButton button, GraphButtonLook look,
                     bool focused);

} // namespace pulsebar
