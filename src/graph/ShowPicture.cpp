#include "graph/ShowPicture.h"

#include <QImage>
#include <QPainter>

#include <algorithm>

namespace pulsebar {

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
    painter.setOpacity(std::min(opacity, 1.0F));
    painter.drawImage(QPoint(0, 0), pixels);
    painter.restore();
}

} // namespace pulsebar
