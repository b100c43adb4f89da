#pragma once

#include "menu/Menu.h"

#include <QVariantList>
#include <QVariantMap>

#include <optional>

namespace pulsebar {

/// What the temperature rows are built from, beside the temperatures themselves.
struct TemperatureMenuState
{
    /// The sensors in the order in which they are shown: dictionaries with "Key", the name. Those
    /// that have no temperature now are passed over.
    QVariantList temperatureKeys;
    QVariantMap minuteStats; ///< sensor name to minute-stats record; a sensor may have none
    bool fahrenheit = false; ///< the scale that the temperatures came in
};

/// The temperature of the processor, with a row per sensor below. Absent without a temperature. Its
/// choice, and a row's, puts the processor's temperature on the status item.
/// @param temperatures sensor name to degrees, in the user's scale
std::optional<MenuItem> makeTemperatureMenuForDict(const QVariantMap &temperatures,
                                                   const TemperatureMenuState &state);

/// One sensor, with its minute statistics below when it has any. Absent when the sensor has no
/// temperature.
std::optional<MenuItem> newTemperatureMenuItemForKey(const QString &key,
                                                     const QVariantMap &temperatures,
                                                     const TemperatureMenuState &state);

} // namespace pulsebar
