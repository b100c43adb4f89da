#include "statusitem/ItemDrawing.h"

#include "statusitem/PanelStatusItem.h"
#include "statusitem/TitleText.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace pulsebar {

namespace {

constexpr double padding = 2.0;

QImage emptyImage(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

void drawOutlined(QPainter &painter, const QPainterPath &path, const Ink &ink, double outlineWidth)
{
    if (ink.outline.isValid()) {
        painter.strokePath(
            path, QPen(ink.outline, outlineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    painter.fillPath(path, ink.fill);
}

/// Text by the font engine, hinted to the pixel; only the outline needs the letters' shapes.
void drawText(QPainter &painter, QPointF baseline, const QString &text, const Ink &ink)
{
    baseline = {std::round(baseline.x()), std::round(baseline.y())};
    if (ink.outline.isValid()) {
        QPainterPath path;
        path.addText(baseline, painter.font(), text);
        painter.strokePath(path,
                           QPen(ink.outline, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    painter.setPen(ink.fill);
    painter.drawText(baseline, text);
}

double imageWidth(int height)
{
    return std::round(height * 0.75) + 2 * padding;
}

QImage iconPicture(const QString &image, int extent)
{
    const QPixmap pixmap = iconNamed(image).pixmap(QSize(extent, extent), 1.0);
    if (pixmap.isNull()) {
        return {};
    }
    const QImage picture = pixmap.toImage();
    return std::max(picture.width(), picture.height()) == extent
               ? picture
               : picture.scaled(extent, extent, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

bool isOwnSign(const QString &image)
{
    return image.isEmpty() || image == PanelStatusItem::programImage();
}

void drawCentred(QPainter &painter, const QImage &picture, const QRectF &box)
{
    painter.drawImage(QPointF(std::round(box.center().x() - picture.width() / 2.0),
                              std::round(box.center().y() - picture.height() / 2.0)),
                      picture);
}

/// The largest font in which the text fits the box. Narrow letters are read more easily than small
/// ones.
QFont fittingFont(const QString &text, QSizeF box)
{
    constexpr double narrowest = 0.7;
    QFont font = QGuiApplication::font();
    font.setBold(true);
    font.setPixelSize(std::max(1, int(box.height())));
    const double room = box.width() / QFontMetricsF(font).horizontalAdvance(text);
    if (room < 1) {
        font.setStretch(int(100 * std::max(room, narrowest)));
        const double left = box.width() / QFontMetricsF(font).horizontalAdvance(text);
        font.setPixelSize(std::max(1, int(box.height() * std::min(1.0, left))));
    }
    return font;
}

void drawTextIn(QPainter &painter, const QRectF &box, const QString &text, const Ink &ink)
{
    painter.setFont(fittingFont(text, box.size()));
    const QRectF bounds = QFontMetricsF(painter.font()).tightBoundingRect(text);
    drawText(painter, box.center() - bounds.center(), text, ink);
}

} // namespace

Ink inkOnPanel(bool dark)
{
    return dark ? Ink{QColor(Qt::white), QColor(0, 0, 0, 150)}
                : Ink{QColor(0x20, 0x20, 0x20), QColor(255, 255, 255, 245)};
}

Ink attentionInkOnPanel(bool dark)
{
    // Both stand out from grey, white and black alike, and from each other's panels.
    return dark ? Ink{QColor(0xff, 0x8a, 0x5c), QColor(0, 0, 0, 190)}
                : Ink{QColor(0xb3, 0x1b, 0x0b), QColor(255, 255, 255, 245)};
}

QColor attentionBackground()
{
    return {0xb3, 0x1b, 0x0b};
}

Ink inkOnAttention()
{
    return {QColor(Qt::white), {}};
}

QFont lineFont(int height, double scale)
{
    QFont font = QGuiApplication::font();
    // A tall bar is no reason to shout.
    const double own = QFontInfo(font).pixelSize() * scale;
    font.setPixelSize(std::max(8, int(std::lround(std::min(own, height * 0.65)))));
    return font;
}

int lineWidth(const ItemContent &content, int height, double scale)
{
    const QFontMetricsF metrics(lineFont(height, scale));
    const auto widthOf = [&metrics](const QString &text) {
        return text.isEmpty() ? 0.0 : metrics.horizontalAdvance(text) + 3 * padding;
    };
    const bool hasImage = content.roomForImage || !content.image.isEmpty();
    const double width = itemWidth(widthOf(content.title), widthOf(content.guide),
                                   hasImage ? imageWidth(height) : 0, content.length * scale);
    return std::max(height, int(std::ceil(width)));
}

QImage drawLine(const ItemContent &content, QSize size, double scale, const Ink &ink)
{
    QImage image = emptyImage(size);
    QPainter painter(&image);
    if (content.title.isEmpty()) {
        drawCentred(painter, drawIcon(content, size.height() * 3 / 4, ink), image.rect());
        return image;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(lineFont(size.height(), scale));
    const QFontMetricsF metrics(painter.font());
    const double left = content.image.isEmpty() ? 0 : imageWidth(size.height());
    if (left > 0) {
        drawCentred(painter, drawIcon(content, int(left - 2 * padding), ink),
                    QRectF(0, 0, left, size.height()));
    }
    const double room = size.width() - left - metrics.horizontalAdvance(content.title);
    const double top = (size.height() - metrics.ascent() - metrics.descent()) / 2;
    drawText(painter, {left + std::max(padding, room / 2), top + metrics.ascent()}, content.title,
             ink);
    return image;
}

QImage drawIcon(const ItemContent &content, int extent, const Ink &ink)
{
    if (!isOwnSign(content.image)) {
        const QImage picture = iconPicture(content.image, extent);
        if (!picture.isNull()) {
            QImage image = emptyImage({extent, extent});
            QPainter painter(&image);
            drawCentred(painter, picture, image.rect());
            return image;
        }
    }
    return drawSign(extent, ink);
}

QImage drawShortText(const ItemContent &content, int extent, const Ink &ink)
{
    QImage image = emptyImage({extent, extent});
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF box(1, extent * 0.1, extent - 2, extent * 0.8);
    if (!content.image.isEmpty()) {
        const int iconExtent = extent / 2;
        drawCentred(painter, drawIcon(content, iconExtent, ink), QRectF(0, 0, extent, iconExtent));
        box = QRectF(1, iconExtent, extent - 2, extent - iconExtent);
    }
    drawTextIn(painter, box, content.title, ink);
    return image;
}

QImage drawSign(int extent, const Ink &ink)
{
    QImage image = emptyImage({extent, extent});
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(extent / 16.0, extent / 16.0);
    QPainterPath pulse;
    pulse.addPolygon(QPolygonF{{1, 9}, {4, 9}, {6, 3}, {9.5, 13}, {11.5, 7.5}, {12.5, 9}, {15, 9}});
    QPainterPathStroker stroker(QPen(Qt::black, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    drawOutlined(painter, stroker.createStroke(pulse), ink, 1.2);
    return image;
}

QIcon iconNamed(const QString &image)
{
    if (image.isEmpty()) {
        return {};
    }
    return image.startsWith(u'/') ? QIcon(image) : QIcon::fromTheme(image);
}

ItemPixmap encoded(const QImage &image)
{
    const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
    ItemPixmap pixmap{straight.width(), straight.height(), {}};
    const qsizetype rowBytes = qsizetype(straight.width()) * 4;
    pixmap.pixels.resize(rowBytes * straight.height());
    for (int y = 0; y < straight.height(); ++y) {
        qToBigEndian<quint32>(straight.constScanLine(y), straight.width(),
                              pixmap.pixels.data() + y * rowBytes);
    }
    return pixmap;
}

} // namespace pulsebar
