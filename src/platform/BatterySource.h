#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace pulsebar {

/// One battery of the machine, as power management tells it. What is not told is absent.
struct BatteryInfo
{
    static constexpr int kConnected = 1; ///< external power is connected
    static constexpr int kCharging = 2;
    static constexpr int kInstalled = 4;

    int flags = 0; ///< of the three bits above
    /// The charge now and when full, in one unit, whichever it is.
    std::optional<std::int64_t> current;
    std::optional<std::int64_t> capacity;
    std::optional<std::int64_t> cycleCount;
    std::optional<std::int64_t> voltage;  ///< millivolts
    std::optional<std::int64_t> amperage; ///< milliamperes, negative while discharging
};

class BatterySource
{
public:
    virtual ~BatterySource() = default;
    /// The batteries that power the machine (a mouse's is not among them), in the system's order.
    /// Absent when they cannot be told.
    virtual std::optional<std::vector<BatteryInfo>> readBatteries() = 0;
};

} // namespace pulsebar
