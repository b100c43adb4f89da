#pragma once

#include "menu/Menu.h"

#include <QVariantMap>

namespace pulsebar {

/// The energy that all listed processes use, with its statistics and a row per process, the
/// hungriest first. The submenu carries the graph key of the processors' load and opens that graph.
/// @param shares percent by process name
/// @param topDict the sample that they are from
MenuItem powerUsageMenuItem(const QVariantMap &shares, const QVariantMap &topDict);

/// Compares two rows "12.0%:name" by the number before the first "%".
/// @return negative when `one` comes first, which is when its number is greater; 0 when both are
///         equal
int sortPowerUsageText(const QString &one, const QString &other);

} // namespace pulsebar
