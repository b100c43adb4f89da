#pragma once

#include <QVariantList>
#include <QVariantMap>

#include <optional>

namespace pulsebar {

/// Reads the state of the first battery.
class BatteryCollector
{
public:
    virtual ~BatteryCollector() = default;
    /// The battery record, freshly read: "BatteryEnabled", "IsConnected", "FullyCharged"
    /// (booleans), "BatteryRemainPercent" (float), "BatteryCycleCount", "BatteryVoltage"
    /// (millivolts), "BatteryAmperage" (milliamperes, negative while discharging). Empty without a
    /// battery.
    virtual QVariantMap batteryStatus() = 0;
};

/// Reads the temperature sensors.
class TemperatureCollector
{
public:
    virtual ~TemperatureCollector() = default;
    /// Sensor name to degrees (double), freshly read; a sensor without a reading is left out.
    /// Absent when there is nothing that could be asked.
    /// @param fahrenheit convert the readings
    virtual std::optional<QVariantMap> SMCGetTemperatures(bool fahrenheit) = 0;
    /// The sensors in the order in which they are shown: dictionaries with "Key" (the name) and
    /// "SMCKey". What a sample does not have may be among them. Grows when sensors appear.
    virtual QVariantList temperatureKeys() const = 0;
};

/// Reads the fans.
class FanCollector
{
public:
    virtual ~FanCollector() = default;
    /// "DataArray": an array with one dictionary per fan, at least with "ActualSpeed" (float,
    /// revolutions per minute); "AverageSpeed": float, their mean. Freshly read.
    /// Absent when the number of fans cannot be told.
    virtual std::optional<QVariantMap> SMCGetFanMove() = 0;
    /// The values of a fan in the order in which they are shown: dictionaries with "Key" and
    /// "SMCKey", a format with the fan's number.
    virtual QVariantList fanKeys() const = 0;
};

} // namespace pulsebar
