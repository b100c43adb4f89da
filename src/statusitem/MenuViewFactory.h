#pragma once

#include "menu/Menu.h"

#include <functional>

class QWidget;

namespace pulsebar {

/// Carries out a row that the user chose or changed in a view, as a click on it would.
using MenuItemChoice = std::function<void(const MenuItem &item)>;

/// Makes the widget of a row with a `view`; nothing when there is none for it. What the user does
/// in the widget is handed to `choose`, which may be called until the widget is gone.
using MenuViewFactory =
    std::function<QWidget *(const MenuItem &item, const MenuItemChoice &choose, QWidget *parent)>;

} // namespace pulsebar
