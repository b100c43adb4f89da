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

const QByteArray &MenuIcons::encoded(const QString &image)
{
    if (m_theme != QIcon::themeName()) {
        m_theme = QIcon::themeName();
        m_encoded.clear();
    }
    QByteArray *bytes = m_encoded.object(image);
    if (!bytes) {
        bytes = new QByteArray(png(image));
        m_encoded.insert(image, bytes);
    }
    return *bytes;
}

QVariantMap MenuIcons::properties(const QString &image)
{
    const QByteArray &bytes = encoded(image);
    if (!bytes.isEmpty()) {
        return {{QStringLiteral("icon-data"), bytes}};
    }
    return image.startsWith(u'/') ? QVariantMap()
                                  : QVariantMap{{QStringLiteral("icon-name"), image}};
}

} // namespace pulsebar
