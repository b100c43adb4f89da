#pragma once

#include "menu/Menu.h"

namespace pulsebar {

/// A row whose action the controller carries out.
MenuItem actionItem(const QString &title, const QString &action);

/// A row that only opens its submenu.
MenuItem submenuItem(const QString &title, std::shared_ptr<const Menu> submenu);

/// A row that puts a type of title on the status item (see TitleTypes.h).
MenuItem titleTypeItem(const QString &title, int type);

} // namespace pulsebar
