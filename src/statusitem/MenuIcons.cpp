#include "statusitem/MenuIcons.h"

#include "statusitem/ItemDrawing.h"

#include <QBuffer>
#include <QPixmap>

namespace pulsebar {

namespace {

// Panels draw 16 pixels, twice that on dense screens.
constexpr int extent = 32;
constexpr int mostKept = 256;

QByteArray png(const QString &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    const QPixmap pixmap = iconNamed(image).pixmap(QSize(extent, extent), 1.0);
    if (!pixmap.isNull()) {
        pixmap.save(&buffer, "PNG");
    }
    return bytes;
}

} // namespace

MenuIcons::MenuIcons()
    : m_encoded(mostKept)
{
}

QVariantMap MenuIcons::properties(const QString &image)
{
    if (!image.startsWith(u'/')) {
        return {{QStringLiteral("icon-name"), image}};
    }
    QByteArray *bytes = m_encoded.object(image);
    if (!bytes) {
        bytes = new QByteArray(png(image));
        m_encoded.insert(image, bytes);
    }
    return bytes->isEmpty() ? QVariantMap() : QVariantMap{{QStringLiteral("icon-data"), *bytes}};
}

} // namespace pulsebar
