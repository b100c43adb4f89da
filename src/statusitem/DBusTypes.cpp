#include "statusitem/DBusTypes.h"

#include <QDBusMetaType>

namespace pulsebar {

QDBusArgument &operator<<(QDBusArgument &to, const ItemPixmap &pixmap)
{
    to.beginStructure();
    to << pixmap.width << pixmap.height << pixmap.pixels;
    to.endStructure();
    return to;
}

const QDBusArgument &operator>>(const QDBusArgument &from, ItemPixmap &pixmap)
{
    from.beginStructure();
    from >> pixmap.width >> pixmap.height >> pixmap.pixels;
    from.endStructure();
    return from;
}

QDBusArgument &operator<<(QDBusArgument &to, const ItemToolTip &toolTip)
{
    to.beginStructure();
    to << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
    to.endStructure();
    return to;
}

const QDBusArgument &operator>>(const QDBusArgument &from, ItemToolTip &toolTip)
{
    from.beginStructure();
    from >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
    from.endStructure();
    return from;
}

QDBusArgument &operator<<(QDBusArgument &to, const MenuLayoutNode &node)
{
    to.beginStructure();
    to << node.id << node.properties;
    to.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const MenuLayoutNode &child : node.children) {
        to << QDBusVariant(QVariant::fromValue(child));
    }
    to.endArray();
    to.endStructure();
    return to;
}

const QDBusArgument &operator>>(const QDBusArgument &from, MenuLayoutNode &node)
{
    from.beginStructure();
    from >> node.id >> node.properties;
    from.beginArray();
    while (!from.atEnd()) {
        QDBusVariant holder;
        from >> holder;
        node.children.append(qdbus_cast<MenuLayoutNode>(holder.variant()));
    }
    from.endArray();
    from.endStructure();
    return from;
}

QDBusArgument &operator<<(QDBusArgument &to, const MenuItemProperties &item)
{
    to.beginStructure();
    to << item.id << item.properties;
    to.endStructure();
    return to;
}

const QDBusArgument &operator>>(const QDBusArgument &from, MenuItemProperties &item)
{
    from.beginStructure();
    from >> item.id >> item.properties;
    from.endStructure();
    return from;
}

QDBusArgument &operator<<(QDBusArgument &to, const MenuItemKeys &item)
{
    to.beginStructure();
    to << item.id << item.keys;
    to.endStructure();
    return to;
}

const QDBusArgument &operator>>(const QDBusArgument &from, MenuItemKeys &item)
{
    from.beginStructure();
    from >> item.id >> item.keys;
    from.endStructure();
    return from;
}

QDBusArgument &operator<<(QDBusArgument &to, const MenuEvent &event)
{
    to.beginStructure();
    to << event.id << event.eventId << event.data << event.timestamp;
    to.endStructure();
    return to;
}

const QDBusArgument &operator>>(const QDBusArgument &from, MenuEvent &event)
{
    from.beginStructure();
    from >> event.id >> event.eventId >> event.data >> event.timestamp;
    from.endStructure();
    return from;
}

void registerDBusTypes()
{
    qDBusRegisterMetaType<ItemPixmap>();
    qDBusRegisterMetaType<ItemPixmapList>();
    qDBusRegisterMetaType<ItemToolTip>();
    qDBusRegisterMetaType<MenuLayoutNode>();
    qDBusRegisterMetaType<MenuItemProperties>();
    qDBusRegisterMetaType<MenuItemPropertiesList>();
    qDBusRegisterMetaType<MenuItemKeys>();
    qDBusRegisterMetaType<MenuItemKeysList>();
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<MenuEventList>();
    qDBusRegisterMetaType<QList<int>>();
    // Methods are looked up by the names that the generated adaptor spells out.
    qRegisterMetaType<MenuItemPropertiesList>("pulsebar::MenuItemPropertiesList");
    qRegisterMetaType<MenuItemKeysList>("pulsebar::MenuItemKeysList");
    qRegisterMetaType<MenuEventList>("pulsebar::MenuEventList");
}

} // namespace pulsebar
