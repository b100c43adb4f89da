#pragma once

#include <QString>

namespace pulsebar {

/// The keys by which graphs are known: the submenu of a series has its graph's as its title, and
/// settings and scripts name graphs by them. TopMonitor::cacheDataForKey() answers their samples.
namespace graphkeys {

/// The mean load of the cores.
QString totalCpu();
/// @param number counted from 1, as rows show it
QString core(int number);
/// @param key "412//name", or a name alone: then one process of that name is meant
QString process(const QString &key);
QString process(qint64 number, const QString &name);
/// @param name "NetworkInMinuteStats" or "NetworkOutMinuteStats"
QString traffic(const QString &name);
/// @param sensor its name in the sample
QString temperature(const QString &sensor);
QString fanAverage();
/// @param number counted from 0
QString fan(int number);

} // namespace graphkeys

} // namespace pulsebar
