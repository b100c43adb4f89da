#pragma once

#include "platform/SensorNames.h"

#include <set>
#include <string>

namespace pulsebar {

/// The sensors' names as a test says them.
struct FakeSensorNames : SensorNames
{
    /// Sets them anew.
    void say(std::vector<SensorName> names)
    {
        sensors = std::move(names);
        ++number;
    }

    std::uint64_t revision() const override { return number; }
    std::vector<SensorName> names() const override
    {
        ++asked;
        return sensors;
    }
    bool isResting(std::string_view key) const override
    {
        return allRest || resting.count(std::string(key)) > 0;
    }

    std::vector<SensorName> sensors;
    std::set<std::string> resting;
    bool allRest = false;
    std::uint64_t number = 1;
    mutable int asked = 0;
};

} // namespace pulsebar
