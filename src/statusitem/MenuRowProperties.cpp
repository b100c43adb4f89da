#include "statusitem/MenuRowProperties.h"

namespace pulsebar {

namespace {

int toggleState(ItemState state)
{
    switch (state) {
    case ItemState::On:
        return 1;
    case ItemState::Mixed:
        return -1;
    case ItemState::Off:
        break;
    }
    return 0;
}

void addToggle(const MenuItem &item, QVariantMap &properties)
{
    if (item.state == ItemState::Off && !item.exclusive) {
        return;
    }
    properties.insert(QStringLiteral("toggle-type"),
                      item.exclusive ? QStringLiteral("radio") : QStringLiteral("checkmark"));
    properties.insert(QStringLiteral("toggle-state"), toggleState(item.state));
}

} // namespace

QVariantMap menuRowProperties(const MenuItem &item, const MenuIconProperties &iconProperties)
{
    QVariantMap properties;
    if (item.separator) {
        properties.insert(QStringLiteral("type"), QStringLiteral("separator"));
        return properties;
    }
    properties.insert(QStringLiteral("label"),
                      item.shownTitle().replace(u'_', QStringLiteral("__")));
    if (!item.enabled) {
        properties.insert(QStringLiteral("enabled"), false);
    }
    addToggle(item, properties);
    if (item.submenu) {
        properties.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
    }
    if (!item.image.isEmpty() && iconProperties) {
        properties.insert(iconProperties(item.image));
    }
    return properties;
}

} // namespace pulsebar
