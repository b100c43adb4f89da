#pragma once

#include <QRgb>

namespace pulsebar {

/// A pixel with all four channels times part / 255, rounded; two channels in one multiplication.
inline QRgb scaledPixel(QRgb pixel, quint32 part)
{
    const auto scaledPair = [part](quint32 pair) {
        // (v + v / 256 + 128) / 256 is v / 255, rounded, for every product of two bytes.
        const quint32 product = pair * part + 0x00800080U;
        return ((product + ((product >> 8U) & 0x00ff00ffU)) >> 8U) & 0x00ff00ffU;
    };
    return scaledPair(pixel & 0x00ff00ffU) | (scaledPair((pixel >> 8U) & 0x00ff00ffU) << 8U);
}

/// A premultiplied pixel over another one.
inline QRgb pixelOver(QRgb above, QRgb below)
{
    const auto alpha = quint32(qAlpha(above));
    return alpha == 255 ? above : above + scaledPixel(below, 255 - alpha);
}

} // namespace pulsebar
