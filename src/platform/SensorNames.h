#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pulsebar {

/// A temperature sensor that the machine has now.
struct SensorName
{
    std::string key;  ///< four characters: its key at the System Management Controller
    std::string name; ///< UTF-8, for people: its chip and label; no two sensors share one
};

/// What the System Management Controller itself cannot tell about its keys.
class SensorNames
{
public:
    virtual ~SensorNames() = default;

    /// Changes whenever names() does. As of the last time that the transport was opened.
    virtual std::uint64_t revision() const = 0;
    /// All temperature sensors, chip by chip in the system's order.
    virtual std::vector<SensorName> names() const = 0;

    /// Whether a key had no reading through no fault of its sensor: its device sleeps and was not
    /// woken, it is not there at the moment, or it is so slow that its first reading is not in yet.
    virtual bool isResting(std::string_view key) const = 0;
};

} // namespace pulsebar
