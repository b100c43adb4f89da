#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pulsebar {

/// A file below /sys/class/power_supply that holds one number. Absent when it does not, or when the
/// number does not fit.
std::optional<std::int64_t> parseSupplyNumber(std::string_view text);

/// The word or words of such a file, without the blanks around them.
std::string_view parseSupplyText(std::string_view text);

/// What a battery's files say (Documentation/ABI/testing/sysfs-class-power), in their units:
/// microvolts, microamperes, microwatts, microampere-hours or microwatt-hours, percent. A file
/// that is missing or damaged is absent.
struct BatteryFigures
{
    std::optional<std::int64_t> present;
    std::optional<std::int64_t> chargeNow;
    std::optional<std::int64_t> chargeFull;
    std::optional<std::int64_t> energyNow;
    std::optional<std::int64_t> energyFull;
    std::optional<std::int64_t> capacity;
    std::optional<std::int64_t> cycleCount;
    std::optional<std::int64_t> voltageNow;
    std::optional<std::int64_t> currentNow;
    std::optional<std::int64_t> powerNow;
    std::string_view status;
};

struct ChargeLevel
{
    std::optional<std::int64_t> now;
    std::optional<std::int64_t> full;

    bool isComplete() const { return now && full; }
};

/// The charge now and when full, in one unit: of charge_* or else energy_*, whichever has both;
/// else the percentage over 100; else what there is.
ChargeLevel chargeLevel(const BatteryFigures &figures);
/// Whether chargeLevel() does without the percentage.
bool hasChargePair(const BatteryFigures &figures);
/// Millivolts.
std::optional<std::int64_t> millivolts(const BatteryFigures &figures);
/// Milliamperes, from the current or else the power; negative while the status is "Discharging",
/// whatever sign the driver gives it.
std::optional<std::int64_t> milliamperes(const BatteryFigures &figures);

/// Whether a supply of that type brings power from outside.
bool isExternalSupply(std::string_view type);

/// Names in the order in which people count: BAT2 before BAT10.
bool comesBefore(std::string_view one, std::string_view other);

} // namespace pulsebar
