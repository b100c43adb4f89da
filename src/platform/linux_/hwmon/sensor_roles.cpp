#include "platform/linux_/hwmon/sensor_roles.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace pulsebar {

namespace {

constexpr char lowered(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

/// Patterns know "*", any text, also none, and are written in small letters.
bool matches(std::string_view text, std::string_view pattern)
{
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t star = std::string_view::npos;
    std::size_t starText = 0;
    while (at < text.size()) {
        if (in < pattern.size() && pattern[in] == '*') {
            star = in++;
            starText = at;
        } else if (in < pattern.size() && pattern[in] == lowered(text[at])) {
            ++in;
            ++at;
        } else if (star != std::string_view::npos) {
            in = star + 1;
            at = ++starText;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', in) == std::string_view::npos;
}

struct Rule
{
    std::string_view chip;
    std::string_view label;
    SensorRole role;
    std::optional<CpuClaim> claim = std::nullopt;
    int order = 0; ///< among those of one claim
};

// The first rule that fits holds. A line with None keeps a chip's other sensors from the general
// rules below it: what a graphics card or a drive calls "ambient" is its own air.
constexpr auto rules = std::to_array<Rule>({
    // Processors
    {"coretemp", "package id *", SensorRole::CpuPackage, CpuClaim::IntelPackage},
    {"coretemp", "physical id *", SensorRole::CpuPackage, CpuClaim::IntelPackage},
    {"coretemp", "core *", SensorRole::CpuCore},
    {"via_cputemp", "core *", SensorRole::CpuCore},
    {"k10temp", "tdie", SensorRole::CpuPackage, CpuClaim::AmdDie},
    {"zenpower", "tdie", SensorRole::CpuPackage, CpuClaim::AmdDie},
    {"k10temp", "tctl", SensorRole::CpuPackage, CpuClaim::AmdControl},
    {"zenpower", "tctl", SensorRole::CpuPackage, CpuClaim::AmdControl},
    {"k10temp", "", SensorRole::CpuPackage, CpuClaim::AmdControl}, // older models have no labels
    {"k10temp", "tccd*", SensorRole::CpuDie},
    {"zenpower", "tccd*", SensorRole::CpuDie},
    // Graphics
    {"amdgpu", "edge", SensorRole::Gpu},
    {"amdgpu", "", SensorRole::Gpu},
    {"amdgpu", "junction", SensorRole::GpuHotspot},
    {"amdgpu", "hotspot", SensorRole::GpuHotspot},
    {"amdgpu", "mem", SensorRole::GpuMemory},
    {"amdgpu", "*", SensorRole::None},
    {"radeon", "*", SensorRole::Gpu},
    {"nouveau", "*", SensorRole::Gpu},
    {"xe", "pkg", SensorRole::Gpu},
    {"xe", "package", SensorRole::Gpu},
    {"xe", "vram", SensorRole::GpuMemory},
    {"xe", "*", SensorRole::None},
    {"i915", "pkg", SensorRole::Gpu},
    {"i915", "package", SensorRole::Gpu},
    {"i915", "", SensorRole::Gpu},
    {"i915", "vram", SensorRole::GpuMemory},
    {"i915", "*", SensorRole::None},
    {"gpu*therm*", "*", SensorRole::Gpu},
    {"*gpu*", "*", SensorRole::None},
    // Drives
    {"nvme", "composite", SensorRole::NvmeDrive},
    {"nvme", "*", SensorRole::None},
    {"drivetemp", "*", SensorRole::SataDrive},
    // Network
    {"iwlwifi*", "*", SensorRole::WirelessNetwork},
    {"ath*k_*", "*", SensorRole::WirelessNetwork},
    {"mt76*", "*", SensorRole::WirelessNetwork},
    {"mt79*", "*", SensorRole::WirelessNetwork},
    {"rtw*", "*", SensorRole::WirelessNetwork},
    {"brcmfmac*", "*", SensorRole::WirelessNetwork},
    {"mwifiex*", "*", SensorRole::WirelessNetwork},
    // Batteries: the machine's, not those of mice, pens and game controllers
    {"hid*", "*", SensorRole::None},
    {"wacom*", "*", SensorRole::None},
    {"*controller*", "*", SensorRole::None},
    {"bat*", "*", SensorRole::Battery},
    {"cmb*", "*", SensorRole::Battery},
    {"*", "*battery*", SensorRole::Battery},
    // The board and what is around it
    {"pch_*", "*", SensorRole::Chipset},
    {"*", "pch_chip_temp", SensorRole::Chipset},
    {"*", "pch", SensorRole::Chipset},
    {"*", "chipset", SensorRole::Chipset},
    {"*", "systin", SensorRole::Board},
    {"*", "system", SensorRole::Board},
    {"*", "motherboard", SensorRole::Board},
    {"*", "mainboard", SensorRole::Board},
    {"acpitz", "*", SensorRole::Board},
    {"jc42", "*", SensorRole::MemoryModule},
    {"spd5118", "*", SensorRole::MemoryModule},
    {"*", "sodimm*", SensorRole::MemoryModule},
    {"*", "dimm*", SensorRole::MemoryModule},
    {"*", "*ambient*", SensorRole::Ambient},
    {"*", "air", SensorRole::Ambient},
    {"*", "* air", SensorRole::Ambient},
    {"*", "air *", SensorRole::Ambient},
    {"*", "* air *", SensorRole::Ambient},
    // Thermal zones of boards (their chips are named after them)
    {"cpu*therm*", "*", SensorRole::CpuPackage, CpuClaim::ThermalZone, 0},
    {"package*therm*", "*", SensorRole::CpuPackage, CpuClaim::ThermalZone, 1},
    {"x86_pkg_temp*", "*", SensorRole::CpuPackage, CpuClaim::ThermalZone, 1},
    {"soc*therm*", "*", SensorRole::CpuPackage, CpuClaim::ThermalZone, 2},
    {"bcm2835_thermal", "*", SensorRole::CpuPackage, CpuClaim::ThermalZone, 2},
    {"imx_thermal*", "*", SensorRole::CpuPackage, CpuClaim::ThermalZone, 2},
    {"cluster*therm*", "*", SensorRole::CpuPackage, CpuClaim::ThermalZone, 3},
    {"bigcore*therm*", "*", SensorRole::CpuPackage, CpuClaim::ThermalZone, 3},
    // Vendors' own trees: zones named shortly, or with the part's number in front.
    {"cpu", "", SensorRole::CpuPackage, CpuClaim::ThermalZone, 4},
    {"cpu_temp*", "", SensorRole::CpuPackage, CpuClaim::ThermalZone, 4},
    {"*cpu*therm*", "*", SensorRole::CpuPackage, CpuClaim::ThermalZone, 4},
    {"soc", "", SensorRole::CpuPackage, CpuClaim::ThermalZone, 5},
    {"soc_temp*", "", SensorRole::CpuPackage, CpuClaim::ThermalZone, 5},
    {"*soc*therm*", "*", SensorRole::CpuPackage, CpuClaim::ThermalZone, 5},
});

// Those that say the die's or package's temperature, best first.
constexpr std::array<std::string_view, 8> appleDieKeys{"TC0D", "TCAD", "TC0E", "TC0F",
                                                       "TCXC", "TC0C", "TCAH", "TC0H"};

constexpr auto prefixes = std::to_array<std::pair<SensorRole, std::string_view>>({
    {SensorRole::CpuPackage, "Tcp"},
    {SensorRole::CpuCore, "Tcc"},
    {SensorRole::CpuDie, "Tcd"},
    {SensorRole::Gpu, "Tgp"},
    {SensorRole::GpuHotspot, "Tgj"},
    {SensorRole::GpuMemory, "Tgm"},
    {SensorRole::NvmeDrive, "Tdn"},
    {SensorRole::SataDrive, "Tds"},
    {SensorRole::WirelessNetwork, "Twl"},
    {SensorRole::Battery, "Tbt"},
    {SensorRole::Chipset, "Tch"},
    {SensorRole::Board, "Tmb"},
    {SensorRole::Ambient, "Tam"},
    {SensorRole::MemoryModule, "Tdm"},
});

constexpr std::string_view instances =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
static_assert(instances.size() == kInstancesOfARole);

/// N of "Package id N".
int lastNumber(std::string_view label)
{
    int number = 0;
    const auto digits = label.substr(label.find_last_not_of("0123456789") + 1);
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

SensorPurpose purposeAtApple(std::string_view label)
{
    SensorPurpose purpose;
    for (std::size_t i = 0; i < appleDieKeys.size(); ++i) {
        if (label == appleDieKeys[i])
            purpose.claim = {CpuClaim::AppleDie, static_cast<int>(i)};
    }
    return purpose;
}

} // namespace

SensorPurpose purposeOf(std::string_view chip, std::string_view label)
{
    if (chip == "applesmc")
        return purposeAtApple(label);
    for (const auto &rule : rules) {
        if (!matches(chip, rule.chip) || !matches(label, rule.label))
            continue;
        SensorPurpose purpose{rule.role, std::nullopt};
        if (rule.claim == CpuClaim::IntelPackage)
            purpose.claim = {*rule.claim, lastNumber(label)};
        else if (rule.claim)
            purpose.claim = {*rule.claim, rule.order};
        return purpose;
    }
    return {};
}

std::string_view keyPrefix(SensorRole role)
{
    for (const auto &[known, prefix] : prefixes) {
        if (known == role)
            return prefix;
    }
    return {};
}

char instanceDigit(int instance)
{
    return instances.at(static_cast<std::size_t>(instance));
}

bool isRoleKey(std::string_view key)
{
    if (key.size() != 4 || instances.find(key[3]) == std::string_view::npos)
        return false;
    for (const auto &[role, prefix] : prefixes) {
        if (key.starts_with(prefix))
            return true;
    }
    return false;
}

} // namespace pulsebar
