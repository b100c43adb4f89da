#pragma once

#include "statusitem/DBusTypes.h"
#include "statusitem/ItemContent.h"

#include <QColor>
#include <QFont>
#include <QIcon>
#include <QImage>

#include <optional>

namespace pulsebar {

/// The colours of texts and signs. With an outline they can be read on a background that is not
/// known.
struct Ink
{
    QColor fill;
    QColor outline;
};

/// Ink for a panel of unknown colour in a desktop that is dark or light.
Ink inkOnPanel(bool dark);

/// The same when the item is to be noticed.
Ink attentionInkOnPanel(bool dark);

/// What stands behind the title, and its ink, where the item has a background of its own and is to
/// be noticed.
QColor attentionBackground();
Ink inkOnAttention();

/// The font for one line in a bar of `height` device pixels, on a screen whose texts are `scale`
/// times as large as usual. Never larger than the desktop's own.
QFont lineFont(int height, double scale);

/// Width, in device pixels, of one line of text and image: wide enough for title, guide and the
/// length asked for.
int lineWidth(const ItemContent &content, int height, double scale);

/// One line of `size` device pixels: the image, if any, at the left of the text, or alone in the
/// middle.
QImage drawLine(const ItemContent &content, QSize size, double scale, const Ink &ink);

/// The image alone; the program's own sign when there is none or it cannot be loaded.
QImage drawIcon(const ItemContent &content, int extent, const Ink &ink);

/// The title, which is to be short, as large as a square allows; with an image, that above it.
QImage drawShortText(const ItemContent &content, int extent, const Ink &ink);

/// The program's sign, a pulse, in any size and colour.
QImage drawSign(int extent, const Ink &ink);

/// The picture of a name or path, empty when there is none.
QIcon iconNamed(const QString &image);

/// The pixels as a StatusNotifierItem carries them.
ItemPixmap encoded(const QImage &image);

} // namespace pulsebar
