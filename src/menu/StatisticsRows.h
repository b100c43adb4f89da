#pragma once

#include <QString>
#include <QVariant>

namespace pulsebar {

class Menu;

/// The keys of a minute-stats record that menus show, in their order.
inline constexpr const char *kStatisticsKeys[] = {"AverageValue", "MaxValue", "MinValue"};

/// Appends the rows of a minute-stats record and "Show Graph". Each opens the graph that the menu's
/// title names.
/// @param record as MinuteStats.h describes it. Anything but a dictionary, and a null menu, adds
///        nothing; a key that is missing reads as 0
/// @param unit stands behind each value
/// @param scale what the record's values are multiplied by
void addOneMinuteStatics(const QVariant &record, const QString &unit, Menu *menu, float scale);

} // namespace pulsebar
