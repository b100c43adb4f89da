#include "menu/Menu.h"

#include <utility>

namespace pulsebar {

MenuItem MenuItem::separatorItem()
{
    MenuItem item;
    item.separator = true;
    return item;
}

Menu::Menu(QString title)
    : m_title(std::move(title))
{
}

void Menu::addItem(MenuItem item)
{
    m_items.append(std::move(item));
}

void Menu::removeAllItems()
{
    m_items.clear();
}

} // namespace pulsebar
