#include "platform/linux_/hwmon/SensorRegistry.h"

#include "platform/linux_/hwmon/sensor_encoding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace pulsebar {
namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

using Sensors = std::vector<FoundSensor>;

std::vector<std::string> keysOf(const SensorRegistry &registry)
{
    std::vector<std::string> keys;
    for (const auto &sensor : registry.names())
        keys.push_back(sensor.key);
    return keys;
}

std::vector<std::string> namesOf(const SensorRegistry &registry)
{
    std::vector<std::string> names;
    for (const auto &sensor : registry.names())
        names.push_back(sensor.name);
    return names;
}

std::vector<std::string> keysFor(const Sensors &sensors)
{
    SensorRegistry registry;
    registry.update(sensors);
    return keysOf(registry);
}

std::vector<std::string> namesFor(const Sensors &sensors)
{
    SensorRegistry registry;
    registry.update(sensors);
    return namesOf(registry);
}

const FoundSensor package0{"/coretemp.0", "coretemp", "Package id 0", 1};
const FoundSensor package1{"/coretemp.1", "coretemp", "Package id 1", 1};
const FoundSensor edge{"/gpu", "amdgpu", "edge", 1};
const FoundSensor board{"/board", "cpu_thermal", "", 1};
const FoundSensor apples{"/smc", "applesmc", "TC0D", 5};

/// What "Tcp0" reads, by the key it is listed with.
std::string processorOf(const SensorRegistry &registry)
{
    const auto place = registry.presentWithKey(smcCode("Tcp0"));
    if (!place)
        return "nothing";
    for (const auto &sensor : registry.names()) {
        if (registry.presentWithKey(smcCode(sensor.key)) == place)
            return sensor.name;
    }
    return "what is not listed";
}

TEST(SensorKeys, RolesAreCountedInOrderOfAppearance)
{
    EXPECT_THAT(keysFor({package0,
                         {"/coretemp.0", "coretemp", "Core 0", 2},
                         {"/coretemp.0", "coretemp", "Core 4", 6},
                         {"/nvme0", "nvme", "Composite", 1},
                         edge,
                         {"/nvme1", "nvme", "Composite", 1},
                         {"/gpu", "amdgpu", "junction", 2},
                         {"/gpu", "amdgpu", "mem", 3}}),
                ElementsAre("Tcp0", "Tcc0", "Tcc1", "Tdn0", "Tgp0", "Tdn1", "Tgj0", "Tgm0"));
}

TEST(SensorKeys, HybridCoresAreCountedWithoutGaps)
{
    Sensors sensors{package0};
    for (const int core : {0, 4, 8, 12, 16, 17, 18, 19})
        sensors.push_back({"/coretemp.0", "coretemp", "Core " + std::to_string(core), core + 2});
    EXPECT_THAT(keysFor(sensors), ElementsAre("Tcp0", "Tcc0", "Tcc1", "Tcc2", "Tcc3", "Tcc4",
                                              "Tcc5", "Tcc6", "Tcc7"));
}

TEST(SensorKeys, MoreThanARoleHasInstancesAreGenerated)
{
    Sensors sensors;
    for (int core = 0; core < 64; ++core)
        sensors.push_back({"/coretemp.0", "coretemp", "Core " + std::to_string(core), core + 2});
    const auto keys = keysFor(sensors);
    EXPECT_EQ(keys[61], "Tccz");
    EXPECT_THAT(keys[62], MatchesRegex("t[0-9a-z]{3}"));
    EXPECT_THAT(keys[63], MatchesRegex("t[0-9a-z]{3}"));
    EXPECT_NE(keys[62], keys[63]);
}

TEST(SensorKeys, OfTheRestAreTheSameFromStartToStart)
{
    const FoundSensor one{"/devices/nct", "nct6798", "CPUTIN", 2};
    const FoundSensor two{"/devices/nct", "nct6798", "AUXTIN0", 3};
    const auto keys = keysFor({one, two});
    EXPECT_THAT(keys[0], MatchesRegex("t[0-9a-z]{3}"));
    EXPECT_NE(keys[0], keys[1]);
    EXPECT_THAT(keysFor({package0, two, one}), ElementsAre("Tcp0", keys[1], keys[0]));
}

TEST(SensorKeys, ThatWouldMeetAreMovedApart)
{
    Sensors sensors;
    for (int number = 0; number < 1024; ++number)
        sensors.push_back({"/chip" + std::to_string(number % 16), "chip", "", number});
    const auto keys = keysFor(sensors);
    EXPECT_EQ(std::set<std::string>(keys.begin(), keys.end()).size(), 1024U);
    // Of 1024 in 46656 some have met: that is, moving apart was needed.
    std::set<std::string> alone;
    for (const auto &sensor : sensors)
        alone.insert(keysFor({sensor}).front());
    EXPECT_LT(alone.size(), 1024U);
}

