#include "statusitem/NumberedMenu.h"

#include <utility>

namespace pulsebar {

namespace {
// Far below the protocol's 32 bits, so that one more build always fits.
constexpr int lastFirstId = 1 << 30;
} // namespace

NumberedMenu::NumberedMenu(Menu menu, int firstId)
    : m_menu(std::move(menu))
    , m_firstId(firstId)
{
    m_top = append(m_menu, nullptr);
}

QVector<int> NumberedMenu::append(const Menu &menu, const std::shared_ptr<const Menu> &holder)
{
    QVector<int> ids;
    for (const MenuItem &given : menu.items()) {
        const MenuItem &item = given.withoutView();
        const auto index = m_nodes.size();
        ids.append(endId());
        m_nodes.append({item, holder, {}});
        if (item.submenu) {
            QVector<int> below = append(*item.submenu, item.submenu);
            m_nodes[index].children = std::move(below);
        }
    }
    return ids;
}

bool NumberedMenu::contains(int id) const
{
    return id == 0 || item(id) != nullptr;
}

const MenuItem *NumberedMenu::item(int id) const
{
    if (id < m_firstId || id >= endId()) {
        return nullptr;
    }
    return &m_nodes[id - m_firstId].item;
}

const Menu *NumberedMenu::holder(int id) const
{
    if (!item(id)) {
        return nullptr;
    }
    const std::shared_ptr<const Menu> &holder = m_nodes[id - m_firstId].holder;
    return holder ? holder.get() : &m_menu;
}

QVector<int> NumberedMenu::children(int id) const
{
    if (id == 0) {
        return m_top;
    }
    return item(id) ? m_nodes[id - m_firstId].children : QVector<int>();
}

void MenuBuilds::add(Menu menu)
{
    if (m_revision > 0 && sameMenu(menu, m_newest.menu())) {
        return;
    }
    const int end = m_newest.endId();
    m_previous =
        std::exchange(m_newest, NumberedMenu(std::move(menu), end > lastFirstId ? 1 : end));
    ++m_revision;
}

const NumberedMenu *MenuBuilds::buildOf(int id) const
{
    if (m_newest.contains(id)) {
        return &m_newest;
    }
    return m_previous.contains(id) ? &m_previous : nullptr;
}

const MenuItem *MenuBuilds::item(int id) const
{
    const NumberedMenu *build = buildOf(id);
    return build ? build->item(id) : nullptr;
}

} // namespace pulsebar
