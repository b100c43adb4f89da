#include "graph/ShowPicture.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pulsebar {

namespace {

/// The painter cuts an opacity to 256ths, and those to 255ths, and so shows one step too little.
/// This is the one that ends up at the 255th next to the opacity wanted.
double painterOpacity(float opacity)
{
    return (1 + std::round(255.0 * std::min(opacity, 1.0F))) / 256;
}

} // namespace

void showPicture(QPainter &painter, const QImage &picture, float opacity)
{
    if (picture.isNull() || !(opacity > 0))
        return;
    // A picture that says how many of its pixels are a point is scaled by the painter, even when
    // that is no scaling at all, and then goes through the dear way of transformed pictures. So the
    // same pixels are shown without that number, and the painter's scale is taken back.
    const QImage pixels(picture.constBits(), picture.width(), picture.height(),
                        picture.bytesPerLine(), picture.format());
    painter.save();
    painter.scale(1 / picture.devicePixelRatio(), 1 / picture.devicePixelRatio());
    painter.setOpacity(painterOpacity(opacity));
    painter.drawImage(QPoint(0, 0), pixels);
    painter.restore();
}

} // namespace pulsebar
