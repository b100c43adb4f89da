#include "platform/linux_/SysPowerSupplies.h"

#include "platform/TemporaryMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace pulsebar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

/// So that a busy machine is not taken for slow firmware.
PatientFiles::Options unhurried()
{
    PatientFiles::Options options;
    options.budget = std::chrono::seconds(20);
    options.quick = std::chrono::seconds(20);
    options.surelySlow = std::chrono::seconds(20);
    return options;
}

class SysPowerSuppliesTest : public testing::Test
{
protected:
    using Files = std::map<std::string, std::string>;

    void supply(const std::string &name, const Files &files)
    {
        std::string folder("sys/class/power_supply/");
        folder.append(name).append("/");
        for (const auto &[file, text] : files)
            m_machine.write(folder + file, text + '\n');
    }
    void set(const std::string &file, const std::string &text)
    {
        m_machine.write("sys/class/power_supply/" + file, text);
    }
    void remove(const std::string &file) { m_machine.remove("sys/class/power_supply/" + file); }

    std::vector<BatteryInfo> read()
    {
        auto batteries = m_source.readBatteries();
        EXPECT_TRUE(batteries);
        return batteries.value_or(std::vector<BatteryInfo>());
    }
    /// Of a machine with one battery.
    BatteryInfo readOne()
    {
        const auto batteries = read();
        EXPECT_EQ(batteries.size(), 1U);
        return batteries.empty() ? BatteryInfo() : batteries.front();
    }
    /// Those that are read with one battery's files, afresh.
    BatteryInfo readWith(const Files &files)
    {
        remove("");
        supply("BAT0", {{"type", "Battery"}});
        supply("BAT0", files);
        auto batteries = SysPowerSupplies(m_machine.root(), unhurried()).readBatteries();
        EXPECT_TRUE(batteries && batteries->size() == 1);
        return batteries && !batteries->empty() ? batteries->front() : BatteryInfo();
    }

    TemporaryMachine m_machine;
    SysPowerSupplies m_source{m_machine.root(), unhurried()};
};

TEST_F(SysPowerSuppliesTest, AnEnergyBasedPackThatIsEmptied)
{
    supply("AC", {{"type", "Mains"}, {"online", "0"}});
    supply("BAT0", {{"type", "Battery"},
                    {"status", "Discharging"},
                    {"present", "1"},
                    {"cycle_count", "118"},
                    {"energy_now", "31280000"},
                    {"energy_full", "50110000"},
                    {"voltage_now", "11874000"},
                    {"power_now", "9498000"},
                    {"capacity", "62"}});
    const BatteryInfo battery = readOne();
    EXPECT_EQ(battery.flags, BatteryInfo::kInstalled);
    EXPECT_EQ(battery.current, 31280000);
    EXPECT_EQ(battery.capacity, 50110000);
    EXPECT_EQ(battery.cycleCount, 118);
    EXPECT_EQ(battery.voltage, 11874);
    EXPECT_EQ(battery.amperage, -799); // 9.498 W at 11.874 V
}

TEST_F(SysPowerSuppliesTest, AChargeBasedPackThatIsCharged)
{
    supply("ADP1", {{"type", "Mains"}, {"online", "1"}});
    supply("BAT0", {{"type", "Battery"},
                    {"status", "Charging"},
                    {"present", "1"},
                    {"charge_now", "2500000"},
                    {"charge_full", "5000000"},
                    {"voltage_now", "12203000"},
                    {"current_now", "1520000"}});
    const BatteryInfo battery = readOne();
    EXPECT_EQ(battery.flags, 7);
    EXPECT_EQ(battery.current, 2500000);
    EXPECT_EQ(battery.capacity, 5000000);
    EXPECT_EQ(battery.cycleCount, std::nullopt);
    EXPECT_EQ(battery.amperage, 1520);
}

TEST_F(SysPowerSuppliesTest, AtAThresholdItIsConnectedAndNotCharging)
{
    supply("AC", {{"type", "Mains"}, {"online", "1"}});
    supply("BAT0", {{"type", "Battery"}, {"status", "Not charging"}});
    EXPECT_EQ(readOne().flags, BatteryInfo::kInstalled | BatteryInfo::kConnected);
}

