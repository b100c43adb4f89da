#pragma once

#include "menu/Menu.h"

#include <QVariantMap>

#include <memory>

namespace pulsebar {

/// One process's traffic, with a row per connection.
/// @param process "name", "bytes_in", "bytes_out", "bytes_in_delta", "bytes_out_delta" (bytes, in
///        all and since the time before) and "subprocess", the list of connections ("bytes_in",
///        "bytes_out", "type", "state", "address"). What is missing reads as 0 or nothing
MenuItem makeNetworkMenuForDict(const QVariantMap &process);

/// Appends the processes with the most traffic, the rest as "Other Network Activities", and a
/// separator.
/// @param processes entries as above, by any key; what is no dictionary is left out
/// @param networkMax how many stand in the menu itself
void addNetworkProcesses(Menu &menu, const QVariantMap &processes, qint64 networkMax);

/// The submenu of a minute-stats record of bytes per second. Its rows open the graph.
/// @param title "NetworkInMinuteStats" or "NetworkOutMinuteStats"
/// @return null when the record is no dictionary
std::shared_ptr<Menu> menuForStaticsForNetwork(const QVariant &record, const QString &title);

} // namespace pulsebar
