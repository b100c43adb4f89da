#pragma once

#include "menu/Menu.h"

#include <QVariantList>
#include <QVariantMap>

#include <optional>

namespace pulsebar {

/// What the fan rows are built from, beside the fans themselves.
struct FanMenuState
{
    /// The values of a fan in the order in which they are shown: dictionaries with "Key".
    QVariantList fanKeys;
    /// Minute-stats records: one per fan, and one for the average behind them. May be shorter;
    /// whoever has no record has no statistics.
    QVariantList minuteStats;
};

/// The average speed of the fans. Below it are the average's statistics and a row per fan; with a
/// single fan, that fan's own rows. Absent when the average is 0, as where no fan turns and where
/// none is known; an average that is not a number is shown as such. Its choice puts the speed on
/// the status item.
/// @param fanMove "AverageSpeed" and "DataArray", as Collectors.h describes them
std::optional<MenuItem> makeFanMoveMenuForDict(const QVariantMap &fanMove,
                                               const FanMenuState &state);

/// One fan: its values, then its statistics.
/// @param fan value's key to revolutions per minute
/// @param number counted from 0; the row's title counts from 1
MenuItem makeFanMoveMenuForFanDict(const QVariantMap &fan, int number, const FanMenuState &state);

} // namespace pulsebar
