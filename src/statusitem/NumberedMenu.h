#pragma once

#include "menu/Menu.h"

#include <QVector>

#include <optional>

namespace pulsebar {

/// A menu whose rows have numbers, as a panel refers to them. The root is always number 0. A panel
/// shows no views: a row with a substitute is that substitute here.
class NumberedMenu
{
public:
    NumberedMenu() = default;
    /// Numbers the rows from `firstId` on, each row before its submenu's rows.
    NumberedMenu(Menu menu, int firstId);

    const Menu &menu() const { return m_menu; }
    /// One more than the greatest number given.
    int endId() const { return m_firstId + int(m_nodes.size()); }
    bool contains(int id) const;
    /// The row of a number; nothing for the root and for numbers of other menus.
    const MenuItem *item(int id) const;
    /// The menu that holds a row; nothing where item() answers nothing.
    const Menu *holder(int id) const;
    /// The numbers below a row or the root, in order.
    QVector<int> children(int id) const;

private:
    struct Node
    {
        MenuItem item;
        std::shared_ptr<const Menu> holder; ///< null for the rows of the root
        QVector<int> children;
    };

    QVector<int> append(const Menu &menu, const std::shared_ptr<const Menu> &holder);

    Menu m_menu;
    int m_firstId = 1;
    QVector<int> m_top;
    QVector<Node> m_nodes;
};

/// The newest build of a menu and the one before it. Between showing and choosing, a menu may be
/// built anew: a number then still means the row that the user saw, and a number older than the
/// previous build means nothing.
///
/// Rows may hold the processes that they are about, which costs a descriptor each. They are given
/// up with their build, so that never more than two builds' worth are kept.
class MenuBuilds
{
public:
    /// Takes a new build. One that shows the same as the newest keeps its numbers and revision.
    void add(Menu menu);

    /// Grows with every different build; 0 before the first.
    quint32 revision() const { return m_revision; }
    /// The build that a number belongs to; nothing when it is too old or was never given.
    const NumberedMenu *buildOf(int id) const;
    const MenuItem *item(int id) const;

private:
    NumberedMenu m_newest;
    NumberedMenu m_previous;
    quint32 m_revision = 0;
};

} // namespace pulsebar
