#pragma once

#include <QString>
#include <QVariant>
#include <QVector>

#include <memory>

namespace pulsebar {

class HeldProcess;
class Menu;

/// What the check column of an item shows.
enum class ItemState { Off, On, Mixed };

/// Who carries out an item's action.
enum class ItemTarget { None, Controller, Monitor, Application };

/// One row of a menu, as a value. Titles are plain text: `_` and `&` stand for themselves.
struct MenuItem
{
    QString title;
    /// Name of the operation, such as "changeListMax"; empty for a row that does nothing.
    QString action;
    ItemTarget target = ItemTarget::None;
    int tag = 0;
    ItemState state = ItemState::Off;
    /// True when the state column stands for one choice of several (drawn as a radio mark).
    bool exclusive = false;
    bool enabled = true;
    bool separator = false;
    /// Number of blanks-wide steps by which the title is moved in.
    int indentation = 0;
    /// Name of a themed icon, or the absolute path of an image file; empty for none.
    QString image;
    /// Name of the widget shown in place of the title where the menu is drawn by ourselves.
    QString view;
    /// Carried along for the action, never shown.
    QVariant representedObject;
    /// The process that the row and its submenu are about, held from the moment the menu was built:
    /// whoever gets the number later is not acted on. Null for all other rows.
    std::shared_ptr<HeldProcess> process;
    std::shared_ptr<const Menu> submenu;
    /// What stands for a row with a `view` where a panel draws the menu; null for other rows.
    std::shared_ptr<const MenuItem> substitute;

    static MenuItem separatorItem();

    /// The title as it is to be read, on one line: moved in by its indentation, every NUL replaced
    /// by U+FFFD, every line break by a blank. Titles hold names that any program may give itself;
    /// of an endless one the beginning is shown, and an ellipsis.
    QString shownTitle() const;

    /// The row as it is drawn where its view cannot be.
    const MenuItem &withoutView() const { return substitute ? *substitute : *this; }
};

/// Whether both show and do the same, rows and submenus alike.
bool sameItem(const MenuItem &one, const MenuItem &other);
bool sameMenu(const Menu &one, const Menu &other);

/// An ordered list of rows with a title of its own.
class Menu
{
public:
    Menu() = default;
    explicit Menu(QString title);

    const QString &title() const { return m_title; }
    const QVector<MenuItem> &items() const { return m_items; }
    bool isEmpty() const { return m_items.isEmpty(); }

    void addItem(MenuItem item);
    void removeAllItems();

    /// Appends a row and returns it, to be completed; the reference holds until the next row.
    MenuItem &addItemWithTitle(const QString &title, ItemTarget target, const QString &action);
    /// Appends a row that only displays text.
    MenuItem &addDummyItemWithTitle(const QString &title, ItemTarget target);
    void setStateToAllItem(ItemState state);
    /// Moves every row of `other`, from its first, to the end of this menu.
    void addItemsFromMenu(Menu &other);
    /// A menu of the system's services that can share `items`. There is no sharing service here, so
    /// there is no menu either.
    static std::shared_ptr<Menu> menuForSharingItems(const QVariantList &items, ItemTarget target,
                                                     const QString &action);

private:
    QString m_title;
    QVector<MenuItem> m_items;
};

/// Fills a menu right before it is shown, and carries out what the user chose.
class MenuDelegate
{
public:
    virtual ~MenuDelegate() = default;
    /// Replaces the items of `menu` with those for this moment.
    virtual void menuNeedsUpdate(Menu &menu) = 0;
    /// Carries out `item`'s action. `menu` is the menu that holds the item: its title says what the
    /// item is about. `modifiers` are the keys held at the click (none when the panel that drew the
    /// menu does not tell).
    virtual void performAction(const Menu &menu, const MenuItem &item,
                               Qt::KeyboardModifiers modifiers) = 0;
};

} // namespace pulsebar
