#pragma once

#include "menu/Menu.h"

namespace pulsebar {

/// Where the faces get the menu from and hand the user's choice to.
class MenuSource
{
public:
    void setDelegate(MenuDelegate *delegate) { m_delegate = delegate; }
    bool hasDelegate() const { return m_delegate != nullptr; }

    /// The menu of this moment; without rows while nobody fills it.
    Menu build() const;
    /// Does nothing for a row that cannot be chosen. `menu` holds the row.
    void perform(const Menu &menu, const MenuItem &item, Qt::KeyboardModifiers modifiers) const;

private:
    MenuDelegate *m_delegate = nullptr;
};

} // namespace pulsebar
