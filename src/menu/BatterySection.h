#pragma once

#include "menu/Menu.h"

#include <QVariantMap>

namespace pulsebar {

/// The battery's charge, with a row for each of its other figures that the sample has; without any,
/// it has no submenu. Its choice puts the charge on the status item.
/// @param topDict a sample whose "BatteryStats" tells of a battery in use
MenuItem makeBatteryStatusMenu(const QVariantMap &topDict);

} // namespace pulsebar
