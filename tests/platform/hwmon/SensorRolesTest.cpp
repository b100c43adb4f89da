#include "platform/linux_/hwmon/sensor_roles.h"

#include <gtest/gtest.h>

#include <string>

namespace pulsebar {
namespace {

struct RoleCase
{
    const char *chip;
    const char *label;
    SensorRole role;
};

void PrintTo(const RoleCase &sensor, std::ostream *out)
{
    *out << sensor.chip << " / " << sensor.label;
}

class RoleOf : public testing::TestWithParam<RoleCase>
{
};

TEST_P(RoleOf, ChipAndLabel)
{
    EXPECT_EQ(purposeOf(GetParam().chip, GetParam().label).role, GetParam().role);
}

INSTANTIATE_TEST_SUITE_P(
    Processors, RoleOf,
    testing::Values(RoleCase{"coretemp", "Package id 0", SensorRole::CpuPackage},
                    RoleCase{"coretemp", "Physical id 1", SensorRole::CpuPackage},
                    RoleCase{"coretemp", "Core 31", SensorRole::CpuCore},
                    RoleCase{"k10temp", "Tdie", SensorRole::CpuPackage},
                    RoleCase{"k10temp", "Tctl", SensorRole::CpuPackage},
                    RoleCase{"k10temp", "", SensorRole::CpuPackage},
                    RoleCase{"k10temp", "Tccd7", SensorRole::CpuDie},
                    RoleCase{"zenpower", "Tdie", SensorRole::CpuPackage},
                    RoleCase{"cpu_thermal", "", SensorRole::CpuPackage},
                    RoleCase{"cpu0_thermal", "", SensorRole::CpuPackage},
                    RoleCase{"cpu-thermal", "", SensorRole::CpuPackage},
                    RoleCase{"soc_thermal", "", SensorRole::CpuPackage},
                    RoleCase{"x86_pkg_temp", "", SensorRole::CpuPackage},
                    RoleCase{"cpu", "", SensorRole::CpuPackage},
                    RoleCase{"a53_cpu_thermal", "", SensorRole::CpuPackage}));

INSTANTIATE_TEST_SUITE_P(Graphics, RoleOf,
                         testing::Values(RoleCase{"amdgpu", "edge", SensorRole::Gpu},
                                         RoleCase{"amdgpu", "junction", SensorRole::GpuHotspot},
                                         RoleCase{"amdgpu", "mem", SensorRole::GpuMemory},
                                         RoleCase{"amdgpu", "Tdie", SensorRole::None},
                                         RoleCase{"amdgpu", "Package id 0", SensorRole::None},
                                         RoleCase{"radeon", "", SensorRole::Gpu},
                                         RoleCase{"nouveau", "", SensorRole::Gpu},
                                         RoleCase{"xe", "pkg", SensorRole::Gpu},
                                         RoleCase{"xe", "vram", SensorRole::GpuMemory},
                                         RoleCase{"gpu_thermal", "", SensorRole::Gpu},
                                         RoleCase{"cpu_gpu_thermal", "", SensorRole::None}));

INSTANTIATE_TEST_SUITE_P(DrivesAndNetwork, RoleOf,
                         testing::Values(RoleCase{"nvme", "Composite", SensorRole::NvmeDrive},
                                         RoleCase{"nvme", "Sensor 1", SensorRole::None},
                                         RoleCase{"drivetemp", "", SensorRole::SataDrive},
                                         RoleCase{"iwlwifi_1", "", SensorRole::WirelessNetwork},
                                         RoleCase{"ath11k_hwmon", "", SensorRole::WirelessNetwork},
                                         RoleCase{"mt7921_phy0", "", SensorRole::WirelessNetwork}));

INSTANTIATE_TEST_SUITE_P(BoardAndBattery, RoleOf,
                         testing::Values(RoleCase{"nct6798", "SYSTIN", SensorRole::Board},
                                         RoleCase{"nct6798", "CPUTIN", SensorRole::None},
                                         RoleCase{"nct6798", "AUXTIN0", SensorRole::None},
                                         RoleCase{"nct6798", "PECI Agent 0", SensorRole::None},
                                         RoleCase{"nct6798", "PCH_CHIP_TEMP", SensorRole::Chipset},
                                         RoleCase{"nct6798", "PCH_CPU_TEMP", SensorRole::None},
                                         RoleCase{"it8728", "System", SensorRole::Board},
                                         RoleCase{"acpitz", "", SensorRole::Board},
                                         RoleCase{"pch_cannonlake", "", SensorRole::Chipset},
                                         RoleCase{"BAT0", "", SensorRole::Battery},
                                         RoleCase{"cros_ec", "Battery", SensorRole::Battery},
                                         RoleCase{"hidpp_battery_0", "", SensorRole::None},
                                         RoleCase{"hidpp_battery_0", "Battery", SensorRole::None},
                                         RoleCase{"dell_smm", "Ambient", SensorRole::Ambient},
                                         RoleCase{"w83795g", "Front air inlet",
                                                  SensorRole::Ambient},
                                         RoleCase{"w83795g", "Fairing", SensorRole::None},
                                         RoleCase{"jc42", "", SensorRole::MemoryModule},
                                         RoleCase{"spd5118", "", SensorRole::MemoryModule},
                                         RoleCase{"dell_smm", "CPU", SensorRole::None},
                                         RoleCase{"thinkpad", "CPU", SensorRole::None},
                                         RoleCase{"", "", SensorRole::None}));

TEST(CpuClaims, AreInThisOrder)
{
    const std::pair<const char *, const char *> best[] = {
        {"coretemp", "Package id 0"},
        {"coretemp", "Package id 1"},
        {"k10temp", "Tdie"},
        {"zenpower", "Tctl"},
        {"applesmc", "TC0D"},
        {"applesmc", "TCAD"},
        {"applesmc", "TC0E"},
        {"applesmc", "TC0F"},
        {"applesmc", "TCXC"},
        {"applesmc", "TC0C"},
        {"applesmc", "TCAH"},
        {"applesmc", "TC0H"},
        {"cpu_thermal", ""},
        {"package_thermal", ""},
        {"soc_thermal", ""},
        {"a53_cpu_thermal", ""},
        {"soc", ""},
    };
    for (std::size_t i = 0; i + 1 < std::size(best); ++i) {
        const auto better = purposeOf(best[i].first, best[i].second).claim;
        const auto worse = purposeOf(best[i + 1].first, best[i + 1].second).claim;
        ASSERT_TRUE(better && worse) << best[i].second;
        EXPECT_LT(*better, *worse) << best[i].second;
    }
}

TEST(CpuClaims, NothingElseHasOne)
{
    const std::pair<const char *, const char *> others[] = {
        {"amdgpu", "edge"},    {"nouveau", ""},        {"gpu_thermal", ""},
        {"nvme", "Composite"}, {"drivetemp", ""},      {"nct6798", "CPUTIN"},
        {"acpitz", ""},        {"coretemp", "Core 0"}, {"k10temp", "Tccd1"},
        {"applesmc", "TG0D"},  {"applesmc", ""},       {"thinkpad", "CPU"},
        {"iwlwifi_1", ""},     {"BAT0", ""},           {"cpu_gpu_thermal", ""},
        {"cpu_fan", ""},       {"nvme", "cpu"},
    };
    for (const auto &[chip, label] : others)
        EXPECT_FALSE(purposeOf(chip, label).claim) << chip << ' ' << label;
}

TEST(RoleKeys, HaveARoleAndAnInstance)
{
    EXPECT_EQ(keyPrefix(SensorRole::CpuPackage), "Tcp");
    EXPECT_EQ(keyPrefix(SensorRole::None), "");
    EXPECT_EQ(instanceDigit(0), '0');
    EXPECT_EQ(instanceDigit(10), 'A');
    EXPECT_EQ(instanceDigit(36), 'a');
    EXPECT_EQ(instanceDigit(61), 'z');
    EXPECT_TRUE(isRoleKey("Tdn0") && isRoleKey("Tgjz"));
    EXPECT_FALSE(isRoleKey("Tdn-") || isRoleKey("TC0D") || isRoleKey("Tdn") || isRoleKey("Tdn00"));
}

} // namespace
} // namespace pulsebar
