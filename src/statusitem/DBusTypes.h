#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace pulsebar {

/// (iiay): ARGB32 in network byte order, row by row, not premultiplied.
struct ItemPixmap
{
    int width = 0;
    int height = 0;
    QByteArray pixels;

    bool operator==(const ItemPixmap &other) const = default;
};
using ItemPixmapList = QList<ItemPixmap>;

/// (sa(iiay)ss)
struct ItemToolTip
{
    QString iconName;
    ItemPixmapList pixmaps;
    QString title;
    QString text;
};

/// (ia{sv}av): a row, what is known of it, and its children, each in a variant.
struct MenuLayoutNode
{
    int id = 0;
    QVariantMap properties;
    QList<MenuLayoutNode> children;
};

/// (ia{sv})
struct MenuItemProperties
{
    int id = 0;
    QVariantMap properties;
};
using MenuItemPropertiesList = QList<MenuItemProperties>;

/// (ias)
struct MenuItemKeys
{
    int id = 0;
    QStringList keys;
};
using MenuItemKeysList = QList<MenuItemKeys>;

/// (isvu)
struct MenuEvent
{
    int id = 0;
    QString eventId;
    QDBusVariant data;
    quint32 timestamp = 0;
};
using MenuEventList = QList<MenuEvent>;

QDBusArgument &operator<<(QDBusArgument &to, const ItemPixmap &pixmap);
const QDBusArgument &operator>>(const QDBusArgument &from, ItemPixmap &pixmap);
QDBusArgument &operator<<(QDBusArgument &to, const ItemToolTip &toolTip);
const QDBusArgument &operator>>(const QDBusArgument &from, ItemToolTip &toolTip);
QDBusArgument &operator<<(QDBusArgument &to, const MenuLayoutNode &node);
const QDBusArgument &operator>>(const QDBusArgument &from, MenuLayoutNode &node);
QDBusArgument &operator<<(QDBusArgument &to, const MenuItemProperties &item);
const QDBusArgument &operator>>(const QDBusArgument &from, MenuItemProperties &item);
QDBusArgument &operator<<(QDBusArgument &to, const MenuItemKeys &item);
const QDBusArgument &operator>>(const QDBusArgument &from, MenuItemKeys &item);
QDBusArgument &operator<<(QDBusArgument &to, const MenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &from, MenuEvent &event);

/// Makes the types known to the bus library; to be called before the first use, any number of
/// times.
void registerDBusTypes();

} // namespace pulsebar

Q_DECLARE_METATYPE(pulsebar::ItemPixmap)
Q_DECLARE_METATYPE(pulsebar::ItemToolTip)
Q_DECLARE_METATYPE(pulsebar::MenuLayoutNode)
Q_DECLARE_METATYPE(pulsebar::MenuItemProperties)
Q_DECLARE_METATYPE(pulsebar::MenuItemKeys)
Q_DECLARE_METATYPE(pulsebar::MenuEvent)