TEST_F(SysPowerSuppliesTest, TheSignIsThatOfTheStatus)
{
    const auto amperage = [&](const std::string &status, const std::string &current) {
        return readWith({{"status", status}, {"current_now", current}}).amperage;
    };
    EXPECT_EQ(amperage("Discharging", "1520000"), -1520);
    EXPECT_EQ(amperage("Discharging", "-1520000"), -1520);
    EXPECT_EQ(amperage("Charging", "1520000"), 1520);
    EXPECT_EQ(amperage("Charging", "-1520000"), 1520);
    EXPECT_EQ(amperage("Full", "0"), 0);
    const auto byPower = [&](const std::string &status, const std::string &power) {
        return readWith({{"status", status}, {"power_now", power}, {"voltage_now", "10000000"}})
            .amperage;
    };
    EXPECT_EQ(byPower("Discharging", "15000000"), -1500);
    EXPECT_EQ(byPower("Discharging", "-15000000"), -1500);
    EXPECT_EQ(byPower("Unknown", "-15000000"), 1500);
}

TEST_F(SysPowerSuppliesTest, ThePairIsOfOneFamily)
{
    const auto pair = [&](const Files &files) {
        const BatteryInfo battery = readWith(files);
        return std::pair(battery.current, battery.capacity);
    };
    using Pair = std::pair<std::optional<std::int64_t>, std::optional<std::int64_t>>;
    const Files charge{{"charge_now", "1"}, {"charge_full", "2"}};
    const Files energy{{"energy_now", "3"}, {"energy_full", "4"}};
    Files both = charge;
    both.insert(energy.begin(), energy.end());
    both.insert({"capacity", "77"});
    EXPECT_EQ(pair(charge), Pair(1, 2));
    EXPECT_EQ(pair(energy), Pair(3, 4));
    EXPECT_EQ(pair(both), Pair(1, 2));
    both.erase("charge_full");
    EXPECT_EQ(pair(both), Pair(3, 4));
    both.erase("energy_now");
    EXPECT_EQ(pair(both), Pair(77, 100));
    both.erase("capacity");
    EXPECT_EQ(pair(both), Pair(1, std::nullopt));
    both.erase("charge_now");
    EXPECT_EQ(pair(both), Pair(std::nullopt, 4));
    EXPECT_EQ(pair({{"capacity", "5"}}), Pair(5, 100));
    EXPECT_EQ(pair({{"charge_now", "9"}, {"charge_full", "0"}, {"capacity", "5"}}), Pair(9, 0));
    EXPECT_EQ(pair({}), Pair(std::nullopt, std::nullopt));
}

TEST_F(SysPowerSuppliesTest, DamagedFilesLeaveTheirValueAbsent)
{
    for (const char *text : {"", " ", "unknown", "12a", "1 2", "-", "99999999999999999999",
                             "-99999999999999999999", "0x10", "1.5"}) {
        const BatteryInfo battery = readWith({{"status", text},
                                              {"present", text},
                                              {"charge_now", text},
                                              {"charge_full", text},
                                              {"capacity", text},
                                              {"cycle_count", text},
                                              {"voltage_now", text},
                                              {"current_now", text},
                                              {"power_now", text}});
        EXPECT_EQ(battery.flags, BatteryInfo::kInstalled) << text;
        EXPECT_FALSE(battery.current || battery.capacity || battery.cycleCount || battery.voltage ||
                     battery.amperage)
            << text;
    }
}

