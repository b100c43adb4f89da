#include "statusitem/MenuSource.h"

namespace pulsebar {

Menu MenuSource::build() const
{
    Menu menu(QStringLiteral("Pulsebar"));
    if (m_delegate) {
        m_delegate->menuNeedsUpdate(menu);
    }
    return menu;
}

void MenuSource::perform(const Menu &menu, const MenuItem &item,
                         Qt::KeyboardModifiers modifiers) const
{
    if (m_delegate && item.enabled && !item.separator && !item.action.isEmpty()) {
        m_delegate->performAction(menu, item, modifiers);
    }
}

} // namespace pulsebar