TEST(SensorKeys, AreKeptByAndForWhoeverIsAway)
{
    const FoundSensor first{"/nvme0", "nvme", "Composite", 1};
    const FoundSensor second{"/nvme1", "nvme", "Composite", 1};
    const FoundSensor third{"/nvme2", "nvme", "Composite", 1};
    SensorRegistry registry;
    registry.update({first, second});
    registry.update({second});
    EXPECT_THAT(keysOf(registry), ElementsAre("Tdn1"));
    EXPECT_FALSE(registry.presentWithKey(smcCode("Tdn0")));
    registry.update({second, third});
    EXPECT_THAT(keysOf(registry), ElementsAre("Tdn1", "Tdn2"));
    registry.update({third, first, second});
    EXPECT_THAT(keysOf(registry), ElementsAre("Tdn2", "Tdn0", "Tdn1"));
    EXPECT_THAT(namesOf(registry),
                ElementsAre("nvme Composite 3", "nvme Composite", "nvme Composite 2"));
}

TEST(SensorKeys, RevisionChangesWithWhatIsListed)
{
    SensorRegistry registry;
    const auto empty = registry.revision();
    registry.update({});
    EXPECT_EQ(registry.revision(), empty);
    registry.update({package0});
    const auto one = registry.revision();
    EXPECT_NE(one, empty);
    registry.update({package0});
    EXPECT_EQ(registry.revision(), one);
    registry.update({package0, edge});
    EXPECT_NE(registry.revision(), one);
}

TEST(ProcessorKey, IsTheBestClaim)
{
    const FoundSensor tctl{"/k10", "k10temp", "Tctl", 1};
    const FoundSensor tdie{"/k10", "k10temp", "Tdie", 2};
    EXPECT_THAT(keysFor({board, package0})[1], "Tcp0");
    EXPECT_THAT(keysFor({tctl, tdie})[1], "Tcp0");
    EXPECT_THAT(keysFor({edge, tctl})[1], "Tcp0");
    EXPECT_THAT(keysFor({edge, board})[1], "Tcp0");
    EXPECT_THAT(keysFor({tdie, package0})[1], "Tcp0");
}

TEST(ProcessorKey, TheWorseClaimsAreNoSecondProcessor)
{
    const FoundSensor tctl{"/k10", "k10temp", "Tctl", 1};
    const FoundSensor tdie{"/k10", "k10temp", "Tdie", 2};
    EXPECT_THAT(keysFor({tctl, tdie})[0], MatchesRegex("t.*"));
    EXPECT_THAT(keysFor({tdie, package0})[0], MatchesRegex("t.*"));
    EXPECT_THAT(keysFor({board, package0})[0], MatchesRegex("t.*"));
    EXPECT_THAT(keysFor({board, {"/board1", "cpu1_thermal", "", 1}})[1], MatchesRegex("t.*"));
}

TEST(ProcessorKey, NoOtherSensorIsTakenForIt)
{
    SensorRegistry registry;
    registry.update({edge,
                     {"/nvme0", "nvme", "Composite", 1},
                     {"/acpi", "acpitz", "", 1},
                     {"/nct", "nct6798", "CPUTIN", 2},
                     {"/gpu1", "gpu_thermal", "", 1}});
    EXPECT_EQ(processorOf(registry), "nothing");
    EXPECT_THAT(keysOf(registry), ElementsAre("Tgp0", "Tdn0", "Tmb0", MatchesRegex("t.*"), "Tgp1"));
}

TEST(ProcessorKey, TwoPackagesByTheirOwnNumbers)
{
    EXPECT_THAT(keysFor({package0, package1}), ElementsAre("Tcp0", "Tcp1"));
    EXPECT_THAT(keysFor({package1, package0}), ElementsAre("Tcp1", "Tcp0"));
    EXPECT_THAT(keysFor({{"/18.3", "k10temp", "Tctl", 1}, {"/19.3", "k10temp", "Tctl", 1}}),
                ElementsAre("Tcp0", "Tcp1"));
}

TEST(ProcessorKey, MovesToTheBetterOneOfAModuleLoadedLate)
{
    SensorRegistry registry;
    registry.update({board});
    EXPECT_THAT(keysOf(registry), ElementsAre("Tcp0"));
    registry.update({board, package0});
    EXPECT_THAT(keysOf(registry), ElementsAre(MatchesRegex("t.*"), "Tcp0"));
    registry.update({board});
    EXPECT_THAT(keysOf(registry), ElementsAre(MatchesRegex("t.*")));
    EXPECT_EQ(processorOf(registry), "nothing") << "the board's took the name of what went";
    registry.update({package0});
    EXPECT_THAT(keysOf(registry), ElementsAre("Tcp0"));
}

TEST(ProcessorKey, TheLaterFirstPackageTakesIt)
{
    SensorRegistry registry;
    registry.update({package1});
    EXPECT_THAT(keysOf(registry), ElementsAre("Tcp0"));
    registry.update({package0, package1});
    EXPECT_THAT(keysOf(registry), ElementsAre("Tcp0", "Tcp1"));
}