TEST_F(SysPowerSuppliesTest, NumbersAtTheirLimitsAreAnsweredOrLeftOut)
{
    const std::string most = "9223372036854775807";
    const std::string least = "-9223372036854775808";
    BatteryInfo battery = readWith({{"charge_now", most},
                                    {"charge_full", most},
                                    {"voltage_now", most},
                                    {"current_now", least},
                                    {"power_now", least}});
    EXPECT_EQ(battery.current, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(battery.voltage, std::nullopt);
    EXPECT_EQ(battery.amperage, std::nullopt);
    battery = readWith({{"voltage_now", "1"}, {"power_now", "9007199254740991"}});
    EXPECT_EQ(battery.amperage, 9007199254740991000);
    battery = readWith({{"voltage_now", "0"}, {"power_now", "5000000"}});
    EXPECT_EQ(battery.voltage, 0);
    EXPECT_EQ(battery.amperage, std::nullopt);
}

TEST_F(SysPowerSuppliesTest, WhatCannotBeNegativeIsAbsentWhenItIs)
{
    const BatteryInfo battery = readWith({{"charge_now", "-5"},
                                          {"charge_full", "-10"},
                                          {"energy_now", "3"},
                                          {"energy_full", "-4"},
                                          {"cycle_count", "-1"},
                                          {"voltage_now", "-12000000"},
                                          {"power_now", "5000000"},
                                          {"capacity", "40"}});
    EXPECT_EQ(battery.current, 40);
    EXPECT_EQ(battery.capacity, 100);
    EXPECT_FALSE(battery.cycleCount || battery.voltage || battery.amperage);
}

TEST_F(SysPowerSuppliesTest, OnlyAnEmptyBayIsNotInstalled)
{
    EXPECT_EQ(readWith({{"present", "0"}}).flags, 0);
    EXPECT_EQ(readWith({{"present", "1"}}).flags, BatteryInfo::kInstalled);
    EXPECT_EQ(readWith({}).flags, BatteryInfo::kInstalled);
}

TEST_F(SysPowerSuppliesTest, DevicesOfTheirOwnAreNotTheMachines)
{
    supply("hidpp_battery_0",
           {{"type", "Battery"}, {"scope", "Device"}, {"status", "Discharging"}, {"online", "1"}});
    supply("phone", {{"type", "USB"}, {"scope", "Device"}, {"online", "1"}});
    EXPECT_THAT(read(), IsEmpty());
    supply("sbs-1", {{"type", "Battery"}, {"scope", "System"}, {"status", "Discharging"}});
    supply("ups", {{"type", "UPS"}, {"online", "1"}});
    auto batteries = read();
    for (int reading = 0; reading < 4; ++reading)
        batteries = read();
    ASSERT_EQ(batteries.size(), 1U);
    EXPECT_EQ(batteries.front().flags, BatteryInfo::kInstalled); // the phone's charger is not ours
}

TEST_F(SysPowerSuppliesTest, AnySupplyFromOutsideWillDo)
{
    const auto flagsWith = [&](const std::string &type, const std::string &online) {
        remove("");
        supply("AC", {{"type", "Mains"}, {"online", "0"}});
        supply("other", {{"type", type}, {"online", online}});
        supply("BAT0", {{"type", "Battery"}, {"status", "Full"}});
        const auto all = SysPowerSupplies(m_machine.root(), unhurried()).readBatteries();
        return all.value_or(std::vector<BatteryInfo>(1)).front().flags;
    };
    constexpr int connected = BatteryInfo::kInstalled | BatteryInfo::kConnected;
    for (const char *type : {"Mains", "USB", "USB_C", "USB_PD", "USB_DCP", "Wireless"})
        EXPECT_EQ(flagsWith(type, "1"), connected) << type;
    EXPECT_EQ(flagsWith("USB", "2"), connected); // a programmable supply
    EXPECT_EQ(flagsWith("USB", "0"), BatteryInfo::kInstalled);
    EXPECT_EQ(flagsWith("USB", "?"), BatteryInfo::kInstalled);
    EXPECT_EQ(flagsWith("UPS", "1"), BatteryInfo::kInstalled);
    EXPECT_EQ(flagsWith("BMS", "1"), BatteryInfo::kInstalled);
}

TEST_F(SysPowerSuppliesTest, WithoutASupplyTheStatusSaysWhetherThereIsPower)
{
    constexpr int connected = BatteryInfo::kInstalled | BatteryInfo::kConnected;
    EXPECT_EQ(readWith({{"status", "Charging"}}).flags, connected | BatteryInfo::kCharging);
    EXPECT_EQ(readWith({{"status", "Full"}}).flags, connected);
    EXPECT_EQ(readWith({{"status", "Not charging"}}).flags, connected);
    EXPECT_EQ(readWith({{"status", "Discharging"}}).flags, BatteryInfo::kInstalled);
    EXPECT_EQ(readWith({{"status", "Unknown"}}).flags, BatteryInfo::kInstalled);
}

TEST_F(SysPowerSuppliesTest, AFullPackBesideOneThatIsEmptiedIsNotConnected)
{
    supply("BAT0", {{"type", "Battery"}, {"status", "Full"}});
    supply("BAT1", {{"type", "Battery"}, {"status", "Discharging"}});
    auto batteries = read();
    ASSERT_EQ(batteries.size(), 2U);
    EXPECT_EQ(batteries.at(0).flags, BatteryInfo::kInstalled);
    set("BAT1/status", "Charging\n");
    batteries = read();
    EXPECT_EQ(batteries.at(0).flags, BatteryInfo::kInstalled | BatteryInfo::kConnected);
    EXPECT_EQ(batteries.at(1).flags, 7);
}

TEST_F(SysPowerSuppliesTest, TheOrderIsThatOfPeople)
{
    const auto order = [&] {
        std::vector<std::int64_t> percents;
        for (const BatteryInfo &battery : read())
            percents.push_back(battery.current.value_or(-1));
        return percents;
    };
    supply("BAT10", {{"type", "Battery"}, {"capacity", "10"}});
    supply("BAT2", {{"type", "Battery"}, {"capacity", "2"}});
    supply("BAT02", {{"type", "Battery"}, {"capacity", "1"}});
    supply("BAT", {{"type", "Battery"}, {"capacity", "0"}});
    supply("BAT2b", {{"type", "Battery"}, {"capacity", "3"}});
    supply("CMB0", {{"type", "Battery"}, {"capacity", "20"}});
    EXPECT_THAT(order(), ElementsAre(0, 1, 2, 3, 10, 20));
}

TEST_F(SysPowerSuppliesTest, PlugAndUnplugAreNoticedAtOnce)
{
    supply("AC", {{"type", "Mains"}, {"online", "1"}});
    supply("BAT0", {{"type", "Battery"}, {"status", "Charging"}});
    EXPECT_EQ(readOne().flags, 7);
    for (int round = 0; round < 6; ++round) {
        set("AC/online", "0\n");
        set("BAT0/status", "Discharging\n");
        EXPECT_EQ(readOne().flags, BatteryInfo::kInstalled);
        set("AC/online", "1\n");
        set("BAT0/status", "Charging\n");
        EXPECT_EQ(readOne().flags, 7);
    }
}

TEST_F(SysPowerSuppliesTest, ADockIsThereAtTheNextReading)
{
    supply("BAT0", {{"type", "Battery"}, {"status", "Discharging"}});
    EXPECT_EQ(readOne().flags, BatteryInfo::kInstalled);
    supply("dock", {{"type", "USB"}, {"online", "1"}});
    EXPECT_EQ(readOne().flags, BatteryInfo::kInstalled | BatteryInfo::kConnected);
}

TEST_F(SysPowerSuppliesTest, ASupplyThatIsNotCompleteIsThereWhenItIs)
{
    supply("BAT0", {{"type", "Battery"}, {"status", "Discharging"}});
    supply("dock", {{"uevent", ""}});
    EXPECT_EQ(readOne().flags, BatteryInfo::kInstalled);
    supply("dock", {{"type", "USB"}, {"online", "1"}});
    EXPECT_EQ(readOne().flags, BatteryInfo::kInstalled | BatteryInfo::kConnected);
}

TEST_F(SysPowerSuppliesTest, ASupplyThatIsPulledOutIsGoneAtTheNextReading)
{
    supply("BAT0", {{"type", "Battery"}, {"status", "Full"}, {"capacity", "1"}});
    supply("BAT1", {{"type", "Battery"}, {"status", "Full"}, {"capacity", "2"}});
    supply("dock", {{"type", "USB"}, {"online", "1"}});
    EXPECT_EQ(read().size(), 2U);
    remove("dock");
    set("BAT1/status", "Discharging\n");
    EXPECT_EQ(read().front().flags, BatteryInfo::kInstalled); // the status speaks now
    remove("BAT0");
    const BatteryInfo battery = readOne();
    EXPECT_EQ(battery.current, 2);
    remove("BAT1");
    EXPECT_THAT(read(), IsEmpty());
    supply("BAT1", {{"type", "Battery"}, {"capacity", "3"}});
    EXPECT_EQ(readOne().current, 3);
}

TEST_F(SysPowerSuppliesTest, ASupplyThatBecomesAnotherIsTakenForWhatItIs)
{
    supply("x", {{"type", "Battery"}, {"capacity", "3"}});
    EXPECT_EQ(readOne().current, 3);
    remove("x");
    supply("x", {{"type", "Mains"}, {"online", "1"}});
    supply("y", {{"type", "Battery"}, {"capacity", "4"}});
    const BatteryInfo battery = readOne();
    EXPECT_EQ(battery.current, 4);
    EXPECT_EQ(battery.flags, BatteryInfo::kInstalled | BatteryInfo::kConnected);
}

TEST_F(SysPowerSuppliesTest, WithoutTheFolderNothingCanBeTold)
{
    EXPECT_EQ(m_source.readBatteries(), std::nullopt);
    supply("BAT0", {{"type", "Battery"}, {"status", "Full"}});
    EXPECT_EQ(read().size(), 1U);
    remove("");
    EXPECT_EQ(m_source.readBatteries(), std::nullopt);
    m_machine.write("sys/class/power_supply/.hidden", "");
    EXPECT_THAT(m_source.readBatteries(), Optional(IsEmpty()));
}

} // namespace
} // namespace pulsebar
