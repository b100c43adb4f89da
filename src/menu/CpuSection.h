#pragma once

#include "menu/Menu.h"

#include <QVariantMap>

namespace pulsebar {

/// The mean load of the cores, with its statistics and a row per core. Its choice carries no type,
/// so it leaves the status item without a text.
/// @param topDict one sample; it may lack everything
MenuItem CPUMenuItem(const QVariantMap &topDict);

/// One core with its shares and statistics.
/// @param core an entry of "CPUUsage"
/// @param coreNumber from 1
MenuItem usageMenuForCore(const QVariantMap &core, int coreNumber);

/// A row that makes the total load the status item's title.
MenuItem newCPUMenuItemWithTitle(const QString &title);

/// A share with its label; one below 10 is moved to the right, so that the digits of several rows
/// stand below each other.
/// @param value in percent
QString cpuMenuTitleWithLabelAndValue(const QString &label, double value);

} // namespace pulsebar
