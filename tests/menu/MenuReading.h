#pragma once

#include "menu/Menu.h"

#include <string>
#include <vector>

/// Menus as texts, to be compared.
namespace pulsebar::reading {

inline std::string targetName(ItemTarget target)
{
    switch (target) {
    case ItemTarget::None:
        return "nobody";
    case ItemTarget::Controller:
        return "controller";
    case ItemTarget::Monitor:
        return "monitor";
    case ItemTarget::Application:
        return "application";
    }
    return {};
}

/// "-" for a separator.
inline std::string title(const MenuItem &item)
{
    return item.separator ? "-" : item.title.toStdString();
}

inline std::vector<std::string> titles(const Menu &menu)
{
    std::vector<std::string> result;
    for (const MenuItem &item : menu.items())
        result.push_back(title(item));
    return result;
}

/// What a choice of the row does: "action > target", with " #tag" when that is not 0.
inline std::string deed(const MenuItem &item)
{
    std::string text = item.action.toStdString() + " > " + targetName(item.target);
    return item.tag == 0 ? text : text + " #" + std::to_string(item.tag);
}

/// The deeds of the rows, "-" for a separator.
inline std::vector<std::string> deeds(const Menu &menu)
{
    std::vector<std::string> result;
    for (const MenuItem &item : menu.items())
        result.push_back(item.separator ? "-" : deed(item));
    return result;
}

/// The titles of the rows below a row; nothing when it has no submenu.
inline std::vector<std::string> titlesBelow(const MenuItem &item)
{
    return item.submenu ? titles(*item.submenu) : std::vector<std::string>();
}

} // namespace pulsebar::reading
