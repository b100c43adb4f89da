#pragma once

#include "menu/Menu.h"

#include <QVariantMap>

#include <functional>

namespace pulsebar {

/// Turns a row's image into what the menu protocol knows: "icon-name", or "icon-data" with a PNG.
using MenuIconProperties = std::function<QVariantMap(const QString &image)>;

/// What a panel is told of a row. A value that equals the protocol's default is left out.
/// In the label every `_` is doubled, for a single one would mark a shortcut letter.
QVariantMap menuRowProperties(const MenuItem &item, const MenuIconProperties &iconProperties);

} // namespace pulsebar
