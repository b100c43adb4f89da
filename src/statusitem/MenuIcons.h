#pragma once

#include <QCache>
#include <QString>
#include <QVariantMap>

namespace pulsebar {

/// Icons for exported menus, as PNGs: panels run in other environments, and not all of them look a
/// name up. Each is loaded and encoded once; what cannot be loaded here goes by its name, if it has
/// one, for the panel to try.
class MenuIcons
{
public:
    MenuIcons();
    /// "icon-data" or "icon-name" of a themed icon's name or of an image file's path.
    QVariantMap properties(const QString &image);

private:
    const QByteArray &encoded(const QString &image);

    QString m_theme;
    QCache<QString, QByteArray> m_encoded;
};

} // namespace pulsebar
