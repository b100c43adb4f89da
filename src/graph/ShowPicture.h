#pragma once

class QImage;
class QPainter;

namespace pulsebar {

/// Lays a picture over the painter's device, at the painter's origin, its pixels on the device's
/// pixels: nothing is resampled at any scale factor, as long as the picture was drawn for this
/// device's scale (devicePixelRatio).
/// @param opacity of the picture as a whole, 0 to 1; 0 or less paints nothing
void showPicture(QPainter &painter, const QImage &picture, float opacity);

} // namespace pulsebar
