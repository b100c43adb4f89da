#include "menu/MenuRows.h"

#include <utility>

namespace pulsebar {

MenuItem actionItem(const QString &title, const QString &action)
{
    MenuItem item;
    item.title = title;
    item.action = action;
    item.target = ItemTarget::Controller;
    return item;
}

MenuItem submenuItem(const QString &title, std::shared_ptr<const Menu> submenu)
{
    MenuItem item;
    item.title = title;
    item.submenu = std::move(submenu);
    return item;
}

MenuItem titleTypeItem(const QString &title, int type)
{
    MenuItem item = actionItem(title, QStringLiteral("changeTitleToDisplayType"));
    item.tag = type;
    return item;
}

} // namespace pulsebar
