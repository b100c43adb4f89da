#pragma once

#include "menu/Menu.h"

#include <QVariantMap>

#include <optional>

namespace pulsebar {

/// The memory with a row for each of "free", "wired", "active" and "inactive" that the sample has.
/// The rows tell the share in free and used memory together.
/// @return nothing unless the sample's "MemoryStats" has 3, 4 or 5 entries
std::optional<MenuItem> makeMemoryStatsMenu(const QVariantMap &topDict);

} // namespace pulsebar
