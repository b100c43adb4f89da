#pragma once

#include <optional>
#include <string_view>
#include <utility>

namespace pulsebar {

/// What a temperature sensor measures, as far as its chip and label say.
enum class SensorRole {
    None,
    CpuPackage, ///< one that could be "the" temperature of a processor; see CpuClaim
    CpuCore,
    CpuDie, ///< a chiplet with cores
    Gpu,
    GpuHotspot,
    GpuMemory,
    NvmeDrive,
    SataDrive,
    WirelessNetwork,
    Battery,
    Chipset,
    Board,
    Ambient,
    MemoryModule,
};

/// How good a processor's sensor is as "the" temperature of the processor, best first.
enum class CpuClaim {
    IntelPackage,
    AmdDie,
    AmdControl, ///< the value that AMD's fan control goes by; on some models above the die's
    AppleDie,
    ThermalZone, ///< of a processor or a system on a chip, on boards
};

struct SensorPurpose
{
    SensorRole role = SensorRole::None;
    /// Of a processor's temperature; the number tells those of one claim apart, lowest first.
    std::optional<std::pair<CpuClaim, int>> claim;
};

/// Looks a sensor up in the table of roles. Both texts are compared without regard to case.
SensorPurpose purposeOf(std::string_view chip, std::string_view label);

/// The first three characters of a role's keys; empty for None. The fourth is the instance.
std::string_view keyPrefix(SensorRole role);
/// The fourth character for an instance from 0 to 61: digits, capitals, small letters.
char instanceDigit(int instance);
inline constexpr int kInstancesOfARole = 62;

/// Whether a text is a key that a role could have.
bool isRoleKey(std::string_view key);

} // namespace pulsebar
