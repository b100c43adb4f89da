#pragma once

#include <QCache>
#include <QString>
#include <QVariantMap>

namespace pulsebar {

/// Icons for exported menus: a themed icon goes by its name, for the panel has the same theme; a
/// file goes as a PNG, encoded once.
class MenuIcons
{
public:
    MenuIcons();
    QVariantMap properties(const QString &image);

private:
    QCache<QString, QByteArray> m_encoded;
};

} // namespace pulsebar
