#pragma once

#include "menu/Menu.h"

#include <functional>

class QWidget;

namespace pulsebar {

/// Makes the widget of a row with a view:
/// "widthSlider": a slider that starts at the row's tag; each move is chosen as the action
/// `setItemWidth` with the width as tag.
/// "detailText": the row's represented text, which stays as it is.
/// @return null for a row with any other view, or none
QWidget *makeMenuView(const MenuItem &item, const std::function<void(const MenuItem &)> &choose,
                      QWidget *parent);

} // namespace pulsebar