TEST(ApplesKeys, AreTheLabels)
{
    SensorRegistry registry;
    registry.update({{"/smc", "applesmc", "TB0T", 1}, apples});
    EXPECT_THAT(keysOf(registry), ElementsAre("TB0T", "TC0D"));
    EXPECT_EQ(processorOf(registry), "applesmc TC0D");
}

TEST(ApplesKeys, TheProcessorsIsReadByASecondOne)
{
    SensorRegistry registry;
    registry.update({{"/smc", "applesmc", "TC0H", 1}, apples, board});
    EXPECT_EQ(processorOf(registry), "applesmc TC0D");
    EXPECT_THAT(keysOf(registry), ElementsAre("TC0H", "TC0D", MatchesRegex("t.*")));
    registry.update({{"/smc", "applesmc", "TC0H", 1}, apples, package0});
    EXPECT_EQ(processorOf(registry), "coretemp Package id 0");
    EXPECT_THAT(keysOf(registry), ElementsAre("TC0H", "TC0D", "Tcp0"));
}

TEST(ApplesKeys, LabelsThatAreNoKeysAreNot)
{
    for (const char *label :
         {"TC0", "TC0DD", "", "TC\uFFFD", "F0Ac", "FNum", "#KEY", "Tcp0", "Tdn3"}) {
        EXPECT_THAT(keysFor({{"/smc", "applesmc", label, 1}}).front(), MatchesRegex("t.{3}"))
            << label;
    }
}

TEST(ApplesKeys, ALabelMayBeTakenAlready)
{
    const FoundSensor other{"/devices/nct", "nct6798", "CPUTIN", 2};
    const auto taken = keysFor({other}).front();
    const auto keys = keysFor({other, {"/smc", "applesmc", taken, 1}});
    EXPECT_EQ(keys[0], taken);
    EXPECT_THAT(keys[1], MatchesRegex("t[0-9a-z]{3}"));
    EXPECT_NE(keys[1], taken);
    const auto twins = keysFor({apples, {"/smc", "applesmc", "TC0D", 6}});
    EXPECT_EQ(twins[0], "TC0D");
    EXPECT_THAT(twins[1], MatchesRegex("t[0-9a-z]{3}"));
    // The other way round the generated one gives way.
    const auto reversed = keysFor({{"/smc", "applesmc", taken, 1}, other});
    EXPECT_EQ(reversed[0], taken);
    EXPECT_NE(reversed[1], taken);
}

TEST(SensorNamesOfChips, AreChipAndLabel)
{
    EXPECT_THAT(
        namesFor({{"/nct", "nct6798", "SYSTIN", 1}, {"/a", "acpitz", "", 1}, {"/b", "", "", 3}}),
        ElementsAre("nct6798 SYSTIN", "acpitz 1", "sensor 3"));
}

TEST(SensorNamesOfChips, AreToldApart)
{
    EXPECT_THAT(namesFor({{"/1", "nvme", "Composite", 1},
                          {"/2", "nvme", "Composite", 1},
                          {"/3", "nvme", "Composite 2", 1},
                          {"/4", "nvme", "Composite", 1},
                          {"/5", "nvme Composite", "2", 1}}),
                ElementsAre("nvme Composite", "nvme Composite 2", "nvme Composite 2 2",
                            "nvme Composite 3", "nvme Composite 2 3"));
}

TEST(SensorNamesOfChips, OfAnyLengthAreShortAndToldApart)
{
    const std::string label(4096, 'x');
    const auto names = namesFor({{"/1", "chip", label, 1}, {"/2", "chip", label, 1}});
    EXPECT_EQ(names[0], "chip " + std::string(58, 'x') + "…");
    EXPECT_EQ(names[1], "chip " + std::string(56, 'x') + "… 2");
}

TEST(SensorRegistryBounds, WhatIsTooMuchIsLeftOut)
{
    SensorRegistry registry(2);
    const auto places = registry.update({package0, edge, board});
    EXPECT_TRUE(places[0] && places[1]);
    EXPECT_FALSE(places[2]);
    EXPECT_THAT(keysOf(registry), ElementsAre("Tcp0", "Tgp0"));
}

TEST(SensorRegistryBounds, WhatIsAwayTheLongestIsForgotten)
{
    const FoundSensor drive{"/nvme0", "nvme", "Composite", 1};
    SensorRegistry registry(2);
    registry.update({package0});
    registry.update({edge});
    registry.update({drive, edge});
    EXPECT_THAT(keysOf(registry), ElementsAre("Tdn0", "Tgp0"));
    EXPECT_EQ(processorOf(registry), "nothing");
    registry.update({board});
    EXPECT_THAT(keysOf(registry), ElementsAre("Tcp0"));
}

TEST(SensorRegistryBounds, WhatIsFoundTwiceIsOneSensor)
{
    SensorRegistry registry;
    const auto places = registry.update({package0, package0});
    EXPECT_EQ(places[0], places[1]);
}

} // namespace
} // namespace pulsebar
