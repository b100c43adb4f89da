#pragma once

#include "engine/UsageCaches.h"

#include <QVariantMap>

namespace pulsebar {

/// Adds a temperature sample (sensor name to degrees) to the sensors' caches.
/// @return sensor name to minute-stats record
QVariantMap processTemperatureStats(UsageCaches &caches, const QVariantMap &temperatures,
                                    int maximum);

/// Adds a fan sample ("DataArray" with "ActualSpeed" per fan, "AverageSpeed") to the fans' caches.
/// When fans come or go the average keeps its cache, which stays the last one.
/// @return the minute-stats records of the fans in order, then the average's
QVariantList processFanMoveStats(UsageCaches &caches, const QVariantMap &fanMove, int maximum);

} // namespace pulsebar
