#pragma once

#include "menu/Menu.h"

#include <QVariantMap>
#include <QVector>

#include <optional>

namespace pulsebar {

/// An item per disk of the sample's "DiskStatistics", in its order. Only disks with an item use up
/// a number.
QVector<MenuItem> makeDisksStatsMenu(const QVariantMap &topDict);

/// One disk with its figures, read and written in one row. A figure that the system does not keep
/// is printed as a dash; a row without any is left out.
/// @param disk an entry of "DiskStatistics"
/// @param index its number, from 1
/// @return nothing when the entry holds no figure at all
std::optional<MenuItem> makeOneDiskStatsMenu(const QVariantMap &disk, int index);

/// All disks in one item, for a sample with "DriveStats".
/// @return nothing unless that has exactly four entries
std::optional<MenuItem> makeDiskStatsMenu(const QVariantMap &topDict);

} // namespace pulsebar
