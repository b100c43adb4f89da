#pragma once

#include "statusitem/MenuSource.h"
#include "statusitem/MenuViewFactory.h"

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QRect>

#include <functional>
#include <memory>

namespace pulsebar {

/// Told of the row that the user chose, and of the menu that holds it.
using MenuChoice = std::function<void(const Menu &menu, const MenuItem &item)>;

/// The same rows as an exported menu shows, in a menu window of our own. `_` and `&` are text.
/// Where `viewFactory` makes no widget for a row with a view, the row's substitute is shown.
std::unique_ptr<QMenu> renderMenu(const Menu &menu, const MenuChoice &choose,
                                  const MenuViewFactory &viewFactory);

/// Shows the menu where no panel draws it. Built anew at each opening, and still while open.
class MenuPopup : public QObject
{
    Q_OBJECT

public:
    /// `source` must outlive the popup.
    MenuPopup(const MenuSource &source, MenuViewFactory viewFactory, QObject *parent = nullptr);
    ~MenuPopup() override;

    void openAt(QPoint place);
    /// Below the item, or above it in the lower half of the screen.
    void openBeside(const QRect &item);

Q_SIGNALS:
    void opened();

private:
    bool build();

    const MenuSource &m_source;
    MenuViewFactory m_viewFactory;
    std::unique_ptr<QMenu> m_menu;
};

} // namespace pulsebar
